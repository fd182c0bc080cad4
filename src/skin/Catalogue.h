#pragma once

#include <QStringList>

namespace skin
{

/// The installed skins: every folder below the skins folders whose name does not begin with "-", in the order
/// in which the system lists them. Of a name that
/// several places have the first counts. Whether a folder holds a description shows when it is
/// chosen.
/// @param skinsPaths with closing separators; the program's own first
QStringList listSkins(const QStringList& skinsPaths);

/// @param selected the remembered name
/// @returns the folder of the skin to load, with its closing separator: the selected one, without regard to
///          case, from the first place that has it; else the program's "default"
QString skinFolder(const QStringList& skinsPaths, const QString& selected);

} // namespace skin
