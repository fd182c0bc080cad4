#include "player/Player.h"

#include "core/Version.h"
#include "flash/FlashControl.h"
#include "platform/Shell.h"
#include "platform/TerminationSignal.h"
#include "platform/UserFolders.h"
#include "player/Cache.h"
#include "player/ControlBar.h"
#include "player/Glyph.h"
#include "player/MenuCommands.h"
#include "player/OutsideDialog.h"
#include "player/PageAddresses.h"
#include "player/PageItems.h"
#include "player/ScreenNote.h"
#include "player/SettlingBox.h"
#include "player/Texts.h"
#include "player/WelcomePanel.h"
#include "ui/AboutScreen.h"
#include "ui/Texts.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QUrl>
#include <QVBoxLayout>
#include <QWindow>

#include <new>

namespace player
{
namespace
{

constexpr QSize kFirstSize{550, 440};

QElapsedTimer started()
{
    QElapsedTimer timer;
    timer.start();
    return timer;
}

} // namespace

Player::Player(core::Application& application, const QString& commandLine)
    : m_application(application), m_client(new QWidget(this)), m_movieScreen(*m_client, *this),
      m_bar(new ControlBar(this)), m_menus(this), m_movieMenu(control(), m_menus.popUp()),
      m_media(application, *this), m_playback(control(), m_menus, application.GadgetsPath),
      m_transport(
          control(), m_menus,
          {[this](const QString& text) { tell(text); }, [this](int frames) { return GetTime(frames); }}),
      m_timer(*this, m_movieScreen, m_menus, m_playback, m_status, mediaInfo(), m_isMovieLimited),
      m_skinWindow(application, *this, *this, m_menus, *m_client, m_movieScreen.widget(), control()),
      m_placement(*this, m_menus, *m_bar, m_skinWindow, m_movieScreen, mediaInfo()), m_drag(this),
      m_settings(application, *this,
                 {*this, control(), m_menus, m_playback, m_status, m_skinWindow, m_placement}),
      m_browser(application, *this, m_browserState),
      m_dialogs(application, *this, *this, m_settings, mediaInfo()),
      m_film(application, *this, *this, control(), m_settings, mediaInfo()),
      m_outside(outsideCallbacks(*this, *this)), m_sinceMade(started()),
      m_movieJournal([this](const QString& line) { logQuietly(line); },
                     [this] { return m_sinceMade.elapsed(); }),
      m_pageQueue(*this), m_health(control(), healthCallbacks()),
      m_lifecycle(application, *this, *this, m_movieScreen, m_placement, m_settings, commandLine)
{
    application.journalFailed = [this](const base::Failure& failure) {
        QTimer::singleShot(0, this, [this, failure] {
            if (hasEnded()) return;
            try {
                ReportError(failure, texts::kPlaceJournal, {});
            } catch (const base::Failure&) {
                // It cannot even be shown.
            }
        });
    };
    buildWindow();
    connectBar();
    connectMenuCommands(*this);
    connectControl();
    connectKeys();
    // What holds when there are no settings to read.
    SetQuality("High");
    SetScaleMode(0);
    m_menus.setChecked("mnuLoop", control().Loop());
    m_menus.setChecked("mnuMenuBar", true);
    setMediaInfoEnabled(false);
}

Player::~Player()
{
    m_application.journalFailed = nullptr;
    control().disconnect(this);
}

Console& Player::console()
{
    if (m_console == nullptr) {
        m_console = new Console(*this, *this, *m_client, m_menus, m_movieScreen, m_drag,
                                m_skinWindow.skin().bridge());
        if (m_hasVisual) m_console->SetVisual();
    }
    return *m_console;
}

void Player::SetVisual()
{
    m_hasVisual = true;
    if (m_console != nullptr) m_console->SetVisual();
}

void Player::buildWindow()
{
    setAcceptDrops(true);
    m_placement.setMinimumSize({});
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->setMenuBar(&m_menus.bar());
    m_client->installEventFilter(this);
    connect(&m_skinWindow, &SkinWindow::shownChanged, this, [this] { m_placement.showBars(); });
    column->addWidget(m_client, 1);
    column->addWidget(m_bar);
    resize(kFirstSize);
}

void Player::connectBar()
{
    connect(m_bar, &ControlBar::openClicked, this, &Player::OpenMedia);
    connect(m_bar, &ControlBar::playPauseClicked, this, &Player::PlayPauseMedia);
    connect(m_bar, &ControlBar::stopClicked, this, &Player::StopMedia);
    connect(m_bar, &ControlBar::backClicked, this, [this] { m_playback.stepBack(); });
    connect(m_bar, &ControlBar::forwardClicked, this, [this] { m_playback.stepForward(); });
    connect(m_bar, &ControlBar::muteClicked, this, [this] {
        MuteSound(!m_playback.isMuted());
        UpdateInfo();
    });
    connect(m_bar, &ControlBar::fullScreenClicked, this, [this] { FullScreen(true); });
    connect(m_bar, &ControlBar::timeClicked, this, [this] {
        ToggleTimeMode();
        m_timer.tmrUpdate_Timer();
    });
    connect(&m_movieScreen, &MovieScreen::openWanted, this, &Player::OpenMedia);
}

void Player::connectControl()
{
    control().installEventFilter(this);
    m_menus.setMovieHasKeyboard([this] { return control().hasFocus() && control().listensToKeys(); });
    connect(&control(), &flash::FlashControl::FSCommand, this,
            [this](const QString& command, const QString& argument) {
                const Outside::Sender sender = senderOfSignal();
                if (sender.isOwnPage && m_movieScreen.pageItems().take(command, argument)) return;
                m_pageQueue.put({command, argument, sender});
            });
    connect(&control(), &flash::FlashControl::OnReadyStateChange, this, [this](int state) {
        constexpr int kComplete = 4;
        if (state == kComplete) m_playback.reapplyBackground();
    });
    connect(&control(), &flash::FlashControl::logged, this, [this](const QString& text) {
        noteOfMovie("Flash: " + core::HtmlEscape(text.left(MovieJournal::kLongestLine)));
    });
    connect(&control(), &flash::FlashControl::urlRequested, this, [this](const QString& address) {
        m_pageQueue.put({{}, address, senderOfSignal(), true});
    });
    connect(&control(), &flash::FlashControl::limitReached, this, [this] { m_isMovieLimited = true; });
    connect(&control(), &flash::FlashControl::ranOutOfMemory, this, [this] { closeForLackOfMemory(); });
    control().setScriptTimeoutHandler([this] { return isSlowScriptToEnd(); });
    control().setScriptWatch([this] { return endsScripts(); });
}

// ---- errors

void Player::handled(core::Text place, const std::function<void()>& procedure)
{
    if (!m_application.RunningCompiled) return procedure();
    try {
        procedure();
    } catch (const base::Failure& failure) {
        try {
            ReportError(failure, place, {});
        } catch (const base::Failure&) {
            // The journal failed while an error was on its way to it. The user has seen neither more nor less
            // than there was to see; what matters is that the event loop is not torn.
        }
    } catch (const std::bad_alloc&) {
        QTimer::singleShot(0, this, [this] { closeForLackOfMemory(); });
    }
}

void Player::ReportError(const base::Failure& error, const QString& place, const QString& detail)
{
    core::ReportError(m_application, *this, error, place, detail);
}

void Player::noteError(const base::Failure& error, const QString& place)
{
    try {
        core::LogError(m_application, error, place, {});
    } catch (const base::Failure&) {
        // Who asked is told all the same.
    }
}

void Player::logQuietly(const QString& text)
{
    try {
        m_application.LogEvent(text);
    } catch (const base::Failure&) {
        // The next procedure that logs will meet the same journal.
    }
}

// ---- status

QString Player::GetTime(int frames) const { return player::GetTime(frames, mediaInfo().FrameRate); }

QString Player::FitText(const QString& text, int widthPixels) const
{
    return settings::CompactPath(text, widthPixels, fontMetrics());
}

void Player::SetStatus(const QString& text)
{
    m_status.statusText = text;
    UpdateInfo();
}

void Player::UpdateInfo()
{
    const bool hasMovie = HasMovie();
    const flash::FlashControl& movie = control();
    m_bar->show({m_status.statusText, InfoText(), hasMovie, hasMovie && movie.Playing(), m_playback.isMuted(),
                 movie.FrameNum(), movie.TotalFrames()});
    tellDesktop();
    m_skinWindow.skin().runInfoUpdate();
}

// ---- media

bool Player::HasMovie() const { return m_movieScreen.showsControl() && !m_isOwnPage; }

void Player::refreshMovieCommands()
{
    for (const char* name :
         {"mnuSaveAs", "mnuPopSaveAs", "mnuSaveVideo", "mnuSaveFrame", "mnuCopyFrame", "mnuClose",
          "mnuPopClose", "mnuCompress", "mnuPlay", "mnuStop", "mnuFFwd", "mnuRwd", "mnuGoTo", "mnuSpeed",
          "mnuRepeatAB", "mnuPrevious", "mnuNext", "mnuPopPlay", "mnPopStop"})
        m_menus.item(name).setEnabled(HasMovie());
}

bool Player::OpenMedia()
{
    if (isUnbidden()) return false;
    bool chosen = false;
    handled(texts::kPlaceOpen, [&] { chosen = m_dialogs.OpenMedia({}); });
    return chosen;
}

void Player::FullScreen(bool on)
{
    const bool byMovie = m_carriedOut != nullptr && !m_carriedOut->sender.isOwnPage;
    const bool wasOn = isFullScreen();
    // Who has left it does not want it again from this movie.
    if (!on && wasOn && !byMovie) m_pageQueue.refuse("FULLSCREEN");
    m_placement.FullScreen(on);
    if (on && !wasOn && byMovie) showNote(texts::kHowToLeave);
}

void Player::SaveMediaAs()
{
    if (isUnbidden()) return;
    handled(texts::kPlaceSave, [this] { m_dialogs.SaveMediaAs(); });
}

void Player::SaveVideo()
{
    if (isUnbidden() || !HasMovie()) return;
    handled(texts::kPlaceVideo, [this] { m_film.SaveVideo(); });
}

void Player::SaveFrame()
{
    if (isUnbidden() || !HasMovie()) return;
    handled(texts::kPlaceVideo, [this] { m_film.SaveFrame(); });
}

void Player::CopyFrame()
{
    if (HasMovie()) handled(texts::kPlaceVideo, [this] { m_film.CopyFrame(); });
}

void Player::LoadMovie(int layer, const QString& url)
{
    if (layer == 0) {
        if (m_pageQueue.movieOpened()) m_movieJournal.movieOpened();
        // Pages of our own are quick.
        if (!url.isEmpty() && !isPageAddress(url)) {
            // Until it draws itself, the movie's place has its colour.
            setBackground(mediaInfo().ground());
            m_lifecycle.showWindowFirst();
            if (hasEnded()) return;
            m_settings.keepForSuddenEnd();
            // A first frame that does not end can be closed.
            for (const char* name : {"mnuClose", "mnuPopClose"}) m_menus.item(name).setEnabled(true);
        }
    }
    if (layer == 0) {
        keepPicture();
        keepPlace();
        m_shownMovie.clear();
        m_resumeFrame.reset();
        ResumeOffer::take(*this);
        m_isMovieLimited = false;
        m_transport.movieOpened();
        m_isPressedSinceOpened = false;
    }
    try {
        m_movieScreen.LoadMovie(layer, url);
    } catch (const base::Failure&) {
        m_application.LogEvent("Flash: " + core::HtmlEscape(control().errorText()));
        refreshMovieCommands();
        throw;
    }
    if (layer != 0) return;
    m_isOwnPage = liesWithin(mediaInfo().MoviePath, m_application.GadgetsPath);
    refreshMovieCommands();
}

void Player::setMediaInfoEnabled(bool enabled)
{
    // Of a page of the program's own there is nothing to tell.
    for (const char* name : {"mnuInfo", "mnuPopInfo"}) m_menus.item(name).setEnabled(enabled && !m_isOwnPage);
}

void Player::onMediaChange()
{
    // The first frame's figures are shown at once, not with the next tick.
    m_status.update(control().FrameNum(), control().TotalFrames(), mediaInfo().FrameRate);
    UpdateInfo();
    m_shownMovie = currentMovie();
    offerToResume();
    m_skinWindow.skin().runMediaChange();
}

void Player::showNote(const QString& text) { ScreenNote::show(*this, text); }

void Player::tell(const QString& text)
{
    constexpr int kMomentMs = 1200;
    ScreenNote::show(*this, text, kMomentMs);
}

void Player::mnuClearCache_Click()
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: Clear Cache");
    constexpr int kThumbnails = 3; // only these, on purpose
    const int removed = CleanCache(m_application.CachePath, kThumbnails);
    showNote(removed == 0 ? QString(texts::kNoThumbnails) : QString(texts::kThumbnailsRemoved).arg(removed));
}

// ---- settings

void Player::LoadOpts()
{
    m_settings.LoadOpts();
    m_shownMotion = options().noAnimation;
    // The folder of a program that is installed for all holds nothing of the user's.
    if (options().search == m_application.AppPath && m_application.SettingsPath != m_application.AppPath)
        options().search = platform::userMediaFolder();
    if (!options().search.isEmpty()) m_browserState.folder = options().search;
    m_browserState.page = options().lastPage;
    m_browserState.order = browser::orderNamed(options().order);
}

bool Player::SaveOpts()
{
    options().search = m_browserState.folder;
    options().lastPage = m_browserState.page;
    options().order = browser::wordOf(m_browserState.order);
    keepPlace();
    return m_settings.SaveOpts();
}

} // namespace player
