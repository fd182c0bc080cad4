#include "media/Compress.h"

#include "media/FileStart.h"
#include "media/MovieHeader.h"

#include <algorithm>
#include <limits>
#include <zlib.h>

namespace media
{
namespace
{

using base::ErrorCode;

/// A zlib inflater that is closed on every way out.
class Inflater
{
public:
    Inflater() : m_ready(inflateInit(&m_stream) == Z_OK) {}
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater()
    {
        if (m_ready) inflateEnd(&m_stream);
    }

    /// Inflates from `source` into `target`, moving both past what was used.
    /// @returns zlib's answer
    int run(base::Bytes& source, std::span<std::uint8_t>& target)
    {
        if (!m_ready) return Z_MEM_ERROR;
        constexpr std::size_t kMost = std::numeric_limits<uInt>::max();
        m_stream.next_in = const_cast<Bytef*>(source.data()); // zlib's interface; it only reads
        m_stream.avail_in = static_cast<uInt>(std::min(source.size(), kMost));
        m_stream.next_out = target.data();
        m_stream.avail_out = static_cast<uInt>(std::min(target.size(), kMost));
        const int answer = inflate(&m_stream, Z_NO_FLUSH);
        source = source.subspan(static_cast<std::size_t>(m_stream.next_in - source.data()));
        target = target.subspan(static_cast<std::size_t>(m_stream.next_out - target.data()));
        return answer;
    }
    [[nodiscard]] std::string message() const
    {
        return m_stream.msg != nullptr ? m_stream.msg : "bad stream";
    }

private:
    z_stream m_stream{};
    bool m_ready;
};

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
    // A stream yields about four times its length; one that yields more grows the buffer step by step.
    constexpr std::uint64_t kFirstFactor = 4;
    constexpr std::uint64_t kSmallest = 1024;
    const std::uint64_t first = std::max<std::uint64_t>(kSmallest, source.size() * kFirstFactor);
    // One byte to spare shows a stream that holds too much, and zlib takes no empty buffer.
    const std::uint64_t most = expectedLength + 1;
    std::vector<std::uint8_t> destination(std::min(most, first));
    Inflater inflater;
    std::size_t filled = 0;
    for (;;) {
        std::span<std::uint8_t> room(destination.data() + filled, destination.size() - filled);
        const int answer = inflater.run(source, room);
        filled = destination.size() - room.size();
        if (filled > expectedLength)
            return base::fail(ErrorCode::LimitReached,
                              "zlib: more than the stated " + std::to_string(expectedLength) + " bytes");
        if (answer == Z_STREAM_END) break;
        if (answer != Z_OK && answer != Z_BUF_ERROR)
            return base::fail(ErrorCode::Malformed, "zlib: " + inflater.message());
        if (!room.empty()) return base::fail(ErrorCode::Truncated, "zlib: the stream ends early");
        destination.resize(std::min<std::uint64_t>(most, destination.size() * std::uint64_t{2}));
    }
    destination.resize(filled);
    return destination;
}

base::Result<std::vector<std::uint8_t>> decompressStart(const std::filesystem::path& movie, std::size_t count)
{
    // One block of the disk nearly always holds what the first bytes take; a stream with a large code table
    // may need the next.
    FileStart file = TRY_RESULT(FileStart::open(movie));
    CHECK_RESULT(file.skip(kFileHeaderBytes));
    std::vector<std::uint8_t> destination(count);
    std::span<std::uint8_t> room(destination);
    Inflater inflater;
    while (!room.empty()) {
        base::Bytes chunk = TRY_RESULT(file.nextChunk());
        if (chunk.empty()) return base::fail(ErrorCode::Truncated, "zlib: the stream ends early");
        int answer = Z_OK;
        while (answer == Z_OK && !room.empty() && !chunk.empty()) answer = inflater.run(chunk, room);
        if (answer == Z_STREAM_END) break;
        if (answer != Z_OK && answer != Z_BUF_ERROR)
            return base::fail(ErrorCode::Malformed, "zlib: " + inflater.message());
    }
    destination.resize(count - room.size());
    return destination;
}

} // namespace media
