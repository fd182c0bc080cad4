#include "flash/control/Inbox.h"

#include "flash/FlashControl.h"

#include <QPointer>
#include <QTimer>

#include <utility>

namespace flash::control
{

namespace
{

constexpr std::size_t kMaxMessages = 20'000;
constexpr std::size_t kMaxBytes = std::size_t{8} << 20U;

QString toText(const std::string& utf8) { return QString::fromStdString(utf8); }

/// What a message weighs; state changes and the like are few and weigh nothing.
struct TextBytes {
    std::size_t operator()(const Command& message) const
    {
        return message.command.size() + message.arguments.size();
    }
    std::size_t operator()(const OpenAddress& message) const
    {
        return message.address.size() + message.window.size();
    }
    std::size_t operator()(const TraceLine& message) const { return message.text.size(); }
    std::size_t operator()(const LogLine& message) const { return message.text.size(); }
    template <class Other>
    std::size_t operator()(const Other&) const
    {
        return 0;
    }
};

struct Emit {
    FlashControl& control;

    void operator()(const Command& message) const
    {
        emit control.FSCommand(toText(message.command), toText(message.arguments));
    }
    void operator()(const OpenAddress& message) const
    {
        emit control.urlRequested(toText(message.address), toText(message.window), {});
    }
    void operator()(const TraceLine& message) const { emit control.traced(toText(message.text)); }
    void operator()(const LogLine& message) const { emit control.logged(toText(message.text)); }
    void operator()(const ReadyState& message) const { emit control.OnReadyStateChange(message.state); }
    void operator()(const Progress& message) const { emit control.OnProgress(message.percent); }
    void operator()(const LimitReached& message) const { emit control.limitReached(toText(message.what)); }
    /// The rest is not for the host.
    template <class Other>
    void operator()(const Other&) const
    {
    }
};

} // namespace

void Inbox::put(FromMovie message, Sender sender)
{
    const std::size_t bytes = std::visit(TextBytes(), message);
    const bool fits = m_messages.size() < kMaxMessages && bytes <= kMaxBytes - std::min(m_bytes, kMaxBytes);
    const bool state = std::holds_alternative<ReadyState>(message);
    if (!fits && !state) {
        if (std::exchange(m_overflowed, true)) return;
        message = LogLine{"The movie says more at once than is listened to."};
    } else {
        m_bytes += bytes;
    }
    m_messages.push_back({std::move(message), std::move(sender)});
}

void Inbox::deliver(FlashControl& control)
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
        std::visit(Emit{control}, message.content);
        if (alive.isNull()) return;
    }
    m_sender = {};
    m_delivering = false;
    if (!m_messages.empty()) QTimer::singleShot(0, &control, [this, &control] { deliver(control); });
}

} // namespace flash::control
