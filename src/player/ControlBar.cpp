#include "player/ControlBar.h"

#include "core/Look.h"
#include "player/Glyph.h"
#include "player/Texts.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace player
{
namespace
{

constexpr int kButton = 28;
constexpr int kWithinGroup = 4;
constexpr int kBetweenGroups = 8;
constexpr int kEdge = 8;
constexpr int kProgressHeight = 3;
/// Below this width the frame steps make room for the texts.
constexpr int kNarrow = 420;

} // namespace

ControlBar::ControlBar(QWidget* parent)
    : QWidget(parent), m_open(new GlyphButton(Glyph::Open, texts::kTipOpen, this)),
      m_playPause(new GlyphButton(Glyph::Play, texts::kTipPlay, this)),
      m_stop(new GlyphButton(Glyph::Stop, texts::kTipStop, this)),
      m_back(new GlyphButton(Glyph::Back, texts::kTipBack, this)),
      m_forward(new GlyphButton(Glyph::Forward, texts::kTipForward, this)),
      m_mute(new GlyphButton(Glyph::Sound, texts::kTipMute, this)),
      m_fullScreen(new GlyphButton(Glyph::FullScreen, texts::kTipFullScreen, this))
{
    setFixedHeight(kHeight);
    connect(m_open, &GlyphButton::clicked, this, &ControlBar::openClicked);
    connect(m_playPause, &GlyphButton::clicked, this, &ControlBar::playPauseClicked);
    connect(m_stop, &GlyphButton::clicked, this, &ControlBar::stopClicked);
    connect(m_back, &GlyphButton::clicked, this, &ControlBar::backClicked);
    connect(m_forward, &GlyphButton::clicked, this, &ControlBar::forwardClicked);
    connect(m_mute, &GlyphButton::clicked, this, &ControlBar::muteClicked);
    connect(m_fullScreen, &GlyphButton::clicked, this, &ControlBar::fullScreenClicked);
    m_playPause->setObjectName("btnPlayPause");
    m_open->setObjectName("btnOpen");
    for (GlyphButton* button : {m_playPause, m_stop, m_back, m_forward}) button->setEnabled(false);
}

void ControlBar::translate()
{
    for (const auto& [button, text] : {std::pair<GlyphButton*, core::Text>(m_open, texts::kTipOpen),
                                       {m_playPause, texts::kTipPlay},
                                       {m_stop, texts::kTipStop},
                                       {m_back, texts::kTipBack},
                                       {m_forward, texts::kTipForward},
                                       {m_mute, texts::kTipMute},
                                       {m_fullScreen, texts::kTipFullScreen}}) {
        button->setToolTip(text);
        button->setAccessibleName(text);
    }
}

void ControlBar::show(const Shown& shown)
{
    if (shown == m_shown) return;
    m_shown = shown;
    for (GlyphButton* button : {m_playPause, m_stop, m_back, m_forward}) button->setEnabled(shown.hasMovie);
    m_playPause->setGlyph(shown.playing ? Glyph::Pause : Glyph::Play);
    m_mute->setGlyph(shown.muted ? Glyph::Muted : Glyph::Sound);
    update();
}

void ControlBar::placeButtons()
{
    const int top = (kHeight - kButton + kProgressHeight) / 2;
    int left = kEdge;
    const auto place = [&](GlyphButton* button, int gap) {
        button->move(left, top);
        left += kButton + gap;
    };
    const bool narrow = width() < kNarrow;
    m_back->setVisible(!narrow);
    m_forward->setVisible(!narrow);
    place(m_playPause, kWithinGroup);
    place(m_stop, narrow ? kBetweenGroups : kWithinGroup);
    if (!narrow) {
        place(m_back, kWithinGroup);
        place(m_forward, kBetweenGroups);
    }
    place(m_open, 0);
    m_fullScreen->move(width() - kEdge - kButton, top);
    m_mute->move(width() - kEdge - 2 * kButton - kWithinGroup, top);
}

QRect ControlBar::textRect() const
{
    const int left = m_open->geometry().right() + 1 + kBetweenGroups;
    return {left, kProgressHeight, m_mute->x() - kBetweenGroups - left, kHeight - kProgressHeight};
}

QRect ControlBar::informationRect() const
{
    QRect area = textRect();
    const int needed = fontMetrics().horizontalAdvance(m_shown.information);
    area.setLeft(std::max(area.left(), area.right() + 1 - needed));
    return area;
}

void ControlBar::paintEvent(QPaintEvent*)
{
    using namespace core::look;
    QPainter painter(this);
    painter.fillRect(rect(), QColor(kSlate));
    painter.fillRect(QRect(0, 0, width(), kProgressHeight), QColor(kSteel));
    if (m_shown.hasMovie && m_shown.totalFrames > 1) {
        const double part =
            std::clamp(static_cast<double>(m_shown.frame) / (m_shown.totalFrames - 1), 0.0, 1.0);
        painter.fillRect(QRectF(0, 0, width() * part, kProgressHeight), QColor(kSky));
    }
    const QRect information = informationRect();
    QRect status = textRect();
    status.setRight(information.left() - 1 - kBetweenGroups);
    painter.setPen(QColor(kIce));
    const auto draw = [&](const QRect& area, const QString& text, Qt::Alignment side) {
        painter.drawText(area, static_cast<int>(side | Qt::AlignVCenter) | Qt::TextSingleLine,
                         fontMetrics().elidedText(text, Qt::ElideRight, area.width()));
    };
    constexpr int kMinReadable = 48;
    if (status.width() >= kMinReadable) draw(status, m_shown.status, Qt::AlignLeft);
    draw(information, m_shown.information, Qt::AlignRight);
}

void ControlBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && informationRect().contains(event->position().toPoint()))
        emit timeClicked();
}

bool ControlBar::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const bool overTime = !m_shown.information.isEmpty() && informationRect().contains(help->pos());
        QToolTip::showText(help->globalPos(), overTime ? QString(texts::kTipTime) : QString(), this);
        return true;
    }
    return QWidget::event(event);
}

void ControlBar::resizeEvent(QResizeEvent*) { placeButtons(); }

} // namespace player
