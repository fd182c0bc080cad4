#include "platform/FileDialogs.h"

#include "platform/MediaSession.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileInfo>
#include <QStandardPaths>
#include <QVariant>

namespace platform
{
namespace
{

constexpr const char* kThemeVariable = "QT_QPA_PLATFORMTHEME";
constexpr const char* kPortalTheme = "xdgdesktopportal";
constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr int kPatienceMs = 2000;

} // namespace

void preferDesktopDialogs()
{
    if (qEnvironmentVariableIsSet(kThemeVariable) || !isBusOffered()) return;
    const QString service = QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                                   QString("dbus-1/services/%1.service").arg(kService));
    if (!service.isEmpty()) qputenv(kThemeVariable, kPortalTheme);
}

bool hasDesktopDialogs()
{
    // Another theme's dialogs need no service.
    if (qgetenv(kThemeVariable) != kPortalTheme) return true;
    if (!isBusOffered()) return false;
    QDBusMessage version = QDBusMessage::createMethodCall(kService, "/org/freedesktop/portal/desktop",
                                                          "org.freedesktop.DBus.Properties", "Get");
    version << "org.freedesktop.portal.FileChooser"
            << "version";
    const QDBusMessage answer = QDBusConnection::sessionBus().call(version, QDBus::Block, kPatienceMs);
    return answer.type() == QDBusMessage::ReplyMessage;
}

} // namespace platform
