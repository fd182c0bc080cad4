#include "core/RunTimeErrors.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "player/Cache.h"
#include "player/Player.h"
#include "player/Texts.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QUrl>

// What the menus and the control's pages and movies command.

namespace player
{

void Player::connectMenus()
{
    const auto on = [this](const char* item, std::function<void()> command) {
        m_menus.connectItem(item,
                            [this, command = std::move(command)] { handled(texts::kPlaceMenu, command); });
    };
    on("mnuOpen", [this] { OpenMedia(); });
    on("mnuSaveAs", [this] { SaveMediaAs(); });
    on("mnuClose", [this] { CloseMedia({}); });
    on("mnuExit", [this] { Quit("Exit Menu", true); });
    for (int i = 0; i < settings::RecentList::kCapacity; ++i)
        on(qPrintable(QString("mnuMRU%1").arg(i)), [this, i] { LoadFlash(m_recent.paths().value(i), {}); });

    on("mnuFullScreen", [this] { FullScreen(!isFullScreen()); });
    on("mnuMenuBar", [this] { ToggleMenu(); });
    on("mnuTopMost", [this] { setTopMost(!m_menus.isChecked("mnuTopMost")); });
    on("mnuQLvl0", [this] { SetQuality("High"); });
    on("mnuQLvl1", [this] { SetQuality("Medium"); });
    on("mnuQLvl2", [this] { SetQuality("Low"); });
    on("mnuQLvl4", [this] { SetQuality("AutoHigh"); });
    on("mnuQLvl5", [this] { SetQuality("AutoLow"); });
    // Sized three times in a row on purpose: some window managers need the second call.
    on("mnuZoom50", [this] { ZoomFlash(50, 2); });
    on("mnuZoom100", [this] { ZoomFlash(100, 2); });
    on("mnuZoom200", [this] { ZoomFlash(200, 2); });
    on("mnuSMode0", [this] { SetScaleMode(0); });
    on("mnuSMode1", [this] { SetScaleMode(1); });
    on("mnuSMode2", [this] { SetScaleMode(2); });
    on("mnuOpFull", [this] { SetFlashAlpha(100); });
    on("mnuOpSign", [this] { SetFlashAlpha(75); });
    on("mnuOpMed", [this] { SetFlashAlpha(50); });
    on("mnuOpSlite", [this] { SetFlashAlpha(25); });

    on("mnuUpdSkin", [this] { LoadNewSkin(); });

    on("mnuPlay", [this] { PlayPauseMedia(); });
    on("mnuStop", [this] { StopMedia(); });
    on("mnuFFwd", [this] { m_playback.stepForward(); });
    on("mnuRwd", [this] { m_playback.stepBack(); });
    on("mnuVolumeUp", [this] { SetSound(m_playback.volume() + 10, 0); });
    on("mnuVolumeDown", [this] { SetSound(m_playback.volume() - 10, 0); });
    on("mnuMute", [this] { MuteSound(!m_menus.isChecked("mnuMute")); });
    on("mnuLoop", [this] { m_playback.toggleLoop(); });

    on("mnuClearCache", [this] {
        m_application.LogEvent({});
        m_application.LogEvent(" :: Clear Cache");
        CleanCache(m_application.CachePath, 3); // thumbnails only, on purpose
    });
    on("mnuCompress", [this] { mnuCompress_Click(); });
    on("mnuOpt", [this] { mnuOpt_Click(); });
    on("mnuHelpMe",
       [this] { QDesktopServices::openUrl(QUrl::fromLocalFile(m_application.AppPath + "Readme.txt")); });

    on("mnuPopPlay", [this] { PlayPauseMedia(); });
    on("mnPopStop", [this] { StopMedia(); });
    on("mnuPopMute", [this] { MuteSound(!m_playback.isMuted()); });
    on("mnuPopHQ", [this] { SetQuality("High"); });
    on("mnuPopLQ", [this] { SetQuality("Low"); });
    on("mnuPopFullScreen", [this] { FullScreen(!isFullScreen()); });
    on("mnuPopOpen", [this] { OpenMedia(); });
    on("mnuPopSaveAs", [this] { SaveMediaAs(); });
    on("mnuPopClose", [this] { CloseMedia({}); });
    on("mnuPopExit", [this] { Quit("PopUp Menu", true); });
}

void Player::connectControl()
{
    m_control->installEventFilter(this);
    connect(m_control, &flash::FlashControl::FSCommand, this,
            [this](const QString& command, const QString& argument) {
                handled(texts::kPlacePage, [&] { pageCommand(command, argument); });
            });
    connect(m_control, &flash::FlashControl::OnReadyStateChange, this, [this](int state) {
        constexpr int kComplete = 4;
        if (state == kComplete) m_playback.reapplyBackground();
    });
    connect(m_control, &flash::FlashControl::logged, this,
            [this](const QString& text) { logQuietly("Flash: " + text); });
    connect(m_control, &flash::FlashControl::urlRequested, this, [this](const QString& address) {
        logQuietly("Address requested: " + address);
        openOutside(address);
    });
    m_control->setScriptTimeoutHandler([this] { return askToEndScript(); });
}

bool Player::askToEndScript()
{
    return QMessageBox::question(this, core::kProductName, texts::kScriptIsSlow) == QMessageBox::Yes;
}

void Player::openOutside(const QString& address)
{
    const QUrl url(address);
    // A movie may lead to a page, never to a program or a file.
    if (url.scheme() == "http" || url.scheme() == "https" || url.scheme() == "mailto")
        QDesktopServices::openUrl(url);
}

void Player::mnuCompress_Click()
{
    media::MediaInfo& info = m_media.mediaInfo();
    const bool decompress = info.Compressed;
    const QString result =
        decompress ? m_media.DecompressFlash(info, media::Extent::Full) : m_media.CompressFlash(info, 9);
    if (result.isEmpty())
        QMessageBox::warning(this, core::kProductName,
                             decompress ? texts::kDecompressFailed : texts::kCompressFailed);
}

void Player::pageCommand(const QString& command, const QString& argument)
{
    const QString name = command.toUpper();
    if (name == "MEOWLOG") return m_application.LogEvent("Media debug :: " + argument);
    if (name == "MEOWOPEN") return OpenMedia();
    if (name == "MEOWSEL") return LoadFlash(argument, {});
    if (name == "EXEC") {
        m_application.LogEvent("Movie opened: '" + core::HtmlEscape(argument) + "'");
        return openOutside(argument);
    }
    if (name == "FULLSCREEN") {
        const QString word = argument.trimmed().toLower();
        bool isNumber = false;
        const double number = word.toDouble(&isNumber);
        if (word != "true" && word != "false" && !isNumber)
            throw base::Failure(13, "Flash", "FULLSCREEN: " + argument.toStdString());
        return word == "true" || (isNumber && number != 0) ? FullScreen(true) : ZoomFlash(100, 2);
    }
    m_application.LogEvent({});
    m_application.LogEvent(" :: Unsupported FS Command (" + command + ")");
}

} // namespace player
