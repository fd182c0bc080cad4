#include "player/Shortcuts.h"

#include "ui/Mnemonics.h"

#include <QKeyEvent>

namespace player
{
namespace
{

QKeySequence namedKey(const QString& name)
{
    struct MediaKey {
        const char* name;
        Qt::Key key;
    };
    // The toolkit's own names for these hold blanks.
    constexpr MediaKey kMediaKeys[] = {{"MediaPlay", Qt::Key_MediaPlay},
                                       {"MediaPause", Qt::Key_MediaPause},
                                       {"MediaTogglePlayPause", Qt::Key_MediaTogglePlayPause},
                                       {"MediaStop", Qt::Key_MediaStop},
                                       {"MediaPrevious", Qt::Key_MediaPrevious},
                                       {"MediaNext", Qt::Key_MediaNext}};
    for (const MediaKey& media : kMediaKeys)
        if (name == media.name) return {media.key};
    return QKeySequence(name, QKeySequence::PortableText);
}

QStringList namesIn(const QString& list) { return list.split(' ', Qt::SkipEmptyParts); }

} // namespace

QKeySequence inOtherLayout(const QKeySequence& keys)
{
    const QString name = keys.toString(QKeySequence::PortableText);
    const auto plus = name.lastIndexOf('+', -2);
    const QString key = name.mid(plus + 1);
    if (key.size() != 1) return {};
    const QChar twin = ui::otherLayout(key.at(0));
    return twin.isNull() ? QKeySequence() : QKeySequence(name.left(plus + 1) + twin);
}

QList<QKeySequence> shortcutsOf(const QString& keys, const QString& plainKeys, bool plainFirst)
{
    QList<QKeySequence> always;
    QList<QKeySequence> plain;
    for (const QString& name : namesIn(keys)) always += namedKey(name);
    // A media key is never what a menu shows while there is another.
    const auto firstOfPlain = plainKeys.isEmpty() || !keys.startsWith("Media") ? always.size() : 0;
    QList<QKeySequence> withControl;
    for (const QString& name : namesIn(plainKeys)) {
        const bool isPlainOnly = name.size() > 1 && name.startsWith('!');
        plain += namedKey(isPlainOnly ? name.mid(1) : name);
        if (!isPlainOnly) withControl += namedKey("Ctrl+" + name);
    }
    const QList<QKeySequence> both = plainFirst ? plain + withControl : withControl + plain;
    return always.mid(0, firstOfPlain) + both + always.mid(firstOfPlain);
}

bool belongsToMovie(const QKeyEvent& key, bool movieListens)
{
    if (!movieListens) return false;
    if (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    if (key.key() >= Qt::Key_F1 && key.key() <= Qt::Key_F35) return false;
    return key.key() < Qt::Key_Back || key.key() > Qt::Key_MediaLast; // the keys of multimedia keyboards
}

} // namespace player
