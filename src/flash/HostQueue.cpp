#include "flash/HostQueue.h"

#include "flash/FlashControl.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>

#include <utility>

namespace flash
{

namespace
{

// A movie that traces in an endless loop must not fill the memory before its script is stopped.
constexpr std::size_t kMostMessages = 100'000;

QString toText(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

void HostQueue::put(std::function<void(FlashControl&)> tell)
{
    if (m_messages.size() < kMostMessages) m_messages.push_back({std::move(tell), m_movie});
}

void HostQueue::deliver(FlashControl& control)
{
    const QPointer<FlashControl> alive(&control);
    const auto messages = std::exchange(m_messages, {});
    // A handler that loads another movie comes back to here with what that one says at once.
    const QString outer = m_sender;
    for (const Message& message : messages) {
        m_sender = message.movie;
        message.tell(control);
        if (alive.isNull()) return;
    }
    m_sender = outer;
}

void HostQueue::fsCommand(std::string_view command, std::string_view arguments)
{
    put([command = toText(command), arguments = toText(arguments)](FlashControl& control) {
        emit control.FSCommand(command, arguments);
    });
}

void HostQueue::openUrl(std::string_view url, std::string_view window)
{
    put([url = toText(url), window = toText(window)](FlashControl& control) {
        emit control.urlRequested(url, window, {});
    });
}

void HostQueue::traceLine(std::string_view utf8)
{
    put([text = toText(utf8)](FlashControl& control) { emit control.traced(text); });
}

void HostQueue::logLine(std::string_view utf8)
{
    put([text = toText(utf8)](FlashControl& control) { emit control.logged(text); });
}

void HostQueue::readyStateChanged(int state)
{
    if (state == m_readyState) return;
    m_readyState = state;
    put([state](FlashControl& control) { emit control.OnReadyStateChange(state); });
}

void HostQueue::progressed(int percent)
{
    put([percent](FlashControl& control) { emit control.OnProgress(percent); });
}

void HostQueue::setClipboardText(std::string_view utf8)
{
    if (m_clipboardAllowed) QGuiApplication::clipboard()->setText(toText(utf8));
}

std::string HostQueue::clipboardText()
{
    return m_clipboardAllowed ? QGuiApplication::clipboard()->text().toStdString() : std::string();
}

bool HostQueue::abortSlowScript() { return !m_timeout || m_timeout(); }
bool HostQueue::endsScripts() { return m_watch && m_watch(); }

} // namespace flash
