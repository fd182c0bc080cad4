#pragma once

#include "core/ErrorReport.h"
#include "media/MediaFiles.h"
#include "player/Menus.h"
#include "player/Playback.h"
#include "player/SkinWindow.h"
#include "player/Status.h"
#include "player/WindowDrag.h"
#include "settings/RecentList.h"
#include "settings/SettingsFile.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QStackedLayout;

// player/: the main window and what drives it. Player is a facade: its public procedures are the names that
// menus, pages and scripts call, each a few lines over a part that is tested by itself (Playback, Status,
// Placement, Menus, Cache).

namespace flash
{
class FlashControl;
}

namespace player
{

class ControlBar;
class WelcomePanel;

class Player : public QWidget, public media::MediaHost, public core::ErrorHost
{
    Q_OBJECT
    // What scripts read and set. The window's own place and size are in twips, 15 to the pixel, its inner
    // size is in pixels.
    Q_PROPERTY(int ScaleWidth READ ScaleWidth)
    Q_PROPERTY(int ScaleHeight READ ScaleHeight)
    Q_PROPERTY(double Left READ Left WRITE setLeft)
    Q_PROPERTY(double Top READ Top WRITE setTop)
    Q_PROPERTY(double Width READ Width WRITE setWidth)
    Q_PROPERTY(double Height READ Height WRITE setHeight)
    Q_PROPERTY(int WindowState READ WindowState WRITE setWindowStateNumber)
    Q_PROPERTY(QString Caption READ windowTitle WRITE SetCaption)
    Q_PROPERTY(QString StatusText READ StatusText)
    Q_PROPERTY(QString InfoText READ InfoText)
    Q_PROPERTY(QString MediaTitle READ mediaTitle)
    Q_PROPERTY(int TimeMode READ TimeMode)
    Q_PROPERTY(int Volume READ Volume)
    Q_PROPERTY(bool Muted READ Muted)
    Q_PROPERTY(bool HasMovie READ HasMovie)
public:
    /// @param application outlives the window
    /// @param commandLine the arguments as one text, quotes included; may be empty
    Player(core::Application& application, const QString& commandLine);
    ~Player() override;

    /// Fills and shows the window: opens the file of the command line or does the start-up action.
    void Form_Load();

    /// The settings that live nowhere else: skin and icon set, the program's pages, what the start and the
    /// end do, the media browser's place. The others are the state of control, menus and playback.
    [[nodiscard]] settings::Options& options() { return m_options; }

    /// Whether Quit has run. There is no way back; the event loop has been told to end.
    [[nodiscard]] bool hasEnded() const { return m_ended; }

    // Playback
    Q_INVOKABLE void PlayMedia() { m_playback.PlayMedia(); }
    Q_INVOKABLE void PauseMedia() { m_playback.PauseMedia(); }
    Q_INVOKABLE void PlayPauseMedia() { m_playback.PlayPauseMedia(); }
    Q_INVOKABLE void StopMedia() { m_playback.StopMedia(); }
    Q_INVOKABLE void SetQuality(const QString& name) { m_playback.SetQuality(name); }
    Q_INVOKABLE void SetScaleMode(int mode) { m_playback.SetScaleMode(mode); }
    Q_INVOKABLE void SetSound(int volume, int pan) { m_playback.SetSound(volume, pan); }
    Q_INVOKABLE void MuteSound(bool muted) { m_playback.MuteSound(muted); }
    Q_INVOKABLE void SetFlashAlpha(int percent) { m_playback.SetFlashAlpha(percent); }

    // Status and information
    Q_INVOKABLE void ToggleTimeMode() { m_status.ToggleTimeMode(); }
    Q_INVOKABLE void UpdateInfo();
    Q_INVOKABLE QString GetTime(int frames) const;
    Q_INVOKABLE void SetStatus(const QString& text) override;
    Q_INVOKABLE void SetCaption(const QString& text) override;

    // Window
    Q_INVOKABLE void ZoomFlash(int percent, quint8 repeats) override;
    Q_INVOKABLE void FullScreen(bool on);
    /// 0: normal; 1: maximised; another: from normal to maximised, else to normal.
    Q_INVOKABLE void ZoomWindow(int mode);
    Q_INVOKABLE void Minimize() { showMinimized(); }
    Q_INVOKABLE void MoveWindow() { m_drag.moveWindow(*this); }
    Q_INVOKABLE void ResizeWindow() { m_drag.resizeWindow(*this); }
    Q_INVOKABLE void MoveObject(QObject* control);
    Q_INVOKABLE void ToggleMenu();
    Q_INVOKABLE void ShowPopUp();
    void ShowDialog(QDialog& dialog) override;

    // Skin
    Q_INVOKABLE void EnumSkins() { m_skinWindow.EnumSkins(); }
    Q_INVOKABLE void CreateSkin() { m_skinWindow.CreateSkin(); }
    Q_INVOKABLE void UpdateSkin() { m_skinWindow.skin().UpdateSkin(); }
    Q_INVOKABLE void LoadNewSkin() { m_skinWindow.LoadNewSkin(); }
    Q_INVOKABLE void ShowWaitScreen() { m_skinWindow.ShowWaitScreen(); }
    Q_INVOKABLE void HideWaitScreen() { m_skinWindow.HideWaitScreen(); }
    Q_INVOKABLE void UpdateRegion(bool force) { m_skinWindow.UpdateRegion(force); }
    Q_INVOKABLE QObject* PIC(int index) { return m_skinWindow.skin().control("PIC", index); }
    Q_INVOKABLE QObject* LBL(int index) { return m_skinWindow.skin().control("LBL", index); }
    [[nodiscard]] SkinWindow& skinWindow() { return m_skinWindow; }
    /// What a skin allows; a size of 0 is the window's own.
    void setMinimumWindowSize(QSize pixels);

    [[nodiscard]] int ScaleWidth() const { return m_client->width(); }
    [[nodiscard]] int ScaleHeight() const { return m_client->height(); }
    [[nodiscard]] double Left() const { return x() * kTwipsPerPixel; }
    [[nodiscard]] double Top() const { return y() * kTwipsPerPixel; }
    [[nodiscard]] double Width() const { return frameGeometry().width() * kTwipsPerPixel; }
    [[nodiscard]] double Height() const { return frameGeometry().height() * kTwipsPerPixel; }
    void setLeft(double twips) { move(toPixels(twips), y()); }
    void setTop(double twips) { move(x(), toPixels(twips)); }
    void setWidth(double twips);
    void setHeight(double twips);
    /// 0 normal, 1 minimised, 2 maximised
    [[nodiscard]] int WindowState() const { return isMinimized() ? 1 : isMaximized() ? 2 : 0; }
    void setWindowStateNumber(int state);
    [[nodiscard]] QString StatusText() const { return m_status.statusText; }
    [[nodiscard]] QString InfoText() const { return HasMovie() ? m_status.informationText : QString(); }
    [[nodiscard]] int TimeMode() const { return m_status.timeMode(); }
    [[nodiscard]] int Volume() const { return m_playback.volume(); }
    [[nodiscard]] bool Muted() const { return m_playback.isMuted(); }
    [[nodiscard]] bool HasMovie() const;

    // Media
    Q_INVOKABLE void LoadFlash(const QString& path, const QString& caption)
    {
        m_media.LoadFlash(path, caption);
    }
    Q_INVOKABLE void OpenMedia();
    Q_INVOKABLE void CloseMedia(const QString& message) override;
    Q_INVOKABLE void SaveMediaAs();
    /// Reads settings.xml and gives every value to what it sets. Called once, before a file is opened.
    Q_INVOKABLE void LoadOpts();
    /// @returns false when settings.xml could not be written
    Q_INVOKABLE bool SaveOpts();
    Q_INVOKABLE void Quit(const QString& reason, bool saveOptions) override;

    /// What a file or folder dropped on the window does.
    void FileDropped(const QString& path);
    /// The system ends the program: by the session's end or by a signal.
    enum class UnloadMode { ControlMenu, FormCode, Windows, TaskManager };
    void Form_QueryUnload(UnloadMode mode);

    [[nodiscard]] flash::FlashControl& control() { return *m_control; }
    [[nodiscard]] Menus& menus() { return m_menus; }
    [[nodiscard]] const Status& status() const { return m_status; }
    [[nodiscard]] const media::MediaInfo& mediaInfo() const { return m_media.mediaInfo(); }
    [[nodiscard]] QString mediaTitle() const { return m_mediaTitle; }

    // What media asks for while it loads a movie.
    void setUpdateTimerEnabled(bool enabled) override;
    [[nodiscard]] bool isFullScreen() const override { return m_menus.isChecked("mnuFullScreen"); }
    void LoadMovie(int layer, const QString& url) override;
    void setBackground(const QString& colour) override { m_playback.setBackground(colour); }
    void setMediaInfoEnabled(bool enabled) override { m_menus.item("mnuInfo").setEnabled(enabled); }
    void reapplySound() override;
    void setCompressCaption(const QString& caption) override { m_menus.item("mnuCompress").setText(caption); }
    void setMediaTitle(const QString& title) override { m_mediaTitle = title; }
    void AddRecent(const QString& path) override;
    void onMediaChange() override;
    void ReportError(const base::Failure& error, const QString& place, const QString& detail) override;

    // What the error reporter asks for.
    [[nodiscard]] bool updateTimerEnabled() const override { return m_tmrUpdate.isActive(); }
    QWidget* errorParent() override { return this; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static constexpr double kTwipsPerPixel = 15;
    static int toPixels(double twips) { return skin::SkinControl::whole(twips / kTwipsPerPixel); }

    void buildWindow();
    void connectMenus();
    void connectControl();
    void openCommandLine();
    void showWelcomePanel(const QString& message);
    void showMovie();
    /// Commands that need a movie of the user's.
    void setMovieCommandsEnabled(bool enabled);
    [[nodiscard]] bool askToEndScript();
    void openOutside(const QString& address);
    void fillScreen();
    /// Shows menu bar and control bar as full screen, menu mark and skin ask.
    void showBars();
    void SetWindowFrame(bool show);
    void setTopMost(bool on);
    void tmrUpdate_Timer();
    void mnuCompress_Click();
    void mnuOpt_Click();
    void showRecent();
    void pageCommand(const QString& command, const QString& argument);
    void saveTo(const QString& target, const QString& filter);
    /// The folder that a file dialog starts in.
    [[nodiscard]] QString dialogFolder() const;
    void logQuietly(const QString& text);
    /// Runs a procedure under the program's usual handler: a failure is reported and the program goes on.
    void handled(const char* place, const std::function<void()>& procedure);

    core::Application& m_application;
    const QString m_commandLine;
    QWidget* m_client;           ///< the inner area: what is left by menu bar and control bar
    skin::SkinControl* m_screen; ///< the movie or the panel that stands for it; scripts know it as SWF
    flash::FlashControl* m_control;
    WelcomePanel* m_welcome;
    ControlBar* m_bar;
    QStackedLayout* m_stage;
    Menus m_menus;
    media::MediaFiles m_media;
    Playback m_playback;
    Status m_status;
    SkinWindow m_skinWindow;
    WindowDrag m_drag;
    QTimer m_tmrUpdate;
    QString m_savedCaption; ///< the caption while full screen keeps it aside
    QRect m_normalGeometry; ///< the window's place before it filled the screen
    QString m_mediaTitle;
    settings::SettingsFile m_settings;
    settings::Options m_options;
    settings::RecentList m_recent;
    QString m_droppedFolder;   ///< where the next open dialog starts; empty: where the most recent file lies
    bool m_hasOptions = false; ///< whether LoadOpts has run: only then is there something to save
    bool m_hasArgument = false;
    bool m_ended = false;
};

} // namespace player
