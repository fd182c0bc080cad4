#include "media/Projector.h"

#include "base/Inflate.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace media
{
namespace
{

constexpr std::uint8_t kFirstVersionRefused = 8;

/// @param first the letters that a signature may begin with
/// @returns the offset of the last signature that lies wholly before `end`
std::optional<std::size_t> lastSignatureBefore(base::Bytes bytes, std::size_t end, std::string_view first)
{
    // The system's backward search runs at memory speed; "W" is the rarest of the three in program code.
    while (end >= 3) {
        const void* found = ::memrchr(bytes.data() + 1, 'W', end - 2);
        if (found == nullptr) return {};
        const auto at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - bytes.data());
        if (bytes[at + 1] == 'S' && first.find(static_cast<char>(bytes[at - 1])) != first.npos) return at - 1;
        end = at + 1; // the next "W" lies before this one
    }
    return {};
}

bool isMovie(base::Bytes executable, std::size_t offset, const FileHeader& header)
{
    if (header.version >= kFirstVersionRefused) return false;
    const std::uint64_t end = std::uint64_t{offset} + header.fileLength;
    if (end > executable.size() + std::uint64_t{1} || end < 2) return false;
    const auto isZero = [executable](std::uint64_t at) {
        return at >= executable.size() || executable[at] == 0;
    };
    return isZero(end - 2) && isZero(end - 1);
}

/// What all candidates of one executable may inflate to together.
constexpr std::uint64_t kMaxInflated = std::uint64_t{1} << 30;
constexpr int kMaxCandidates = 256; ///< that are inflated

/// Whether a movie's tags lead from the frame header to the end tag.
bool reachesItsEnd(base::Bytes body)
{
    if (!readFrameHeader(body)) return false;
    base::ByteReader reader(body);
    const unsigned fieldBits = body[0] >> 3U;
    if (!reader.skip((5 + 4 * fieldBits + 7) / 8 + 4)) return false;
    for (;;) {
        const auto head = reader.u16();
        if (!head) return false;
        std::uint32_t length = *head & 63U;
        if (length == 63) {
            const auto extended = reader.u32();
            if (!extended) return false;
            length = *extended;
        }
        if (*head >> 6U == 0) return true;
        if (!reader.skip(length)) return false;
    }
}

/// Finds out whether a whole movie begins at a place of an executable.
class WholeMovie
{
public:
    explicit WholeMovie(base::Bytes executable) : m_executable(executable) {}

    std::optional<EmbeddedMovie> at(std::size_t offset)
    {
        const auto header = readFileHeader(m_executable.subspan(offset));
        if (!header || header->version == 0 || header->fileLength < kShortestMovieBytes) return {};
        const base::Bytes file = m_executable.subspan(offset);
        const base::Bytes body = file.subspan(kFileHeaderBytes);
        if (header->is("FWS")) {
            if (header->fileLength > file.size() ||
                !reachesItsEnd(body.first(header->fileLength - kFileHeaderBytes)))
                return {};
            return EmbeddedMovie{offset, header->fileLength};
        }
        const bool lzma = header->is("ZWS");
        if (!lzma && !header->is("CWS")) return {};
        constexpr std::size_t kLzmaLengthBytes = 4;
        const std::size_t skipped = lzma ? kLzmaLengthBytes : 0;
        const std::uint64_t plain = header->fileLength - kFileHeaderBytes;
        if (body.size() <= skipped || plain > m_inflatable || m_candidates-- <= 0) return {};
        const auto inflated = lzma ? base::inflateLzma(body.subspan(skipped), plain, plain)
                                   : base::Result<base::Inflated>(base::inflateZlib(body, plain));
        if (!inflated) return {};
        m_inflatable -= std::min<std::uint64_t>(m_inflatable, inflated->bytes.size());
        if (!inflated->complete || !reachesItsEnd(inflated->bytes)) return {};
        return EmbeddedMovie{offset, kFileHeaderBytes + skipped + inflated->consumed};
    }

private:
    base::Bytes m_executable;
    std::uint64_t m_inflatable = kMaxInflated;
    int m_candidates = kMaxCandidates;
};

/// A projector ends in a mark and the length of the movie before it, in its machine's order of bytes.
std::optional<std::size_t> placeByFooter(base::Bytes executable)
{
    constexpr std::size_t kFooterBytes = 8;
    constexpr std::uint32_t kMark = 0xFA123456;
    if (executable.size() < kFooterBytes) return {};
    const base::Bytes footer = executable.last(kFooterBytes);
    const auto number = [footer](std::size_t at, bool little) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) value = value << 8U | footer[at + (little ? 3 - i : i)];
        return value;
    };
    for (const bool little : {true, false}) {
        if (number(0, little) != kMark) continue;
        const std::uint32_t length = number(4, little);
        if (length <= executable.size() - kFooterBytes) return executable.size() - kFooterBytes - length;
    }
    return {};
}

} // namespace

bool isExecutable(const FileHeader& header)
{
    const std::uint32_t start = static_cast<std::uint8_t>(header.signature[0]) << 24U |
                                static_cast<std::uint8_t>(header.signature[1]) << 16U |
                                static_cast<std::uint8_t>(header.signature[2]) << 8U | header.version;
    switch (start) {
    case 0x7F454C46: // ELF
    case 0xFEEDFACE: // the Mac's, either order and width, and several in one
    case 0xFEEDFACF:
    case 0xCEFAEDFE:
    case 0xCFFAEDFE:
    case 0xCAFEBABE:
    case 0x4A6F7921: // "Joy!", of the Mac before
        return true;
    default: return header.is("MZ");
    }
}

base::Result<EmbeddedMovie> findAnyMovie(base::Bytes executable)
{
    WholeMovie whole(executable);
    if (const auto place = placeByFooter(executable)) {
        if (const auto movie = whole.at(*place)) return *movie;
    }
    std::size_t end = executable.size();
    while (const auto offset = lastSignatureBefore(executable, end, "FCZ")) {
        if (const auto movie = whole.at(*offset)) return *movie;
        end = *offset + 2; // a "W" before the one just seen
    }
    return base::fail(base::ErrorCode::NotFound,
                      "projector: no movie in " + std::to_string(executable.size()) + " bytes");
}

base::Result<EmbeddedMovie> findEmbeddedMovie(base::Bytes executable)
{
    std::size_t end = executable.size();
    while (const auto offset = lastSignatureBefore(executable, end, "F")) {
        end = *offset + 2; // a "W" before the one just seen
        const auto header = readFileHeader(executable.subspan(*offset));
        if (!header || !isMovie(executable, *offset, *header)) continue;
        if (header->fileLength < kShortestMovieBytes)
            return base::fail(base::ErrorCode::Malformed,
                              "projector: a movie of " + std::to_string(header->fileLength) + " bytes",
                              *offset);
        return EmbeddedMovie{*offset, header->fileLength};
    }
    return base::fail(base::ErrorCode::NotFound,
                      "projector: no movie in " + std::to_string(executable.size()) + " bytes");
}

} // namespace media
