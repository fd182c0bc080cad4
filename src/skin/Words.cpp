#include "skin/Words.h"

#include "skin/SkinFiles.h"

namespace skin
{

void Words::load(const QString& languageCode, const QStringList& folders)
{
    m_words.clear();
    QString path;
    for (const QString& folder : folders)
        if (path.isEmpty()) path = findFile(folder, "words." + languageCode + ".txt");
    if (path.isEmpty()) return;
    for (const QString& line : ReadTextFile(path).split("\r\n", Qt::SkipEmptyParts)) {
        const qsizetype middle = line.indexOf(" = ");
        if (middle > 0 && !line.startsWith('#'))
            m_words.insert(line.left(middle).trimmed(), line.mid(middle + 3).trimmed());
    }
}

} // namespace skin
