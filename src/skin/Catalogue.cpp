#include "skin/Catalogue.h"

#include <QDir>

namespace skin
{

QStringList listSkins(const QString& skinsPath)
{
    QStringList names =
        QDir(skinsPath).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
    names.removeIf([](const QString& name) { return name.startsWith('-'); });
    return names;
}

QString skinFolder(const QString& skinsPath, const QStringList& skins, const QString& selected)
{
    for (const QString& name : skins)
        if (name.compare(selected, Qt::CaseInsensitive) == 0) return skinsPath + name + '/';
    return skinsPath + "default/";
}

} // namespace skin
