#include "browser/ConvertSize.h"
#include "core/Files.h"
#include "core/Version.h"
#include "player/Advice.h"
#include "player/Player.h"
#include "player/Texts.h"

#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>
#include <QScopeGuard>

#include <cmath>

// The movie that is loaded, from its compressed form to the plain one and back.

namespace player
{

bool Player::progress(double part)
{
    // Called by the one at work, who has made the window and takes it down.
    if (m_progress == nullptr) return true;
    m_taskbar.show(part);
    m_progress->setValue(static_cast<int>(part * m_progress->maximum()));
    return !m_progress->wasCanceled() && !hasEnded();
}

void Player::mnuCompress_Click()
{
    // Events pass while it is at work, and may bring the command again.
    if (m_progress != nullptr) return;
    constexpr int kParts = 1000, kAtOnceMs = 400;
    QProgressDialog window(QFileInfo(m_media.mediaInfo().MoviePath).fileName(), texts::kDialogCancel, 0,
                           kParts, this);
    window.setWindowTitle(texts::kConverting);
    window.setWindowModality(Qt::WindowModal);
    window.setMinimumDuration(kAtOnceMs);
    window.setAutoReset(false);
    m_progress = &window;
    const auto done = qScopeGuard([this] {
        m_progress = nullptr;
        m_taskbar.hide();
    });
    convert();
}

void Player::convert()
{
    media::MediaInfo& info = m_media.mediaInfo();
    // The file's form, not that which it had when it was loaded: the command may be given again.
    const QString path = info.MoviePath;
    const bool decompress = media::isCompressedFile(path);
    const qint64 before = core::fileSize(path);
    const QString result =
        decompress ? m_media.DecompressFlash(info, media::Extent::Full) : m_media.CompressFlash(info, 9);
    if (hasEnded()) return;
    const bool isCancelled = m_progress->wasCanceled();
    m_progress->reset();
    if (result.isEmpty()) {
        SetStatus(texts::kReady);
        if (isCancelled) return showNote(texts::kConversionCancelled);
        QMessageBox::warning(this, core::kProductName,
                             QString(decompress ? texts::kDecompressFailed : texts::kCompressFailed) + '\n' +
                                 failureText(path, m_media.errorDescription()));
        return;
    }
    const auto after = core::fileSize(result);
    const auto percent =
        before > 0 ? qRound(100.0 * static_cast<double>(after - before) / static_cast<double>(before)) : 0;
    showNote(
        QString(decompress ? texts::kDecompressed : texts::kCompressed)
            .arg(browser::ConvertSize(static_cast<double>(before)),
                 browser::ConvertSize(static_cast<double>(after)),
                 QString(percent < 0 ? QChar(0x2212) : QChar('+')) + QString::number(std::abs(percent))));
}

} // namespace player
