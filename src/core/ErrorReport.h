#pragma once

#include "base/Failure.h"
#include "core/Application.h"

class QDialog;
class QWidget;

namespace core
{

/// What the error reporter needs from the main window.
class ErrorHost
{
public:
    virtual ~ErrorHost() = default;
    virtual bool updateTimerEnabled() const = 0;
    virtual void setUpdateTimerEnabled(bool enabled) = 0;
    virtual QWidget* errorParent() = 0;
    /// Shows a window of the program over the player, modally, as much on top as the player is.
    virtual void ShowDialog(QDialog& dialog) = 0;
    virtual void Quit(const QString& reason, bool saveOptions) = 0;
};

/// Writes the error block to the journal: for what goes on without asking the user.
/// @throws base::Failure when the journal cannot be written
void LogError(Application& application, const base::Failure& error, const QString& place,
              const QString& detail = {});

/// Writes the error block to the journal and shows the error screen over the main window. The status timer
/// rests meanwhile, unless the error is that the Flash control cannot be created.
/// @param place  Russian name of the operation that failed
/// @param detail further text for the user to unfold; may be empty
/// Returns when the user goes on; the failing procedure then resumes with its next statement.
void ReportError(Application& application, ErrorHost& host, const base::Failure& error, const QString& place,
                 const QString& detail = {});

} // namespace core
