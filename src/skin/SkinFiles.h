#pragma once

#include "base/Result.h"

#include <QImage>
#include <QString>

namespace skin
{

// Files of a skin, as descriptions of 2005 name them: in any case, with backslashes.

/// @param folder absolute, with its closing separator
/// @param name   relative; "\" and "/" separate. Names and links that lead out of the folder are not found.
/// @returns the file's path, its case as the disk has it; empty when there is no such file
QString findFile(const QString& folder, const QString& name);

constexpr qint64 kMaxPixels = 64'000'000;

/// Reads BMP, PNG, JPEG and GIF, told apart by their content. Images are cut off at 64 million pixels and
/// files at 64 MiB.
/// @param mostPixels where it is to be less
/// @errors NotFound, LimitReached, Malformed, Unsupported
base::Result<QImage> loadImage(const QString& folder, const QString& name, qint64 mostPixels = kMaxPixels);

/// Reads a script: UTF-8, with or without a mark, or windows-1251. Every line is preceded by CR LF, so that
/// line n of the file is line n + 1 of the answer.
/// @returns what could be read; empty when nothing could
QString ReadTextFile(const QString& path);

} // namespace skin
