#include "player/Placement.h"

#include "core/Version.h"
#include "platform/WindowSystem.h"
#include "player/ControlBar.h"
#include "player/Menus.h"
#include "player/MovieScreen.h"
#include "player/SkinWindow.h"
#include "player/WindowFlags.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QLayout>
#include <QLineEdit>
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
constexpr double kMaxPixels = 16384;

int zoomed(int percent, int moviePixels, int borderPixels, int minimumPixels)
{
    const double movieTwips = static_cast<double>(percent) * moviePixels * kTwips / 100.0;
    const double twips = std::nearbyint(movieTwips + borderPixels * kTwips);
    const double pixels = std::max(twips, static_cast<double>(minimumPixels) * kTwips) / kTwips;
    return static_cast<int>(std::min(pixels, kMaxPixels));
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

std::optional<int> Placement::zoomStep(int direction)
{
    constexpr int kSteps[] = {25, 50, 75, 100, 125, 150, 200, 300, 400};
    if (isFull() || m_window.isMaximized() || m_movie.Width <= 0) return std::nullopt;
    const double now = 100.0 * m_movieScreen.widget().width() / m_movie.Width;
    int wanted = 0;
    for (const int step : kSteps) {
        if (direction > 0 && step > now + 1) {
            wanted = step;
            break;
        }
        if (direction < 0 && step < now - 1) wanted = step;
    }
    if (wanted == 0) return std::nullopt;
    const QSize before = m_window.size();
    ZoomFlash(wanted, 2);
    if (m_window.size() == before) return std::nullopt; // the least size, or the screen's
    return wanted;
}

void Placement::refreshZoomItems()
{
    const bool zooms = isFull() || !m_window.isMaximized();
    for (const char* name : {"mnuZoom50", "mnuZoom100", "mnuZoom200"}) m_menus.item(name).setEnabled(zooms);
}

bool Placement::isFull() const { return m_menus.isChecked("mnuFullScreen"); }

void Placement::switchFullScreen(bool on)
{
    SetWindowFrame(!on);
    m_menus.setChecked("mnuFullScreen", on);
    m_menus.setChecked("mnuPopFullScreen", on);
    showBars();
    if (m_skinWindow.skin().isLoaded()) m_skinWindow.skin().SetSkinView(on ? "viewFullScreen" : "viewNormal");
    m_skinWindow.UpdateRegion(true);
}

void Placement::FullScreen(bool on)
{
    if (on == isFull()) return;
    const bool wasShown = m_window.isVisible();
    switchFullScreen(on);
    if (!wasShown) return;
    if (on) {
        fillScreen();
    } else {
        m_window.showNormal();
        if (m_normalGeometry.isValid()) m_window.setGeometry(m_normalGeometry);
    }
    giveMovieKeyboard();
}

/// Who types into the window goes on typing.
void Placement::giveMovieKeyboard()
{
    if (qobject_cast<QLineEdit*>(m_window.focusWidget()) == nullptr &&
        qobject_cast<QComboBox*>(m_window.focusWidget()) == nullptr)
        m_movieScreen.setFocus();
}

void Placement::followFullScreen(bool on)
{
    if (on == isFull()) return;
    switchFullScreen(on);
    // What it was before is known to who has changed it, and given back by him.
    m_normalGeometry = {};
    giveMovieKeyboard();
}

void Placement::show()
{
    const bool wasMaximised = takeRememberedPlace();
    if (isFull()) return fillScreen();
    wasMaximised ? m_window.showMaximized() : m_window.show();
}

QString Placement::place() const
{
    if (!platform::letsWindowsPlaceThemselves() || m_window.pos().isNull()) return m_place;
    const QPoint corner =
        isFull() || m_window.isMaximized()
            ? (m_normalGeometry.isValid() ? m_normalGeometry : m_window.normalGeometry()).topLeft()
            : m_window.pos();
    return QString("%1,%2,%3").arg(corner.x()).arg(corner.y()).arg(m_window.isMaximized() ? 2 : 0);
}

bool Placement::takeRememberedPlace()
{
    const QStringList parts = m_place.split(',');
    if (parts.size() != 3) return false;
    const QPoint corner(parts[0].toInt(), parts[1].toInt());
    // A screen that is gone would hide the window; one whose title can be reached will do.
    constexpr QSize kReachable{120, 40};
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect seen = screen->availableGeometry().intersected(QRect(corner, m_window.size()));
        if (seen.width() < kReachable.width() || seen.height() < kReachable.height()) continue;
        if (corner.y() < screen->availableGeometry().top()) continue;
        // As much of it as there is room for: another skin or movie may need more than stood there before.
        const QRect room = screen->availableVirtualGeometry();
        const QSize size = m_window.size().boundedTo(room.size());
        m_window.move(std::clamp(corner.x(), room.left(), room.right() + 1 - size.width()),
                      std::clamp(corner.y(), room.top(), room.bottom() + 1 - size.height()));
        break;
    }
    return parts[2].toInt() == 2;
}

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
    m_caption = text;
    if (isFull())
        m_savedCaption = shortCaption(text);
    else
        m_window.setWindowTitle(shortCaption(text));
}

QString Placement::shownCaption() const { return shortCaption(m_caption); }

QString shortCaption(const QString& caption)
{
    constexpr qsizetype kMax = 72;
    const QString start = QString(core::kProductName) + " - ";
    if (!caption.startsWith(start)) return caption;
    QString name = caption.mid(start.size());
    if (QDir::isAbsolutePath(name)) name = name.mid(name.lastIndexOf(QDir::separator()) + 1);
    if (name.size() > kMax) {
        constexpr qsizetype kHalf = kMax / 2;
        name = name.left(kHalf) + u'…' + name.right(kHalf - 1);
    }
    return start + name;
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
