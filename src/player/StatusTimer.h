#pragma once

#include "media/MediaInfo.h"

#include <QTimer>

namespace player
{

class Menus;
class MovieScreen;
class Playback;
class PlayerHost;
class Status;

/// tmrUpdate: keeps information line, status word and the marks that follow the control current.
class StatusTimer
{
public:
    static constexpr int kIntervalMs = 300;

    /// All outlive this object.
    /// @param movie     of the movie that is shown
    /// @param isLimited whether that movie went beyond what it may use
    StatusTimer(PlayerHost& host, MovieScreen& movieScreen, Menus& menus, Playback& playback, Status& status,
                const media::MediaInfo& movie, const bool& isLimited);

    void setEnabled(bool enabled) { enabled ? m_tmrUpdate.start() : m_tmrUpdate.stop(); }
    [[nodiscard]] bool isEnabled() const { return m_tmrUpdate.isActive(); }

    /// One tick: information text, status word and play caption, quality marks, in this order. Skins hear of
    /// it with every tick, whether anything has changed or not.
    void tmrUpdate_Timer();

private:
    PlayerHost& m_host;
    MovieScreen& m_movieScreen;
    Menus& m_menus;
    Playback& m_playback;
    Status& m_status;
    const media::MediaInfo& m_movie;
    const bool& m_isLimited;
    QTimer m_tmrUpdate;
    int m_ticks = 0;
};

} // namespace player
