#include "ui/Mnemonics.h"

#include <QSet>

namespace ui
{
namespace
{

const QString kLatin = "QWERTYUIOP[]ASDFGHJKL;'ZXCVBNM,.`";
const QString kRussian = "ЙЦУКЕНГШЩЗХЪФЫВАПРОЛДЖЭЯЧСМИТЬБЮЁ";

bool startsWord(const QString& caption, int position)
{
    return position == 0 || !caption[position - 1].isLetterOrNumber();
}

} // namespace

QList<int> chooseMnemonics(const QStringList& captions)
{
    QList<int> chosen(captions.size(), -1);
    QSet<QChar> taken;
    // First letters go first, so that an item further down does not lose its own to one above that has
    // others.
    enum class Round { FirstLetter, WordStart, AnyLetter };
    for (const Round round : {Round::FirstLetter, Round::WordStart, Round::AnyLetter}) {
        for (int item = 0; item < captions.size(); ++item) {
            const QString& caption = captions[item];
            const int end = round == Round::FirstLetter ? std::min<int>(1, static_cast<int>(caption.size()))
                                                        : static_cast<int>(caption.size());
            for (int i = 0; chosen[item] < 0 && i < end; ++i) {
                const QChar letter = caption[i].toUpper();
                if (!letter.isLetterOrNumber() || taken.contains(letter)) continue;
                if (round == Round::WordStart && !startsWord(caption, i)) continue;
                chosen[item] = i;
                taken.insert(letter);
            }
        }
    }
    return chosen;
}

QChar otherLayout(QChar letter)
{
    const QChar upper = letter.toUpper();
    if (const auto at = kLatin.indexOf(upper); at >= 0) return kRussian[at];
    if (const auto at = kRussian.indexOf(upper); at >= 0) return kLatin[at];
    return {};
}

QString withMnemonic(const QString& caption, int position)
{
    return position < 0 ? caption : QString(caption).insert(position, '&');
}

} // namespace ui
