#pragma once

#include <QStringList>

namespace skin
{

/// The installed skins: every folder below the skins folder whose name does not begin with "-", in the order
/// in which the system lists them. Whether a folder holds a description shows when it is chosen.
QStringList listSkins(const QString& skinsPath);

/// @param selected the remembered name
/// @returns the folder of the skin to load, with its closing separator: the selected one, without regard to
///          case, else "default"
QString skinFolder(const QString& skinsPath, const QStringList& skins, const QString& selected);

} // namespace skin
