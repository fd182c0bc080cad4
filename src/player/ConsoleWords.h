#pragma once

#include <QStringList>

class QMetaObject;

namespace player
{

/// What completing a statement comes to.
struct Completion {
    QString statement;   ///< with as much added as all candidates share
    int cursor = 0;      ///< where to go on typing
    QStringList choices; ///< when there are several
};

/// Completes the name that ends at `cursor`.
/// @param words  what there is, without regard to case; one name of each spelling
Completion complete(const QString& statement, int cursor, const QStringList& words);

/// The names under which scripts know a window's procedures and properties, and nothing of the toolkit's.
QStringList scriptNamesOf(const QMetaObject& window);

/// The statements of former runs, the most recent first; empty where there are none.
QStringList readHistory(const QString& file);
/// Keeps the most recent hundred. A file that cannot be written is no reason to stop.
void writeHistory(const QString& file, const QStringList& history);

} // namespace player
