#include "player/Player.h"

#include "browser/ConvertSize.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "platform/Shell.h"
#include "platform/TerminationSignal.h"
#include "player/Cache.h"
#include "player/ControlBar.h"
#include "player/Glyph.h"
#include "player/MenuCommands.h"
#include "player/OutsideDialog.h"
#include "player/PageAddresses.h"
#include "player/ScreenNote.h"
#include "player/SettlingBox.h"
#include "player/Shortcuts.h"
#include "player/Texts.h"
#include "player/WelcomePanel.h"
#include "ui/AboutScreen.h"
#include "ui/Texts.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
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
// A window that was started minimised is not waited for.
constexpr qint64 kShowPatienceMs = 1000;

QElapsedTimer started()
{
    QElapsedTimer timer;
    timer.start();
    return timer;
}

/// Never a move: the program that the file comes from would delete it.
void takeCopyOf(QDropEvent& event)
{
    if (!event.possibleActions().testFlag(Qt::CopyAction)) return event.ignore();
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

Player::Player(core::Application& application, const QString& commandLine)
    : m_application(application), m_client(new QWidget(this)), m_movieScreen(*m_client, *this),
      m_bar(new ControlBar(this)), m_menus(this), m_media(application, *this),
      m_playback(control(), m_menus, application.GadgetsPath), m_timer(*this),
      m_skinWindow(application, *this, m_menus, *m_client, m_movieScreen.widget(), control()),
      m_placement(*this), m_drag(this), m_settings(application, *this),
      m_browser(application, *this, m_browserState), m_dialogs(application, *this),
      m_outside(outsideDoors(*this)), m_sinceMade(started()),
      m_movieJournal([this](const QString& line) { logQuietly(line); },
                     [this] { return m_sinceMade.elapsed(); }),
      m_pageQueue(*this), m_health(control(), healthDoors()), m_lifecycle(application, *this, commandLine)
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
        m_console = new Console(*this, *m_client);
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
                m_pageQueue.put({command, argument, senderOfSignal()});
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

void Player::handled(const char* place, const std::function<void()>& procedure)
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
    m_skinWindow.skin().runInfoUpdate();
}

// ---- window

void Player::MoveObject(QObject* control)
{
    auto* widget = qobject_cast<QWidget*>(control);
    if (widget != nullptr && widget != this && isAncestorOf(widget)) m_drag.moveObject(*widget);
}

void Player::setWidth(double twips)
{
    resize(toPixels(twips) - (frameGeometry().width() - width()), height());
}

void Player::setHeight(double twips)
{
    resize(width(), toPixels(twips) - (frameGeometry().height() - height()));
}

void Player::setWindowStateNumber(int state)
{
    if (state == 1) return Minimize();
    ZoomWindow(state == 2 ? 1 : 0);
}

void Player::AssignMenus()
{
    m_menus.AssignMenus(m_application.AppPath + "media/menus/" + options().menus + '/');
}

void Player::ShowPopUp()
{
    if (isUnbidden()) return;
    m_menus.setChecked("mnuPopHQ", control().Quality() == 1);
    m_menus.setChecked("mnuPopLQ", control().Quality() == 0);
    m_menus.item("mnuPopPlay").setText(m_menus.item("mnuPlay").text());
    m_menus.popUp().popup(QCursor::pos());
}

void Player::ShowMenu()
{
    if (isUnbidden()) return;
    auto* menu = new ui::Menu(m_menus.menuSet(), {}, this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(m_menus.bar().actions());
    menu->popup(QCursor::pos());
}

void Player::ShowDialog(QDialog& dialog)
{
    dialog.setWindowFlag(Qt::WindowStaysOnTopHint, m_menus.isChecked("mnuTopMost"));
    dialog.exec();
}

// ---- media

bool Player::HasMovie() const { return m_movieScreen.showsControl() && !m_isOwnPage; }

void Player::refreshMovieCommands()
{
    for (const char* name :
         {"mnuSaveAs", "mnuPopSaveAs", "mnuClose", "mnuPopClose", "mnuCompress", "mnuPlay", "mnuStop",
          "mnuFFwd", "mnuRwd", "mnuPrevious", "mnuNext", "mnuPopPlay", "mnPopStop"})
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
    if (layer == 0) m_isMovieLimited = false;
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
    m_skinWindow.skin().runMediaChange();
}

void Player::showNote(const QString& text) { ScreenNote::show(*this, text); }

void Player::mnuCompress_Click()
{
    media::MediaInfo& info = m_media.mediaInfo();
    // The file's form, not that which it had when it was loaded: the command may be given again.
    const bool decompress = media::isCompressedFile(info.MoviePath);
    const qint64 before = QFileInfo(info.MoviePath).size();
    const QString result =
        decompress ? m_media.DecompressFlash(info, media::Extent::Full) : m_media.CompressFlash(info, 9);
    if (result.isEmpty()) {
        QMessageBox::warning(this, core::kProductName,
                             QString(decompress ? texts::kDecompressFailed : texts::kCompressFailed) + '\n' +
                                 QDir::toNativeSeparators(info.MoviePath) + '\n' +
                                 m_media.errorDescription());
        return;
    }
    showNote(QString(decompress ? texts::kDecompressed : texts::kCompressed)
                 .arg(browser::ConvertSize(static_cast<double>(before)),
                      browser::ConvertSize(static_cast<double>(QFileInfo(result).size()))));
}

void Player::mnuClearCache_Click()
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: Clear Cache");
    constexpr int kThumbnails = 3; // only these, on purpose
    const int removed = CleanCache(m_application.CachePath, kThumbnails);
    showNote(removed == 0 ? QString(texts::kNoThumbnails) : QString(texts::kThumbnailsRemoved).arg(removed));
}

// ---- what lies outside

void Player::openHelp() { openKnown(QUrl::fromLocalFile(m_application.AppPath + "Readme.txt")); }
void Player::WebUpdate()
{
    if (!isUnbidden()) openKnown(QUrl(core::kUpdateAddress));
}

void Player::BrowseMedia()
{
    if (!isUnbidden()) m_browser.BrowseMedia();
}

void Player::Properties()
{
    if (!isUnbidden()) m_browser.Properties(mediaInfo());
}

bool Player::isUnbidden()
{
    if (!m_skinWindow.skin().bridge().runsByItself()) return false;
    logQuietly("Not done for the skin: the user has not asked for it");
    return true;
}

void Player::openKnown(const QUrl& url)
{
    // A skin's loop would fill the screen with browsers, however it was begun.
    constexpr qint64 kAtMostEveryMs = 1000;
    if (m_sinceOpened.isValid() && m_sinceOpened.elapsed() < kAtMostEveryMs) return;
    m_sinceOpened.start();
    if (platform::openWithSystem(url)) return;
    QMessageBox::warning(this, core::kProductName,
                         QString(texts::kNothingOpens).arg(url.toDisplayString(QUrl::PreferLocalFile)));
}

void Player::mnuWeb_Click() { openKnown(QUrl(core::kHomeAddress)); }

void Player::About()
{
    if (isUnbidden()) return;
    m_application.LogEvent({});
    m_application.LogEvent(" :: About");
    ShowWaitScreen();
    ui::frmAbout about(
        this, aboutPage(m_application, ui::texts::kGreetings, ui::texts::kThanks, options().noAnimation),
        control().Quality());
    ShowDialog(about);
    HideWaitScreen();
}

Outside::Sender Player::senderOfSignal() const
{
    const flash::FlashControl& movie = control();
    Outside::Sender sender{filePartOf(movie.senderMovie()), movie.senderIsPage(), movie.senderHasRead(),
                           movie.senderAct()};
    // A projector's movie lies in the cache: the user knows the projector.
    if (sender.path == mediaInfo().MoviePath) sender.path = mediaInfo().OriginalPath;
    return sender;
}

bool Player::isOccupied() const
{
    return QApplication::activeModalWidget() != nullptr || m_browser.isBusy() || control().isBusy();
}

bool Player::isOnScreen() const
{
    // A movie's first frame comes before the window, and the window manager chooses the window's place later
    // still: a question waits for the window that it is to lie over.
    const bool isShown = windowHandle() != nullptr && windowHandle()->isExposed();
    return isShown || m_sinceMade.elapsed() >= kShowPatienceMs;
}

PageOutcome Player::carryOut(const PageRequest& request)
{
    const QScopedValueRollback carried(m_carriedOut, &request);
    PageOutcome outcome = PageOutcome::Done;
    const auto procedure = [&] {
        outcome = request.isAddress ? openOutside(request.argument)
                                    : runPageCommand(*this, request.command, request.argument);
    };
    if (request.sender.isOwnPage) {
        handled(texts::kPlacePage, procedure);
        return outcome;
    }
    try {
        procedure();
    } catch (const base::Failure& failure) {
        // No error screen that a movie could call up with every frame.
        noteOfMovie("Failed for the movie: " + core::HtmlEscape(request.command) + ": " +
                    QString::fromStdString(failure.description()));
        return PageOutcome::Declined;
    }
    return outcome;
}

void Player::LogEvent(const QString& text)
{
    if (m_carriedOut != nullptr && !m_carriedOut->sender.isOwnPage)
        m_movieJournal.write(text);
    else
        m_application.LogEvent(text);
}

bool Player::isPageAddress(const QString& path) const
{
    return liesWithin(filePartOf(path), m_application.GadgetsPath);
}

PageOutcome Player::openOutside(const QString& target)
{
    if (m_carriedOut == nullptr) return PageOutcome::Done;
    return m_outside.isDeclined(target, m_carriedOut->sender) ? PageOutcome::Declined : PageOutcome::Done;
}

PageOutcome Player::helpWanted()
{
    if (!isOwnPage()) return openOutside(m_application.AppPath + "Readme.txt");
    openHelp();
    return PageOutcome::Done;
}

PageOutcome Player::updateWanted()
{
    if (!isOwnPage()) return openOutside(core::kUpdateAddress);
    WebUpdate();
    return PageOutcome::Done;
}

// ---- settings

void Player::LoadOpts()
{
    m_settings.LoadOpts();
    if (!options().search.isEmpty()) m_browserState.folder = options().search;
    m_browserState.page = options().lastPage;
}

bool Player::SaveOpts()
{
    options().search = m_browserState.folder;
    options().lastPage = m_browserState.page;
    return m_settings.SaveOpts();
}

// ---- events

void Player::closeEvent(QCloseEvent* event)
{
    handled(texts::kPlaceQuit, [this] { Form_QueryUnload(UnloadMode::ControlMenu); });
    event->accept();
}

void Player::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile()) takeCopyOf(*event);
}

void Player::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile() || !event->possibleActions().testFlag(Qt::CopyAction))
        return;
    takeCopyOf(*event);
    QStringList paths;
    for (const QUrl& url : urls)
        if (url.isLocalFile()) paths += url.toLocalFile();
    activateWindow();
    // Later, so that the program that the file comes from is not kept waiting for the movie.
    QTimer::singleShot(0, this, [this, paths] { handled(texts::kPlaceOpen, [&] { openFiles(paths); }); });
}

void Player::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    m_skinWindow.paintGround(painter);
}

void Player::contextMenuEvent(QContextMenuEvent*) { ShowPopUp(); }

bool Player::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_client) {
        if (event->type() == QEvent::Resize) m_skinWindow.clientResized();
        return false;
    }
    if (event->type() == QEvent::ShortcutOverride &&
        belongsToMovie(*static_cast<QKeyEvent*>(event), control().listensToKeys())) {
        event->accept();
        return true;
    }
    // The movie has the keyboard, but for the key that leaves full screen.
    if (event->type() == QEvent::KeyPress && isFullScreen() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        FullScreen(false);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace player
