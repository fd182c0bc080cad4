#pragma once

#include <QString>

namespace flash
{
class FlashControl;
}

namespace player
{

class Menus;

/// Gives the player's commands to the Flash control and keeps the state that goes with them: sound, and the
/// marks of quality, scale mode and loop.
class Playback
{
public:
    /// All three outlive this object.
    /// @param gadgetsPath where the sound page lies, with its closing separator
    Playback(flash::FlashControl& control, Menus& menus, const QString& gadgetsPath);

    void PlayMedia();
    void PauseMedia();
    void PlayPauseMedia();
    void StopMedia();
    void stepForward();
    void stepBack();
    void toggleLoop();

    /// A name that the control refuses leaves its quality; the marks follow what the control reports.
    void SetQuality(const QString& name);
    void SetScaleMode(int mode);
    /// Sets the marks of the quality items as the status timer does: all but the last, which only SetQuality
    /// sets.
    void refreshQualityMarks();

    /// @param volume is clamped to 0..100
    /// @param pan    is clamped to -100..100
    void SetSound(int volume, int pan);
    /// Takes what a former run had. Muting centres the balance; it is set again behind that.
    void restoreSound(int volume, int pan, bool muted);
    /// Un-muting restores the volume at the time of muting, whatever was set meanwhile.
    void MuteSound(bool muted);
    void SetFlashAlpha(int percent);

    [[nodiscard]] int volume() const { return m_volume; }
    [[nodiscard]] int rememberedVolume() const { return m_rememberedVolume; }
    [[nodiscard]] int pan() const { return m_pan; }
    [[nodiscard]] bool isMuted() const { return m_muted; }

    /// The movie's own colour, given to the control again whenever a further movie was loaded over it.
    void setBackground(const QString& colour);
    void reapplyBackground();

private:
    flash::FlashControl& m_control;
    Menus& m_menus;
    const QString& m_gadgetsPath;
    QString m_background = "FFFFFF";
    int m_volume = 100;
    int m_rememberedVolume = 100;
    int m_pan = 0;
    bool m_muted = false;
};

} // namespace player
