#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace skin
{

/// What a skin's texts are in another language. A skin brings a file "words.CODE.txt" beside its description,
/// of lines "text = text in that language"; lines that begin with "#" are remarks. UTF-8 or windows-1251.
class Words
{
public:
    /// @param folders where the file is looked for, in this order; none of it: every text stays
    void load(const QString& languageCode, const QStringList& folders);
    [[nodiscard]] QString translated(const QString& text) const { return m_words.value(text, text); }

private:
    QHash<QString, QString> m_words;
};

} // namespace skin
