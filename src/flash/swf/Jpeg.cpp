#include "flash/swf/Picture.h"

#include <bit>
#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>

namespace flash::swf
{
namespace
{

enum : std::uint8_t {
    kMarker = 0xFF,
    kFirstRestart = 0xD0,
    kStartOfImage = 0xD8,
    kEndOfImage = 0xD9,
    kStartOfScan = 0xDA
};

// Appends the segments before the first scan, without start and end markers, and from the scan on everything.
void appendSegments(base::Bytes data, std::vector<std::uint8_t>& out)
{
    std::size_t at = 0;
    while (at + 1 < data.size()) {
        if (data[at] != kMarker) {
            ++at;
            continue;
        }
        const std::uint8_t code = data[at + 1];
        if (code == kMarker) {
            ++at;                                                                 // padding
        } else if (code <= 1 || (code >= kFirstRestart && code <= kEndOfImage)) { // stands alone
            at += 2;
        } else if (code == kStartOfScan) {
            out.insert(out.end(), data.begin() + static_cast<std::ptrdiff_t>(at), data.end());
            return;
        } else {
            if (at + 4 > data.size()) return;
            const std::size_t length = 2U + (std::size_t{data[at + 2]} << 8U | data[at + 3]);
            const std::size_t end = std::min(at + length, data.size());
            out.insert(out.end(), data.begin() + static_cast<std::ptrdiff_t>(at),
                       data.begin() + static_cast<std::ptrdiff_t>(end));
            at = end;
        }
    }
}

struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf jump;
    char text[JMSG_LENGTH_MAX];
};

struct ProgressMonitor {
    jpeg_progress_mgr base;
    ErrorManager* errors;
};

// A few bytes of a progressive picture can announce another pass over all its pixels.
constexpr int kMaxScans = 200;

extern "C" void onJpegError(j_common_ptr info)
{
    auto* errors = reinterpret_cast<ErrorManager*>(info->err);
    info->err->format_message(info, errors->text);
    std::longjmp(errors->jump, 1);
}
extern "C" void onJpegMessage(j_common_ptr) {}
extern "C" void onJpegProgress(j_common_ptr info)
{
    const auto* picture = reinterpret_cast<j_decompress_ptr>(info);
    if (picture->input_scan_number <= kMaxScans) return;
    auto* errors = reinterpret_cast<ErrorManager*>(info->err);
    std::snprintf(errors->text, sizeof(errors->text), "too many scans");
    std::longjmp(errors->jump, 1);
}

/// The library leaves a failing call by longjmp. Each member that enters the library therefore sets its own
/// landing place and has no local objects with destructors.
class JpegDecoder
{
public:
    JpegDecoder()
    {
        m_info.err = jpeg_std_error(&m_errors.base);
        m_errors.base.error_exit = onJpegError;
        m_errors.base.output_message = onJpegMessage;
        m_errors.text[0] = '\0';
        m_progress.base.progress_monitor = onJpegProgress;
        if (setjmp(m_errors.jump) != 0) return;
        jpeg_create_decompress(&m_info);
        m_info.progress = &m_progress.base;
    }
    ~JpegDecoder() { jpeg_destroy_decompress(&m_info); }
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    bool readHeader(base::Bytes data)
    {
        if (setjmp(m_errors.jump) != 0) return false;
        jpeg_mem_src(&m_info, data.data(), static_cast<unsigned long>(data.size()));
        return jpeg_read_header(&m_info, TRUE) == JPEG_HEADER_OK;
    }
    /// @returns whether all rows came; rowsDone() tells how many did.
    bool readRows(std::uint32_t* pixels)
    {
        if (setjmp(m_errors.jump) != 0) return false;
        m_info.out_color_space = isCmyk() ? JCS_CMYK : JCS_EXT_BGRA;
        jpeg_start_decompress(&m_info);
        while (m_info.output_scanline < m_info.output_height) {
            auto* row = reinterpret_cast<JSAMPROW>(pixels +
                                                   std::size_t{m_info.output_scanline} * m_info.output_width);
            jpeg_read_scanlines(&m_info, &row, 1);
        }
        return true; // what may follow the last row is of no use
    }
    [[nodiscard]] unsigned width() const { return m_info.image_width; }
    [[nodiscard]] unsigned height() const { return m_info.image_height; }
    [[nodiscard]] unsigned rowsDone() const { return m_info.output_scanline; }
    [[nodiscard]] bool isCmyk() const
    {
        return m_info.jpeg_color_space == JCS_CMYK || m_info.jpeg_color_space == JCS_YCCK;
    }
    [[nodiscard]] const char* errorText() const { return m_errors.text; }

private:
    jpeg_decompress_struct m_info{};
    ErrorManager m_errors{};
    ProgressMonitor m_progress{};
};

// Printing colours are stored inverted, so that a channel times black is the screen's.
std::uint32_t screenFromCmyk(std::uint32_t pixel)
{
    const auto channel = [&](unsigned shift) {
        return ((pixel >> shift & 0xFFU) * (pixel >> 24U) + 127) / 255;
    };
    return 0xFF000000U | channel(0) << 16U | channel(8) << 8U | channel(16);
}

} // namespace

base::Result<Bitmap> decodeJpeg(base::Bytes tables, base::Bytes data, Budget& budget)
{
    static_assert(std::endian::native == std::endian::little, "pixels are written as bytes B, G, R, A");
    std::vector<std::uint8_t> stream{kMarker, kStartOfImage};
    stream.reserve(tables.size() + data.size() + 4);
    appendSegments(tables, stream);
    appendSegments(data, stream);

    JpegDecoder decoder;
    const auto failed = [&] {
        return base::fail(base::ErrorCode::Malformed, std::string("JPEG data: ") + decoder.errorText());
    };
    if (!decoder.readHeader(stream)) return failed();
    CHECK_RESULT(takePixels(budget, decoder.width(), decoder.height()));
    Bitmap bitmap;
    bitmap.width = static_cast<int>(decoder.width());
    bitmap.height = static_cast<int>(decoder.height());
    bitmap.pixels.assign(std::size_t{decoder.width()} * decoder.height(), 0xFF000000U);
    if (!decoder.readRows(bitmap.pixels.data()) && decoder.rowsDone() == 0) return failed();
    if (decoder.isCmyk()) {
        const std::size_t done = std::size_t{decoder.rowsDone()} * decoder.width();
        for (std::size_t i = 0; i < done; ++i) bitmap.pixels[i] = screenFromCmyk(bitmap.pixels[i]);
    }
    return bitmap;
}

} // namespace flash::swf
