#include "core/Version.h"
#include "flash/FlashControl.h"
#include "player/Player.h"
#include "player/Texts.h"
#include "settings/OptionsDialog.h"

#include <QMessageBox>

// How the settings reach what they set and come back from there, and the list of recent files.

namespace player
{
namespace
{

constexpr int kRecentCaptionPixels = 150;

} // namespace

void Player::LoadOpts()
{
    m_hasOptions = true;
    // What cannot be read keeps the value of now.
    settings::Options& options = m_options;
    options.quality = m_control->Quality2();
    options.scaleMode = static_cast<qint16>(m_control->ScaleMode());
    options.menuBar = m_menus.isChecked("mnuMenuBar");
    options.repeat = m_control->Loop();
    QStringList recent;
    if (!m_settings.load(options, recent)) return;

    SetQuality(options.quality);
    SetScaleMode(options.scaleMode);
    m_skinWindow.selectSkin(options.skin);
    setTopMost(options.topMost);
    if (m_menus.isChecked("mnuMenuBar") != options.menuBar) ToggleMenu();
    m_control->setLoop(options.repeat);
    m_menus.setChecked("mnuLoop", options.repeat);
    m_playback.restoreSound(options.volume, options.pan, options.mute);
    m_status.setTimeMode(options.timeMode);
    // From the oldest on, each to the top.
    for (auto path = recent.crbegin(); path != recent.crend(); ++path) AddRecent(*path);
}

bool Player::SaveOpts()
{
    if (!m_hasOptions) return true;
    settings::Options& options = m_options;
    options.quality = m_control->Quality2();
    options.scaleMode = static_cast<qint16>(m_control->ScaleMode());
    options.skin = m_skinWindow.selectedSkin();
    options.topMost = m_menus.isChecked("mnuTopMost");
    options.menuBar = m_menus.isChecked("mnuMenuBar");
    options.repeat = m_menus.isChecked("mnuLoop");
    // Muting is never saved as silence.
    options.volume =
        static_cast<quint8>(m_playback.isMuted() ? m_playback.rememberedVolume() : m_playback.volume());
    options.pan = static_cast<qint16>(m_playback.pan());
    options.mute = m_playback.isMuted();
    options.timeMode = m_status.timeMode();
    return m_settings.save(options, m_recent.paths());
}

void Player::mnuOpt_Click()
{
    settings::frmOptions dialog(this, m_options);
    ShowDialog(dialog);
    if (dialog.result() == QDialog::Accepted && !SaveOpts())
        QMessageBox::warning(this, core::kProductName, texts::kOptionsUnsaved);
}

void Player::AddRecent(const QString& path)
{
    m_recent.AddRecent(path);
    showRecent();
}

void Player::showRecent()
{
    const QStringList& paths = m_recent.paths();
    for (int i = 0; i < paths.size(); ++i) {
        QAction& item = m_menus.item(QString("mnuMRU%1").arg(i));
        const QString caption = settings::CompactPath(paths[i], kRecentCaptionPixels, fontMetrics());
        item.setText(QString(caption).replace('&', "&&"));
        item.setToolTip(paths[i]);
        item.setVisible(true);
        item.setEnabled(true);
    }
}

} // namespace player
