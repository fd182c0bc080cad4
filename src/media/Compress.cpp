#include "media/Compress.h"

#include "base/Inflate.h"
#include "media/FileStart.h"
#include "media/MovieHeader.h"

#include <algorithm>
#include <zlib.h>

namespace media
{
namespace
{

using base::ErrorCode;

/// An LZMA movie states the compressed length behind its header.
constexpr std::size_t kLzmaLengthBytes = 4;

/// As much as there is.
base::Result<base::Inflated> inflateBody(bool lzma, base::Bytes body, std::uint64_t limit)
{
    if (!lzma) return base::inflateZlib(body, limit);
    return base::inflateLzma(body.subspan(std::min(body.size(), kLzmaLengthBytes)), limit);
}

base::Result<std::vector<std::uint8_t>> wholeOf(base::Inflated inflated, std::uint64_t limit)
{
    if (inflated.cut)
        return base::fail(ErrorCode::LimitReached,
                          "more than the stated " + std::to_string(limit) + " bytes");
    if (inflated.damaged) return base::fail(ErrorCode::Malformed, "the compressed stream is damaged");
    if (!inflated.complete) return base::fail(ErrorCode::Truncated, "the compressed stream ends early");
    return std::move(inflated.bytes);
}

} // namespace

base::Result<std::vector<std::uint8_t>> CompressData(base::Bytes source, int level)
{
    // What zlib asks for at worst: a thousandth and a little more.
    std::vector<std::uint8_t> destination(source.size() + source.size() / 1000 + 15);
    uLongf length = destination.size();
    const int answer = compress2(destination.data(), &length, source.data(), source.size(), level);
    if (answer != Z_OK)
        return base::fail(ErrorCode::IoFailure, "zlib: compression failed, " + std::to_string(answer));
    destination.resize(length);
    return destination;
}

base::Result<std::vector<std::uint8_t>> DecompressData(base::Bytes source, std::uint64_t expectedLength)
{
    return wholeOf(base::inflateZlib(source, expectedLength), expectedLength);
}

base::Result<std::vector<std::uint8_t>> decompressMovie(base::Bytes file, std::uint64_t limit)
{
    const FileHeader header = TRY_RESULT(readFileHeader(file));
    const base::Bytes body = file.subspan(kFileHeaderBytes);
    if (!header.is("ZWS")) return wholeOf(base::inflateZlib(body, limit), limit);
    // Few of these streams mark their own end; the stated length says where it is.
    if (header.fileLength < kFileHeaderBytes || header.fileLength - kFileHeaderBytes > limit)
        return base::fail(ErrorCode::LimitReached, "more than " + std::to_string(limit) + " bytes");
    return wholeOf(TRY_RESULT(base::inflateLzma(body.subspan(std::min(body.size(), kLzmaLengthBytes)), limit,
                                                header.fileLength - kFileHeaderBytes)),
                   limit);
}

base::Result<std::vector<std::uint8_t>> decompressStart(const std::filesystem::path& movie, std::size_t count)
{
    // One block of the disk nearly always holds what the first bytes take. A stream with large code tables
    // may need the next ones; ever more are read at once, so that nothing is inflated often.
    FileStart file = TRY_RESULT(FileStart::open(movie));
    const FileHeader header = TRY_RESULT(readFileHeader(TRY_RESULT(file.bytes(kFileHeaderBytes))));
    std::vector<std::uint8_t> read;
    for (std::size_t wanted = 1;; wanted = read.size() * 2) {
        bool atEnd = false;
        while (read.size() < wanted && !atEnd) {
            const base::Bytes chunk = TRY_RESULT(file.nextChunk());
            atEnd = chunk.empty();
            read.insert(read.end(), chunk.begin(), chunk.end());
        }
        base::Inflated start = TRY_RESULT(inflateBody(header.is("ZWS"), read, count));
        if (start.complete || start.bytes.size() == count) return std::move(start.bytes);
        if (start.damaged) return base::fail(ErrorCode::Malformed, "the compressed stream is damaged");
        if (atEnd) return base::fail(ErrorCode::Truncated, "the compressed stream ends early");
    }
}

} // namespace media
