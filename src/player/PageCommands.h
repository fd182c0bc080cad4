#pragma once

#include <QString>

#include <optional>

namespace player
{

/// What a command does to the user, and so when a movie that is no page of ours may send it.
enum class PageEffect {
    Notes,  ///< writes into the journal
    Opens,  ///< shows a dialog, a page or another window, or takes the whole screen
    Asks,   ///< leads outside, with a question before it
    Loads,  ///< puts another movie in this one's place
    Leaves, ///< gives the screen back
};
enum class PageOutcome {
    Done,
    Declined, ///< the user was asked and did not want it
};

/// What pages may ask of the program. The player implements it.
class PageCommandHost
{
public:
    virtual ~PageCommandHost() = default;
    virtual void LogEvent(const QString& text) = 0;
    /// Whether the command comes from one of the program's own pages.
    [[nodiscard]] virtual bool isOwnPage() const = 0;
    /// Whether a path, maybe with a query behind it, leads to one of them.
    [[nodiscard]] virtual bool isPageAddress(const QString& path) const = 0;

    /// @returns whether the user chose a file
    virtual bool OpenMedia() = 0;
    /// For a movie these two ask like every other way out.
    virtual PageOutcome helpWanted() = 0;
    virtual PageOutcome updateWanted() = 0;
    virtual void LoadFlash(const QString& path, const QString& caption) = 0;
    virtual void FullScreen(bool on) = 0;
    virtual void ZoomFlash(int percent, quint8 repeats) = 0;
    /// Opens a path or an address that the movie names.
    virtual PageOutcome openOutside(const QString& target) = 0;

    // The media browser.
    [[nodiscard]] virtual QString browserFolder() const = 0;
    [[nodiscard]] virtual int browserPage() const = 0; ///< counted from 0
    virtual void setBrowserPage(int page) = 0;         ///< not clamped: showing the page does that
    /// @param word as the page and the settings have it
    virtual void setBrowserOrder(const QString& word) = 0;
    [[nodiscard]] virtual int browserPageCount() const = 0;
    virtual void NewMediaBrowse(const QString& folder) = 0;
    virtual void ShowBrowsePage() = 0;
    /// Asks the user for a folder. @returns nothing when the user declined
    virtual std::optional<QString> chooseBrowserFolder(const QString& start) = 0;
};

/// Carries out a command that a page or movie sends by fscommand. Names are known in any case.
/// @throws base::Failure when an argument cannot be converted
PageOutcome runPageCommand(PageCommandHost& host, const QString& command, const QString& argument);

[[nodiscard]] PageEffect effectOf(const QString& command, const QString& argument);

} // namespace player
