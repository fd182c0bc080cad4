#include "player/MediaDialogs.h"

#include "core/Application.h"
#include "platform/FileDialogs.h"
#include "player/Advice.h"
#include "player/PlayerHost.h"
#include "player/PlayerSettings.h"
#include "player/SaveAs.h"
#include "player/Texts.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QIdentityProxyModel>
#include <QLocale>
#include <QMessageBox>
#include <QTreeView>

#include <algorithm>

namespace player
{

namespace
{

constexpr int kSizeColumn = 1, kTypeColumn = 2, kTimeColumn = 3;

/// The files of the toolkit's own dialog, which tells sizes and times in the system's language, not in that
/// of the interface.
class SpokenFiles : public QIdentityProxyModel
{
public:
    using QIdentityProxyModel::QIdentityProxyModel;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override
    {
        const auto* files = qobject_cast<const QFileSystemModel*>(sourceModel());
        const bool isOurs = index.column() == kSizeColumn || index.column() == kTimeColumn;
        if (files == nullptr || role != Qt::DisplayRole || !isOurs)
            return QIdentityProxyModel::data(index, role);
        const QFileInfo file = files->fileInfo(mapToSource(index));
        if (index.column() == kTimeColumn)
            return QLocale().toString(file.lastModified(), QLocale::ShortFormat);
        // From a kilobyte on: the language's word for bytes would not agree with their number.
        constexpr qint64 kMinBytes = 1024;
        return file.isDir() ? QString() : QLocale().formattedDataSize(std::max(file.size(), kMinBytes), 1);
    }
};

/// Room for what the columns say. Desktops' own dialogs have no such list.
void arrangeColumns(QFileDialog& dialog)
{
    auto* list = dialog.findChild<QTreeView*>("treeView");
    if (list == nullptr) return;
    constexpr QSize kRoom{760, 500};
    constexpr int kMargins = 32;
    dialog.setProxyModel(new SpokenFiles(&dialog));
    dialog.resize(dialog.size().expandedTo(kRoom));
    const auto widthOf = [list](const QString& text) {
        return list->fontMetrics().horizontalAdvance(text) + kMargins;
    };
    // The name tells the type, and the names that the toolkit has for types are not in the user's language.
    list->hideColumn(kTypeColumn);
    QHeaderView* header = list->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    const QString time = list->model()->headerData(kTimeColumn, Qt::Horizontal).toString();
    header->resizeSection(kSizeColumn, widthOf(QLocale().formattedDataSize(999'900, 1)));
    header->resizeSection(kTimeColumn,
                          std::max(widthOf(time), widthOf(QLocale().toString(QDateTime::currentDateTime(),
                                                                             QLocale::ShortFormat))));
}

} // namespace

void prepareDialog(QFileDialog& dialog, const QString& accept)
{
    if (!platform::hasDesktopDialogs()) dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setLabelText(QFileDialog::Accept, accept);
    dialog.setLabelText(QFileDialog::Reject, texts::kDialogCancel);
    dialog.setLabelText(QFileDialog::LookIn, texts::kDialogFolder);
    dialog.setLabelText(QFileDialog::FileName, texts::kDialogName);
    dialog.setLabelText(QFileDialog::FileType, texts::kDialogType);
    arrangeColumns(dialog);
}

namespace
{

/// @returns what the user chose; empty when the user declined
QString run(QFileDialog& dialog)
{
    const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    return chosen ? dialog.selectedFiles().first() : QString();
}

} // namespace

QString MediaDialogs::startFolder() const
{
    const QStringList& recent = m_settings.recentPaths();
    return recent.isEmpty() ? QDir::homePath() : QFileInfo(recent.first()).absolutePath();
}

bool MediaDialogs::OpenMedia(const QString& folder)
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: Open Media Dialog");
    m_host.setUpdateTimerEnabled(false);
    const QString statusBefore = m_host.StatusText();
    m_host.SetStatus(texts::kOpeningFile);

    QFileDialog dialog(&m_window, texts::kOpenTitle, folder.isEmpty() ? startFolder() : folder);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({std::begin(texts::kOpenFilters), std::end(texts::kOpenFilters)});
    dialog.setDefaultSuffix("swf");
    prepareDialog(dialog, texts::kDialogOpen);
    const QString chosen = run(dialog);
    if (m_host.hasEnded()) return false;
    if (!chosen.isEmpty())
        m_host.LoadFlash(chosen, {});
    else
        m_host.SetStatus(statusBefore); // the next tick may be none, where no movie runs
    m_host.setUpdateTimerEnabled(true);
    return !chosen.isEmpty();
}

void MediaDialogs::SaveMediaAs()
{
    m_application.LogEvent({});
    m_application.LogEvent(" :: Open Save As Dialog");
    m_host.setUpdateTimerEnabled(false);
    const QString statusBefore = m_host.StatusText();
    m_host.SetStatus(texts::kSavingFile);

    const QString filter = saveFilter(m_movie);
    QFileDialog dialog(&m_window, texts::kSaveTitle, startFolder(), filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("swf");
    dialog.selectFile(QFileInfo(m_movie.OriginalPath).completeBaseName() + ".swf");
    prepareDialog(dialog, texts::kDialogSave);
    const QString chosen = run(dialog);
    if (m_host.hasEnded()) return;
    if (!chosen.isEmpty()) saveTo(chosen, filter);
    m_host.SetStatus(statusBefore);
    m_host.setUpdateTimerEnabled(true);
}

void MediaDialogs::saveTo(const QString& target, const QString& filter)
{
    const SaveResult saved = saveMovie(m_movie, target);
    if (saved.outcome == SaveOutcome::Saved) return;
    m_application.LogEvent(core::HtmlEscape(QString::fromStdString(saved.what)));
    const bool known = saved.outcome == SaveOutcome::CannotWrite;
    QMessageBox box(QMessageBox::Warning, texts::kSaveBoxTitle,
                    known ? texts::kSaveFailed : texts::kSaveUnsupported, QMessageBox::Ok, &m_window);
    box.setInformativeText(known ? failureText(target, saved.reason) : saveDiagnosis(m_movie, filter));
    box.exec();
}

std::optional<QString> MediaDialogs::chooseBrowserFolder(const QString& start)
{
    QFileDialog dialog(&m_window, texts::kBrowseFolder, start);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    prepareDialog(dialog, texts::kDialogChoose);
    const QString chosen = run(dialog);
    if (chosen.isEmpty()) return std::nullopt;
    return chosen;
}

} // namespace player
