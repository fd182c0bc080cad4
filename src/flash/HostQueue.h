#pragma once

#include "flash/stage/Services.h"

#include <QString>

#include <functional>
#include <vector>

namespace flash
{

class FlashControl;

/// What a host has to know of a movie before it does as the movie says.
struct Sender {
    QString movie;        ///< what layer 0 held, as it was given
    bool isPage = false;  ///< everything that runs came from the host's own folder of pages
    bool hasRead = false; ///< files have been read that are no movies: text, pictures, sounds
    quint64 act = 0;      ///< number of the click or key that the user gave the movie just now; 0: none
};

/// Collects what a movie tells its host while scripts run, and hands it on when they have ended: a host that
/// answers a command by loading another movie would otherwise pull the ground from under the script.
class HostQueue : public stage::HostEvents
{
public:
    void setTimeoutHandler(std::function<bool()> handler) { m_timeout = std::move(handler); }
    void setScriptWatch(std::function<bool()> watch) { m_watch = std::move(watch); }
    void setClipboardAllowed(bool allowed) { m_clipboardAllowed = allowed; }
    [[nodiscard]] int readyState() const { return m_readyState; }
    /// What layer 0 holds from now on; messages that come keep it.
    void setMovie(const QString& url) { m_movie = url; }
    [[nodiscard]] const QString& movie() const { return m_movie; }
    /// Asked for the rest of a Sender when a message comes.
    void setSenderSource(std::function<void(Sender&)> source) { m_senderSource = std::move(source); }
    /// While a message is delivered: how things stood when it was sent.
    [[nodiscard]] const Sender& sender() const { return m_sender; }
    /// Emits what has gathered as the control's signals. Not one inside another: what a handler brings about
    /// waits for the event loop. The control may be gone afterwards.
    void deliver(FlashControl& control);

    void fsCommand(std::string_view command, std::string_view arguments) override;
    void openUrl(std::string_view url, std::string_view window) override;
    void traceLine(std::string_view utf8) override;
    void logLine(std::string_view utf8) override;
    void readyStateChanged(int state) override;
    void progressed(int percent) override;
    void setClipboardText(std::string_view utf8) override;
    std::string clipboardText() override;
    bool abortSlowScript() override;
    bool endsScripts() override;

private:
    struct Message {
        std::function<void(FlashControl&)> tell;
        Sender sender;
    };
    /// Whether there is room for a message with so many bytes of text.
    bool takes(std::size_t bytes);
    void put(std::function<void(FlashControl&)> tell);

    std::vector<Message> m_messages;
    std::size_t m_bytes = 0; ///< of the messages' texts
    std::function<void(Sender&)> m_senderSource;
    std::function<bool()> m_timeout, m_watch;
    QString m_movie;
    Sender m_sender;
    int m_readyState = 0;
    bool m_delivering = false, m_overflowed = false;
    bool m_clipboardAllowed = true;
};

} // namespace flash
