#include "flash/avm2/classes/ByteArrayPacking.h"

#ifdef ZORVEX_HAS_LZMA
#include <lzma.h>
#endif
#include <zlib.h>

namespace flash::avm2::classes
{

namespace
{

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMaxBytes = std::size_t{1} << 28, kPieceBytes = 65536;
constexpr int kPlainWindow = -15, kZlibWindow = 15;

int windowOf(Packing packing) { return packing == Packing::Zlib ? kZlibWindow : kPlainWindow; }

bool deflateTo(Bytes& out, Bytes& in, int window)
{
    z_stream stream{};
    if (deflateInit2(&stream, 9, Z_DEFLATED, window, 8, Z_DEFAULT_STRATEGY) != Z_OK) return false;
    out.resize(deflateBound(&stream, in.size()) + 16);
    stream.next_in = in.data();
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return true;
}

enum class Coded : std::uint8_t { More, End, Damaged };

/// Lets a coder write piece by piece. `code` fills the place that it is given, says what is left of it, and
/// how it goes on.
/// @returns whether the end came, within the limits
template <class Code>
bool codeInPieces(Bytes& out, Code&& code)
{
    Coded state = Coded::More;
    while (state == Coded::More && out.size() < kMaxBytes) {
        const std::size_t at = out.size();
        out.resize(at + kPieceBytes);
        std::size_t left = kPieceBytes;
        state = code(out.data() + at, left);
        out.resize(at + kPieceBytes - left);
    }
    return state == Coded::End;
}

bool inflateTo(Bytes& out, Bytes& in, int window)
{
    z_stream stream{};
    if (inflateInit2(&stream, window) != Z_OK) return false;
    stream.next_in = in.data();
    stream.avail_in = static_cast<uInt>(in.size());
    const bool isWhole = codeInPieces(out, [&](std::uint8_t* to, std::size_t& left) {
        stream.next_out = to;
        stream.avail_out = static_cast<uInt>(left);
        const int state = inflate(&stream, Z_NO_FLUSH);
        left = stream.avail_out;
        if (state == Z_STREAM_END) return Coded::End;
        return state == Z_OK && (stream.avail_in != 0 || left == 0) ? Coded::More : Coded::Damaged;
    });
    inflateEnd(&stream);
    return isWhole;
}

#ifdef ZORVEX_HAS_LZMA
/// Runs a coder to its end. @returns whether that came, within the limits
bool codeTo(Bytes& out, const Bytes& in, lzma_stream& stream)
{
    stream.next_in = in.data();
    stream.avail_in = in.size();
    const bool isWhole = codeInPieces(out, [&](std::uint8_t* to, std::size_t& left) {
        stream.next_out = to;
        stream.avail_out = left;
        const lzma_ret state = lzma_code(&stream, LZMA_FINISH);
        left = stream.avail_out;
        return state == LZMA_OK ? Coded::More : state == LZMA_STREAM_END ? Coded::End : Coded::Damaged;
    });
    lzma_end(&stream);
    return isWhole;
}

// The form: 5 bytes of properties, the length of the content in 8 bytes (all ones: there is a mark at the
// end), and the data.
constexpr std::size_t kPropertyBytes = 5, kLengthBytes = 8;
constexpr std::uint64_t kMaxLzmaMemory = std::uint64_t{1} << 28;

bool lzmaTo(Bytes& out, const Bytes& in)
{
    lzma_stream stream = LZMA_STREAM_INIT;
    lzma_options_lzma options{};
    if (lzma_lzma_preset(&options, LZMA_PRESET_DEFAULT) || lzma_alone_encoder(&stream, &options) != LZMA_OK)
        return false;
    return codeTo(out, in, stream);
}

bool unlzmaTo(Bytes& out, const Bytes& in)
{
    if (in.size() < kPropertyBytes + kLengthBytes) return false;
    lzma_stream stream = LZMA_STREAM_INIT;
    return lzma_alone_decoder(&stream, kMaxLzmaMemory) == LZMA_OK && codeTo(out, in, stream);
}
#else
bool lzmaTo(Bytes&, const Bytes&) { return false; }
bool unlzmaTo(Bytes&, const Bytes&) { return false; }
#endif

} // namespace

void packBytes(Vm& vm, ByteArrayObject& array, Packing packing)
{
    Bytes out;
    const bool isPacked = packing == Packing::Lzma ? lzmaTo(out, array.content)
                                                   : deflateTo(out, array.content, windowOf(packing));
    if (!isPacked) vm.throwError(ErrorClass::Error, 1000, "The system is out of memory.");
    array.content = std::move(out);
    array.position = array.content.size();
    vm.heap().noteExternalBytes(array.content.size());
}

void unpackBytes(Vm& vm, ByteArrayObject& array, Packing packing)
{
    if (array.content.empty()) {
        array.position = 0;
        return;
    }
    Bytes out;
    const bool isPlain = packing == Packing::Lzma ? unlzmaTo(out, array.content)
                                                  : inflateTo(out, array.content, windowOf(packing));
    if (!isPlain) vm.throwError(ErrorClass::Io, 2058, "There was an error decompressing the data.");
    array.content = std::move(out);
    array.position = 0;
    vm.heap().noteExternalBytes(array.content.size());
}

} // namespace flash::avm2::classes
