#pragma once

#include "media/MediaInfo.h"

#include <QMargins>
#include <QRect>
#include <QString>

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
    /// Shows the window for the first time, full screen when a movie has asked for it by now.
    void show();
    /// Shows menu bar and control bar as full screen, menu mark and skin ask.
    void showBars();

private:
    void SetWindowFrame(bool show);
    void fillScreen();

    QWidget& m_window;
    Menus& m_menus;
    ControlBar& m_bar;
    SkinWindow& m_skinWindow;
    MovieScreen& m_movieScreen;
    const media::MediaInfo& m_movie;
    QString m_savedCaption;
    QRect m_normalGeometry; ///< the window's place before it filled the screen
};

} // namespace player
