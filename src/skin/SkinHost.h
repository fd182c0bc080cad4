#pragma once

#include <QSize>
#include <QString>

class QObject;
class QWidget;

namespace base
{
class Failure;
}

namespace skin
{

/// What a skin asks of the main window. The player implements it.
class SkinHost
{
public:
    virtual ~SkinHost() = default;

    /// The window's inner area, on which views lie. Its size is what scripts know as ScaleWidth, ScaleHeight.
    virtual QWidget& clientArea() = 0;
    /// The movie, which moves from view to view.
    virtual QWidget& movie() = 0;
    virtual QWidget& window() = 0;
    [[nodiscard]] virtual bool isFullScreen() const = 0;
    virtual void setMinimumWindowSize(QSize pixels) = 0;
    /// Gives the window the skin's shape, or takes it away. @param force after the menu bar came or went
    virtual void UpdateRegion(bool force) = 0;
    virtual void ShowPopUp() = 0;
    /// A press on a skin that rests is what makes the program active.
    virtual void activateProgram() = 0;

    /// Whether the program ends: no script runs any more.
    [[nodiscard]] virtual bool hasEnded() const = 0;
    /// The skin's expressions and statements take longer than a window can wait: it is to be put away, as
    /// soon as nothing of it is at work.
    virtual void skinOverran() = 0;

    /// Whether errors pass to the debugger instead of the journal.
    [[nodiscard]] virtual bool isDeveloperMode() const = 0;
    virtual void log(const QString& text) = 0;
    /// A mistake in the skin's files, for its author; logError() tells it too.
    /// @param file of the skin, empty when it is not known
    /// @param line counted from 1; 0 when it is not known
    virtual void noteMistake(const QString& file, int line, const QString& what) = 0;
    virtual void logError(const base::Failure& error, const QString& place, const QString& detail) = 0;
};

} // namespace skin
