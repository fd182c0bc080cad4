#pragma once

#include <QTimer>

namespace player
{

class Player;

/// tmrUpdate: keeps information line, status word and the marks that follow the control current.
class StatusTimer
{
public:
    static constexpr int kIntervalMs = 300;

    /// @param player outlives this object
    explicit StatusTimer(Player& player);

    void setEnabled(bool enabled) { enabled ? m_tmrUpdate.start() : m_tmrUpdate.stop(); }
    [[nodiscard]] bool isEnabled() const { return m_tmrUpdate.isActive(); }

    /// One tick: information text, status word and play caption, quality marks, in this order. Skins hear of
    /// it with every tick, whether anything has changed or not.
    void tmrUpdate_Timer();

private:
    Player& m_player;
    QTimer m_tmrUpdate;
    int m_ticks = 0;
};

} // namespace player
