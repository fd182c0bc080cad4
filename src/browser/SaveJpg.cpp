#include "browser/SaveJpg.h"

#include "base/Files.h"
#include "browser/Texts.h"

#include <QBuffer>
#include <QImageReader>

#include <csetjmp>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

namespace browser
{
namespace
{

/// The library ends a failed call by calling back; its own answer would be to end the process.
struct Failing {
    jpeg_error_mgr manager;
    std::jmp_buf back;
    char text[JMSG_LENGTH_MAX];
};

void fail(j_common_ptr common)
{
    auto* failing = reinterpret_cast<Failing*>(common->err);
    failing->manager.format_message(common, failing->text);
    std::longjmp(failing->back, 1);
}

void keepQuiet(j_common_ptr) {}

/// What outlives a long jump: it holds nothing that would have to be destroyed on the way.
struct Compression {
    jpeg_compress_struct jpeg{};
    Failing failing{};
    unsigned char* bytes = nullptr;
    unsigned long byteCount = 0;
    enum class Stage { Making, Writing, Done } stage = Stage::Making;
};

void compress(Compression& work, const cDIBSection& bitmap, int quality)
{
    work.jpeg.err = jpeg_std_error(&work.failing.manager);
    work.failing.manager.error_exit = fail;
    work.failing.manager.output_message = keepQuiet;
    if (setjmp(work.failing.back) != 0) return;
    jpeg_create_compress(&work.jpeg);
    work.stage = Compression::Stage::Writing;
    jpeg_mem_dest(&work.jpeg, &work.bytes, &work.byteCount);
    work.jpeg.image_width = static_cast<JDIMENSION>(bitmap.Width());
    work.jpeg.image_height = static_cast<JDIMENSION>(bitmap.Height());
    work.jpeg.input_components = 3;
    work.jpeg.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&work.jpeg);
    jpeg_set_quality(&work.jpeg, quality, TRUE);
    jpeg_start_compress(&work.jpeg, TRUE);
    for (int y = 0; y < bitmap.Height(); ++y) {
        // The library does not write to it; its type is older than `const`.
        auto* row = reinterpret_cast<JSAMPROW>(reinterpret_cast<std::uintptr_t>(bitmap.row(y)));
        jpeg_write_scanlines(&work.jpeg, &row, 1);
    }
    jpeg_finish_compress(&work.jpeg);
    work.stage = Compression::Stage::Done;
}

} // namespace

bool SaveJPG(core::Application& application, const cDIBSection& bitmap, const QString& file, int quality)
{
    if (bitmap.DIBSectionBitsPtr() == nullptr) {
        application.LogEvent(QString(texts::kLogSaveJpeg) + "no picture");
        return false;
    }
    Compression work;
    compress(work, bitmap, quality);
    QString failure;
    if (work.stage == Compression::Stage::Making) {
        failure = QString(texts::kLogInitialiseJpeg) + work.failing.text;
    } else if (work.stage == Compression::Stage::Writing) {
        failure = QString(texts::kLogSaveJpeg) + work.failing.text;
    } else if (const auto written =
                   base::replaceFile(core::filePath(file), base::Bytes(work.bytes, work.byteCount));
               !written) {
        failure = texts::kLogSaveJpeg + core::HtmlEscape(QString::fromStdString(written.error().what));
    }
    jpeg_destroy_compress(&work.jpeg);
    std::free(work.bytes);
    if (!failure.isEmpty()) application.LogEvent(failure);
    return failure.isEmpty();
}

QImage loadThumbnail(const QString& file)
{
    constexpr std::uint64_t kMaxBytes = 16U << 20U;
    constexpr int kMaxPixels = 4096;
    const auto bytes = base::readFile(core::filePath(file), kMaxBytes);
    if (!bytes || bytes->size() < 4) return {};
    // A reader makes do with a file that was cut off; a picture that is half grey is no picture.
    if ((*bytes)[bytes->size() - 2] != 0xFF || bytes->back() != 0xD9) return {};
    QBuffer buffer;
    buffer.setData(reinterpret_cast<const char*>(bytes->data()), static_cast<qsizetype>(bytes->size()));
    QImageReader reader(&buffer, "jpeg");
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > kMaxPixels || size.height() > kMaxPixels) return {};
    return reader.read();
}

} // namespace browser
