#include "platform/TaskbarProgress.h"

#include "platform/MediaSession.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

#include <algorithm>
#include <cmath>

namespace platform
{

void TaskbarProgress::show(double part)
{
    constexpr double kStep = 0.01;
    const double shown = std::clamp(part, 0.0, 1.0);
    if (m_shown >= 0 && std::abs(shown - m_shown) < kStep && shown < 1) return;
    m_shown = shown;
    send(shown, true);
}

void TaskbarProgress::hide()
{
    if (m_shown < 0) return;
    m_shown = -1;
    send(0, false);
}

void TaskbarProgress::send(double part, bool isVisible) const
{
    if (!isBusOffered()) return;
    QDBusMessage update =
        QDBusMessage::createSignal("/org/zorvex/Zorvex", "com.canonical.Unity.LauncherEntry", "Update");
    update << "application://" + m_entry + ".desktop"
           << QVariantMap{{"progress", part}, {"progress-visible", isVisible}};
    QDBusConnection::sessionBus().send(update);
}

} // namespace platform
