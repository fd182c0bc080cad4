#pragma once

#include <QString>

class QUrl;

namespace platform
{

/// What opening a file would come to.
enum class FileKind {
    Missing,
    Special, ///< a device, a pipe, a socket
    Folder,
    Program,  ///< runs, installs or mounts something, or leads on to what does: never to be opened unasked
    Document, ///< anything else
};

struct FileVerdict {
    FileKind kind = FileKind::Missing;
    QString path;   ///< absolute, links resolved; what was examined and is to be opened. Empty when missing
    QString reason; ///< for the log: what makes it a program
};

/// Takes a file for a program when its permissions, its name, its first bytes or its type say so: one of them
/// is enough. Disk images and packages count as programs, because opening them mounts or installs; archives
/// that a program only lists do not.
FileVerdict examineFile(const QString& path);

/// Opens a document or address with the program that the user's system has for it.
/// @returns whether there was one
bool openWithSystem(const QUrl& url);

} // namespace platform
