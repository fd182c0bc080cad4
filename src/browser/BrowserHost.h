#pragma once

#include <QDialog>
#include <QString>

// browser/: the media browser, the thumbnails it shows, the information window and the bitmap buffer. What
// it needs of the main window it asks through BrowserHost; what plays in that window is none of its affair.

namespace browser
{

/// What the browser and its windows need of the main window. The player implements it.
class BrowserHost
{
public:
    virtual ~BrowserHost() = default;

    /// Shows a word on what the player is doing.
    virtual void SetStatus(const QString& text) = 0;
    /// The one way to open a movie or page.
    virtual void LoadFlash(const QString& path, const QString& caption) = 0;
    /// Shows a dialog over the main window until it is closed; its result stands in it.
    virtual void ShowDialog(QDialog& dialog) = 0;
    /// What windows of the browser lie over; may be null.
    virtual QWidget* dialogParent() = 0;

    /// The setting for the pages, as text; goes to their addresses as it stands.
    [[nodiscard]] virtual QString noAnimation() const = 0;
    /// Whether thumbnails are smoothed.
    [[nodiscard]] virtual bool hqShots() const = 0;
    /// The program is ending: what runs long stops at once.
    [[nodiscard]] virtual bool hasEnded() const = 0;
    /// @returns a count of the loaded movie's frames as minutes and seconds
    [[nodiscard]] virtual QString GetTime(int frames) const = 0;
};

/// For code that runs without a window.
class NoBrowserHost : public BrowserHost
{
public:
    void SetStatus(const QString&) override {}
    void LoadFlash(const QString&, const QString&) override {}
    void ShowDialog(QDialog&) override {}
    QWidget* dialogParent() override { return nullptr; }
    [[nodiscard]] QString noAnimation() const override { return "False"; }
    [[nodiscard]] bool hqShots() const override { return true; }
    [[nodiscard]] bool hasEnded() const override { return false; }
    [[nodiscard]] QString GetTime(int) const override { return {}; }
};

} // namespace browser
