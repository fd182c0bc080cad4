#pragma once

#include <QDateTime>
#include <QString>
#include <QUrl>

#include <optional>

namespace core
{

// Questions on files that are named by the program's texts, whose bytes may be others (base/FileNames.h);
// QFileInfo would not find those.

/// @returns what the program calls the file of these bytes, as a folder or the system lists it
QString fileName(const QByteArray& bytes);
/// The path of a "file:" address, whose escapes may be of any bytes.
QString localFile(const QUrl& address);

[[nodiscard]] bool isFolder(const QString& path);
[[nodiscard]] bool isAnything(const QString& path); ///< a file, a folder or something else
[[nodiscard]] bool isReadable(const QString& path);
/// @returns 0 when there is no such file
[[nodiscard]] qint64 fileSize(const QString& path);
/// @returns an invalid time when there is no such file
[[nodiscard]] QDateTime fileChanged(const QString& path);
/// @returns an errno value; nothing when a file of that name, not a folder, is there
[[nodiscard]] std::optional<int> whyNoFile(const QString& path);

} // namespace core
