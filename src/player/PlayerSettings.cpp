#include "player/PlayerSettings.h"

#include "core/Version.h"
#include "flash/FlashControl.h"
#include "platform/Association.h"
#include "platform/TerminationSignal.h"
#include "player/Menus.h"
#include "player/Placement.h"
#include "player/Playback.h"
#include "player/PlayerHost.h"
#include "player/SkinWindow.h"
#include "player/Status.h"
#include "player/Texts.h"
#include "settings/OptionsDialog.h"

#include <QMessageBox>

namespace player
{
namespace
{

constexpr int kRecentCaptionPixels = 150;

} // namespace

PlayerSettings::PlayerSettings(core::Application& application, PlayerHost& host, const Places& places)
    : m_application(application), m_host(host), m_places(places), m_file(application),
      m_recent(application.GadgetsPath)
{
    constexpr int kSettlingMs = 200;
    m_settling.setSingleShot(true);
    m_settling.setInterval(kSettlingMs);
    QObject::connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_settling, qOverload<>(&QTimer::start));
    QObject::connect(&m_settling, &QTimer::timeout, &m_settling, [this] { refresh(); });
}

void PlayerSettings::watch()
{
    // A file that was replaced is watched no more.
    if (!m_watcher.files().contains(m_file.path())) m_watcher.addPath(m_file.path());
}

void PlayerSettings::refresh()
{
    watch();
    if (m_host.hasEnded()) return;
    QStringList recent = m_recent.paths();
    if (!m_file.refresh(m_options, recent)) return;
    m_recent.clear();
    for (auto path = recent.crbegin(); path != recent.crend(); ++path) m_recent.AddRecent(*path);
    showRecent();
    tellControl();
    m_host.optionsChanged();
}

void PlayerSettings::tellControl()
{
    m_places.control.setTextCode(m_options.codepage);
    m_places.control.setSecondThread(m_options.secondThread);
}

void PlayerSettings::LoadOpts()
{
    m_isLoaded = true;
    flash::FlashControl& control = m_places.control;
    Menus& menus = m_places.menus;
    // What cannot be read keeps the value of now.
    m_options.quality = control.Quality2();
    m_options.scaleMode = static_cast<qint16>(control.ScaleMode());
    m_options.menuBar = menus.isChecked("mnuMenuBar");
    m_options.repeat = control.Loop();
    QStringList recent;
    if (!m_file.load(m_options, recent)) return;

    m_places.playback.SetQuality(m_options.quality);
    m_places.playback.SetScaleMode(m_options.scaleMode);
    m_places.skinWindow.selectSkin(m_options.skin);
    m_places.placement.setTopMost(m_options.topMost);
    m_places.placement.setPlace(m_options.place);
    if (menus.isChecked("mnuMenuBar") != m_options.menuBar) m_places.placement.ToggleMenu();
    tellControl();
    control.setLoop(m_options.repeat);
    menus.setChecked("mnuLoop", m_options.repeat);
    m_places.playback.restoreSound(m_options.volume, m_options.pan, m_options.mute);
    m_places.status.setTimeMode(m_options.timeMode);
    // From the oldest on, each to the top.
    for (auto path = recent.crbegin(); path != recent.crend(); ++path) AddRecent(*path);
    watch();
}

void PlayerSettings::gather()
{
    const flash::FlashControl& control = m_places.control;
    const Menus& menus = m_places.menus;
    const Playback& playback = m_places.playback;
    m_options.quality = control.Quality2();
    m_options.scaleMode = static_cast<qint16>(control.ScaleMode());
    m_options.skin = m_places.skinWindow.selectedSkin();
    m_options.topMost = menus.isChecked("mnuTopMost");
    m_options.menuBar = menus.isChecked("mnuMenuBar");
    m_options.repeat = menus.isChecked("mnuLoop");
    m_options.place = m_places.placement.place();
    // Muting is never saved as silence.
    m_options.volume =
        static_cast<quint8>(playback.isMuted() ? playback.rememberedVolume() : playback.volume());
    m_options.pan = static_cast<qint16>(playback.pan());
    m_options.mute = playback.isMuted();
    m_options.timeMode = m_places.status.timeMode();
}

void PlayerSettings::keepForSuddenEnd()
{
    if (!m_isLoaded) return;
    gather();
    const auto content = m_file.compose(m_options, m_recent.paths());
    if (!content) return;
    platform::setLastWord(
        {core::filePath(m_file.path()).string(), *content, core::filePath(m_application.LogFile).string(),
         " :: Save Options<br>\r\n<br>\r\n<B>Quit: Query Unload by Task Manager, and the movie "
         "does not let go</B><br>\r\n"});
}

bool PlayerSettings::SaveOpts()
{
    if (!m_isLoaded) return true;
    gather();
    // Each time, so that the program that was used last is the one that opens movies. Switching the option
    // off takes nothing back, on purpose.
    if (m_options.associate)
        for (const QString& problem :
             platform::Association(core::kProductName, m_application.AppPath).Associate())
            m_application.LogEvent(core::HtmlEscape("Association: " + problem));
    const bool isSaved = m_file.save(m_options, m_recent.paths());
    watch();
    return isSaved;
}

void PlayerSettings::edit()
{
    settings::frmOptions dialog(&m_places.window, m_options);
    m_host.ShowDialog(dialog);
    tellControl();
    if (dialog.result() != QDialog::Accepted) return;
    const bool isSaved = m_host.SaveOpts();
    m_host.optionsChanged();
    if (!isSaved)
        QMessageBox::warning(&m_places.window, core::kProductName,
                             m_file.isDiskFull() ? QString(texts::kOptionsUnsaved) + '\n' + texts::kDiskFull
                                                 : QString(texts::kOptionsUnsaved));
}

void PlayerSettings::AddRecent(const QString& path)
{
    m_recent.AddRecent(path);
    showRecent();
}

void PlayerSettings::showRecent()
{
    const QStringList& paths = m_recent.paths();
    for (int i = 0; i < paths.size(); ++i) {
        QAction& item = m_places.menus.item(QString("mnuMRU%1").arg(i));
        const QString caption =
            settings::CompactPath(paths[i], kRecentCaptionPixels, m_places.window.fontMetrics());
        item.setText(QString(caption).replace('&', "&&"));
        item.setToolTip(paths[i]);
        item.setVisible(true);
        item.setEnabled(true);
    }
}

} // namespace player
