#include "browser/frmShot.h"

#include "browser/DialogStyle.h"
#include "browser/Shadow.h"
#include "browser/Texts.h"
#include "core/Look.h"
#include "flash/FlashControl.h"
#include "settings/RecentList.h"

#include <QCloseEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <cmath>

namespace browser
{
namespace
{

constexpr int kTrackWidth = 288;
constexpr int kTrackHeight = 20;

/// The sign for a movie without a picture: a frame of film, crossed out.
class MissingSign : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), QColor(core::look::kSlate));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(core::look::kSky), 4, Qt::SolidLine, Qt::RoundCap));
        const QPointF middle = QRectF(rect()).center() - QPointF(0, 12);
        painter.drawRoundedRect(QRectF(middle - QPointF(32, 24), QSizeF(64, 48)), 6, 6);
        painter.drawLine(middle - QPointF(12, 12), middle + QPointF(12, 12));
        painter.drawLine(middle - QPointF(12, -12), middle + QPointF(12, -12));
        painter.setPen(QColor(core::look::kIce));
        painter.drawText(QRectF(0, middle.y() + 32, width(), 24), Qt::AlignCenter, texts::kNoPicture);
    }
};

QRgb blend(QRgb a, QRgb b, int percentOfA)
{
    const auto mix = [percentOfA](int x, int y) { return (x * percentOfA + y * (100 - percentOfA)) / 100; };
    return qRgb(mix(qRed(a), qRed(b)), mix(qGreen(a), qGreen(b)), mix(qBlue(a), qBlue(b)));
}

} // namespace

frmShot::frmShot(QWidget* parent, const QString& shadowImage)
    : QDialog(parent), m_pic(new QWidget(this)), m_path(new QLabel(this)), m_picStatus(new QWidget(this)),
      m_picProgress(new QWidget(m_picStatus)), m_lblCountUnder(new QLabel(m_picStatus)),
      m_lblCountOver(new QLabel(m_picStatus)), m_cbCancel(new QPushButton(texts::kCancel, this))
{
    setObjectName("frmShot");
    setWindowTitle(texts::kShotsTitle);
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    setWindowModality(Qt::ApplicationModal);
    setStyleSheet(dialogStyle());
    setToolTip(texts::kShotsTip);

    m_pic->setObjectName("PIC");
    m_pic->setFixedSize(kShotWidth, kShotHeight);
    m_places.push_back(newPlace());
    m_path->setObjectName("lblPath");
    m_path->setTextFormat(Qt::PlainText);
    m_path->setAlignment(Qt::AlignCenter);
    m_path->setFixedWidth(kTrackWidth);

    const QRgb track = blend(core::look::kSteel, core::look::kSlate, 75);
    m_picStatus->setObjectName("picStatus");
    m_picStatus->setFixedSize(kTrackWidth, kTrackHeight);
    m_picStatus->setAttribute(Qt::WA_StyledBackground);
    m_picStatus->setStyleSheet(
        QString("#picStatus { background: %1; border-radius: 3px; }"
                "#picProgress { background: %2; border-radius: 3px; }"
                "QLabel { font-weight: bold; } #lblCountUnder { color: %1; } #lblCountOver { color: white; }")
            .arg(QColor(track).name(), QColor(core::look::kBlue).name()));
    m_picProgress->setObjectName("picProgress");
    m_picProgress->setAttribute(Qt::WA_StyledBackground);
    m_picProgress->setGeometry(0, 0, 0, kTrackHeight);
    for (QLabel* label : {m_lblCountUnder, m_lblCountOver}) label->setAlignment(Qt::AlignCenter);
    m_lblCountUnder->setObjectName("lblCountUnder");
    m_lblCountUnder->setGeometry(1, 1, kTrackWidth, kTrackHeight);
    m_lblCountOver->setObjectName("lblCountOver");
    m_lblCountOver->setGeometry(0, 0, kTrackWidth, kTrackHeight);
    QSizePolicy keepsRoom = m_picStatus->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    m_picStatus->setSizePolicy(keepsRoom);
    m_picStatus->hide();

    m_cbCancel->setObjectName("cbCancel");
    m_cbCancel->setFixedHeight(kButtonHeight);
    connect(m_cbCancel, &QPushButton::clicked, this, [this] { cbCancel_Click(); });

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kDialogMargin, kDialogMargin, kDialogMargin, kDialogMargin);
    column->setSpacing(8);
    column->addWidget(new Shadow(this, shadowImage, m_pic), 0, Qt::AlignHCenter);
    column->addWidget(m_path, 0, Qt::AlignHCenter);
    column->addWidget(m_picStatus, 0, Qt::AlignHCenter);
    column->addSpacing(4);
    column->addWidget(m_cbCancel, 0, Qt::AlignHCenter);
    column->setSizeConstraint(QLayout::SetFixedSize);
}

void frmShot::present()
{
    if (isVisible()) return;
    if (parentWidget() == nullptr || !parentWidget()->isVisible()) {
        adjustSize();
        QRect place = rect();
        place.moveCenter(screen()->availableGeometry().center());
        move(place.topLeft());
    }
    show();
}

void frmShot::setPath(const QString& path)
{
    m_path->setText(settings::CompactPath(path, kTrackWidth, m_path->fontMetrics()));
}

void frmShot::setProgress(int number, int count)
{
    m_picStatus->setVisible(count > 1);
    if (count > 1) m_taskbar.show(1.0 * (number - 1) / count);
    m_picProgress->resize(static_cast<int>(std::nearbyint(1.0 * number / count * kTrackWidth)), kTrackHeight);
    const QString text =
        texts::kShotsDone + QString::number(number) + texts::kShotsOf + QString::number(count);
    m_lblCountUnder->setText(text);
    m_lblCountOver->setText(text);
}

frmShot::Place frmShot::newPlace()
{
    auto* area = new QWidget(m_pic);
    const Place place{area, new flash::FlashControl(area), new MissingSign(area)};
    area->setGeometry(m_pic->rect());
    area->setAttribute(Qt::WA_TransparentForMouseEvents); // a double click is the window's
    place.swf->setObjectName("SWF");
    place.swf->setGeometry(m_pic->rect());
    place.swf->setSuspended(true); // time is simulated; no sound device is opened
    place.swf->setClipboardAllowed(false);
    place.swf->setFocusPolicy(Qt::NoFocus);
    place.missing->setGeometry(m_pic->rect());
    place.missing->hide();
    return place;
}

flash::FlashControl& frmShot::SWF(int place)
{
    while (place >= places()) {
        m_places.push_back(newPlace());
        m_places.back().area->lower(); // what is seen stays so
        m_places.back().area->show();
    }
    return *m_places[static_cast<std::size_t>(place)].swf;
}

void frmShot::showPlace(int place) { m_places[static_cast<std::size_t>(place)].area->raise(); }

void frmShot::showMissing(int place, bool missing)
{
    m_places[static_cast<std::size_t>(place)].missing->setVisible(missing);
}

QImage frmShot::capture(int place)
{
    return m_places[static_cast<std::size_t>(place)].area->grab().toImage();
}

void frmShot::cbCancel_Click()
{
    m_cbCancel->setEnabled(false);
    emit cancelled();
}

void frmShot::mouseDoubleClickEvent(QMouseEvent*) { emit movieSkipped(); }

void frmShot::closeEvent(QCloseEvent* event)
{
    // Whoever made the window closes it; the user's wish to close it means to stop.
    event->ignore();
    cbCancel_Click();
}

void frmShot::reject() { cbCancel_Click(); }

} // namespace browser
