#include "flash/control/SleepWatch.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <utility>

namespace flash::control
{

SleepWatch::SleepWatch(std::function<void()> asleep, std::function<void()> awake)
    : m_asleep(std::move(asleep)), m_awake(std::move(awake))
{
    // The dispatcher says that it is awake after it has had everything handled: the first event says so
    // earlier.
    qApp->installEventFilter(this);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this, [this] {
        // It may say so again without an event in between.
        if (!std::exchange(m_sleeps, true)) m_asleep();
    });
}

bool SleepWatch::eventFilter(QObject*, QEvent*)
{
    if (std::exchange(m_sleeps, false)) m_awake();
    return false;
}

} // namespace flash::control
