#include "player/Outside.h"

#include <QFileInfo>
#include <QScopedValueRollback>

namespace player
{

void Outside::log(const QString& line)
{
    // A movie may ask with every frame.
    if (line == m_lastLine) return;
    m_lastLine = line;
    m_callbacks.log(line);
}

bool Outside::isDeclined(const QString& target, const Sender& sender)
{
    if (m_isAsking) {
        log("Not opened, a question is open: " + target.trimmed().left(80));
        return false;
    }
    const QString folder = QFileInfo(sender.path).absolutePath();
    const OutsideTarget examined = examineTarget(target, folder);
    if (examined.kind == OutsideTarget::Kind::Refused) {
        tellRefusal(examined, sender);
        return false;
    }
    if (!isAllowed(examined, sender)) return true;
    // While the user thought it over the file may have become another one.
    if (examineTarget(target, folder) != examined)
        log("Not opened, it has changed: " + examined.shown);
    else
        log((m_callbacks.open(examined.url) ? "Opened: " : "Nothing opens: ") + examined.shown);
    return false;
}

bool Outside::isAllowed(const OutsideTarget& target, const Sender& sender)
{
    if (sender.isOwnPage) return true;
    if (const auto decided = m_always.constFind(sender.path); decided != m_always.cend()) {
        if (!*decided) log("Not opened, as decided for the movie: " + target.shown);
        return *decided;
    }
    Answer answer = Answer::Refuse;
    {
        const QScopedValueRollback asking(m_isAsking, true);
        answer = m_callbacks.ask({sender.path, target.shown, sender.hasRead});
    }
    const bool allowed = answer == Answer::Open || answer == Answer::AlwaysOpen;
    if (answer == Answer::AlwaysOpen || answer == Answer::AlwaysRefuse) {
        m_always[sender.path] = allowed;
        log("The movie may " + QString(allowed ? "always" : "never") + " open what it names: " + sender.path);
    }
    if (!allowed) log("Not opened, the user declined: " + target.shown);
    return allowed;
}

void Outside::tellRefusal(const OutsideTarget& target, const Sender& sender)
{
    log("Refused to open, " + target.reason + ": " + target.shown);
    // Once: a movie that insists is not to keep the user busy.
    if (m_told.contains(sender.path)) return;
    m_told.insert(sender.path);
    const QScopedValueRollback asking(m_isAsking, true);
    m_callbacks.tellRefused({sender.path, target.shown}, target.refusal);
}

} // namespace player
