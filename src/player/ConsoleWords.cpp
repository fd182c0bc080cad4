#include "player/ConsoleWords.h"

#include "base/Files.h"
#include "core/Application.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QWidget>

#include <algorithm>

namespace player
{
namespace
{

constexpr std::uint64_t kMaxBytes = 1 << 20;
constexpr qsizetype kMaxKept = 100;

bool belongsToName(QChar letter) { return letter.isLetterOrNumber() || letter == '_'; }

QString commonStart(const QStringList& words)
{
    QString start = words.value(0);
    for (const QString& word : words) {
        qsizetype same = 0;
        while (same < start.size() && same < word.size() && start[same].toLower() == word[same].toLower())
            ++same;
        start.truncate(same);
    }
    return start;
}

} // namespace

Completion complete(const QString& statement, int cursor, const QStringList& words)
{
    int from = std::clamp(cursor, 0, static_cast<int>(statement.size()));
    cursor = from;
    while (from > 0 && belongsToName(statement[from - 1])) --from;
    const QString typed = statement.mid(from, cursor - from);
    Completion done{statement, cursor, {}};
    if (typed.isEmpty()) return done;
    QStringList found;
    for (const QString& word : words)
        if (word.startsWith(typed, Qt::CaseInsensitive) && !found.contains(word, Qt::CaseInsensitive))
            found += word;
    if (found.isEmpty()) return done;
    found.sort(Qt::CaseInsensitive);
    const QString added = commonStart(found);
    done.statement = statement.left(from) + added + statement.mid(cursor);
    done.cursor = from + static_cast<int>(added.size());
    if (found.size() > 1) done.choices = found;
    return done;
}

QStringList scriptNamesOf(const QMetaObject& window)
{
    QStringList names;
    const int firstMethod = QWidget::staticMetaObject.methodCount();
    for (int i = firstMethod; i < window.methodCount(); ++i)
        if (window.method(i).methodType() == QMetaMethod::Method)
            names += QString::fromLatin1(window.method(i).name());
    const int firstProperty = QWidget::staticMetaObject.propertyCount();
    for (int i = firstProperty; i < window.propertyCount(); ++i)
        names += QString::fromLatin1(window.property(i).name());
    names.removeDuplicates();
    return names;
}

QStringList readHistory(const QString& file)
{
    const auto content = base::readFile(core::filePath(file), kMaxBytes);
    if (!content) return {};
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(content->data()),
                                           static_cast<qsizetype>(content->size()));
    return text.split('\n', Qt::SkipEmptyParts).mid(0, kMaxKept);
}

void writeHistory(const QString& file, const QStringList& history)
{
    const QByteArray text = history.mid(0, kMaxKept).join('\n').toUtf8() + '\n';
    (void)base::replaceFile(core::filePath(file),
                            base::Bytes(reinterpret_cast<const std::uint8_t*>(text.constData()),
                                        static_cast<std::size_t>(text.size())));
}

} // namespace player
