#include "base/Files.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "media/UrlEncode.h"
#include "player/Cache.h"
#include "player/Player.h"
#include "player/Texts.h"
#include "player/WelcomePanel.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QStackedLayout>
#include <QStandardPaths>
#include <QUrl>

// How the window begins and ends, and how media are opened, closed and saved.

namespace player
{
namespace
{

constexpr QSize kWelcomeSize{550, 440};

void setRussianLabels(QFileDialog& dialog, const char* accept)
{
    dialog.setLabelText(QFileDialog::Accept, accept);
    dialog.setLabelText(QFileDialog::Reject, texts::kDialogCancel);
    dialog.setLabelText(QFileDialog::LookIn, texts::kDialogFolder);
    dialog.setLabelText(QFileDialog::FileName, texts::kDialogName);
    dialog.setLabelText(QFileDialog::FileType, texts::kDialogType);
}

} // namespace

void Player::Form_Load()
{
    handled(texts::kPlaceFormLoad, [this] {
        m_application.LogEvent({});
        m_application.LogEvent(" :: Form Load");
        m_application.LogEvent("Flash " + QString::number(m_control->FlashVersion(), 16).toUpper());
    });
    m_control->setStorageFolder(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                "/zorvex/shared");
    LoadOpts();
    handled(texts::kPlaceFormLoad, [this] {
        EnumSkins();
        CreateSkin();
        UpdateSkin();
    });
    SetCaption(core::kProductName);
    m_hasArgument = !m_commandLine.isEmpty();
    handled(texts::kPlaceFormLoad, [this] {
        if (m_hasArgument)
            openCommandLine();
        else if (m_options.startUp == 0 || (m_options.startUp == 2 && m_recent.paths().isEmpty()) ||
                 m_options.startUp == 1) // TODO: the media browser; the welcome page stands in for it
            CloseMedia({});
        else if (m_options.startUp == 2)
            LoadFlash(m_recent.paths().first(), {});
    });
    if (m_ended) return;
    // A movie may ask for the whole screen before there is a window on it.
    isFullScreen() ? fillScreen() : show();
}

void Player::openCommandLine()
{
    QString path = m_commandLine;
    path.remove('"');
    // File managers may pass an address, shells a name that is relative to where they stand.
    if (path.startsWith("file://")) path = QUrl(path).toLocalFile();
    LoadFlash(QDir::current().absoluteFilePath(path), {});
}

void Player::Form_QueryUnload(UnloadMode mode)
{
    const char* word = "";
    switch (mode) {
    case UnloadMode::ControlMenu: word = "Control Menu"; break;
    case UnloadMode::FormCode: word = "Form Code"; break;
    case UnloadMode::Windows: word = "Windows"; break;
    case UnloadMode::TaskManager: word = "Task Manager"; break;
    }
    Quit(QString("Query Unload by ") + word, true);
}

void Player::closeEvent(QCloseEvent* event)
{
    // Never refused: the program has ended when this returns.
    if (!m_ended) handled(texts::kPlaceQuit, [this] { Form_QueryUnload(UnloadMode::ControlMenu); });
    event->accept();
}

void Player::Quit(const QString& reason, bool saveOptions)
{
    if (m_ended) return;
    if (saveOptions) SaveOpts();
    m_ended = true;
    m_tmrUpdate.stop();
    m_control->setSuspended(true);
    CleanCache(m_application.CachePath, m_options.cacheMode);
    try {
        m_application.LogEvent({});
        m_application.LogEvent("<B>Quit: " + reason + "</B>");
    } catch (const base::Failure&) {
        // Nothing keeps the program from ending.
    }
    hide();
    QCoreApplication::exit(0);
}

void Player::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile()) event->acceptProposedAction();
}

void Player::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile()) return;
    event->acceptProposedAction();
    const QString path = urls.first().toLocalFile();
    activateWindow();
    // Later, so that the program that the file comes from is not kept waiting for the movie.
    QTimer::singleShot(0, this, [this, path] { handled(texts::kPlaceOpen, [&] { FileDropped(path); }); });
}

void Player::FileDropped(const QString& path)
{
    if (!QFileInfo(path).isDir()) return LoadFlash(path, {});
    // TODO: a folder opens the media browser; until there is one, the open dialog shows what is in it.
    m_droppedFolder = path;
    OpenMedia();
}

QString Player::dialogFolder() const
{
    if (!m_droppedFolder.isEmpty()) return m_droppedFolder;
    if (!m_recent.paths().isEmpty()) return QFileInfo(m_recent.paths().first()).absolutePath();
    return QDir::homePath();
}

void Player::OpenMedia()
{
    handled(texts::kPlaceOpen, [this] {
        m_application.LogEvent({});
        m_application.LogEvent(" :: Open Media Dialog");
        m_tmrUpdate.stop();
        SetStatus(texts::kOpeningFile);

        QFileDialog dialog(this, texts::kOpenTitle, dialogFolder());
        dialog.setFileMode(QFileDialog::ExistingFile);
        dialog.setNameFilters({std::begin(texts::kOpenFilters), std::end(texts::kOpenFilters)});
        dialog.setDefaultSuffix("swf");
        setRussianLabels(dialog, texts::kDialogOpen);
        const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
        m_droppedFolder.clear();
        if (m_ended) return;
        if (chosen)
            LoadFlash(dialog.selectedFiles().first(), {});
        else if (m_stage->currentWidget() != m_control)
            SetStatus(texts::kReady); // no tick will replace the text
        m_tmrUpdate.start();
    });
}

void Player::CloseMedia(const QString& message)
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: Close Flash");
    setMediaInfoEnabled(false);
    const QString page = m_application.GadgetsPath + "welcome.swf";
    bool shown = false;
    if (core::fileExists(page)) {
        LoadFlash(page + "?version=" + core::GetAppVersion() + "&error=" + media::URLEncode(message) +
                      "&noanim=" + m_options.noAnimation,
                  texts::kWelcomeCaption);
        shown = mediaInfo().OriginalPath == page && m_stage->currentWidget() == m_control;
    }
    if (!shown) showWelcomePanel(message);
    SetStatus(texts::kReady);
    SetCaption(core::kProductName);
}

void Player::showWelcomePanel(const QString& message)
{
    m_tmrUpdate.stop();
    m_control->LoadMovie(0, {});
    // A window that was made for a small movie would cut the panel.
    if (!isFullScreen() && !isMaximized()) resize(size().expandedTo(kWelcomeSize));
    setMovieCommandsEnabled(false);
    m_welcome->setMessage(message);
    m_stage->setCurrentWidget(m_welcome);
    m_welcome->setFocus();
}

void Player::SaveMediaAs()
{
    handled(texts::kPlaceSave, [this] {
        m_application.LogEvent({});
        m_application.LogEvent(" :: Open Save As Dialog");
        m_tmrUpdate.stop();
        SetStatus(texts::kSavingFile);
        const media::MediaInfo& info = mediaInfo();
        const char* filter = info.Converted    ? texts::kSaveProjector
                             : info.Compressed ? texts::kSaveCompressed
                                               : texts::kSavePlain;
        QFileDialog dialog(this, texts::kSaveTitle, dialogFolder(), filter);
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setDefaultSuffix("swf");
        setRussianLabels(dialog, texts::kDialogSave);
        const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
        if (m_ended) return;
        if (chosen) saveTo(dialog.selectedFiles().first(), filter);
        m_tmrUpdate.start();
    });
}

void Player::saveTo(const QString& target, const QString& filter)
{
    const media::MediaInfo& info = mediaInfo();
    const auto movie = media::readPlainMovie(info);
    if (!movie) {
        m_application.LogEvent(QString::fromStdString(movie.error().what));
        const auto yesNo = [](bool value) { return value ? "True" : "False"; };
        QMessageBox box(QMessageBox::Warning, texts::kSaveBoxTitle, texts::kSaveUnsupported, QMessageBox::Ok,
                        this);
        box.setInformativeText(texts::kSaveFilter + filter + "\r\n" + texts::kSaveFile + info.MoviePath +
                               "\r\n" + texts::kSaveCompression + yesNo(info.Compressed) + "\r\n" +
                               texts::kSaveIsProjector + yesNo(info.Converted));
        box.exec();
        return;
    }
    if (const auto written = base::replaceFile(core::filePath(target), base::Bytes(*movie)); !written) {
        m_application.LogEvent(QString::fromStdString(written.error().what));
        QMessageBox::warning(this, texts::kSaveBoxTitle, texts::kSaveFailed);
        return;
    }
    SetStatus(texts::kReady);
}

} // namespace player
