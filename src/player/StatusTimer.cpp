#include "player/StatusTimer.h"

#include "flash/FlashControl.h"
#include "player/Menus.h"
#include "player/MovieScreen.h"
#include "player/Playback.h"
#include "player/PlayerHost.h"
#include "player/Status.h"
#include "player/Texts.h"

namespace player
{

StatusTimer::StatusTimer(PlayerHost& host, MovieScreen& movieScreen, Menus& menus, Playback& playback,
                         Status& status, const media::MediaInfo& movie, const bool& isLimited)
    : m_host(host), m_movieScreen(movieScreen), m_menus(menus), m_playback(playback), m_status(status),
      m_movie(movie), m_isLimited(isLimited)
{
    m_tmrUpdate.setInterval(kIntervalMs);
    QObject::connect(&m_tmrUpdate, &QTimer::timeout, &m_tmrUpdate, [this] {
        m_host.handled(texts::kPlaceTimer, [this] { tmrUpdate_Timer(); });
        constexpr int kKeepEvery = 9; // some three seconds
        if (++m_ticks % kKeepEvery == 0) m_host.keepForSuddenEnd();
    });
}

void StatusTimer::tmrUpdate_Timer()
{
    if (!m_movieScreen.showsControl()) return; // the panel keeps the word that came with it
    const flash::FlashControl& control = m_movieScreen.control();
    m_status.update(control.FrameNum(), control.TotalFrames(), m_movie.FrameRate);
    const bool playing = control.Playing();
    const core::Text running = m_isLimited ? texts::kPlayingLimited : texts::kPlaying;
    m_host.SetStatus(playing ? running : texts::kStopped);
    const QString caption = playing ? texts::kMenuPause : texts::kMenuPlay;
    QAction& play = m_menus.item("mnuPlay");
    if (play.text() != caption) play.setText(caption);
    m_playback.refreshQualityMarks();
}

} // namespace player
