#pragma once

#include <QObject>

#include <functional>

namespace flash::control
{

/// Tells when the application's event loop, or one inside another, is about to wait, and when it has woken
/// up: before anything is done then.
class SleepWatch : public QObject
{
public:
    /// @param asleep nothing happens in this thread after it until `awake`, which is called once for it
    SleepWatch(std::function<void()> asleep, std::function<void()> awake);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void()> m_asleep, m_awake;
    bool m_sleeps = false;
};

} // namespace flash::control
