#pragma once

#include "player/Outside.h"
#include "player/PageCommands.h"

#include <QObject>
#include <QSet>
#include <QString>

#include <deque>
#include <optional>

namespace player
{

/// One thing that a page or a movie asks of the program.
struct PageRequest {
    QString command;
    QString argument;
    Outside::Sender sender;
    bool isAddress = false; ///< no command: the argument is to be opened
    [[nodiscard]] PageEffect effect() const
    {
        return isAddress ? PageEffect::Asks : effectOf(command, argument);
    }
};

/// What the queue asks of the window. The player implements it.
class PageQueueHost
{
public:
    virtual ~PageQueueHost() = default;
    /// Whether a dialog is open, or work goes on that lets events through: nothing may begin meanwhile.
    [[nodiscard]] virtual bool isOccupied() const = 0;
    /// Whether the window is where the user can see what happens over it.
    [[nodiscard]] virtual bool isOnScreen() const = 0;
    [[nodiscard]] virtual bool hasEnded() const = 0;
    /// Does what is asked, under the program's usual handler.
    virtual PageOutcome carryOut(const PageRequest& request) = 0;
    /// Writes into the journal what a movie has brought about.
    virtual void noteOfMovie(const QString& text) = 0;
};

/// Takes what movies and pages ask and lets it happen one after the other, from the event loop: never inside
/// one another, and not while a dialog is open. Movies that are no pages of ours are held to more: what opens
/// something needs a click or key that the user gave the movie just before, one for each, and what the user
/// has refused is not asked again until a movie is opened anew.
class PageQueue : public QObject
{
    Q_OBJECT
public:
    explicit PageQueue(PageQueueHost& host, QObject* parent = nullptr) : QObject(parent), m_host(host) {}

    void put(PageRequest request);
    /// A movie is being opened, by a movie's command or by the user: with the latter all begins anew.
    /// @returns whether it does
    bool movieOpened();
    /// The user has taken back what the command did: it is not obeyed again.
    void refuse(const QString& command) { m_refused.insert(command.toUpper()); }

private:
    /// So many loads of movies by movies may follow one another before the user does something.
    static constexpr int kMaxLoadsInRow = 5;
    static constexpr std::size_t kMaxWaiting = 32;

    void wakeUp(int delayMs);
    void runNext();
    /// @returns why a movie's request is not obeyed; null when it is
    [[nodiscard]] const char* objection(const PageRequest& request, PageEffect effect);
    void drop(const PageRequest& request, const char* why);

    PageQueueHost& m_host;
    std::deque<PageRequest> m_waiting;
    std::optional<PageRequest> m_current;
    QSet<QString> m_refused; ///< commands in upper case
    QSet<QString> m_told;    ///< of what the journal knows why it does not happen
    quint64 m_lastAct = 0;   ///< the user's act that was taken for a wish last
    int m_loadsInRow = 0;
    bool m_askedUnbidden = false, m_leftUnbidden = false;
    bool m_isAwake = false;
};

} // namespace player
