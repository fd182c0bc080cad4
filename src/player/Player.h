#pragma once

#include "browser/MediaBrowser.h"
#include "core/ErrorReport.h"
#include "media/MediaFiles.h"
#include "platform/MediaSession.h"
#include "platform/ScreenAwake.h"
#include "platform/TaskbarProgress.h"
#include "player/Console.h"
#include "player/FilmExport.h"
#include "player/Lifecycle.h"
#include "player/MediaDialogs.h"
#include "player/Menus.h"
#include "player/MovieHealth.h"
#include "player/MovieJournal.h"
#include "player/MovieList.h"
#include "player/MovieMenu.h"
#include "player/MovieScreen.h"
#include "player/Outside.h"
#include "player/PageCommands.h"
#include "player/PageQueue.h"
#include "player/Placement.h"
#include "player/Playback.h"
#include "player/PlayerHost.h"
#include "player/PlayerSettings.h"
#include "player/Resume.h"
#include "player/SkinWindow.h"
#include "player/Status.h"
#include "player/StatusTimer.h"
#include "player/Transport.h"
#include "player/WindowDrag.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>

// player/: the main window and what drives it. Player is a facade: its public procedures are the names that
// menus, pages and scripts call, each a few lines over a part that has its own file and its own tests.

class QProgressDialog;

namespace ui
{
class HelpWindow;
}

namespace player
{

class ControlBar;

class Player : public QWidget,
               public media::MediaHost,
               public core::ErrorHost,
               public PageCommandHost,
               public PageQueueHost,
               public MovieListHost,
               public browser::BrowserHost,
               public LifecycleHost,
               public platform::MediaSessionHost,
               public SkinWindowHost
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
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(QString Title READ Title)
    Q_PROPERTY(QString StatusText READ StatusText)
    Q_PROPERTY(QString InfoText READ InfoText)
    Q_PROPERTY(QString MediaTitle READ mediaTitle)
    Q_PROPERTY(int TimeMode READ TimeMode)
    Q_PROPERTY(int Volume READ Volume)
    Q_PROPERTY(bool Muted READ Muted)
    Q_PROPERTY(bool HasMovie READ HasMovie)
    Q_PROPERTY(int PointerX READ PointerX)
    Q_PROPERTY(int PointerY READ PointerY)
public:
    /// @param application outlives the window
    /// @param commandLine the arguments as one text, quotes included; may be empty
    Player(core::Application& application, const QString& commandLine);
    ~Player() override;

    // Beginning and end
    using UnloadMode = Lifecycle::UnloadMode;
    void Form_Load() { m_lifecycle.Form_Load(); }
    void Form_QueryUnload(UnloadMode mode) { m_lifecycle.Form_QueryUnload(mode); }
    Q_INVOKABLE void Quit(const QString& reason, bool saveOptions) override
    {
        m_lifecycle.Quit(reason, saveOptions);
    }
    [[nodiscard]] bool hasEnded() const override { return m_lifecycle.hasEnded(); }

    // Media
    /// Both wait until the movie's script or the skin's statement that is running has come to its end; a
    /// movie's is ended for it.
    Q_INVOKABLE void LoadFlash(const QString& path, const QString& caption) override;
    Q_INVOKABLE void CloseMedia(const QString& message) override;
    /// Files and folders that the user named together, or dropped.
    void openFiles(const QStringList& paths) override { m_movieList.open(paths); }
    void walkMovies(int step) { m_movieList.walk(step); }
    Q_INVOKABLE bool OpenMedia() override;
    Q_INVOKABLE void SaveMediaAs();
    void SaveVideo();
    void SaveFrame();
    void CopyFrame();
    Q_INVOKABLE void LoadOpts() override;
    Q_INVOKABLE bool SaveOpts() override;
    void mnuCompress_Click();

    void mnuClearCache_Click();
    /// Whether a movie of the user's is loaded: none of the program's own pages.
    [[nodiscard]] bool HasMovie() const;
    [[nodiscard]] QString mediaTitle() const { return m_mediaTitle; }

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
    [[nodiscard]] int Volume() const { return m_playback.volume(); }
    [[nodiscard]] bool Muted() const { return m_playback.isMuted(); }

    // Status and information
    Q_INVOKABLE void ToggleTimeMode() { m_status.ToggleTimeMode(); }
    Q_INVOKABLE void UpdateInfo();
    Q_INVOKABLE QString GetTime(int frames) const override;
    /// @param widthPixels the text is shortened to, with an ellipsis for what went
    Q_INVOKABLE QString FitText(const QString& text, int widthPixels) const;
    Q_INVOKABLE void SetStatus(const QString& text) override;
    Q_INVOKABLE void SetCaption(const QString& text) override { m_placement.SetCaption(text); }
    [[nodiscard]] QString Caption() const { return m_placement.caption(); }
    /// The caption in short, as the window's title has it; of a path its file's name.
    [[nodiscard]] QString Title() const { return m_placement.shownCaption(); }
    [[nodiscard]] QString StatusText() const override { return m_status.statusText; }
    [[nodiscard]] QString InfoText() const { return HasMovie() ? m_status.informationText : QString(); }
    [[nodiscard]] int TimeMode() const { return m_status.timeMode(); }

    // Window
    Q_INVOKABLE void ZoomFlash(int percent, quint8 repeats) override
    {
        m_placement.ZoomFlash(percent, repeats);
    }
    Q_INVOKABLE void FullScreen(bool on) override;
    Q_INVOKABLE void ZoomWindow(int mode) { m_placement.ZoomWindow(mode); }
    Q_INVOKABLE void Minimize() { showMinimized(); }
    Q_INVOKABLE void MoveWindow() { m_drag.moveWindow(*this); }
    Q_INVOKABLE void ResizeWindow() { m_drag.resizeWindow(*this); }
    Q_INVOKABLE void MoveObject(QObject* control);
    Q_INVOKABLE void ToggleMenu() { m_placement.ToggleMenu(); }
    Q_INVOKABLE void ShowPopUp() override;
    /// Shows the menus of the menu bar as one menu at the pointer, for a window without the bar.
    Q_INVOKABLE void ShowMenu();
    /// Gives the menus the pictures of the set that the settings name.
    Q_INVOKABLE void AssignMenus() override;
    void ShowDialog(QDialog& dialog) override;
    void setMinimumWindowSize(QSize pixels) override { m_placement.setMinimumSize(pixels); }
    [[nodiscard]] int ScaleWidth() const { return m_client->width(); }
    [[nodiscard]] int ScaleHeight() const { return m_client->height(); }
    /// Where the pointer is, in pixels from the inner area's corner; it may be outside of the window.
    [[nodiscard]] int PointerX() const { return m_client->mapFromGlobal(QCursor::pos()).x(); }
    [[nodiscard]] int PointerY() const { return m_client->mapFromGlobal(QCursor::pos()).y(); }
    [[nodiscard]] double Left() const { return x() * kTwipsPerPixel; }
    [[nodiscard]] double Top() const { return y() * kTwipsPerPixel; }
    [[nodiscard]] double Width() const { return frameGeometry().width() * kTwipsPerPixel; }
    [[nodiscard]] double Height() const { return frameGeometry().height() * kTwipsPerPixel; }
    void setLeft(double twips) { move(toPixels(twips), y()); }
    void setTop(double twips) { move(x(), toPixels(twips)); }
    void setWidth(double twips);
    void setHeight(double twips);
    /// 0 normal, 1 minimised, 2 maximised or full screen
    [[nodiscard]] int WindowState() const
    {
        return isMinimized() ? 1 : isMaximized() || QWidget::isFullScreen() ? 2 : 0;
    }
    void setWindowStateNumber(int state);

    // Skin
    Q_INVOKABLE void EnumSkins() override { m_skinWindow.EnumSkins(); }
    Q_INVOKABLE void CreateSkin() override;
    Q_INVOKABLE void UpdateSkin() override { m_skinWindow.skin().UpdateSkin(); }
    void reloadSkin() { m_skinWindow.Reload(); }
    Q_INVOKABLE void LoadNewSkin() { m_skinWindow.LoadNewSkin(); }
    Q_INVOKABLE void ShowWaitScreen() { m_skinWindow.ShowWaitScreen(); }
    Q_INVOKABLE void HideWaitScreen() { m_skinWindow.HideWaitScreen(); }
    Q_INVOKABLE void UpdateRegion(bool force) { m_skinWindow.UpdateRegion(force); }
    /// A text of the skin's in the language of the interface, where the skin has words for it.
    Q_INVOKABLE QString Translated(const QString& text)
    {
        return m_skinWindow.skin().words().translated(text);
    }
    Q_INVOKABLE QObject* PIC(int index) { return m_skinWindow.skin().control("PIC", index); }
    Q_INVOKABLE QObject* LBL(int index) { return m_skinWindow.skin().control("LBL", index); }

    // What pages command, and the media browser
    Q_INVOKABLE void ShowConsole() { console().ShowConsole(); }
    Q_INVOKABLE void HideConsole() { console().HideConsole(); }
    /// Gives the window's controls their tooltips.
    Q_INVOKABLE void SetVisual() override;
    /// Made when it is first asked for: most runs never show it.
    [[nodiscard]] Console& console() override;

    Q_INVOKABLE void WebUpdate();
    Q_INVOKABLE void About();
    void showKeys();
    void mnuWeb_Click();
    Q_INVOKABLE void BrowseMedia() override;
    Q_INVOKABLE void Properties();
    void LogEvent(const QString& text) override;
    [[nodiscard]] bool isOwnPage() const override { return m_carriedOut && m_carriedOut->sender.isOwnPage; }
    void openHelp();
    PageOutcome helpWanted() override;
    PageOutcome updateWanted() override;
    [[nodiscard]] bool isPageAddress(const QString& path) const override;
    PageOutcome openOutside(const QString& target) override;
    [[nodiscard]] bool isOccupied() const override;
    [[nodiscard]] bool isOnScreen() const override;
    PageOutcome carryOut(const PageRequest& request) override;
    void noteOfMovie(const QString& text) override { m_movieJournal.write(text); }
    [[nodiscard]] QString browserFolder() const override { return m_browserState.folder; }
    [[nodiscard]] int browserPage() const override { return m_browserState.page; }
    void setBrowserPage(int page) override { m_browserState.page = page; }
    void setBrowserOrder(const QString& word) override { m_browserState.order = browser::orderNamed(word); }
    [[nodiscard]] int browserPageCount() const override { return m_browserState.totalPages; }
    void NewMediaBrowse(const QString& folder) override { m_browser.NewMediaBrowse(folder); }
    void ShowBrowsePage() override { m_browser.ShowBrowsePage(); }
    std::optional<QString> chooseBrowserFolder(const QString& start) override
    {
        return m_dialogs.chooseBrowserFolder(start);
    }

    // What the browser asks for
    QWidget* dialogParent() override { return this; }
    [[nodiscard]] QString noAnimation() const override { return m_settings.options().noAnimation; }
    [[nodiscard]] bool usesEffects() const override { return m_settings.options().sfx; }
    [[nodiscard]] bool hqShots() const override { return m_settings.options().hqShots; }

    // What media asks for while it loads a movie
    void setUpdateTimerEnabled(bool enabled) override { m_timer.setEnabled(enabled); }
    [[nodiscard]] bool isFullScreen() const override { return m_menus.isChecked("mnuFullScreen"); }
    void LoadMovie(int layer, const QString& url) override;
    void setBackground(const QString& colour) override { m_playback.setBackground(colour); }
    void setMediaInfoEnabled(bool enabled) override;
    void reapplySound() override { SetSound(m_playback.volume(), m_playback.pan()); }
    void setCompressCaption(const QString& caption) override { m_menus.item("mnuCompress").setText(caption); }
    bool progress(double part) override;
    void resume();
    void optionsChanged() override;
    void setFailedFile(const QString& path) override { m_failedFile = path; }
    [[nodiscard]] QString takeFailedFile() override { return std::exchange(m_failedFile, {}); }
    void setMediaTitle(const QString& title) override { m_mediaTitle = title; }
    void AddRecent(const QString& path) override { m_settings.AddRecent(path); }
    void onMediaChange() override;

    // What the desktop asks for
    [[nodiscard]] platform::MediaState mediaState() const override;
    void sessionPlay() override;
    void sessionPause() override;
    void sessionPlayPause() override;
    void sessionStop() override;
    void sessionWalk(int step) override;
    void sessionSeek(qint64 positionUs) override;
    void sessionSetVolume(double volume) override;
    void sessionSetLoop(bool loops) override;
    void sessionSetRate(double rate) override;
    void sessionSetFullScreen(bool on) override { FullScreen(on); }
    void sessionRaise() override;
    void sessionQuit() override;
    void sessionOpen(const QString& path) override;

    // What the list of movies asks for
    [[nodiscard]] QString currentMovie() const override
    {
        return HasMovie() ? mediaInfo().OriginalPath : QString();
    }
    [[nodiscard]] bool isProjector(const QString& path) const override { return media::holdsMovie(path); }
    void showNote(const QString& text) override;
    /// A word on screen, for a moment only.
    void tell(const QString& text);

    // Errors
    void ReportError(const base::Failure& error, const QString& place, const QString& detail) override;
    void noteError(const base::Failure& error, const QString& place) override;
    [[nodiscard]] QString settingsFolder() const override { return m_application.SettingsPath; }
    [[nodiscard]] bool updateTimerEnabled() const override { return m_timer.isEnabled(); }
    QWidget* errorParent() override { return this; }
    /// Runs a procedure under the program's usual handler: a failure is reported and the program goes on.
    void handled(core::Text place, const std::function<void()>& procedure) override;
    /// The process ends without the window having been asked: the settings are kept, nothing else is touched.
    void saveForSuddenEnd();
    /// The memory has come to an end: what takes most of it goes, and the panel says why.
    void closeForLackOfMemory();
    [[nodiscard]] MovieHealth::Callbacks healthCallbacks();
    /// Where no exception may pass: out of the engine, and at the end. What cannot be logged is lost.
    void logQuietly(const QString& text) override;
    void keepForSuddenEnd() override { m_settings.keepForSuddenEnd(); }

    // The parts
    [[nodiscard]] flash::FlashControl& control() { return m_movieScreen.control(); }
    [[nodiscard]] const flash::FlashControl& control() const { return m_movieScreen.control(); }
    [[nodiscard]] MovieScreen& movieScreen() { return m_movieScreen; }
    [[nodiscard]] Menus& menus() { return m_menus; }
    [[nodiscard]] ControlBar& bar() { return *m_bar; }
    [[nodiscard]] Playback& playback() { return m_playback; }
    [[nodiscard]] Transport& transport() { return m_transport; }
    [[nodiscard]] Status& status() { return m_status; }
    [[nodiscard]] StatusTimer& timer() { return m_timer; }
    [[nodiscard]] SkinWindow& skinWindow() { return m_skinWindow; }
    [[nodiscard]] Placement& placement() { return m_placement; }
    [[nodiscard]] PlayerSettings& settings() { return m_settings; }
    [[nodiscard]] settings::Options& options() { return m_settings.options(); }
    [[nodiscard]] const media::MediaInfo& mediaInfo() const { return m_media.mediaInfo(); }
    /// Greys the commands that need a movie of the user's when there is none.
    void refreshMovieCommands() override;

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void convert();
    void showPageAnew();
    static constexpr double kTwipsPerPixel = 15;
    static int toPixels(double twips) { return skin::SkinControl::whole(twips / kTwipsPerPixel); }

    void buildWindow();
    void connectBar();
    void connectControl();
    void connectKeys();
    void joinDesktop() override;
    void tellDesktop();
    void sessionLater(core::Text place, std::function<void()> action);
    /// Full screen and maximised may be set from outside; says so to whoever shows it.
    void followWindow();
    /// Near the window's upper left corner, for who has asked by the keyboard.
    [[nodiscard]] QPoint menuCorner() const;
    enum class Asked : quint8 { ByPointer, ByKey };
    void showPopUpAt(QPoint place, Asked asked);
    void showMenuAt(QPoint place);
    /// Opens what the program itself names, and says so when the system has nothing for it.
    void openKnown(const QUrl& url);
    /// Whose command is on its way here.
    [[nodiscard]] Outside::Sender senderOfSignal() const;
    /// Puts off what would pull the ground from under a script that is running.
    /// @returns whether it was put off
    bool isPutOff(const std::function<void()>& action);
    /// Leaves a picture of the movie that is about to go in the cache, unless there is one.
    void keepPicture();
    void keepPlace();
    void offerToResume();
    bool isOfFormerMovie(const QEvent& event);
    /// Asked by the movie's scripts every few milliseconds. @returns whether they are to end
    bool endsScripts();
    bool isSlowScriptToEnd();
    /// Whether a skin asks for what the user has not asked it for: windows come by his acts only.
    [[nodiscard]] bool isUnbidden();

    core::Application& m_application;
    QWidget* m_client; ///< the inner area: what is left by menu bar and control bar
    MovieScreen m_movieScreen;
    ControlBar* m_bar;
    Menus m_menus;
    MovieMenu m_movieMenu;
    media::MediaFiles m_media;
    Playback m_playback;
    Transport m_transport;
    Status m_status;
    StatusTimer m_timer;
    SkinWindow m_skinWindow;
    Placement m_placement;
    WindowDrag m_drag;
    QTimer m_windowSettles; ///< the window system tells of a change in several steps
    PlayerSettings m_settings;
    browser::BrowserState m_browserState;
    browser::MediaBrowser m_browser;
    MediaDialogs m_dialogs;
    FilmExport m_film;
    Outside m_outside;
    QElapsedTimer m_sinceMade, m_sinceOpened; ///< and since something was opened outside
    MovieJournal m_movieJournal;
    PageQueue m_pageQueue;
    MovieList m_movieList{*this};
    MovieHealth m_health;
    const PageRequest* m_carriedOut = nullptr; ///< what a page or movie has asked, while it is done
    qint64 m_pumpedAtMs = 0;                   ///< of the time that the script at work has taken
    bool m_endsScripts = false;                ///< something waits for the movie's script to end
    Lifecycle m_lifecycle;
    platform::MediaSession m_session{*this};
    platform::ScreenAwake m_awake;
    Console* m_console = nullptr;
    platform::TaskbarProgress m_taskbar{"zorvex"};
    QPointer<ui::HelpWindow> m_help;
    QString m_shownMotion;    ///< the setting that the page on the screen was given
    bool m_hasVisual = false; ///< SetVisual has run
    QString m_mediaTitle, m_failedFile;
    QString m_shownMovie; ///< path of the user's movie that the control holds; empty when it is none
    std::optional<int> m_resumeFrame;      ///< where that movie was left the last time
    QProgressDialog* m_progress = nullptr; ///< while a conversion is at work
    bool m_isMovieLimited = false;       ///< it went beyond what it may use, and something of it was not done
    bool m_isPressedSinceOpened = false; ///< the pointer's button, over the movie that is shown now
    bool m_isOwnPage = false; ///< what the control was given last lies in the folder of the program's pages
};

} // namespace player
