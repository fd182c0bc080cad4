#pragma once

#include "export/Settings.h"

#include <array>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace exporter
{

/// A kind of file that films are written to.
struct FormatInfo {
    Format format;
    const char* extension; ///< without the dot
    const char* name;      ///< for the user
    bool hasPictures, hasSound, canBeTransparent;
};

[[nodiscard]] std::span<const FormatInfo> formats();
[[nodiscard]] const FormatInfo& infoOf(Format format);
/// By the extension of a file's name, in whatever case.
[[nodiscard]] std::optional<Format> formatOf(const std::filesystem::path& file);

} // namespace exporter
