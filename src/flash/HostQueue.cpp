#include "flash/HostQueue.h"

#include "flash/FlashControl.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace flash
{

namespace
{

// A movie that traces in an endless loop must not fill the memory before its script is stopped.
constexpr std::size_t kMostMessages = 20'000;
constexpr std::size_t kMostBytes = std::size_t{8} << 20;

QString toText(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

bool HostQueue::takes(std::size_t bytes)
{
    if (m_messages.size() < kMostMessages && bytes <= kMostBytes - std::min(m_bytes, kMostBytes)) {
        m_bytes += bytes;
        return true;
    }
    if (!std::exchange(m_overflowed, true))
        put([](FlashControl& control) {
            emit control.logged(QStringLiteral("The movie says more at once than is listened to."));
        });
    return false;
}

void HostQueue::put(std::function<void(FlashControl&)> tell)
{
    Sender sender;
    sender.movie = m_movie;
    if (m_senderSource) m_senderSource(sender);
    m_messages.push_back({std::move(tell), std::move(sender)});
}

void HostQueue::deliver(FlashControl& control)
{
    // A handler that loads another movie comes back to here with what that one says at once; a movie that
    // has itself loaded would never leave.
    if (m_delivering || m_messages.empty()) return;
    m_delivering = true;
    const QPointer<FlashControl> alive(&control);
    const auto messages = std::exchange(m_messages, {});
    m_bytes = 0;
    m_overflowed = false;
    for (const Message& message : messages) {
        m_sender = message.sender;
        message.tell(control);
        if (alive.isNull()) return;
    }
    m_sender = {};
    m_delivering = false;
    if (!m_messages.empty()) QTimer::singleShot(0, &control, [this, &control] { deliver(control); });
}

void HostQueue::fsCommand(std::string_view command, std::string_view arguments)
{
    if (!takes(command.size() + arguments.size())) return;
    put([command = toText(command), arguments = toText(arguments)](FlashControl& control) {
        emit control.FSCommand(command, arguments);
    });
}

void HostQueue::openUrl(std::string_view url, std::string_view window)
{
    if (!takes(url.size() + window.size())) return;
    put([url = toText(url), window = toText(window)](FlashControl& control) {
        emit control.urlRequested(url, window, {});
    });
}

void HostQueue::traceLine(std::string_view utf8)
{
    if (!takes(utf8.size())) return;
    put([text = toText(utf8)](FlashControl& control) { emit control.traced(text); });
}

void HostQueue::logLine(std::string_view utf8)
{
    if (!takes(utf8.size())) return;
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
    if (!takes(0)) return;
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
