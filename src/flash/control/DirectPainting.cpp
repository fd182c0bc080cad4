#include "flash/control/DirectPainting.h"

#include <QEvent>
#include <QWidget>
#include <QWindow>

#include <cmath>

namespace flash::control
{

namespace
{

constexpr int kMaxMissingRects = 32;

/// Takes away what visible children of a widget cover. @param above those in front of this one; null: all
void leaveOut(QRegion& free, const QWidget& parent, QPoint at, const QWidget* above)
{
    bool covers = above == nullptr;
    for (const QObject* object : parent.children()) {
        if (object == above) covers = true;
        if (!covers || object == above || !object->isWidgetType()) continue;
        const auto& child = static_cast<const QWidget&>(*object);
        // One without updates shows nothing.
        if (!child.isVisible() || !child.updatesEnabled() || child.isWindow()) continue;
        const QRect place = child.geometry().translated(at);
        if (!free.intersects(place)) continue;
        const QRegion mask = child.mask();
        free -= mask.isEmpty() ? QRegion(place) : mask.translated(place.topLeft());
    }
}

} // namespace

std::optional<DirectPainting::Place> DirectPainting::placeOf(const QRegion& parts)
{
    const double ratio = m_widget.devicePixelRatioF();
    if (ratio != std::floor(ratio) || !m_widget.isVisible() || !m_widget.updatesEnabled())
        return std::nullopt;
    QRegion free = parts & m_widget.rect();
    QPoint at; // of `widget`, from the one that is shown
    leaveOut(free, m_widget, at, nullptr);
    std::size_t followed = 0;
    const QWidget* widget = &m_widget;
    for (;; ++followed) {
        follow(followed, const_cast<QWidget*>(widget));
        if (widget->graphicsEffect() != nullptr) return std::nullopt;
        free &= widget->rect().translated(at);
        if (const QRegion mask = widget->mask(); !mask.isEmpty()) free &= mask.translated(at);
        if (widget->isWindow()) break;
        if (widget->internalWinId() != 0) return std::nullopt;
        const QWidget* parent = widget->parentWidget();
        at -= widget->pos();
        leaveOut(free, *parent, at, widget);
        widget = parent;
    }
    QWindow* const window = widget->windowHandle();
    if (window == nullptr || !window->isExposed()) return std::nullopt;
    follow(++followed, window);
    Place place{window, -at * ratio, {}};
    const int pixels = static_cast<int>(ratio);
    if (pixels == 1)
        place.free = free;
    else
        for (const QRect& part : free) place.free += QRect(part.topLeft() * pixels, part.size() * pixels);
    return place;
}

void DirectPainting::follow(std::size_t index, QObject* object)
{
    if (index >= m_followed.size()) m_followed.resize(index + 1);
    if (m_followed[index] == object) return;
    if (m_followed[index]) m_followed[index]->removeEventFilter(this);
    m_followed[index] = object;
    // One that stood elsewhere in the list has it already; it is not called twice.
    object->installEventFilter(this);
}

void DirectPainting::note(const QRegion& parts)
{
    m_missing += parts;
    if (m_missing.rectCount() > kMaxMissingRects) m_missing = m_missing.boundingRect();
}

bool DirectPainting::eventFilter(QObject* watched, QEvent* event)
{
    const bool isWindow = !watched->isWidgetType();
    const bool needsStore =
        isWindow ? event->type() == QEvent::Expose || event->type() == QEvent::Paint
                 : event->type() == QEvent::Move && !static_cast<QWidget*>(watched)->isWindow();
    // What is hidden is painted whole when it is shown.
    if (needsStore && !m_missing.isEmpty() && m_widget.isVisible() && m_widget.updatesEnabled()) {
        m_widget.update(m_missing);
        m_missing = QRegion();
    }
    return false;
}

} // namespace flash::control
