#include "flash/render/LetterForms.h"

#include <QChar>
#include <QString>

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace flash::render
{
namespace
{

enum Form : std::size_t { Isolated, Final, Initial, Medial, Forms };

/// The compatibility characters, by what they stand for.
class Shapes
{
public:
    Shapes()
    {
        const auto read = [&](char32_t first, char32_t last) {
            for (char32_t c = first; c <= last; ++c) add(c);
        };
        read(0xFB50, 0xFDFF);
        read(0xFE70, 0xFEFC);
        for (char32_t c = 0xFE10; c <= 0xFE48; ++c) {
            const QString plain = QChar::decomposition(c);
            if (QChar::decompositionTag(c) == QChar::Vertical && plain.size() == 1)
                m_columns.emplace(plain[0].unicode(), c);
        }
    }
    [[nodiscard]] char32_t joined(std::u16string_view letters, Form form) const
    {
        const auto found = m_joined.find({letters.front(), letters.size() > 1 ? letters[1] : u'\0'});
        return found == m_joined.end() ? 0 : found->second[form];
    }
    [[nodiscard]] char32_t column(char32_t character) const
    {
        const auto found = m_columns.find(character);
        return found == m_columns.end() ? character : found->second;
    }

private:
    void add(char32_t c)
    {
        constexpr char16_t kLam = 0x0644;
        const QString plain = QChar::decomposition(c);
        const bool isOne = plain.size() == 1;
        const bool isLamAlef = plain.size() == 2 && plain[0].unicode() == kLam && isAlef(plain[1].unicode());
        if (!isOne && !isLamAlef) return;
        Form form = Isolated;
        switch (QChar::decompositionTag(c)) {
        case QChar::Isolated: break;
        case QChar::Final: form = Final; break;
        case QChar::Initial: form = Initial; break;
        case QChar::Medial: form = Medial; break;
        default: return;
        }
        char32_t& known = m_joined[{plain[0].unicode(), isOne ? u'\0' : plain[1].unicode()}][form];
        if (known == 0) known = c;
    }

public:
    static bool isAlef(char16_t c) { return c == 0x0622 || c == 0x0623 || c == 0x0625 || c == 0x0627; }

private:
    std::map<std::pair<char16_t, char16_t>, std::array<char32_t, Forms>> m_joined;
    std::map<char32_t, char32_t> m_columns;
};

const Shapes& shapes()
{
    static const Shapes kShapes;
    return kShapes;
}

bool joinsNext(char16_t c)
{
    switch (QChar::joiningType(c)) {
    case QChar::Joining_Dual:
    case QChar::Joining_Causing:
    case QChar::Joining_Left: return true;
    default: return false;
    }
}
bool joinsPrevious(char16_t c)
{
    switch (QChar::joiningType(c)) {
    case QChar::Joining_Dual:
    case QChar::Joining_Causing:
    case QChar::Joining_Right: return true;
    default: return false;
    }
}
bool isTransparent(char16_t c) { return QChar::joiningType(c) == QChar::Joining_Transparent; }

} // namespace

bool hasJoiningLetters(std::u16string_view text)
{
    return std::ranges::any_of(text, [](char16_t c) { return c >= 0x0600 && c <= 0x06FF; });
}

std::vector<LetterForm> joinedForms(std::u16string_view text)
{
    std::vector<LetterForm> forms;
    bool joinedBefore = false; // whether the letter before reaches over to the next one
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isTransparent(text[i])) continue;
        std::size_t length = 1;
        char16_t last = text[i];
        if (text[i] == 0x0644 && i + 1 < text.size() && Shapes::isAlef(text[i + 1])) {
            length = 2;
            last = text[i + 1];
        }
        std::size_t next = i + length;
        while (next < text.size() && isTransparent(text[next])) ++next;
        const bool left = joinedBefore && joinsPrevious(text[i]);
        const bool right = joinsNext(last) && next < text.size() && joinsPrevious(text[next]);
        const Form form = left ? (right ? Medial : Final) : right ? Initial : Isolated;
        const char32_t shape = shapes().joined(text.substr(i, length), form);
        if (shape != 0) forms.push_back({i, length, shape});
        joinedBefore = joinsNext(last);
        i += length - 1;
    }
    return forms;
}

LetterForm ligatureAt(std::u16string_view text, Ligatures which)
{
    struct Known {
        std::u16string_view letters;
        char32_t form;
        Ligatures from;
    };
    // The longer ones first.
    constexpr Known kKnown[] = {
        {u"ffi", 0xFB03, Ligatures::Common}, {u"ffl", 0xFB04, Ligatures::Common},
        {u"ff", 0xFB00, Ligatures::Common},  {u"fi", 0xFB01, Ligatures::Common},
        {u"fl", 0xFB02, Ligatures::Common},  {u"st", 0xFB06, Ligatures::Rare},
    };
    for (const Known& known : kKnown)
        if (which >= known.from && text.starts_with(known.letters))
            return {0, known.letters.size(), known.form};
    return {0, 0, 0};
}

char32_t columnForm(char32_t character) { return shapes().column(character); }

bool standsInColumns(char32_t character)
{
    switch (QChar::script(character)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Hangul:
    case QChar::Script_Bopomofo: return true;
    default: break;
    }
    // What goes along the column: the sign of a long vowel, dashes, dots.
    if (character == 0x30FC || character == 0x301C || character == 0x3030 || character == 0xFF5E)
        return false;
    return (character >= 0x3001 && character <= 0x303F) || (character >= 0xFF01 && character <= 0xFF60) ||
           (character >= 0xFE10 && character <= 0xFE48);
}

} // namespace flash::render
