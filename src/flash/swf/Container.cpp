#include "flash/swf/Container.h"

#include <algorithm>
#define ZLIB_CONST
#include <zlib.h>
#ifdef ZORVEX_HAS_LZMA
#include <lzma.h>
#endif

namespace flash::swf
{
namespace
{

constexpr std::size_t kFixedHeaderBytes = 8; // signature, version, length
constexpr std::size_t kFirstOutputBytes = 64U << 10U;
constexpr std::uint64_t kUsualRatio = 3; // few streams inflate to more

// Doubles the buffer, up to the limit and one byte more, by which an output past the limit is noticed.
bool grow(std::vector<std::uint8_t>& buffer, std::uint64_t limit)
{
    if (buffer.size() > limit) return false;
    const std::uint64_t wanted = std::max<std::uint64_t>(buffer.size() * 2, kFirstOutputBytes);
    buffer.resize(static_cast<std::size_t>(std::min(wanted, limit + 1)));
    return true;
}

// Takes the one byte past the limit off again.
void cutAt(std::uint64_t limit, std::size_t used, Inflated& out)
{
    out.cut = used > limit;
    out.bytes.resize(out.cut ? static_cast<std::size_t>(limit) : used);
}

#ifdef ZORVEX_HAS_LZMA
// The file keeps the compressed length, five bytes of LZMA properties and the stream; the library wants the
// properties followed by the unknown plain length, which is all ones.
base::Result<Inflated> unpackLzma(base::Bytes file, std::uint64_t limit)
{
    constexpr std::size_t kProperties = kFixedHeaderBytes + 4;
    constexpr std::size_t kStream = kProperties + 5;
    if (file.size() < kStream) return base::fail(base::ErrorCode::Truncated, "LZMA movie without its header");
    std::vector<std::uint8_t> input(file.begin() + kProperties, file.begin() + kStream);
    input.insert(input.end(), 8, 0xFF);
    input.insert(input.end(), file.begin() + kStream, file.end());

    lzma_stream stream = LZMA_STREAM_INIT;
    if (lzma_alone_decoder(&stream, std::max<std::uint64_t>(limit, 1U << 20U)) != LZMA_OK)
        return base::fail(base::ErrorCode::LimitReached, "no memory for LZMA");
    stream.next_in = input.data();
    stream.avail_in = input.size();
    Inflated out;
    lzma_ret status = LZMA_OK;
    while (status == LZMA_OK) {
        const std::size_t used = stream.total_out;
        if (used == out.bytes.size() && !grow(out.bytes, limit)) break;
        stream.next_out = out.bytes.data() + used;
        stream.avail_out = out.bytes.size() - used;
        status = lzma_code(&stream, LZMA_FINISH);
    }
    cutAt(limit, stream.total_out, out);
    out.complete = status == LZMA_STREAM_END;
    lzma_end(&stream);
    return out;
}
#else
base::Result<Inflated> unpackLzma(base::Bytes, std::uint64_t)
{
    return base::fail(base::ErrorCode::Unsupported, "movie compressed with LZMA");
}
#endif

} // namespace

Inflated inflateStream(base::Bytes compressed, std::uint64_t limit)
{
    Inflated out;
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) return out;
    const std::uint64_t guess = std::max<std::uint64_t>(compressed.size() * kUsualRatio, kFirstOutputBytes);
    out.bytes.resize(static_cast<std::size_t>(std::min(guess, limit + 1)));
    std::size_t used = 0;
    std::size_t consumed = 0;
    int status = Z_OK;
    while (status == Z_OK) {
        if (used == out.bytes.size() && !grow(out.bytes, limit)) break;
        // zlib counts in 32 bits; a piece at a time keeps both counts inside.
        constexpr std::size_t kPiece = 1U << 30U;
        const std::size_t in = std::min(compressed.size() - consumed, kPiece);
        const std::size_t room = std::min(out.bytes.size() - used, kPiece);
        stream.next_in = compressed.data() + consumed;
        stream.avail_in = static_cast<uInt>(in);
        stream.next_out = out.bytes.data() + used;
        stream.avail_out = static_cast<uInt>(room);
        status = inflate(&stream, Z_NO_FLUSH);
        consumed += in - stream.avail_in;
        used += room - stream.avail_out;
    }
    inflateEnd(&stream);
    cutAt(limit, used, out);
    out.complete = status == Z_STREAM_END;
    return out;
}

base::Result<PlainMovie> unpackMovie(base::Bytes file, std::uint64_t limit)
{
    if (file.size() < 3 || file[1] != 'W' || file[2] != 'S' ||
        (file[0] != 'F' && file[0] != 'C' && file[0] != 'Z'))
        return base::fail(base::ErrorCode::Malformed, "no movie: the signature is missing", 0);
    if (file.size() < kFixedHeaderBytes)
        return base::fail(base::ErrorCode::Truncated, "the movie ends within its header", file.size());

    PlainMovie movie;
    if (file[0] == 'F') {
        movie.bytes.assign(file.begin(), file.end());
        return movie;
    }
    const Inflated body = file[0] == 'C' ? inflateStream(file.subspan(kFixedHeaderBytes), limit)
                                         : TRY_RESULT(unpackLzma(file, limit));
    if (body.cut)
        return base::fail(base::ErrorCode::LimitReached,
                          "the movie inflates to more than " + std::to_string(limit) + " bytes");
    movie.bytes.reserve(kFixedHeaderBytes + body.bytes.size());
    movie.bytes.assign(file.begin(), file.begin() + kFixedHeaderBytes);
    movie.bytes[0] = 'F';
    movie.bytes.insert(movie.bytes.end(), body.bytes.begin(), body.bytes.end());
    movie.compressed = true;
    movie.complete = body.complete;
    return movie;
}

} // namespace flash::swf
