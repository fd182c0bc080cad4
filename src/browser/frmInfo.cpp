#include "browser/frmInfo.h"

#include "browser/DialogStyle.h"
#include "browser/InfoTexts.h"
#include "browser/SaveJpg.h"
#include "browser/Shadow.h"
#include "browser/Texts.h"
#include "media/CacheName.h"
#include "settings/RecentList.h"

#include <QClipboard>
#include <QEvent>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace browser
{
namespace
{

constexpr int kTextWidth = 320;

QLabel* newLabel(QWidget* parent, const char* name, const QString& caption)
{
    auto* label = new QLabel(caption, parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText); // names of files may look like mark-up
    return label;
}

} // namespace

frmInfo::frmInfo(BrowserHost& host, core::Application& application, Thumbnails& thumbnails,
                 const media::MediaInfo& info)
    : QDialog(host.dialogParent()), m_thumbnails(thumbnails), m_path(info.OriginalPath),
      m_thumbnail(application.CachePath + media::CacheName(m_path, ".jpg")), m_pic(newLabel(this, "PIC", {})),
      m_noPicture(newLabel(this, "lblNoPicture", texts::kNoPicture)),
      m_lblName(newLabel(this, "lblName", {})), m_lblFileName(newLabel(this, "lblFileName", {})),
      m_lblVersion(newLabel(this, "lblVersion", texts::kVersion)),
      m_lblTime(newLabel(this, "lblTime", texts::kTime)), m_lblSize(newLabel(this, "lblSize", texts::kSize)),
      m_lblNote(newLabel(this, "lblNote", texts::kNotCompressed)),
      m_lblMetrix(newLabel(this, "lblMetrix", texts::kMetrix))
{
    setObjectName("frmInfo");
    setWindowTitle(texts::kInfoTitle);
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    setStyleSheet(dialogStyle());

    m_pic->setFixedSize(kShotWidth, kShotHeight);
    m_pic->setScaledContents(true);
    m_pic->setToolTip(texts::kRefreshTip);
    m_pic->installEventFilter(this);
    m_pic->hide();
    auto* shadow = new Shadow(this, application.AppPath + "media/shot_shadow.png", m_pic);
    m_noPicture->setParent(shadow);
    m_noPicture->setGeometry(m_pic->geometry());
    m_noPicture->setAlignment(Qt::AlignCenter);
    m_noPicture->setStyleSheet("background: #E4EAF4; border: 1px solid #C3D0E6; border-radius: 3px;");
    m_noPicture->setToolTip(texts::kRefreshTip);
    m_noPicture->installEventFilter(this);
    m_lblFileName->installEventFilter(this);

    auto* lines = new QVBoxLayout;
    lines->setSpacing(8);
    lines->setContentsMargins(0, Shadow::kMargin, 0, 0);
    lines->addWidget(m_lblName);
    lines->addWidget(m_lblFileName);
    lines->addSpacing(8);
    for (QLabel* label : {m_lblVersion, m_lblTime, m_lblSize, m_lblNote, m_lblMetrix})
        lines->addWidget(label);
    lines->addStretch(1);

    auto* close = new QPushButton(texts::kClose, this);
    close->setObjectName("cbClose");
    close->setFixedHeight(kButtonHeight);
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto* upper = new QHBoxLayout;
    upper->setSpacing(12);
    upper->addWidget(shadow, 0, Qt::AlignTop);
    upper->addLayout(lines, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kDialogMargin - 4, kDialogMargin - 4, kDialogMargin, kDialogMargin);
    column->setSpacing(8);
    column->addLayout(upper);
    column->addWidget(close, 0, Qt::AlignRight);
    column->setSizeConstraint(QLayout::SetFixedSize);
    for (QLabel* label : {m_lblName, m_lblFileName}) label->setFixedWidth(kTextWidth);

    auto* gone = newLabel(this, "lblGone", texts::kGone);
    lines->insertWidget(lines->count() - 1, gone);
    gone->setVisible(!core::fileExists(m_path));

    fillTexts(info, host.GetTime(info.FrameCount));
}

void frmInfo::fillTexts(const media::MediaInfo& info, const QString& playTime)
{
    const InfoTexts known = describeMovie(info, playTime);
    m_lblName->ensurePolished();
    m_lblFileName->ensurePolished();
    m_lblName->setText(m_lblName->fontMetrics().elidedText(known.name, Qt::ElideMiddle, kTextWidth));
    m_lblName->setToolTip(known.name);
    m_lblFileName->setText(settings::CompactPath(known.path, kTextWidth, m_lblFileName->fontMetrics()));
    m_lblFileName->setToolTip(known.path);

    // A line that has nothing to say is not shown with its bare caption.
    const bool isMovie = known.found == InfoTexts::Found::Movie;
    for (QLabel* label : {m_lblVersion, m_lblTime, m_lblSize, m_lblNote, m_lblMetrix})
        label->setVisible(isMovie);
    if (known.found == InfoTexts::Found::Gone) {
        m_lblVersion->clear();
        return;
    }
    if (!isMovie) return;
    m_lblVersion->setText(known.version);
    m_lblTime->setText(known.time);
    m_lblSize->setText(known.size);
    m_lblNote->setText(known.note);
    m_lblMetrix->setText(known.metrix);
}

/// Making a thumbnail lets events through. Before the window stands they would leave it at the least size
/// that a window has.
void frmInfo::setVisible(bool visible)
{
    QDialog::setVisible(visible);
    if (!visible || m_loaded) return;
    m_loaded = true;
    // A file that is gone has no picture to be made of it.
    if (!core::fileExists(m_thumbnail) && core::fileExists(m_path)) {
        m_thumbnails.MakeThumbnail(m_path, m_thumbnail);
        m_thumbnails.closeWindow();
    }
    showThumbnail();
}

void frmInfo::showThumbnail()
{
    QPixmap picture = QPixmap::fromImage(loadThumbnail(m_thumbnail));
    // One that was made for a screen of finer pixels has more of them.
    if (!picture.isNull()) picture.setDevicePixelRatio(static_cast<double>(picture.width()) / kShotWidth);
    m_pic->setPixmap(picture);
    m_pic->setVisible(!picture.isNull());
    m_noPicture->setVisible(picture.isNull());
}

bool frmInfo::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::MouseButtonDblClick) return QDialog::eventFilter(watched, event);
    if (watched == m_lblFileName)
        lblFileName_DblClick();
    else
        PIC_DblClick();
    return true;
}

void frmInfo::PIC_DblClick()
{
    if (!core::fileExists(m_path)) return; // what cannot be made again is kept
    QFile::remove(m_thumbnail);
    m_thumbnails.MakeThumbnail(m_path, m_thumbnail);
    m_thumbnails.closeWindow();
    showThumbnail();
    raise();
    activateWindow();
}

void frmInfo::lblFileName_DblClick()
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->setText(m_lblFileName->toolTip());
    QMessageBox box(QMessageBox::Information, texts::kPathCopied, clipboard->text(), QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

} // namespace browser
