#include "platform/ScreenAwake.h"

#include "platform/MediaSession.h"
#include "platform/WindowSystem.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFileInfo>

namespace platform
{
namespace
{

constexpr const char* kService = "org.freedesktop.ScreenSaver";
constexpr const char* kPath = "/org/freedesktop/ScreenSaver";
/// Shorter than the shortest patience that desktops offer.
constexpr int kPokeMs = 30'000;

QDBusMessage call(const char* method)
{
    return QDBusMessage::createMethodCall(kService, kPath, kService, method);
}

} // namespace

ScreenAwake::ScreenAwake(QObject* parent) : QObject(parent)
{
    m_poke.setInterval(kPokeMs);
    connect(&m_poke, &QTimer::timeout, this, [] { pokeScreen(); });
}

ScreenAwake::~ScreenAwake() { release(); }

void ScreenAwake::setAwake(bool awake, const QString& product, const QString& reason)
{
    if (awake == m_isAwake) return;
    m_isAwake = awake;
    awake ? ask(product, reason) : release();
}

void ScreenAwake::ask(const QString& product, const QString& reason)
{
    pokeScreen();
    m_poke.start();
    if (!isBusOffered()) return;
    QDBusMessage inhibit = call("Inhibit");
    inhibit << product << reason;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(inhibit), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, number = ++m_asked] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> reply = *watcher;
        if (reply.isError()) return;
        m_cookie = reply.value();
        m_hasCookie = true;
        // The answer may come when it is wanted no more, or twice over.
        if (!m_isAwake || number != m_asked) release();
    });
}

void ScreenAwake::release()
{
    m_poke.stop();
    if (!std::exchange(m_hasCookie, false)) return;
    QDBusMessage uninhibit = call("UnInhibit");
    uninhibit << m_cookie;
    QDBusConnection::sessionBus().send(uninhibit);
}

} // namespace platform
