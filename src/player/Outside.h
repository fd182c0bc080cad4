#pragma once

#include "player/OutsideTarget.h"

#include <QHash>
#include <QSet>

#include <functional>

namespace player
{

/// Opens documents and addresses for movies. The program's own pages open without question; for any other
/// movie the user decides, each time or for the movie until the program ends. Every decision is logged.
class Outside
{
public:
    enum class Answer { Open, Refuse, AlwaysOpen, AlwaysRefuse };
    struct Question {
        QString movie; ///< path of the movie that asks
        QString target;
        bool hasRead = false; ///< what the movie has read it might carry out
    };
    /// What the user, the system and the journal are asked through.
    struct Callbacks {
        std::function<Answer(const Question&)> ask;
        /// @returns whether there was a program for it
        std::function<bool(const QUrl&)> open;
        /// Tells the user that something was not opened.
        std::function<void(const Question&, OutsideTarget::Refusal)> tellRefused;
        std::function<void(const QString&)> log; ///< plain text
    };
    explicit Outside(Callbacks callbacks) : m_callbacks(std::move(callbacks)) {}

    struct Sender {
        QString path;           ///< of the movie's file
        bool isOwnPage = false; ///< it is one of the program's pages, and nothing else is there with it
        bool hasRead = false;   ///< files were read that are no movies
        quint64 act = 0;        ///< the user's click or key just before; 0: none
    };
    /// Requests that come while a question is open are dropped: no movie buries the user in windows.
    /// @returns whether the user, or a decision of his, stood against it
    bool isDeclined(const QString& target, const Sender& sender);

private:
    [[nodiscard]] bool isAllowed(const OutsideTarget& target, const Sender& sender);
    void tellRefusal(const OutsideTarget& target, const Sender& sender);
    void log(const QString& line);

    Callbacks m_callbacks;
    QHash<QString, bool> m_always; ///< by the movie's path: whether it may
    QSet<QString> m_told;          ///< the movies whose requests the user was told are refused
    QString m_lastLine;
    bool m_isAsking = false;
};

} // namespace player
