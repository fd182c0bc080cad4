#pragma once

#include "base/Result.h"

#include <filesystem>

class QImage;

namespace flashrun
{

/// Writes a picture without its transparency.
/// @errors those of base::replaceFile()
base::Result<void> writePng(const QImage& picture, const std::filesystem::path& file);

} // namespace flashrun
