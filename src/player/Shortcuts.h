#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

class QKeyEvent;

// Which keys are the program's and which are the movie's.

namespace player
{

/// The keys of a menu item.
/// @param keys      names separated by blanks, the program's at any time
/// @param plainKeys the same, for keys that a movie may want for itself: they work by themselves while it
///                  does not, and together with Ctrl at any time; those behind a "!" by themselves only
/// @param plainFirst whether the list begins with the plain ones; menus show its first
QList<QKeySequence> shortcutsOf(const QString& keys, const QString& plainKeys, bool plainFirst);

/// The same key as it is named while a Russian layout is switched on. Empty when it has no other name.
QKeySequence inOtherLayout(const QKeySequence& keys);

/// Whether a key goes to the movie before any shortcut of the program's is looked for.
/// @param movieListens whether the movie has the keyboard and does something with it
bool belongsToMovie(const QKeyEvent& key, bool movieListens);

} // namespace player
