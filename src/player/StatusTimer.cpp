#include "player/StatusTimer.h"

#include "flash/FlashControl.h"
#include "player/Player.h"
#include "player/Texts.h"

namespace player
{

StatusTimer::StatusTimer(Player& player) : m_player(player)
{
    m_tmrUpdate.setInterval(kIntervalMs);
    QObject::connect(&m_tmrUpdate, &QTimer::timeout, &m_tmrUpdate, [this] {
        m_player.handled(texts::kPlaceTimer, [this] { tmrUpdate_Timer(); });
        constexpr int kKeepEvery = 9; // some three seconds
        if (++m_ticks % kKeepEvery == 0) m_player.settings().keepForSuddenEnd();
    });
}

void StatusTimer::tmrUpdate_Timer()
{
    if (!m_player.movieScreen().showsControl()) return; // the panel keeps the word that came with it
    const flash::FlashControl& control = m_player.control();
    m_player.status().update(control.FrameNum(), control.TotalFrames(), m_player.mediaInfo().FrameRate);
    const bool playing = control.Playing();
    const char* running = m_player.isMovieLimited() ? texts::kPlayingLimited : texts::kPlaying;
    m_player.SetStatus(playing ? running : texts::kStopped);
    const QString caption = playing ? texts::kMenuPause : texts::kMenuPlay;
    QAction& play = m_player.menus().item("mnuPlay");
    if (play.text() != caption) play.setText(caption);
    m_player.playback().refreshQualityMarks();
}

} // namespace player
