#include "flash/FlashControlPrivate.h"

#include <QPaintEvent>
#include <QPainter>

// How the picture of a movie comes to the screen.
namespace flash
{

void FlashControl::Private::pictureChanged(const QRegion& parts, Painting painting)
{
    if (painting == Painting::Later) return q.update(toWidget(parts));
    const QRegion painted = parts - putDirectly(parts);
    if (!painted.isEmpty()) q.repaint(toWidget(painted));
}

QRegion FlashControl::Private::putDirectly(const QRegion& parts)
{
    const auto place = placeOf(parts);
    if (!place || !port->put(*place)) return {};
    direct.note(toWidget(place->parts));
    return place->parts;
}

std::optional<control::ShownPlace> FlashControl::Private::placeOf(const QRegion& parts)
{
    const auto place = direct.placeOf(toWidget(parts));
    const QRegion free = place ? place->free & parts : QRegion();
    if (free.isEmpty()) return std::nullopt;
    return control::ShownPlace{place->window->winId(), place->origin, free};
}

void FlashControl::Private::fallAsleep()
{
    const bool shows = isRemote && state().open != 0 && !viewSize.isEmpty();
    port->letShow(shows ? placeOf(QRect(QPoint(), viewSize)) : std::nullopt);
}

void FlashControl::Private::wakeUp() { direct.note(toWidget(port->stopShowing())); }

void FlashControl::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    if (d->state().open == 0) {
        painter.fillRect(event->rect(), QColor('#' + BGColor()));
        return;
    }
    d->fitView();
    d->port->paint(painter, event->region(), devicePixelRatioF());
}

void FlashControl::resizeEvent(QResizeEvent*) { d->fitView(); }

} // namespace flash
