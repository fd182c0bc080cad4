#include "player/MenuCommands.h"

#include "core/Version.h"
#include "player/Cache.h"
#include "player/Player.h"
#include "player/Texts.h"

#include <QMessageBox>

namespace player
{
namespace
{

/// The next tick would show it as well, up to a third of a second later.
void showNow(Player& player)
{
    if (player.movieScreen().showsControl()) return player.timer().tmrUpdate_Timer();
    player.UpdateInfo();
}

void tellVolume(Player& player)
{
    showNow(player);
    player.tell(player.Volume() == 0 ? QString(texts::kSoundOff)
                                     : QString(texts::kVolumeIs).arg(player.Volume()));
}

struct CommandInfo {
    const char* item;
    void (*run)(Player& player);
};
// clang-format off
constexpr CommandInfo kCommands[] = {
    {"mnuOpen",         [](Player& p) { p.OpenMedia(); }},
    {"mnuSaveAs",       [](Player& p) { p.SaveMediaAs(); }},
    {"mnuSaveVideo",    [](Player& p) { p.SaveVideo(); }},
    {"mnuSaveFrame",    [](Player& p) { p.SaveFrame(); }},
    {"mnuCopyFrame",    [](Player& p) { p.CopyFrame(); }},
    {"mnuClose",        [](Player& p) { p.CloseMedia({}); }},
    {"mnuInfo",         [](Player& p) { p.Properties(); }},
    {"mnuExit",         [](Player& p) { p.Quit("Exit Menu", true); }},

    {"mnuFullScreen",   [](Player& p) { p.FullScreen(!p.isFullScreen()); }},
    {"mnuMenuBar",      [](Player& p) { p.ToggleMenu(); }},
    {"mnuTopMost",      [](Player& p) { p.placement().setTopMost(!p.menus().isChecked("mnuTopMost")); }},
    {"mnuQLvl0",        [](Player& p) { p.SetQuality("High"); }},
    {"mnuQLvl1",        [](Player& p) { p.SetQuality("Medium"); }},
    {"mnuQLvl2",        [](Player& p) { p.SetQuality("Low"); }},
    {"mnuQLvl4",        [](Player& p) { p.SetQuality("AutoHigh"); }},
    {"mnuQLvl5",        [](Player& p) { p.SetQuality("AutoLow"); }},
    // Sized three times in a row on purpose: some window managers need the second call.
    {"mnuZoom50",       [](Player& p) { p.ZoomFlash(50, 2); }},
    {"mnuZoom100",      [](Player& p) { p.ZoomFlash(100, 2); }},
    {"mnuZoom200",      [](Player& p) { p.ZoomFlash(200, 2); }},
    {"mnuSMode0",       [](Player& p) { p.SetScaleMode(0); }},
    {"mnuSMode1",       [](Player& p) { p.SetScaleMode(1); }},
    {"mnuSMode2",       [](Player& p) { p.SetScaleMode(2); }},
    {"mnuOpFull",       [](Player& p) { p.SetFlashAlpha(100); }},
    {"mnuOpSign",       [](Player& p) { p.SetFlashAlpha(75); }},
    {"mnuOpMed",        [](Player& p) { p.SetFlashAlpha(50); }},
    {"mnuOpSlite",      [](Player& p) { p.SetFlashAlpha(25); }},
    {"mnuUpdSkin",      [](Player& p) { p.reloadSkin(); }},

    {"mnuPlay",         [](Player& p) { p.PlayPauseMedia(); showNow(p); }},
    {"mnuStop",         [](Player& p) { p.StopMedia(); showNow(p); }},
    {"mnuFFwd",         [](Player& p) { p.playback().stepForward(); showNow(p); }},
    {"mnuRwd",          [](Player& p) { p.playback().stepBack(); showNow(p); }},
    {"mnuResume",       [](Player& p) { p.resume(); }},
    {"mnuSlower",       [](Player& p) { p.transport().changeSpeed(-1); }},
    {"mnuFaster",       [](Player& p) { p.transport().changeSpeed(1); }},
    {"mnuRepeatAB",     [](Player& p) { p.transport().markSection(); }},
    {"mnuPrevious",     [](Player& p) { p.walkMovies(-1); }},
    {"mnuNext",         [](Player& p) { p.walkMovies(1); }},
    // A step of the volume centres the balance.
    {"mnuVolumeUp",     [](Player& p) { p.SetSound(p.Volume() + 10, 0); tellVolume(p); }},
    {"mnuVolumeDown",   [](Player& p) { p.SetSound(p.Volume() - 10, 0); tellVolume(p); }},
    {"mnuMute",         [](Player& p) { p.MuteSound(!p.menus().isChecked("mnuMute")); tellVolume(p); }},
    {"mnuLoop",         [](Player& p) { p.playback().toggleLoop(); showNow(p); }},

    {"mnuBrowse",       [](Player& p) { p.BrowseMedia(); }},
    {"mnuClearCache",   [](Player& p) { p.mnuClearCache_Click(); }},
    {"mnuCompress",     [](Player& p) { p.mnuCompress_Click(); }},
    {"mnuConsole",
     [](Player& p) { p.menus().isChecked("mnuConsole") ? p.HideConsole() : p.ShowConsole(); }},
    {"mnuOpt",          [](Player& p) { p.settings().edit(); }},
    {"mnuHelpMe",       [](Player& p) { p.openHelp(); }},
    {"mnuKeys",         [](Player& p) { p.showKeys(); }},
    {"mnuUpd",          [](Player& p) { p.WebUpdate(); }},
    {"mnuWeb",          [](Player& p) { p.mnuWeb_Click(); }},
    {"mnuAbout",        [](Player& p) { p.About(); }},

    {"mnuPopPlay",      [](Player& p) { p.PlayPauseMedia(); showNow(p); }},
    {"mnPopStop",       [](Player& p) { p.StopMedia(); showNow(p); }},
    {"mnuPopMute",      [](Player& p) { p.MuteSound(!p.Muted()); tellVolume(p); }},
    {"mnuPopHQ",        [](Player& p) { p.SetQuality("High"); }},
    {"mnuPopLQ",        [](Player& p) { p.SetQuality("Low"); }},
    {"mnuPopFullScreen", [](Player& p) { p.FullScreen(!p.isFullScreen()); }},
    {"mnuPopBrowse",    [](Player& p) { p.BrowseMedia(); }},
    {"mnuPopInfo",      [](Player& p) { p.Properties(); }},
    {"mnuPopOpen",      [](Player& p) { p.OpenMedia(); }},
    {"mnuPopSaveAs",    [](Player& p) { p.SaveMediaAs(); }},
    {"mnuPopClose",     [](Player& p) { p.CloseMedia({}); }},
    {"mnuPopAbout",     [](Player& p) { p.About(); }},
    {"mnuPopExit",      [](Player& p) { p.Quit("PopUp Menu", true); }},
};
// clang-format on

} // namespace

void connectMenuCommands(Player& player)
{
    for (const CommandInfo& command : kCommands)
        player.menus().connectItem(command.item, [&player, run = command.run] {
            player.handled(texts::kPlaceMenu, [&] { run(player); });
        });
    if (*core::kUpdateAddress == '\0') player.menus().item("mnuUpd").setVisible(false);
    constexpr int kTenths = 10;
    for (int tenth = 0; tenth < kTenths; ++tenth)
        player.menus().connectItem(QString("mnuGoTo%1").arg(tenth), [&player, tenth] {
            player.handled(texts::kPlaceMenu, [&] {
                player.transport().goToTenth(tenth);
                showNow(player);
            });
        });
    for (const int speed : Transport::kSpeeds)
        player.menus().connectItem(QString("mnuSpeed%1").arg(speed),
                                   [&player, speed] { player.transport().setSpeed(speed); });
    for (int i = 0; i < settings::RecentList::kCapacity; ++i)
        player.menus().connectItem(QString("mnuMRU%1").arg(i), [&player, i] {
            player.handled(texts::kPlaceMenu,
                           [&] { player.LoadFlash(player.settings().recentPaths().value(i), {}); });
        });
}

} // namespace player
