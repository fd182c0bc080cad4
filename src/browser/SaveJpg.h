#pragma once

#include "browser/cDIBSection.h"
#include "core/Application.h"

namespace browser
{

/// Writes a bitmap as a JPEG file: to a temporary file beside it and renamed, so that the file is whole or
/// not there. What fails is told to the journal.
/// @param quality 0 to 100
/// @returns whether the file is there
bool SaveJPG(core::Application& application, const cDIBSection& bitmap, const QString& file, int quality);

/// @returns the picture of a JPEG file; null when it is missing, damaged, cut off, or larger than any
/// thumbnail
QImage loadThumbnail(const QString& file);

} // namespace browser
