#include "skin/Controls.h"

#include "base/Failure.h"
#include "skin/Texts.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace skin
{
namespace
{

PointerButton toPointerButton(Qt::MouseButton button)
{
    if (button == Qt::LeftButton) return PointerButton::Left;
    return button == Qt::RightButton ? PointerButton::Right : PointerButton::Other;
}

} // namespace

SkinControl::SkinControl(const QString& name, int index, QWidget* container, QWidget* window)
    : QWidget(container), m_name(name), m_index(index), m_window(window),
      m_client(container) // the first control of a chain lies on the client area; the others ask that one
{
    if (const auto* outer = qobject_cast<SkinControl*>(container)) m_client = outer->m_client;
    setGeometry(0, 0, 1, 1);
    hide();
}

int SkinControl::whole(double value)
{
    if (std::isnan(value)) return 0;
    return static_cast<int>(std::nearbyint(std::clamp(value, -1.0 * kMaxDistance, 1.0 * kMaxDistance)));
}

void SkinControl::setUsable(bool usable)
{
    const bool before = std::exchange(m_usable, usable);
    setEnabled(m_usable && !m_resting);
    if (before != m_usable) usableChanged();
}

void SkinControl::setResting(bool resting)
{
    m_resting = resting;
    setEnabled(m_usable && !m_resting);
}

void SkinControl::setContainer(QObject* container)
{
    QWidget* wanted = container == m_window ? m_client : qobject_cast<SkinPicture*>(container);
    if (wanted == nullptr || wanted == this || isAncestorOf(wanted)) return;
    const bool shown = Visible();
    const QPoint place = pos();
    setParent(wanted);
    move(place);
    setVisible(shown);
}

void SkinControl::Move(double left) { move(whole(left), y()); }
void SkinControl::Move(double left, double top) { move(whole(left), whole(top)); }
void SkinControl::Move(double left, double top, double width)
{
    place({whole(left), whole(top), extent(width), height()});
}
void SkinControl::Move(double left, double top, double width, double height)
{
    place({whole(left), whole(top), extent(width), extent(height)});
}

bool SkinControl::event(QEvent* event)
{
    if (m_resting && event->type() == QEvent::MouseButtonPress) emit pressedWhileResting();
    return QWidget::event(event);
}

void SkinControl::setValue(double percent)
{
    const double value = std::isnan(percent) ? -1 : std::clamp(percent, 0.0, 100.0);
    const bool isNews = std::round(value) != std::round(m_value);
    m_value = value;
    if (!isNews || !QAccessible::isActive()) return;
    QAccessibleValueChangeEvent changed(this, std::round(value));
    QAccessible::updateAccessibility(&changed);
}

void SkinControl::dragTo(double percent)
{
    // How far the knob stays away from the ends is the script's business: each drag comes nearer.
    constexpr int kDrags = 4;
    const QPointer<SkinControl> self(this);
    const double wanted = std::clamp(percent, 0.0, 100.0);
    double at = wanted / 100 * width();
    for (int i = 0; i < kDrags && self != nullptr && isVisible() && Enabled(); ++i) {
        const QPoint position(static_cast<int>(std::lround(at)), height() / 2);
        emit pressed(PointerButton::Left, position);
        if (self != nullptr) emit released(PointerButton::Left, position);
        if (self == nullptr || m_value < 0 || std::abs(wanted - m_value) < 1) return;
        at = std::clamp(at + (wanted - m_value) / 100 * width(), 0.0, static_cast<double>(width()));
    }
}

void SkinControl::mousePressEvent(QMouseEvent* event)
{
    m_clickFollows = event->button() == Qt::LeftButton;
    emit pressed(toPointerButton(event->button()), event->position().toPoint());
}

void SkinControl::mouseMoveEvent(QMouseEvent* event)
{
    emit moved(event->buttons().testFlag(Qt::LeftButton), event->position().toPoint());
}

void SkinControl::mouseReleaseEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    const bool click = event->button() == Qt::LeftButton && m_clickFollows && rect().contains(position);
    if (event->button() == Qt::LeftButton) m_clickFollows = false;
    // A statement may replace the skin. This control then lives until the event loop comes round.
    emit released(toPointerButton(event->button()), position);
    if (click) emit clicked();
}

void SkinControl::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return mousePressEvent(event);
    m_clickFollows = false;
    emit doubleClicked();
}

// What is out of use keeps its disabled look, whatever the pointer does over it.
void SkinControl::enterEvent(QEnterEvent*)
{
    if (isEnabled()) emit entered();
}

void SkinControl::leaveEvent(QEvent*)
{
    if (isEnabled()) emit left();
}

void SkinControl::contextMenuEvent(QContextMenuEvent* event)
{
    event->setAccepted(m_opensMenu && event->reason() == QContextMenuEvent::Mouse);
}

// ---- pictures

void SkinPicture::usableChanged()
{
    if (!isResting() && hasImage(ImageState::Disabled))
        showState(Enabled() ? ImageState::Normal : ImageState::Disabled);
}

void SkinPicture::setImage(ImageState state, QImage image)
{
    m_images.at(static_cast<std::size_t>(state)) = std::move(image);
    forgetStretched();
}

void SkinPicture::setFineImage(ImageState state, QImage image)
{
    m_fineImages.at(static_cast<std::size_t>(state)) = std::move(image);
    forgetStretched();
}

void SkinPicture::forgetStretched()
{
    m_stretched = {};
    m_finelyStretched = {};
}

void SkinPicture::setPendingImage(ImageState state, std::function<QImage()> fetch)
{
    m_pending.at(static_cast<std::size_t>(state)) = std::move(fetch);
}

bool SkinPicture::hasImage(ImageState state) const
{
    const auto index = static_cast<std::size_t>(state);
    return m_pending.at(index) || !m_images.at(index).isNull();
}

const QImage& SkinPicture::image(ImageState state) const
{
    const auto index = static_cast<std::size_t>(state);
    QImage& image = m_images.at(index);
    if (const auto fetch = std::exchange(m_pending.at(index), nullptr)) image = fetch();
    return image;
}

void SkinPicture::showState(ImageState state)
{
    if (image(state).isNull() || state == m_shown) return;
    m_shown = state;
    forgetStretched();
    update();
}

void SkinPicture::setBackColor(int colour) { setGround(toColor(static_cast<SkinColour>(colour))); }

void SkinPicture::setGround(const QColor& colour)
{
    m_ground = colour;
    update();
}

QImage SkinPicture::picture() const
{
    const QImage& shown = image(m_shown);
    if (shown.isNull()) {
        QImage plain(size(), QImage::Format_RGB32);
        plain.fill(m_ground.isValid() ? m_ground : QColor(Qt::black));
        return plain;
    }
    if (m_stretched.size() != size()) {
        m_stretched = shown.size() == size()
                          ? shown
                          : shown.scaled(size(), Qt::IgnoreAspectRatio,
                                         m_masked ? Qt::FastTransformation : Qt::SmoothTransformation);
    }
    return m_stretched;
}

void SkinPicture::resizeEvent(QResizeEvent*)
{
    // What is shown now is the normal image again: the others are painted by what happens to the element.
    if (!image(ImageState::Normal).isNull() && m_shown != ImageState::Disabled) m_shown = ImageState::Normal;
    forgetStretched();
}

void SkinPicture::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    if (m_ground.isValid()) painter.fillRect(event->rect(), m_ground);
    const QImage& shown = image(m_shown);
    if (shown.isNull() || size().isEmpty()) return;
    // Very large elements are stretched where they are seen; others once, and kept.
    constexpr int kKeptPixels = 4'000'000;
    if (qint64{width()} * height() > kKeptPixels) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform, !m_masked);
        painter.drawImage(rect(), shown);
    } else if (devicePixelRatioF() != 1.0) {
        drawFinely(painter);
    } else {
        painter.drawImage(event->rect().topLeft(), picture(), event->rect());
    }
}

void SkinPicture::setMasked(SkinColour key)
{
    m_masked = true;
    const QRgb cut = qRgb(static_cast<int>(key & 0xFF), static_cast<int>(key >> 8 & 0xFF),
                          static_cast<int>(key >> 16 & 0xFF));
    for (QImage& fine : m_fineImages) {
        if (fine.isNull()) continue;
        fine.convertTo(QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < fine.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(fine.scanLine(y));
            for (int x = 0; x < fine.width(); ++x)
                if ((line[x] | 0xFF000000) == cut) line[x] = 0;
        }
    }
    forgetStretched();
}

void SkinPicture::drawFinely(QPainter& painter)
{
    const qreal scale = devicePixelRatioF();
    const QSize wanted = (QSizeF(size()) * scale).toSize();
    if (m_finelyStretched.size() != wanted) {
        const QImage& fine = m_fineImages.at(static_cast<std::size_t>(m_shown));
        const QImage& source = fine.isNull() ? image(m_shown) : fine;
        m_finelyStretched =
            source.scaled(wanted, Qt::IgnoreAspectRatio,
                          m_masked && fine.isNull() ? Qt::FastTransformation : Qt::SmoothTransformation);
    }
    m_finelyStretched.setDevicePixelRatio(scale);
    painter.drawImage(0, 0, m_finelyStretched);
}

// ---- labels

SkinLabel::SkinLabel(const QString& name, int index, QWidget* container, QWidget* window)
    : SkinControl(name, index, container, window)
{
    QFont face = font();
    face.setFamilies({"Tahoma", "Verdana", "DejaVu Sans"});
    face.setPixelSize(13); // 10 points
    setFont(face);
}

void SkinLabel::setCaption(const QString& caption)
{
    if (caption == m_caption) return;
    m_caption = caption;
    fitText();
    update();
}

void SkinLabel::setForeColor(int colour)
{
    m_colour = static_cast<SkinColour>(colour);
    update();
}

void SkinLabel::setAlignment(int alignment)
{
    constexpr int kInvalidPropertyValue = 380;
    if (alignment < 0 || alignment > 2)
        throw base::Failure(kInvalidPropertyValue, "Skin",
                            (texts::kInvalidProperty + QString::number(alignment)).toStdString());
    m_alignment = alignment;
    update();
}

void SkinLabel::setAutoSize(bool on)
{
    m_autoSize = on;
    fitText();
}

void SkinLabel::setFontName(const QString& name)
{
    QFont changed = font();
    changed.setFamilies({name, "Tahoma", "Verdana", "DejaVu Sans"});
    changeFont(changed);
}

void SkinLabel::setFontBold(bool bold)
{
    QFont changed = font();
    changed.setBold(bold);
    changeFont(changed);
}

void SkinLabel::setFontItalic(bool italic)
{
    QFont changed = font();
    changed.setItalic(italic);
    changeFont(changed);
}

void SkinLabel::setFontSize(double points)
{
    constexpr double kMaxPixels = 1024;
    QFont changed = font();
    changed.setPixelSize(
        static_cast<int>(std::clamp(std::nearbyint(points / kPointsPerPixel), 1.0, kMaxPixels)));
    changeFont(changed);
}

void SkinLabel::changeFont(const QFont& font)
{
    setFont(font);
    fitText();
    update();
}

void SkinLabel::fitText()
{
    if (m_autoSize) resize(fontMetrics().horizontalAdvance(m_caption) + 1, fontMetrics().height());
}

void SkinLabel::paintEvent(QPaintEvent*)
{
    if (m_caption.isEmpty()) return;
    QPainter painter(this);
    painter.setPen(toColor(m_colour));
    constexpr Qt::AlignmentFlag kSides[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter};
    const QString text = fontMetrics().elidedText(m_caption, Qt::ElideRight, width());
    painter.drawText(rect(), static_cast<int>(kSides[m_alignment] | Qt::AlignTop) | Qt::TextSingleLine, text);
}

} // namespace skin
