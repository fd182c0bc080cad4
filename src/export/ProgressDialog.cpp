#include "export/ProgressDialog.h"

#include "export/Texts.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace exporter
{

namespace
{

constexpr int kMargin = 16, kControlHeight = 28;
constexpr QSize kPictureSize(320, 240);

QString duration(double seconds)
{
    const auto whole = static_cast<qint64>(std::ceil(seconds));
    constexpr int kMinute = 60;
    if (whole < kMinute) return QString(texts::kSeconds).arg(whole);
    return QString(texts::kMinutes).arg(whole / kMinute).arg(whole % kMinute);
}

/// The program's word for what it knows of an error, by what zorvex-export says of it.
QString explained(Exit exit, const QString& error)
{
    if (error.contains("no encoder")) return texts::kNoEncoder;
    if (error.contains("No space left") || error.contains("File too large") || error.contains("quota"))
        return QString(texts::kCannotWrite) + ' ' + texts::kDiskFull;
    if (error.contains("Permission denied") || error.contains("Read-only"))
        return QString(texts::kCannotWrite) + ' ' + texts::kDenied;
    return exit == Exit::CannotWrite ? texts::kCannotWrite : texts::kCannotPlay;
}

} // namespace

ProgressDialog::ProgressDialog(QWidget* parent, const Settings& settings,
                               std::shared_ptr<QTemporaryDir> folder)
    : QDialog(parent), m_settings(settings), m_folder(std::move(folder))
{
    setObjectName("frmExportProgress");
    setWindowTitle(texts::kProgressTitle);
    setAttribute(Qt::WA_DeleteOnClose);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(8);
    m_picture = new QLabel(this);
    m_picture->setObjectName("picSoFar");
    m_picture->setFixedSize(kPictureSize);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setAutoFillBackground(true);
    m_picture->setPalette(QColor(0x16, 0x20, 0x2E));
    column->addWidget(m_picture);
    const QString file = QString::fromStdString(settings.out.filename().string());
    auto* name = new QLabel(fontMetrics().elidedText(file, Qt::ElideMiddle, kPictureSize.width()), this);
    column->addWidget(name);
    m_bar = new QProgressBar(this);
    m_bar->setRange(0, 0);
    m_bar->setTextVisible(false);
    column->addWidget(m_bar);
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    m_count = new QLabel(texts::kProgressStart, this);
    m_count->setObjectName("lblCount");
    m_left = new QLabel(this);
    m_left->setObjectName("lblLeft");
    row->addWidget(m_count);
    row->addStretch(1);
    row->addWidget(m_left);
    auto* cancel = new QPushButton(texts::kCancel, this);
    cancel->setObjectName("cbCancel");
    cancel->setFixedHeight(kControlHeight);
    column->addWidget(cancel, 0, Qt::AlignRight);
    column->setSizeConstraint(QLayout::SetFixedSize);
    connect(cancel, &QPushButton::clicked, this, [this] { reject(); });
    connect(&m_process, &ExportProcess::advanced, this, &ProgressDialog::advance);
    connect(&m_process, &ExportProcess::shown, this, &ProgressDialog::showPicture);
    connect(&m_process, &ExportProcess::finished, this, &ProgressDialog::finish);
    m_sinceStart.start();
    // A program that cannot be started says so at once: by then somebody listens.
    QTimer::singleShot(0, this, [this] { m_process.start(m_settings); });
}

void ProgressDialog::advance(qint64 pictures, qint64 expected)
{
    const QLocale locale;
    if (pictures > expected) {
        // The movie goes on beyond its timeline, nobody knows for how long.
        m_bar->setRange(0, 0);
        m_count->setText(QString(texts::kProgressSoFar).arg(locale.toString(pictures)));
        m_left->clear();
        return;
    }
    constexpr int kParts = 1000;
    const double part =
        std::min(1.0, static_cast<double>(pictures) / static_cast<double>(std::max<qint64>(expected, 1)));
    m_taskbar.show(part);
    m_bar->setRange(0, kParts);
    m_bar->setValue(static_cast<int>(part * kParts));
    m_count->setText(
        QString(texts::kProgressCount).arg(locale.toString(pictures), locale.toString(expected)));
    const double seconds = static_cast<double>(m_sinceStart.elapsed()) / 1000;
    if (part > 0 && seconds > 1)
        m_left->setText(QString(texts::kProgressLeft).arg(duration(seconds / part - seconds)));
}

void ProgressDialog::showPicture(const QImage& picture)
{
    m_picture->setPixmap(
        QPixmap::fromImage(picture.scaled(kPictureSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

void ProgressDialog::finish(Exit exit, const QString& error)
{
    QString said, detail;
    if (exit == Exit::Done) {
        if (m_process.done().isCutShort)
            said = QString(texts::kCutShort).arg(duration(m_process.done().ms / 1000));
    } else if (exit != Exit::Cancelled) {
        said = explained(exit, error);
        detail = error;
    }
    m_taskbar.hide();
    QDialog::reject(); // deletes this later, when no handler of it runs any more
    emit ended(exit, said, detail);
}

void ProgressDialog::reject() { m_process.cancel(); }

} // namespace exporter
