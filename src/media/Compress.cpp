#include "media/Compress.h"

#include "base/Inflate.h"
#include "media/FileStart.h"
#include "media/MovieHeader.h"

#include <algorithm>
// The library then takes its input as what it is: not changed.
#define ZLIB_CONST
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

base::Result<std::vector<std::uint8_t>> CompressData(base::Bytes source, int level,
                                                     const std::function<bool(double)>& progress)
{
    // What zlib asks for at worst: a thousandth and a little more.
    std::vector<std::uint8_t> destination(source.size() + source.size() / 1000 + 15);
    z_stream stream{};
    int answer = deflateInit(&stream, level);
    if (answer != Z_OK)
        return base::fail(ErrorCode::IoFailure, "zlib: compression failed, " + std::to_string(answer));
    // zlib counts in 32 bits, and somebody may be watching: a piece at a time.
    constexpr std::size_t kPiece = 256U << 10U;
    std::size_t taken = 0, used = 0;
    bool isEnded = false;
    while (answer == Z_OK && !isEnded) {
        const std::size_t in = std::min(source.size() - taken, kPiece);
        const std::size_t room = std::min<std::size_t>(destination.size() - used, 1U << 30U);
        stream.next_in = source.data() + taken;
        stream.avail_in = static_cast<uInt>(in);
        stream.next_out = destination.data() + used;
        stream.avail_out = static_cast<uInt>(room);
        answer = deflate(&stream, taken + in == source.size() ? Z_FINISH : Z_NO_FLUSH);
        taken += in - stream.avail_in;
        used += room - stream.avail_out;
        isEnded = progress && !progress(static_cast<double>(taken) / static_cast<double>(source.size()));
    }
    deflateEnd(&stream);
    if (isEnded) return base::fail(ErrorCode::LimitReached, "the compression was ended");
    if (answer != Z_STREAM_END)
        return base::fail(ErrorCode::IoFailure, "zlib: compression failed, " + std::to_string(answer));
    destination.resize(used);
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
