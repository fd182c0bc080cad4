#pragma once

#include <QString>

#include <optional>

namespace core
{
class Application;
}

namespace player
{

class Player;

/// The dialogs that ask for a file or a folder, and what their answers do.
class MediaDialogs
{
public:
    /// Both outlive this object.
    MediaDialogs(core::Application& application, Player& player)
        : m_application(application), m_player(player)
    {
    }

    /// @param folder where the dialog starts; empty: where the most recent file lies
    /// @returns whether a file was chosen
    bool OpenMedia(const QString& folder);
    void SaveMediaAs();
    /// @returns the folder chosen for browsing, nothing when the user declined
    std::optional<QString> chooseBrowserFolder(const QString& start);

private:
    [[nodiscard]] QString startFolder() const;
    void saveTo(const QString& target, const QString& filter);

    core::Application& m_application;
    Player& m_player;
};

} // namespace player
