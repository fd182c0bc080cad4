#include "player/Playback.h"

#include "core/Application.h"
#include "flash/FlashControl.h"
#include "player/Menus.h"
#include "player/PageAddresses.h"

#include <algorithm>

namespace player
{
namespace
{

/// The page that changes the movie's sound plays above everything a movie would use.
constexpr int kSoundLayer = 6000;

struct QualityItem {
    const char* item;
    const char* tag; // quality name; the separator has its own and takes part like the others
};
constexpr QualityItem kQualities[] = {{"mnuQLvl0", "High"},     {"mnuQLvl1", "Medium"},
                                      {"mnuQLvl2", "Low"},      {"mnuQLvl3", "-"},
                                      {"mnuQLvl4", "AutoHigh"}, {"mnuQLvl5", "AutoLow"}};
constexpr const char* kScaleModes[] = {"mnuSMode0", "mnuSMode1", "mnuSMode2"};

} // namespace

Playback::Playback(flash::FlashControl& control, Menus& menus, const QString& gadgetsPath)
    : m_control(control), m_menus(menus), m_gadgetsPath(gadgetsPath)
{
}

void Playback::PlayMedia() { m_control.Play(); }
void Playback::PauseMedia() { m_control.Stop(); }
void Playback::PlayPauseMedia() { m_control.Playing() ? PauseMedia() : PlayMedia(); }
void Playback::StopMedia() { m_control.Rewind(); }
void Playback::stepForward() { m_control.Forward(); }
void Playback::stepBack() { m_control.Back(); }

void Playback::toggleLoop()
{
    m_control.setLoop(!m_control.Loop());
    m_menus.setChecked("mnuLoop", m_control.Loop());
}

void Playback::SetQuality(const QString& name)
{
    m_control.setQuality2(name);
    for (const QualityItem& quality : kQualities)
        m_menus.setChecked(quality.item, m_control.Quality2() == quality.tag);
}

void Playback::refreshQualityMarks()
{
    const QString now = m_control.Quality2();
    for (const QualityItem& quality : kQualities) {
        // The last is left out on purpose.
        if (&quality == std::end(kQualities) - 1) break;
        const bool checked = now == quality.tag;
        if (m_menus.isChecked(quality.item) != checked) m_menus.setChecked(quality.item, checked);
    }
}

void Playback::SetScaleMode(int mode)
{
    m_control.setScaleMode(mode);
    for (int index = 0; index < static_cast<int>(std::size(kScaleModes)); ++index)
        m_menus.setChecked(kScaleModes[index], m_control.ScaleMode() == index);
}

void Playback::SetSound(int volume, int pan)
{
    m_volume = std::clamp(volume, 0, 100);
    m_pan = std::clamp(pan, -100, 100);
    // The page sets the sound of everything that plays. Where there is none, or the movie's process does not
    // take it in, the control's own volume and balance stand in.
    const bool pageDoesIt = core::fileExists(m_gadgetsPath + "sound.swf") &&
                            m_control.LoadMovie(kSoundLayer, soundPage(m_gadgetsPath, m_volume, m_pan));
    m_control.setMasterVolume(pageDoesIt ? 1.0 : m_volume / 100.0);
    m_control.setMasterBalance(pageDoesIt ? 0.0 : m_pan / 100.0);
    // Silence holds whatever a movie makes of its own volume, and before the page has come.
    m_control.setMuted(m_volume == 0);
    reapplyBackground();
}

void Playback::MuteSound(bool muted)
{
    m_menus.setChecked("mnuMute", muted);
    m_menus.setChecked("mnuPopMute", muted);
    if (muted) m_rememberedVolume = m_volume;
    m_volume = muted ? 0 : m_rememberedVolume;
    SetSound(m_volume, 0);
    m_muted = muted;
}

void Playback::restoreSound(int volume, int pan, bool muted)
{
    m_volume = m_rememberedVolume = std::clamp(volume, 0, 100);
    MuteSound(muted);
    if (pan != 0) SetSound(m_volume, pan);
}

void Playback::SetFlashAlpha(int percent) { m_control.SetVariable("_alpha", QString::number(percent)); }

void Playback::setBackground(const QString& colour)
{
    m_background = colour;
    reapplyBackground();
}

void Playback::reapplyBackground() { m_control.setBGColor(m_background); }

} // namespace player
