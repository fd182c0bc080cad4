#pragma once

#include "flash/control/Messages.h"

#include <QString>

#include <optional>
#include <vector>

namespace flash
{
class FlashControl;
}

namespace flash::control
{

/// What a host has to know of a movie before it does as the movie says.
struct Sender {
    QString movie;        ///< what layer 0 held, as it was given
    bool isPage = false;  ///< everything that runs came from the host's own folder of pages
    bool hasRead = false; ///< files have been read that are no movies: text, pictures, sounds
    quint64 act = 0;      ///< number of the click or key that the user gave the movie just now; 0: none
};

/// Collects what a movie tells its host and hands it on when the movie's scripts have ended: a host that
/// answers a command by loading another movie would otherwise pull the ground from under the script.
class Inbox
{
public:
    /// A movie that talks in an endless loop does not fill the memory: what is too much is left out, with one
    /// line for the log.
    void put(FromMovie message, Sender sender);
    [[nodiscard]] bool isEmpty() const { return m_messages.empty(); }
    /// While a message is delivered: how things stood when it was sent.
    [[nodiscard]] const Sender& sender() const { return m_sender; }
    /// Emits what has gathered as the control's signals. Not one inside another: what a handler brings about
    /// waits for the event loop. The control may be gone afterwards.
    void deliver(FlashControl& control);

private:
    struct Message {
        FromMovie content;
        Sender sender;
    };
    std::vector<Message> m_messages;
    std::size_t m_bytes = 0; ///< of the messages' texts
    Sender m_sender;
    bool m_delivering = false, m_overflowed = false;
};

} // namespace flash::control
