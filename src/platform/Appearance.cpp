#include "platform/Appearance.h"

#include "platform/MediaSession.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>

namespace platform
{
namespace
{

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Settings";
constexpr const char* kContrastGroup = "org.freedesktop.appearance";
constexpr const char* kGnomeContrastGroup = "org.gnome.desktop.a11y.interface";
constexpr const char* kTextGroup = "org.gnome.desktop.interface";
constexpr const char* kContrast = "contrast";
constexpr const char* kGnomeContrast = "high-contrast";
constexpr const char* kTextScale = "text-scaling-factor";

/// A setting comes in an envelope, and older portals put it in a second one.
QVariant opened(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

Appearance::Appearance(QObject* parent) : QObject(parent)
{
    if (!isBusOffered()) return;
    QDBusConnection::sessionBus().connect(kService, kPath, kInterface, "SettingChanged", this,
                                          SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask(kContrastGroup, kContrast);
    ask(kGnomeContrastGroup, kGnomeContrast);
    ask(kTextGroup, kTextScale);
}

void Appearance::ask(const QString& group, const QString& key)
{
    QDBusMessage read = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
    read << group << key;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError()) take(group, key, opened(reply.value().variant()));
    });
}

void Appearance::settingChanged(const QString& group, const QString& key, const QDBusVariant& value)
{
    take(group, key, opened(value.variant()));
}

void Appearance::take(const QString& group, const QString& key, const QVariant& value)
{
    constexpr double kMinScale = 0.75, kMaxScale = 3;
    const bool contrastBefore = m_highContrast;
    const double scaleBefore = m_textScale;
    if (group == kContrastGroup && key == kContrast) m_highContrast = value.toInt() == 1;
    if (group == kGnomeContrastGroup && key == kGnomeContrast) m_highContrast = value.toBool();
    if (group == kTextGroup && key == kTextScale)
        m_textScale = std::clamp(value.toDouble(), kMinScale, kMaxScale);
    if (m_highContrast != contrastBefore || m_textScale != scaleBefore) emit changed();
}

} // namespace platform
