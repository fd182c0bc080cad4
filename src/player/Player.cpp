#include "player/Player.h"

#include "core/Look.h"
#include "core/RunTimeErrors.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "player/ControlBar.h"
#include "player/Glyph.h"
#include "player/Placement.h"
#include "player/Texts.h"
#include "player/WelcomePanel.h"

#include <QDialog>
#include <QKeyEvent>
#include <QScreen>
#include <QStackedLayout>
#include <QUrl>
#include <QVBoxLayout>

namespace player
{
namespace
{

constexpr int kUpdateMs = 300;
constexpr QSize kMinimumSize{320, 200};
constexpr QSize kFirstSize{550, 440};
/// The bar belongs to the window's dark surface, its menus with it.
QString menuStyle()
{
    using namespace core::look;
    const auto name = [](QRgb colour) { return QColor(colour).name(); };
    return QString("QMenuBar { background: %1; color: %2; padding: 2px 4px; }"
                   "QMenuBar::item { padding: 4px 8px; border-radius: 3px; background: transparent; }"
                   "QMenuBar::item:selected { background: %3; }"
                   "QMenu { background: %1; color: %2; border: 1px solid %3; padding: 4px 0; }"
                   "QMenu::item { padding: 5px 24px 5px 28px; background: transparent; }"
                   "QMenu::item:selected { background: %4; color: white; }"
                   "QMenu::item:disabled { color: #7F8CA3; }"
                   "QMenu::separator { height: 1px; background: %3; margin: 4px 8px; }"
                   "QMenu::indicator { width: 16px; height: 16px; left: 6px; }")
        .arg(name(kSlate), name(kIce), name(kSteel), name(kBlue));
}

} // namespace

Player::Player(core::Application& application, const QString& commandLine)
    : m_application(application), m_commandLine(commandLine), m_client(new QWidget(this)),
      m_screen(new skin::SkinControl("SWF", 0, m_client, this)), m_control(new flash::FlashControl(m_screen)),
      m_welcome(new WelcomePanel(m_screen)), m_bar(new ControlBar(this)),
      m_stage(new QStackedLayout(m_screen)), m_menus(this), m_media(application, *this),
      m_playback(*m_control, m_menus, application.GadgetsPath),
      m_skinWindow(application, *this, m_menus, *m_client, *m_screen, *m_control), m_drag(this),
      m_tmrUpdate(this), m_settings(application), m_recent(application.GadgetsPath)
{
    buildWindow();
    connectMenus();
    connectControl();
    m_tmrUpdate.setInterval(kUpdateMs);
    connect(&m_tmrUpdate, &QTimer::timeout, this,
            [this] { handled(texts::kPlaceTimer, [this] { tmrUpdate_Timer(); }); });
    // What holds when there are no settings to read.
    SetQuality("High");
    SetScaleMode(0);
    m_menus.setChecked("mnuLoop", m_control->Loop());
    m_menus.setChecked("mnuMenuBar", true);
    m_menus.item("mnuInfo").setEnabled(false);
    // TODO: the information window is not there yet; its item is not shown meanwhile.
    m_menus.item("mnuInfo").setVisible(false);
    m_menus.item("mnuSep14").setVisible(false);
}

Player::~Player() { m_control->disconnect(this); }

void Player::buildWindow()
{
    setWindowIcon(markIcon());
    setAcceptDrops(true);
    setMinimumSize(kMinimumSize);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->setMenuBar(&m_menus.bar());
    m_menus.bar().setStyleSheet(menuStyle());
    m_menus.popUp().setStyleSheet(menuStyle());
    m_stage->addWidget(m_control);
    m_stage->addWidget(m_welcome);
    m_screen->show();
    m_client->installEventFilter(this);
    connect(&m_skinWindow, &SkinWindow::shownChanged, this, &Player::showBars);
    column->addWidget(m_client, 1);
    column->addWidget(m_bar);
    resize(kFirstSize);

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
        tmrUpdate_Timer();
    });
    connect(m_welcome, &WelcomePanel::openClicked, this, &Player::OpenMedia);
}

void Player::logQuietly(const QString& text)
{
    // Called out of the engine: no exception may pass it, and no window may open in the middle of a frame.
    try {
        m_application.LogEvent(core::HtmlEscape(text));
    } catch (const base::Failure&) {
        // The next procedure that logs will meet the same journal.
    }
}

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

// ---- status
// ----------------------------------------------------------------------------------------------------

void Player::tmrUpdate_Timer()
{
    if (m_stage->currentWidget() != m_control) return;
    m_status.update(m_control->FrameNum(), m_control->TotalFrames(), mediaInfo().FrameRate);
    const bool playing = m_control->Playing();
    QAction& play = m_menus.item("mnuPlay");
    SetStatus(playing ? texts::kPlaying : texts::kStopped);
    const QString caption = playing ? texts::kMenuPause : texts::kMenuPlay;
    if (play.text() != caption) play.setText(caption);
    m_playback.refreshQualityMarks();
}

QString Player::GetTime(int frames) const { return player::GetTime(frames, mediaInfo().FrameRate); }

void Player::SetStatus(const QString& text)
{
    m_status.statusText = text;
    UpdateInfo();
}

bool Player::HasMovie() const { return m_stage->currentWidget() == m_control; }

void Player::UpdateInfo()
{
    const bool hasMovie = HasMovie();
    m_bar->show({m_status.statusText, hasMovie ? m_status.informationText : QString(), hasMovie,
                 hasMovie && m_control->Playing(), m_playback.isMuted(), m_control->FrameNum(),
                 m_control->TotalFrames()});
    m_skinWindow.skin().runInfoUpdate();
}

void Player::setUpdateTimerEnabled(bool enabled) { enabled ? m_tmrUpdate.start() : m_tmrUpdate.stop(); }

void Player::SetCaption(const QString& text)
{
    if (isFullScreen())
        m_savedCaption = text;
    else
        setWindowTitle(text);
}

// ---- window
// ----------------------------------------------------------------------------------------------------

void Player::ZoomFlash(int percent, quint8 repeats)
{
    FullScreen(false);
    // A maximised window keeps its place, as every program's does.
    if (isMaximized()) return;
    const int menuHeight = m_menus.bar().isVisibleTo(this) ? m_menus.bar().sizeHint().height() : 0;
    QMargins borders(0, menuHeight, 0, ControlBar::kHeight);
    if (m_skinWindow.isShown()) {
        // The skin has said where the movie lies; what is left around it stays as it is.
        const QSize around = size() - m_screen->size();
        borders = QMargins(0, 0, around.width(), around.height());
    }
    const QSize wanted = zoomedSize(percent, {mediaInfo().Width, mediaInfo().Height}, borders, minimumSize());
    // A window larger than the screen has its bar where nobody can reach it.
    const QSize room = screen()->availableVirtualSize();
    resize(wanted.boundedTo(room));
    if (repeats > 0) ZoomFlash(percent, repeats - 1);
}

void Player::FullScreen(bool on)
{
    if (on == isFullScreen()) return;
    const bool wasShown = isVisible();
    SetWindowFrame(!on);
    m_menus.setChecked("mnuFullScreen", on);
    m_menus.setChecked("mnuPopFullScreen", on);
    showBars();
    if (m_skinWindow.skin().isLoaded()) m_skinWindow.skin().SetSkinView(on ? "viewFullScreen" : "viewNormal");
    m_skinWindow.UpdateRegion(true);
    if (!wasShown) return;
    if (on) {
        fillScreen();
    } else {
        showNormal();
        if (m_normalGeometry.isValid()) setGeometry(m_normalGeometry);
    }
    m_stage->currentWidget()->setFocus();
}

void Player::showBars()
{
    const bool full = isFullScreen();
    m_bar->setVisible(!full && !m_skinWindow.isShown());
    m_menus.bar().setVisible(!full && m_menus.isChecked("mnuMenuBar"));
}

void Player::fillScreen()
{
    if (!isMaximized()) m_normalGeometry = geometry();
    showFullScreen();
    setGeometry(screen()->geometry()); // where no window manager does it
}

void Player::SetWindowFrame(bool show)
{
    if (show) {
        setWindowTitle(m_savedCaption);
    } else {
        m_savedCaption = windowTitle();
        setWindowTitle({});
    }
}

void Player::ZoomWindow(int mode)
{
    const bool normal = !isMaximized() && !isMinimized();
    const bool maximise = mode == 1 || (mode != 0 && normal);
    maximise ? showMaximized() : showNormal();
}

void Player::ToggleMenu()
{
    const bool shown = !m_menus.isChecked("mnuMenuBar");
    m_menus.setChecked("mnuMenuBar", shown);
    showBars();
    layout()->activate(); // the shape is that of the area without the menu
    m_skinWindow.UpdateRegion(true);
}

void Player::MoveObject(QObject* control)
{
    auto* widget = qobject_cast<QWidget*>(control);
    if (widget != nullptr && widget != this && isAncestorOf(widget)) m_drag.moveObject(*widget);
}

void Player::setMinimumWindowSize(QSize pixels)
{
    setMinimumSize(pixels.width() > 0 ? pixels.width() : kMinimumSize.width(),
                   pixels.height() > 0 ? pixels.height() : kMinimumSize.height());
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

void Player::setTopMost(bool on)
{
    m_menus.setChecked("mnuTopMost", on);
    const bool shown = isVisible();
    setWindowFlag(Qt::WindowStaysOnTopHint, on);
    if (shown) show(); // changing the flag hides the window
}

void Player::ShowPopUp()
{
    m_menus.setChecked("mnuPopHQ", m_control->Quality() == 1);
    m_menus.setChecked("mnuPopLQ", m_control->Quality() == 0);
    m_menus.item("mnuPopPlay").setText(m_menus.item("mnuPlay").text());
    m_menus.popUp().popup(QCursor::pos());
}

void Player::ShowDialog(QDialog& dialog)
{
    dialog.setWindowFlag(Qt::WindowStaysOnTopHint, m_menus.isChecked("mnuTopMost"));
    dialog.exec();
}

// ---- what loading asks for
// -------------------------------------------------------------------------------------

void Player::LoadMovie(int layer, const QString& url)
{
    // A question mark in a file's own name would be taken for a query: such a file goes in as an address.
    const bool marked = url.contains('?') && core::fileExists(url);
    if (!m_control->LoadMovie(layer, marked ? QUrl::fromLocalFile(url).toString(QUrl::FullyEncoded) : url)) {
        m_application.LogEvent("Flash: " + core::HtmlEscape(m_control->errorText()));
        throw base::Failure(core::kDeviceError, "Flash", texts::kMovieDamaged);
    }
    if (layer == 0) showMovie();
}

void Player::showMovie()
{
    m_stage->setCurrentWidget(m_control);
    m_control->setSuspended(false);
    m_control->setFocus();
    setMovieCommandsEnabled(true);
}

void Player::setMovieCommandsEnabled(bool enabled)
{
    for (const char* name : {"mnuSaveAs", "mnuPopSaveAs", "mnuClose", "mnuPopClose", "mnuCompress", "mnuPlay",
                             "mnuStop", "mnuFFwd", "mnuRwd", "mnuPopPlay", "mnPopStop"})
        m_menus.item(name).setEnabled(enabled);
}

void Player::reapplySound() { SetSound(m_playback.volume(), m_playback.pan()); }

void Player::onMediaChange()
{
    // The first frame's figures are shown at once, not with the next tick.
    m_status.update(m_control->FrameNum(), m_control->TotalFrames(), mediaInfo().FrameRate);
    UpdateInfo();
    m_skinWindow.skin().runMediaChange();
}

// ---- events
// ----------------------------------------------------------------------------------------------------

void Player::contextMenuEvent(QContextMenuEvent*) { ShowPopUp(); }

bool Player::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_client) {
        if (event->type() == QEvent::Resize) m_skinWindow.clientResized();
        return false;
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
