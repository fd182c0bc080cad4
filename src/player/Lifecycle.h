#pragma once

#include <QString>

namespace core
{
class Application;
}

namespace player
{

class Player;

/// How the window begins and ends, and what it shows when there is no movie.
class Lifecycle
{
public:
    /// By what the program is asked to end.
    enum class UnloadMode { ControlMenu, FormCode, Windows, TaskManager };

    /// @param application outlives this object, as does the player
    /// @param commandLine the arguments as one text, quotes included; may be empty
    Lifecycle(core::Application& application, Player& player, const QString& commandLine)
        : m_application(application), m_player(player), m_commandLine(commandLine)
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
    Player& m_player;
    const QString m_commandLine;
    bool m_hasArgument = false;
    bool m_isLoading = false, m_isShown = false;
    bool m_ended = false;
};

} // namespace player
