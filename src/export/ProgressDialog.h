#pragma once

#include "export/ExportProcess.h"
#include "platform/TaskbarProgress.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <memory>

class QLabel;
class QProgressBar;

namespace exporter
{

/// Shows how a film comes to be, beside the player that goes on playing; closing it cancels the film.
class ProgressDialog : public QDialog
{
    Q_OBJECT
public:
    /// @param folder holds what the settings name, and is kept until the film is done
    ProgressDialog(QWidget* parent, const Settings& settings,
                   std::shared_ptr<QTemporaryDir> folder = nullptr);

signals:
    /// The window has gone. @param error in the program's words; empty when all went well or was cancelled
    /// @param detail what is known besides
    void ended(exporter::Exit exit, const QString& error, const QString& detail);

private:
    void advance(qint64 pictures, qint64 expected);
    void showPicture(const QImage& picture);
    void finish(Exit exit, const QString& error);
    void reject() override;

    const Settings m_settings;
    const std::shared_ptr<QTemporaryDir> m_folder;
    platform::TaskbarProgress m_taskbar{"zorvex"};
    ExportProcess m_process;
    QElapsedTimer m_sinceStart;
    QLabel *m_picture = nullptr, *m_count = nullptr, *m_left = nullptr;
    QProgressBar* m_bar = nullptr;
};

} // namespace exporter
