#pragma once

#include <QString>

class QWidget;

namespace core
{
class Application;
}

namespace player
{

class LifecycleHost;
class MovieScreen;
class Placement;
class PlayerSettings;

/// How the window begins and ends, and what it shows when there is no movie.
class Lifecycle
{
public:
    /// By what the program is asked to end.
    enum class UnloadMode { ControlMenu, FormCode, Windows, TaskManager };

    /// All but the command line outlive this object.
    /// @param commandLine the arguments as one text, quotes included; may be empty
    Lifecycle(core::Application& application, LifecycleHost& host, QWidget& window, MovieScreen& movieScreen,
              Placement& placement, PlayerSettings& settings, const QString& commandLine)
        : m_application(application), m_host(host), m_window(window), m_movieScreen(movieScreen),
          m_placement(placement), m_settings(settings), m_commandLine(commandLine)
    {
    }

    /// Fills and shows the window: opens the file of the command line or does the start-up action.
    void Form_Load();
    /// Never refused: the program has ended when this returns.
    void Form_QueryUnload(UnloadMode mode);
    /// The only way out. Nothing keeps the program from ending.
    void Quit(const QString& reason, bool saveOptions);
    /// Shows the window before the first movie is opened: there is no telling how long that one's first frame
    /// takes. Does nothing once the window is shown.
    void showWindowFirst();
    /// Whether Quit has run. There is no way back; the event loop has been told to end.
    [[nodiscard]] bool hasEnded() const { return m_ended; }

    /// Shows the welcome page, or the panel where there is no such page.
    void CloseMedia(const QString& message);

private:
    void openFirst();
    void showWindow();
    void sweep();

    core::Application& m_application;
    LifecycleHost& m_host;
    QWidget& m_window;
    MovieScreen& m_movieScreen;
    Placement& m_placement;
    PlayerSettings& m_settings;
    const QString m_commandLine;
    bool m_hasArgument = false;
    bool m_isLoading = false, m_isShown = false;
    bool m_ended = false;
};

} // namespace player
