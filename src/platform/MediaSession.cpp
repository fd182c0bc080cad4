#include "platform/MediaSession.h"

#include "platform/MediaSessionBus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileInfo>
#include <QMetaProperty>
#include <QUrl>

#include <cmath>
#include <cstdlib>

namespace platform
{
namespace
{

/// What listeners are to hear of: all but the position, which moves by itself.
QVariantMap propertiesOf(const QObject& adaptor)
{
    QVariantMap values;
    const QMetaObject& meta = *adaptor.metaObject();
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        if (const QString name = meta.property(i).name(); name != "Position")
            values.insert(name, meta.property(i).read(&adaptor));
    return values;
}

} // namespace

bool isBusOffered()
{
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(runtime + "/bus");
}

namespace mpris
{

RootAdaptor::RootAdaptor(QObject* exported, MediaSessionHost& host, QString identity, QString desktopEntry)
    : QDBusAbstractAdaptor(exported), m_host(host), m_identity(std::move(identity)),
      m_desktopEntry(std::move(desktopEntry))
{
}

QStringList RootAdaptor::SupportedMimeTypes()
{
    return {"application/x-shockwave-flash", "application/vnd.adobe.flash.movie"};
}

QDBusObjectPath trackOf(const MediaState& state)
{
    if (!state.hasMovie) return QDBusObjectPath("/org/mpris/MediaPlayer2/TrackList/NoTrack");
    return QDBusObjectPath("/org/zorvex/movie/" + QString::number(qHash(state.path), 16));
}

QString PlayerAdaptor::PlaybackStatus() const
{
    switch (m_host.mediaState().playing) {
    case MediaState::Playing::Runs: return "Playing";
    case MediaState::Playing::Paused: return "Paused";
    case MediaState::Playing::Stopped: break;
    }
    return "Stopped";
}

QVariantMap PlayerAdaptor::Metadata() const
{
    const MediaState state = m_host.mediaState();
    QVariantMap data{{"mpris:trackid", QVariant::fromValue(trackOf(state))}};
    if (!state.hasMovie) return data;
    data.insert("mpris:length", state.lengthUs);
    data.insert("xesam:title", state.title);
    data.insert("xesam:url", QUrl::fromLocalFile(state.path).toString(QUrl::FullyEncoded));
    if (!state.picture.isEmpty())
        data.insert("mpris:artUrl", QUrl::fromLocalFile(state.picture).toString(QUrl::FullyEncoded));
    return data;
}

void PlayerAdaptor::setRate(double rate)
{
    // A rate of nothing is a wish to pause.
    if (rate == 0) return m_host.sessionPause();
    if (rate >= MediaSession::kSlowest && rate <= MediaSession::kFastest) m_host.sessionSetRate(rate);
}

void PlayerAdaptor::Seek(qlonglong offset)
{
    const MediaState state = m_host.mediaState();
    if (state.lengthUs <= 0) return;
    const double wanted = static_cast<double>(state.positionUs) + static_cast<double>(offset);
    if (wanted > static_cast<double>(state.lengthUs)) return m_host.sessionWalk(1);
    m_host.sessionSeek(static_cast<qint64>(std::max(0.0, wanted)));
}

void PlayerAdaptor::SetPosition(const QDBusObjectPath& track, qlonglong position)
{
    const MediaState state = m_host.mediaState();
    // Meant for a movie that is gone, or nowhere in this one.
    if (track != trackOf(state) || position < 0 || position > state.lengthUs) return;
    m_host.sessionSeek(position);
}

void PlayerAdaptor::OpenUri(const QString& uri)
{
    const QUrl url(uri);
    if (url.isLocalFile()) m_host.sessionOpen(url.toString(QUrl::FullyEncoded));
}

} // namespace mpris

MediaSession::MediaSession(MediaSessionHost& host) : m_host(host) {}

MediaSession::~MediaSession()
{
    if (m_exported == nullptr) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterService(m_service);
    bus.unregisterObject(mpris::kPath);
}

void MediaSession::start(const QString& product, const QString& desktopEntry)
{
    if (m_exported != nullptr || !isBusOffered()) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    auto* exported = new QObject(this);
    new mpris::RootAdaptor(exported, m_host, product, desktopEntry);
    new mpris::PlayerAdaptor(exported, m_host);
    if (!bus.registerObject(mpris::kPath, exported, QDBusConnection::ExportAdaptors)) {
        delete exported;
        return;
    }
    m_service = QString(mpris::kRoot) + '.' + product.toLower();
    // A second window of the program has a name of its own.
    if (!bus.registerService(m_service)) {
        m_service += ".instance" + QString::number(QCoreApplication::applicationPid());
        if (!bus.registerService(m_service)) {
            bus.unregisterObject(mpris::kPath);
            delete exported;
            return;
        }
    }
    m_exported = exported;
    refresh();
}

void MediaSession::refresh()
{
    if (m_exported == nullptr) return;
    const auto* player = m_exported->findChild<mpris::PlayerAdaptor*>();
    const auto* root = m_exported->findChild<mpris::RootAdaptor*>();
    const QVariantMap playerNow = propertiesOf(*player), rootNow = propertiesOf(*root);
    tell(mpris::kPlayer, m_player, playerNow);
    tell(mpris::kRoot, m_root, rootNow);
    m_player = playerNow;
    m_root = rootNow;
    noticeSeek(m_host.mediaState());
}

void MediaSession::tell(const char* interface, const QVariantMap& before, const QVariantMap& now)
{
    QVariantMap changed;
    for (auto property = now.cbegin(); property != now.cend(); ++property) {
        const QVariant old = before.value(property.key());
        // Maps that hold object paths know of no equality; their texts do.
        if (property.key() == "Metadata") {
            const auto flat = [](const QVariant& value) {
                QVariantMap map = value.toMap();
                map["mpris:trackid"] = map.value("mpris:trackid").value<QDBusObjectPath>().path();
                return map;
            };
            if (flat(old) == flat(*property)) continue;
        } else if (old == *property) {
            continue;
        }
        changed.insert(property.key(), *property);
    }
    if (changed.isEmpty()) return;
    QDBusMessage signal =
        QDBusMessage::createSignal(mpris::kPath, "org.freedesktop.DBus.Properties", "PropertiesChanged");
    signal << QString(interface) << changed << QStringList();
    QDBusConnection::sessionBus().send(signal);
}

/// Listeners move the position on by themselves; they are told when it went another way.
void MediaSession::noticeSeek(const MediaState& now)
{
    constexpr double kToleratedUs = 1'200'000;
    if (m_sinceTold.isValid() && now.path == m_told.path && now.hasMovie) {
        const bool ran = m_told.playing == MediaState::Playing::Runs;
        const double moved = ran ? static_cast<double>(m_sinceTold.nsecsElapsed()) / 1e3 * m_told.rate : 0;
        const double expected = static_cast<double>(m_told.positionUs) + moved;
        if (std::abs(static_cast<double>(now.positionUs) - expected) > kToleratedUs)
            emit m_exported->findChild<mpris::PlayerAdaptor*>()->Seeked(now.positionUs);
    }
    m_told = now;
    m_sinceTold.start();
}

} // namespace platform
