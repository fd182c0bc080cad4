#include "player/Placement.h"

#include "platform/WindowSystem.h"
#include "player/ControlBar.h"
#include "player/Player.h"
#include "player/WindowFlags.h"

#include <QCoreApplication>
#include <QLayout>
#include <QResizeEvent>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace player
{
namespace
{

constexpr QSize kMinimumSize{320, 200};
constexpr int kTwips = 15;
/// No window system takes more; a damaged header may ask for it.
constexpr double kLargestPixels = 16384;

int zoomed(int percent, int moviePixels, int borderPixels, int minimumPixels)
{
    const double movieTwips = static_cast<double>(percent) * moviePixels * kTwips / 100.0;
    const double twips = std::nearbyint(movieTwips + borderPixels * kTwips);
    const double pixels = std::max(twips, static_cast<double>(minimumPixels) * kTwips) / kTwips;
    return static_cast<int>(std::min(pixels, kLargestPixels));
}

} // namespace

QSize zoomedSize(int percent, QSize movie, QMargins borders, QSize minimum)
{
    return {zoomed(percent, movie.width(), borders.left() + borders.right(), minimum.width()),
            zoomed(percent, movie.height(), borders.top() + borders.bottom(), minimum.height())};
}

void Placement::ZoomFlash(int percent, quint8 repeats)
{
    FullScreen(false);
    if (m_player.isMaximized()) return;
    const QMenuBar& menuBar = m_player.menus().bar();
    const int menuHeight = menuBar.isVisibleTo(&m_player) ? menuBar.sizeHint().height() : 0;
    QMargins borders(0, menuHeight, 0, ControlBar::kHeight);
    if (m_player.skinWindow().isShown()) {
        // The skin has said where the movie lies; what is left around it stays as it is. A window that is not
        // shown yet puts its layout off, and with it the skin's.
        if (!m_player.isVisible()) {
            QResizeEvent resized(m_player.size(), m_player.size());
            QCoreApplication::sendEvent(&m_player, &resized);
            m_player.skinWindow().clientResized();
        }
        const QSize around = m_player.size() - m_player.movieScreen().widget().size();
        borders = QMargins(0, 0, around.width(), around.height());
    }
    const media::MediaInfo& movie = m_player.mediaInfo();
    const QSize wanted = zoomedSize(percent, {movie.Width, movie.Height}, borders, m_player.minimumSize());
    // A window larger than the screen has its bar where nobody can reach it.
    m_player.resize(wanted.boundedTo(m_player.screen()->availableVirtualSize()));
    if (repeats > 0) ZoomFlash(percent, repeats - 1);
}

void Placement::FullScreen(bool on)
{
    Menus& menus = m_player.menus();
    if (on == menus.isChecked("mnuFullScreen")) return;
    const bool wasShown = m_player.isVisible();
    SetWindowFrame(!on);
    menus.setChecked("mnuFullScreen", on);
    menus.setChecked("mnuPopFullScreen", on);
    showBars();
    SkinWindow& skinWindow = m_player.skinWindow();
    if (skinWindow.skin().isLoaded()) skinWindow.skin().SetSkinView(on ? "viewFullScreen" : "viewNormal");
    skinWindow.UpdateRegion(true);
    if (!wasShown) return;
    if (on) {
        fillScreen();
    } else {
        m_player.showNormal();
        if (m_normalGeometry.isValid()) m_player.setGeometry(m_normalGeometry);
    }
    m_player.movieScreen().setFocus();
}

void Placement::show() { m_player.menus().isChecked("mnuFullScreen") ? fillScreen() : m_player.show(); }

void Placement::showBars()
{
    const bool full = m_player.menus().isChecked("mnuFullScreen");
    m_player.bar().setVisible(!full && !m_player.skinWindow().isShown());
    m_player.menus().bar().setVisible(!full && m_player.menus().isChecked("mnuMenuBar"));
}

void Placement::fillScreen()
{
    if (!m_player.isMaximized()) m_normalGeometry = m_player.geometry();
    m_player.showFullScreen();
    // Only where nobody else does it: a window manager would take it for a wish to leave full screen.
    if (!platform::hasWindowManager()) m_player.setGeometry(m_player.screen()->geometry());
}

void Placement::SetWindowFrame(bool show)
{
    if (!show) m_savedCaption = m_player.windowTitle();
    m_player.setWindowTitle(show ? m_savedCaption : QString());
}

void Placement::SetCaption(const QString& text)
{
    if (m_player.menus().isChecked("mnuFullScreen"))
        m_savedCaption = text;
    else
        m_player.setWindowTitle(text);
}

void Placement::ZoomWindow(int mode)
{
    const bool normal = !m_player.isMaximized() && !m_player.isMinimized();
    const bool maximise = mode == 1 || (mode != 0 && normal);
    maximise ? m_player.showMaximized() : m_player.showNormal();
}

void Placement::ToggleMenu()
{
    Menus& menus = m_player.menus();
    menus.setChecked("mnuMenuBar", !menus.isChecked("mnuMenuBar"));
    showBars();
    m_player.layout()->activate(); // the shape is that of the area without the menu
    m_player.skinWindow().UpdateRegion(true);
}

void Placement::setTopMost(bool on)
{
    m_player.menus().setChecked("mnuTopMost", on);
    setWindowFlagInPlace(m_player, Qt::WindowStaysOnTopHint, on);
}

void Placement::setMinimumSize(QSize pixels)
{
    m_player.setMinimumSize(pixels.width() > 0 ? pixels.width() : kMinimumSize.width(),
                            pixels.height() > 0 ? pixels.height() : kMinimumSize.height());
}

} // namespace player
