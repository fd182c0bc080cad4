#include "export/Formats.h"

#include "base/Ascii.h"

#include <algorithm>

namespace exporter
{

namespace
{

// clang-format off
constexpr std::array kFormats = {
    //          format        extension name                   pictures sound  transparent
    FormatInfo{Format::Mp4,  "mp4",  "MP4 (H.264, AAC)",         true,  true,  false},
    FormatInfo{Format::Mkv,  "mkv",  "Matroska (H.264, AAC)",    true,  true,  false},
    FormatInfo{Format::WebM, "webm", "WebM (VP9, Opus)",         true,  true,  true},
    FormatInfo{Format::Gif,  "gif",  "GIF",                      true,  false, true},
    FormatInfo{Format::Png,  "png",  "PNG",                      true,  false, true},
    FormatInfo{Format::Wav,  "wav",  "WAV",                      false, true,  false},
    FormatInfo{Format::Flac, "flac", "FLAC",                     false, true,  false},
};
// clang-format on

} // namespace

std::span<const FormatInfo> formats() { return kFormats; }

const FormatInfo& infoOf(Format format) { return *std::ranges::find(kFormats, format, &FormatInfo::format); }

std::optional<Format> formatOf(const std::filesystem::path& file)
{
    const std::string extension = file.extension().string();
    for (const FormatInfo& info : kFormats)
        if (base::equalIgnoringAsciiCase(extension, std::string(".") + info.extension)) return info.format;
    return std::nullopt;
}

} // namespace exporter
