#include "player/Player.h"

#include "core/Version.h"
#include "flash/FlashControl.h"
#include "platform/Shell.h"
#include "player/Cache.h"
#include "player/ControlBar.h"
#include "player/Glyph.h"
#include "player/MenuCommands.h"
#include "player/OutsideDialog.h"
#include "player/PageAddresses.h"
#include "player/Shortcuts.h"
#include "player/Texts.h"
#include "player/WelcomePanel.h"
#include "ui/AboutScreen.h"
#include "ui/Texts.h"

#include <QCloseEvent>
#include <QDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QUrl>
#include <QVBoxLayout>
#include <QWindow>

namespace player
{
namespace
{

constexpr QSize kFirstSize{550, 440};
constexpr int kShowPatienceMs = 1000;
constexpr int kShowStepMs = 20;

} // namespace

Player::Player(core::Application& application, const QString& commandLine)
    : m_application(application), m_client(new QWidget(this)), m_movieScreen(*m_client, *this),
      m_bar(new ControlBar(this)), m_menus(this), m_media(application, *this),
      m_playback(control(), m_menus, application.GadgetsPath), m_timer(*this),
      m_skinWindow(application, *this, m_menus, *m_client, m_movieScreen.widget(), control()),
      m_placement(*this), m_drag(this), m_settings(application, *this),
      m_browser(application, *this, m_browserState), m_dialogs(application, *this),
      m_outside(outsideDoors(*this)), m_lifecycle(application, *this, commandLine)
{
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

Player::~Player() { control().disconnect(this); }

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
                handled(texts::kPlacePage, [&] { runPageCommand(*this, command, argument); });
            });
    connect(&control(), &flash::FlashControl::OnReadyStateChange, this, [this](int state) {
        constexpr int kComplete = 4;
        if (state == kComplete) m_playback.reapplyBackground();
    });
    connect(&control(), &flash::FlashControl::logged, this,
            [this](const QString& text) { logQuietly("Flash: " + core::HtmlEscape(text)); });
    connect(&control(), &flash::FlashControl::urlRequested, this,
            [this](const QString& address) { handled(texts::kPlacePage, [&] { openOutside(address); }); });
    control().setScriptTimeoutHandler([this] {
        return QMessageBox::question(this, core::kProductName, texts::kScriptIsSlow) == QMessageBox::Yes;
    });
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
    m_menus.setChecked("mnuPopHQ", control().Quality() == 1);
    m_menus.setChecked("mnuPopLQ", control().Quality() == 0);
    m_menus.item("mnuPopPlay").setText(m_menus.item("mnuPlay").text());
    m_menus.popUp().popup(QCursor::pos());
}

void Player::ShowMenu()
{
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
    for (const char* name : {"mnuSaveAs", "mnuPopSaveAs", "mnuClose", "mnuPopClose", "mnuCompress", "mnuPlay",
                             "mnuStop", "mnuFFwd", "mnuRwd", "mnuPopPlay", "mnPopStop"})
        m_menus.item(name).setEnabled(HasMovie());
}

void Player::OpenMedia()
{
    handled(texts::kPlaceOpen, [this] { m_dialogs.OpenMedia({}); });
}

void Player::SaveMediaAs()
{
    handled(texts::kPlaceSave, [this] { m_dialogs.SaveMediaAs(); });
}

void Player::LoadMovie(int layer, const QString& url)
{
    try {
        m_movieScreen.LoadMovie(layer, url);
    } catch (const base::Failure&) {
        m_application.LogEvent("Flash: " + core::HtmlEscape(control().errorText()));
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

void Player::mnuCompress_Click()
{
    media::MediaInfo& info = m_media.mediaInfo();
    const bool decompress = info.Compressed;
    const QString result =
        decompress ? m_media.DecompressFlash(info, media::Extent::Full) : m_media.CompressFlash(info, 9);
    if (result.isEmpty())
        QMessageBox::warning(this, core::kProductName,
                             decompress ? texts::kDecompressFailed : texts::kCompressFailed);
}

void Player::mnuClearCache_Click()
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: Clear Cache");
    constexpr int kThumbnails = 3; // only these, on purpose
    CleanCache(m_application.CachePath, kThumbnails);
}

// ---- what lies outside

void Player::openHelp() { openKnown(QUrl::fromLocalFile(m_application.AppPath + "Readme.txt")); }
void Player::WebUpdate() { openKnown(QUrl(core::kUpdateAddress)); }

void Player::openKnown(const QUrl& url)
{
    if (platform::openWithSystem(url)) return;
    QMessageBox::warning(this, core::kProductName,
                         QString(texts::kNothingOpens).arg(url.toDisplayString(QUrl::PreferLocalFile)));
}

void Player::mnuWeb_Click() { openKnown(QUrl(core::kHomeAddress)); }

void Player::About()
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: About");
    ShowWaitScreen();
    ui::frmAbout about(
        this, aboutPage(m_application, ui::texts::kGreetings, ui::texts::kThanks, options().noAnimation),
        control().Quality());
    ShowDialog(about);
    HideWaitScreen();
}

Outside::Sender Player::senderOfCommand() const
{
    Outside::Sender sender;
    sender.path = filePartOf(control().senderMovie());
    sender.isOwnPage = liesWithin(sender.path, m_application.GadgetsPath);
    // A projector's movie lies in the cache: the user knows the projector.
    if (sender.path == mediaInfo().MoviePath) sender.path = mediaInfo().OriginalPath;
    return sender;
}

bool Player::isPageAddress(const QString& path) const
{
    return liesWithin(filePartOf(path), m_application.GadgetsPath);
}

void Player::openOutside(const QString& target) { openOnceShown(target, senderOfCommand(), kShowPatienceMs); }

void Player::openOnceShown(const QString& target, const Outside::Sender& sender, int patienceMs)
{
    // A movie's first frame comes before the window, and the window manager chooses the window's place later
    // still: a question waits for the window that it is to lie over. Not for ever: the window may be
    // minimised.
    if (patienceMs <= 0 || (windowHandle() != nullptr && windowHandle()->isExposed()))
        return m_outside.open(target, sender);
    QTimer::singleShot(kShowStepMs, this, [this, target, sender, patienceMs] {
        if (hasEnded()) return;
        handled(texts::kPlacePage, [&] { openOnceShown(target, sender, patienceMs - kShowStepMs); });
    });
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
    if (!urls.isEmpty() && urls.first().isLocalFile()) event->acceptProposedAction();
}

void Player::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile()) return;
    event->acceptProposedAction();
    const QString path = urls.first().toLocalFile();
    activateWindow();
    // Later, so that the program that the file comes from is not kept waiting for the movie.
    QTimer::singleShot(0, this,
                       [this, path] { handled(texts::kPlaceOpen, [&] { m_lifecycle.FileDropped(path); }); });
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
