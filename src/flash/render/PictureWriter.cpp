#include "flash/render/PictureWriter.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>

namespace flash::render
{

namespace
{

const std::uint32_t* rowOf(const swf::Bitmap& picture, const IntRect& area, int y)
{
    return picture.pixels.data() + std::size_t(y) * std::size_t(picture.width) + area.left;
}

struct JpegErrors {
    jpeg_error_mgr base;
    std::jmp_buf jump;
};
void onError(j_common_ptr info) { std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->jump, 1); }
void onMessage(j_common_ptr) {}

/// What the library holds, given back whatever happens.
class JpegEncoder
{
public:
    JpegEncoder()
    {
        m_info.err = jpeg_std_error(&m_errors.base);
        m_errors.base.error_exit = onError;
        m_errors.base.output_message = onMessage;
        m_made = setjmp(m_errors.jump) == 0;
        if (m_made) jpeg_create_compress(&m_info);
    }
    ~JpegEncoder()
    {
        jpeg_destroy_compress(&m_info);
        std::free(m_bytes);
    }
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;

    /// @returns whether the whole picture was written
    bool write(const swf::Bitmap& picture, const IntRect& area, int quality)
    {
        if (!m_made || setjmp(m_errors.jump) != 0) return false;
        jpeg_mem_dest(&m_info, &m_bytes, &m_size);
        m_info.image_width = static_cast<JDIMENSION>(area.width());
        m_info.image_height = static_cast<JDIMENSION>(area.height());
        m_info.input_components = 4;
        m_info.in_color_space = JCS_EXT_BGRX;
        jpeg_set_defaults(&m_info);
        jpeg_set_quality(&m_info, quality, TRUE);
        jpeg_start_compress(&m_info, TRUE);
        while (m_info.next_scanline < m_info.image_height) {
            const int y = area.top + static_cast<int>(m_info.next_scanline);
            // The library only reads it.
            auto* row = reinterpret_cast<JSAMPROW>(const_cast<std::uint32_t*>(rowOf(picture, area, y)));
            jpeg_write_scanlines(&m_info, &row, 1);
        }
        jpeg_finish_compress(&m_info);
        return true;
    }
    [[nodiscard]] std::vector<std::uint8_t> bytes() const { return {m_bytes, m_bytes + m_size}; }

private:
    jpeg_compress_struct m_info{};
    JpegErrors m_errors{};
    unsigned char* m_bytes = nullptr;
    unsigned long m_size = 0;
    bool m_made = false;
};

} // namespace

std::vector<std::uint8_t> encodePng(const swf::Bitmap& picture, const IntRect& area, PngEffort effort)
{
    const auto format = picture.opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied;
    const QImage part(reinterpret_cast<const uchar*>(rowOf(picture, area, area.top)), area.width(),
                      area.height(), static_cast<qsizetype>(picture.width) * 4, format);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "png");
    constexpr int kFast = 90, kSmall = 30; // of 100; what is left is the effort
    writer.setQuality(effort == PngEffort::Fast ? kFast : kSmall);
    if (!writer.write(part)) return {};
    return {bytes.begin(), bytes.end()};
}

std::vector<std::uint8_t> encodeJpeg(const swf::Bitmap& picture, const IntRect& area, int quality)
{
    JpegEncoder encoder;
    if (!encoder.write(picture, area, std::clamp(quality, 1, 100))) return {};
    return encoder.bytes();
}

} // namespace flash::render
