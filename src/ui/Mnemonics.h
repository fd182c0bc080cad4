#pragma once

#include <QStringList>

namespace ui
{

/// Chooses the letter that each of a menu's items answers to: a different one for every item, the first of
/// the caption where it is free, else the first of another word, else any.
/// @returns for every caption the position of its letter; -1 when all its letters are taken
QList<int> chooseMnemonics(const QStringList& captions);

/// The letter that shares a key with another on Russian keyboards, in upper case, so that a menu answers
/// whichever layout is switched on. Null when there is none.
QChar otherLayout(QChar letter);

/// @returns the caption with the mark that underlines one of its letters; -1 underlines none
QString withMnemonic(const QString& caption, int position);

} // namespace ui
