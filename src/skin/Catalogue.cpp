#include "skin/Catalogue.h"

#include <QDir>

namespace skin
{

namespace
{

QStringList listFolder(const QString& skinsPath)
{
    QStringList names =
        QDir(skinsPath).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
    names.removeIf([](const QString& name) { return name.startsWith('-'); });
    return names;
}

} // namespace

QStringList listSkins(const QStringList& skinsPaths)
{
    QStringList skins;
    for (const QString& path : skinsPaths) {
        QStringList names = listFolder(path);
        names.removeIf([&skins](const QString& name) { return skins.contains(name, Qt::CaseInsensitive); });
        skins += names;
    }
    return skins;
}

QString skinFolder(const QStringList& skinsPaths, const QString& selected)
{
    // Names that differ in case only are two skins where the system says so.
    for (const Qt::CaseSensitivity cases : {Qt::CaseSensitive, Qt::CaseInsensitive})
        for (const QString& path : skinsPaths)
            for (const QString& name : listFolder(path))
                if (name.compare(selected, cases) == 0) return path + name + '/';
    return skinsPaths.first() + "default/";
}

} // namespace skin
