#include "player/Placement.h"

#include "platform/WindowSystem.h"
#include "player/ControlBar.h"
#include "player/Menus.h"
#include "player/MovieScreen.h"
#include "player/SkinWindow.h"
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
    if (m_window.isMaximized()) return;
    const QMenuBar& menuBar = m_menus.bar();
    const int menuHeight = menuBar.isVisibleTo(&m_window) ? menuBar.sizeHint().height() : 0;
    QMargins borders(0, menuHeight, 0, ControlBar::kHeight);
    if (m_skinWindow.isShown()) {
        // The skin has said where the movie lies; what is left around it stays as it is. A window that is not
        // shown yet puts its layout off, and with it the skin's.
        if (!m_window.isVisible()) {
            QResizeEvent resized(m_window.size(), m_window.size());
            QCoreApplication::sendEvent(&m_window, &resized);
            m_skinWindow.clientResized();
        }
        const QSize around = m_window.size() - m_movieScreen.widget().size();
        borders = QMargins(0, 0, around.width(), around.height());
    }
    const QSize wanted =
        zoomedSize(percent, {m_movie.Width, m_movie.Height}, borders, m_window.minimumSize());
    // A window larger than the screen has its bar where nobody can reach it.
    m_window.resize(wanted.boundedTo(m_window.screen()->availableVirtualSize()));
    if (repeats > 0) ZoomFlash(percent, repeats - 1);
}

void Placement::FullScreen(bool on)
{
    if (on == m_menus.isChecked("mnuFullScreen")) return;
    const bool wasShown = m_window.isVisible();
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
        m_window.showNormal();
        if (m_normalGeometry.isValid()) m_window.setGeometry(m_normalGeometry);
    }
    m_movieScreen.setFocus();
}

void Placement::show() { m_menus.isChecked("mnuFullScreen") ? fillScreen() : m_window.show(); }

void Placement::showBars()
{
    const bool full = m_menus.isChecked("mnuFullScreen");
    m_bar.setVisible(!full && !m_skinWindow.isShown());
    m_menus.bar().setVisible(!full && m_menus.isChecked("mnuMenuBar"));
}

void Placement::fillScreen()
{
    if (!m_window.isMaximized()) m_normalGeometry = m_window.geometry();
    m_window.showFullScreen();
    // Only where nobody else does it: a window manager would take it for a wish to leave full screen.
    if (!platform::hasWindowManager()) m_window.setGeometry(m_window.screen()->geometry());
}

void Placement::SetWindowFrame(bool show)
{
    if (!show) m_savedCaption = m_window.windowTitle();
    m_window.setWindowTitle(show ? m_savedCaption : QString());
}

void Placement::SetCaption(const QString& text)
{
    if (m_menus.isChecked("mnuFullScreen"))
        m_savedCaption = text;
    else
        m_window.setWindowTitle(text);
}

void Placement::ZoomWindow(int mode)
{
    const bool normal = !m_window.isMaximized() && !m_window.isMinimized();
    const bool maximise = mode == 1 || (mode != 0 && normal);
    maximise ? m_window.showMaximized() : m_window.showNormal();
}

void Placement::ToggleMenu()
{
    m_menus.setChecked("mnuMenuBar", !m_menus.isChecked("mnuMenuBar"));
    showBars();
    m_window.layout()->activate(); // the shape is that of the area without the menu
    m_skinWindow.UpdateRegion(true);
}

void Placement::setTopMost(bool on)
{
    m_menus.setChecked("mnuTopMost", on);
    setWindowFlagInPlace(m_window, Qt::WindowStaysOnTopHint, on);
}

void Placement::setMinimumSize(QSize pixels)
{
    m_window.setMinimumSize(pixels.width() > 0 ? pixels.width() : kMinimumSize.width(),
                            pixels.height() > 0 ? pixels.height() : kMinimumSize.height());
}

} // namespace player
