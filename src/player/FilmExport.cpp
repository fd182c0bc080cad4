#include "player/FilmExport.h"

#include "base/Files.h"
#include "core/Application.h"
#include "export/ExportDialog.h"
#include "export/Formats.h"
#include "export/ProgressDialog.h"
#include "export/Texts.h"
#include "flash/FlashControl.h"
#include "player/MediaDialogs.h"
#include "player/PlayerHost.h"
#include "player/PlayerSettings.h"
#include "player/ScreenNote.h"
#include "player/Texts.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace player
{

QString FilmExport::chooseFile(const QString& title, const QString& filter, const QString& suffix)
{
    const QFileInfo movie(m_movie.OriginalPath);
    QFileDialog dialog(&m_window, title, movie.absolutePath(), filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffix);
    dialog.selectFile(movie.completeBaseName() + '.' + suffix);
    prepareDialog(dialog, texts::kDialogSave);
    const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    // What was chosen for a window that is on its way out is not wanted any more.
    return chosen && !m_host.hasEnded() ? dialog.selectedFiles().first() : QString();
}

void FilmExport::complain(const QString& title, const QString& text, const QString& detail)
{
    if (!detail.isEmpty()) m_application.LogEvent(core::HtmlEscape(detail));
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, &m_window);
    box.setInformativeText(detail);
    box.exec();
}

void FilmExport::SaveVideo()
{
    // One that has ended may wait to be deleted.
    if (m_progress && m_progress->isVisible()) {
        m_progress->raise();
        m_progress->activateWindow();
        return;
    }
    m_application.LogEvent({});
    m_application.LogEvent(" :: Save Video Dialog");
    const auto formats = exporter::ExportProcess::availableFormats();
    if (formats.empty()) return complain(exporter::texts::kVideoTitle, exporter::texts::kNoProgram, {});
    exporter::MovieFacts facts;
    facts.address = m_control.Movie();
    facts.size = QSize(m_movie.Width, m_movie.Height).expandedTo({1, 1});
    facts.framesPerSecond = m_movie.FrameRate;
    facts.frames = m_movie.FrameCount;
    exporter::ExportDialog dialog(&m_window, facts, formats, m_settings.options().exportChoice);
    m_host.ShowDialog(dialog);
    if (dialog.result() != QDialog::Accepted || m_host.hasEnded()) return;
    m_settings.options().exportChoice = dialog.choice();
    exporter::Settings settings = dialog.settings();
    const exporter::FormatInfo& format = exporter::infoOf(settings.format);
    const QString file =
        chooseFile(exporter::texts::kVideoTitle, QString("%1 (*.%2)").arg(format.name, format.extension),
                   format.extension);
    if (file.isEmpty()) return;
    settings.out = file.toStdString();
    begin(settings, dialog.folder());
}

void FilmExport::begin(const exporter::Settings& settings, std::shared_ptr<QTemporaryDir> folder)
{
    const QString file = QString::fromStdString(settings.out.string());
    m_application.LogEvent(core::HtmlEscape("Writing the film " + file));
    m_progress = new exporter::ProgressDialog(&m_window, settings, std::move(folder));
    QObject::connect(m_progress, &exporter::ProgressDialog::ended, &m_window,
                     [this, file](exporter::Exit exit, const QString& error, const QString& detail) {
                         m_host.handled(texts::kPlaceVideo, [&] { ended(file, exit, error, detail); });
                     });
    m_progress->show();
}

void FilmExport::ended(const QString& file, exporter::Exit exit, const QString& error, const QString& detail)
{
    if (m_host.hasEnded()) return;
    if (!error.isEmpty()) return complain(exporter::texts::kVideoTitle, error, detail);
    // Of one that was cancelled nothing is said, whatever file of the name was there before.
    if (exit == exporter::Exit::Done)
        ScreenNote::show(m_window, QString(texts::kFilmSaved).arg(QFileInfo(file).fileName()));
}

void FilmExport::SaveFrame()
{
    // Taken before the dialog shows: what the user saw.
    const QImage picture = m_control.grab().toImage();
    const QString file = chooseFile(texts::kSaveFrameTitle, "PNG (*.png)", "png");
    if (file.isEmpty()) return;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    const auto written = base::replaceFile(core::filePath(file),
                                           base::Bytes(reinterpret_cast<const std::uint8_t*>(png.constData()),
                                                       static_cast<std::size_t>(png.size())));
    if (!written) {
        const QString reason =
            base::isDiskFull(written.error()) ? QString(' ') + texts::kDiskFull : QString();
        return complain(texts::kSaveFrameTitle, texts::kSaveFailed + reason,
                        QString::fromStdString(written.error().what));
    }
    ScreenNote::show(m_window, QString(texts::kFrameSaved).arg(QFileInfo(file).fileName()));
}

void FilmExport::CopyFrame()
{
    QApplication::clipboard()->setImage(m_control.grab().toImage());
    ScreenNote::show(m_window, texts::kFrameCopied);
}

} // namespace player
