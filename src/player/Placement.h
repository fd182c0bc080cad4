#pragma once

#include "media/MediaInfo.h"

#include <QMargins>
#include <QRect>
#include <QString>

#include <optional>

class QWidget;

namespace player
{

/// The window's size for a movie at a zoom. Reckoned in twips, 15 to the pixel whatever the screen is, as
/// skins and scripts expect: the movie's part is divided first, then the borders are added and the sum is
/// rounded.
/// @param movie   pixels
/// @param borders pixels between the window's edge and the movie
/// @param minimum pixels
QSize zoomedSize(int percent, QSize movie, QMargins borders, QSize minimum);

/// A window's title in short: of a path its file's name, cut in the middle when it is long.
QString shortCaption(const QString& caption);

class ControlBar;
class Menus;
class MovieScreen;
class SkinWindow;

/// The window's size, state and frame. The mark of mnuFullScreen is the state of full screen itself.
class Placement
{
public:
    /// All outlive this object.
    /// @param window the one that is placed; it has a layout
    /// @param movie  of the movie that is shown
    Placement(QWidget& window, Menus& menus, ControlBar& bar, SkinWindow& skinWindow,
              MovieScreen& movieScreen, const media::MediaInfo& movie)
        : m_window(window), m_menus(menus), m_bar(bar), m_skinWindow(skinWindow), m_movieScreen(movieScreen),
          m_movie(movie)
    {
    }

    /// Leaves full screen and gives the movie's place `percent` of the movie's own size; the window stays
    /// where it is. A maximised window keeps its size, as every program's does.
    void ZoomFlash(int percent, quint8 repeats);
    void FullScreen(bool on);
    /// 0: normal; 1: maximised; another: from normal to maximised, else to normal.
    void ZoomWindow(int mode);
    /// While full screen hides the title it is kept aside, and what is set meanwhile is shown afterwards.
    void SetCaption(const QString& text);
    void ToggleMenu();
    void setTopMost(bool on);
    /// What a skin allows; a size of 0 is the window's own.
    void setMinimumSize(QSize pixels);
    /// Follows a window that somebody else has made fill the screen, or taken out of that.
    void followFullScreen(bool on);
    /// What SetCaption() was given; empty in full screen. The window shows it in short.
    [[nodiscard]] QString caption() const { return isFull() ? QString() : m_caption; }
    /// What is shown of the caption, full screen or not.
    [[nodiscard]] QString shownCaption() const;
    /// To the next size of the usual ones, up or down. @returns the percentage reached; nothing when the
    /// window takes none
    std::optional<int> zoomStep(int direction);
    /// Greys the zoom where it does nothing.
    void refreshZoomItems();
    /// Where the window stands, "left,top,state"; empty where the desktop does not tell.
    [[nodiscard]] QString place() const;
    /// Puts the window there when it is shown, if a screen is there.
    void setPlace(const QString& place) { m_place = place; }
    /// Shows the window for the first time, full screen when a movie has asked for it by now.
    void show();
    /// Shows menu bar and control bar as full screen, menu mark and skin ask.
    void showBars();

private:
    void SetWindowFrame(bool show);
    void fillScreen();
    [[nodiscard]] bool isFull() const;
    void switchFullScreen(bool on);
    void giveMovieKeyboard();
    /// @returns whether the window was maximised
    bool takeRememberedPlace();

    QWidget& m_window;
    Menus& m_menus;
    ControlBar& m_bar;
    SkinWindow& m_skinWindow;
    MovieScreen& m_movieScreen;
    const media::MediaInfo& m_movie;
    QString m_caption, m_savedCaption; ///< whole; as shown
    QString m_place;
    QRect m_normalGeometry; ///< the window's place before it filled the screen
};

} // namespace player
