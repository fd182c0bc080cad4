#include "base/Inflate.h"

#include <algorithm>
#define ZLIB_CONST
#include <zlib.h>
#ifdef ZORVEX_HAS_LZMA
#include <lzma.h>
#endif

namespace base
{
namespace
{

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

} // namespace

Inflated inflateZlib(Bytes compressed, std::uint64_t limit)
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
    out.damaged = status != Z_STREAM_END && status != Z_OK && status != Z_BUF_ERROR;
    out.consumed = consumed;
    return out;
}

#ifdef ZORVEX_HAS_LZMA
Result<Inflated> inflateLzma(Bytes compressed, std::uint64_t limit, std::uint64_t plainLength)
{
    // The library wants the plain length between the properties and the stream.
    constexpr std::size_t kProperties = 5;
    if (compressed.size() < kProperties) return fail(ErrorCode::Truncated, "LZMA stream without its header");
    std::uint8_t head[kProperties + sizeof plainLength];
    std::copy_n(compressed.begin(), kProperties, head);
    for (std::size_t i = 0; i < sizeof plainLength; ++i)
        head[kProperties + i] = static_cast<std::uint8_t>(plainLength >> (8 * i));

    lzma_stream stream = LZMA_STREAM_INIT;
    constexpr std::uint64_t kMaxMemory = 192U << 20U; // usual dictionaries have 1 to 64 MB
    if (lzma_alone_decoder(&stream, kMaxMemory) != LZMA_OK)
        return fail(ErrorCode::LimitReached, "no memory for LZMA");
    const Bytes rest = compressed.subspan(kProperties);
    bool inHead = true;
    stream.next_in = head;
    stream.avail_in = sizeof head;
    Inflated out;
    lzma_ret status = LZMA_OK;
    while (status == LZMA_OK) {
        const auto used = static_cast<std::size_t>(stream.total_out);
        if (used == out.bytes.size() && !grow(out.bytes, limit)) break;
        stream.next_out = out.bytes.data() + used;
        stream.avail_out = out.bytes.size() - used;
        status = lzma_code(&stream, inHead ? LZMA_RUN : LZMA_FINISH);
        if (inHead && stream.avail_in == 0) {
            inHead = false;
            stream.next_in = rest.data();
            stream.avail_in = rest.size();
        }
    }
    if (!inHead) out.consumed = kProperties + rest.size() - stream.avail_in;
    const auto used = static_cast<std::size_t>(stream.total_out);
    out.complete = status == LZMA_STREAM_END;
    out.damaged = status != LZMA_STREAM_END && status != LZMA_OK && status != LZMA_BUF_ERROR;
    lzma_end(&stream);
    cutAt(limit, used, out);
    return out;
}
#else
Result<Inflated> inflateLzma(Bytes, std::uint64_t, std::uint64_t)
{
    return fail(ErrorCode::Unsupported, "compressed with LZMA");
}
#endif

} // namespace base
