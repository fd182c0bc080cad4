#pragma once

#include <QString>

namespace platform
{

/// How far a long work is, on the program's button in the desktop's task bar, where the desktop has such: by
/// the signal com.canonical.Unity.LauncherEntry.Update on the session's bus. Goes with the object.
class TaskbarProgress
{
public:
    /// @param desktopEntry name of the program's entry without its ending
    explicit TaskbarProgress(QString desktopEntry) : m_entry(std::move(desktopEntry)) {}
    TaskbarProgress(const TaskbarProgress&) = delete;
    TaskbarProgress& operator=(const TaskbarProgress&) = delete;
    ~TaskbarProgress() { hide(); }

    /// @param part 0 to 1. What differs little from what is shown is not sent.
    void show(double part);
    void hide();

private:
    void send(double part, bool isVisible) const;

    QString m_entry;
    double m_shown = -1; ///< nothing is shown
};

} // namespace platform
