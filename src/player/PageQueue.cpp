#include "player/PageQueue.h"

#include "core/Application.h"

#include <QTimer>

#include <utility>

namespace player
{
namespace
{

constexpr int kLookAgainMs = 50;
/// Longer than any path or address that is opened.
constexpr qsizetype kLongestArgument = 4096;

/// Under what a request is refused. One way out is like the other.
QString kindOf(const PageRequest& request) { return request.isAddress ? "EXEC" : request.command.toUpper(); }

} // namespace

void PageQueue::put(PageRequest request)
{
    if (m_host.hasEnded()) return;
    const bool isMovie = !request.sender.isOwnPage;
    if (isMovie) {
        request.command.truncate(kLongestArgument);
        request.argument.truncate(kLongestArgument);
    }
    const PageEffect effect = request.effect();
    if (effect == PageEffect::Notes) {
        // Does nothing that anything would have to wait for.
        (void)m_host.carryOut(request);
        return;
    }
    // What asks for the user's attention while he attends to something else has missed its moment.
    if (isMovie && effect != PageEffect::Loads && m_host.isOccupied())
        return drop(request, "something else is open");
    if (m_waiting.size() >= kMaxWaiting) return drop(request, "too much is waiting");
    m_waiting.push_back(std::move(request));
    wakeUp(0);
}

void PageQueue::wakeUp(int delayMs)
{
    if (std::exchange(m_isAwake, true)) return;
    QTimer::singleShot(delayMs, this, [this] {
        m_isAwake = false;
        runNext();
    });
}

void PageQueue::runNext()
{
    if (m_host.hasEnded() || m_waiting.empty() || m_current) return;
    if (m_host.isOccupied() || !m_host.isOnScreen()) return wakeUp(kLookAgainMs);
    PageRequest request = std::move(m_waiting.front());
    m_waiting.pop_front();
    const PageEffect effect = request.effect();
    if (!request.sender.isOwnPage) {
        if (const char* why = objection(request, effect)) {
            drop(request, why);
            if (!m_waiting.empty()) wakeUp(0);
            return;
        }
    }
    m_current = std::move(request);
    const PageOutcome outcome = m_host.carryOut(*m_current);
    if (outcome == PageOutcome::Declined && !m_current->sender.isOwnPage)
        m_refused.insert(kindOf(*m_current));
    m_current.reset();
    if (!m_waiting.empty()) wakeUp(0);
}

const char* PageQueue::objection(const PageRequest& request, PageEffect effect)
{
    if (m_refused.contains(kindOf(request))) return "it was refused before";
    const quint64 act = request.sender.act;
    const bool isWish = act > m_lastAct;
    switch (effect) {
    case PageEffect::Notes: return nullptr;
    case PageEffect::Opens:
        if (!isWish) return "the user has not clicked in it";
        break;
    case PageEffect::Asks:
        // A movie may ask once of its own accord; after that the user has to have a hand in it.
        if (!isWish && std::exchange(m_askedUnbidden, true)) return "the user has not clicked in it";
        break;
    case PageEffect::Loads:
        if (isWish)
            m_loadsInRow = 0;
        else if (++m_loadsInRow > kMaxLoadsInRow)
            return "movies have loaded one another too often";
        break;
    case PageEffect::Leaves:
        if (!isWish && std::exchange(m_leftUnbidden, true)) return "the user has not clicked in it";
        return nullptr; // the act is still good for something
    }
    if (isWish) m_lastAct = act;
    return nullptr;
}

bool PageQueue::movieOpened()
{
    if (m_current && !m_current->sender.isOwnPage && m_current->effect() == PageEffect::Loads) return false;
    m_refused.clear();
    m_told.clear();
    m_waiting.clear();
    m_loadsInRow = 0;
    m_askedUnbidden = m_leftUnbidden = false;
    return true;
}

void PageQueue::drop(const PageRequest& request, const char* why)
{
    const QString what = request.isAddress ? "opening " + request.argument : request.command;
    // Once for each kind: the movie may ask with every frame.
    const QString kind = kindOf(request) + why;
    if (m_told.contains(kind)) return;
    m_told.insert(kind);
    constexpr qsizetype kShown = 120;
    m_host.noteOfMovie("Not done for the movie, " + QString(why) + ": " +
                       core::HtmlEscape(what.left(kShown)));
}

} // namespace player
