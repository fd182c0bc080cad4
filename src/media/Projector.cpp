#include "media/Projector.h"

#include "media/MovieHeader.h"

#include <cstring>
#include <optional>

namespace media
{
namespace
{

constexpr std::uint8_t kFirstVersionRefused = 8;

/// @returns the offset of the last "FWS" that lies wholly before `end`
std::optional<std::size_t> lastSignatureBefore(base::Bytes bytes, std::size_t end)
{
    // The system's backward search runs at memory speed; "W" is the rarest of the three in program code.
    while (end >= 3) {
        const void* found = ::memrchr(bytes.data() + 1, 'W', end - 2);
        if (found == nullptr) return {};
        const auto at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - bytes.data());
        if (bytes[at - 1] == 'F' && bytes[at + 1] == 'S') return at - 1;
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

} // namespace

base::Result<EmbeddedMovie> findEmbeddedMovie(base::Bytes executable)
{
    std::size_t end = executable.size();
    while (const auto offset = lastSignatureBefore(executable, end)) {
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
