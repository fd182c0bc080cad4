#include "flash/control/PictureFeed.h"

#include <poll.h>
#include <unistd.h>
#include <utility>

namespace flash::control
{

namespace
{

constexpr int kMaxRects = 64;

} // namespace

PictureFeed::PictureFeed(std::function<void()> ready) : m_ready(std::move(ready))
{
    const auto ends = Channel::pair();
    if (!ends) return;
    m_channel = std::make_unique<Channel>(ends->first, Channel::Descriptors::Refused);
    m_farEnd = ends->second;
    m_notifier = std::make_unique<QSocketNotifier>(m_channel->descriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &m_context, [this] { m_ready(); });
}

PictureFeed::~PictureFeed()
{
    if (m_thread.joinable()) {
        {
            const std::lock_guard lock(m_turn);
            m_ends = true;
        }
        m_turnCame.notify_one();
        m_channel->shutDown();
        m_thread.join();
    }
    if (m_farEnd >= 0) close(m_farEnd);
}

// ---- the window's turn ------------------------------------------------------------------------------------

/// The thread shows nothing any more, even if nobody has said that the window's thread is awake.
void PictureFeed::haveTurn()
{
    if (!std::exchange(m_isLent, false)) return;
    const std::lock_guard lock(m_turn);
    m_place.reset();
}

std::optional<int> PictureFeed::setView(int width, int height)
{
    haveTurn();
    auto pictures = PictureMemory::create(width, height);
    if (!pictures) return std::nullopt;
    if (isOfView() && m_shownIndex >= 0) m_shownPictures = std::move(m_pictures);
    m_pictures = std::move(*pictures);
    if (m_display) m_display->detach();
    ++m_view;
    return m_pictures.descriptor();
}

bool PictureFeed::take()
{
    haveTurn();
    if (m_channel) receive();
    if (m_isOver || m_isBad) m_notifier->setEnabled(false);
    return !m_isBad;
}

bool PictureFeed::put(const ShownPlace& place)
{
    haveTurn();
    settlePaint();
    return putNow(place);
}

/// What was painted of an older picture must not come to the screen after what is put.
void PictureFeed::settlePaint()
{
    if (std::exchange(m_wasPainted, false) && m_display) m_display->letToolkitFirst();
}

void PictureFeed::letShow(const std::optional<ShownPlace>& place)
{
    haveTurn();
    if (!m_notifier || m_isOver || m_isBad) return;
    const bool shows = place && m_display && m_display->can();
    if (m_notifier->isEnabled() == shows) m_notifier->setEnabled(!shows);
    if (!shows) return;
    settlePaint();
    if (!m_thread.joinable()) m_thread = std::thread([this] { run(); });
    m_isLent = true;
    {
        const std::lock_guard lock(m_turn);
        m_place = place;
    }
    m_turnCame.notify_one();
}

QRegion PictureFeed::stopShowing()
{
    haveTurn();
    return std::exchange(m_shownMeanwhile, {});
}

// ---- whoever has the turn ---------------------------------------------------------------------------------

void PictureFeed::receive()
{
    // What has come before the end counts.
    if (!m_isOver && !m_channel->receive()) m_isOver = true;
    while (const auto body = m_channel->next()) {
        const auto message = decodeFromMovie(body->kind, body->bytes);
        const auto* picture = message ? std::get_if<Picture>(&*message) : nullptr;
        // A picture that there is not, or a view that has not been asked for.
        m_isBad = m_isBad || picture == nullptr || picture->picture >= PictureMemory::kPictures ||
                  picture->view > m_view;
        // Of a view that is no more: its memory went with it.
        if (!m_isBad && picture->view == m_view) take(*picture);
    }
}

void PictureFeed::take(const Picture& picture)
{
    ++m_count;
    const int before = isOfView() ? m_shownIndex : -1;
    if (!isOfView()) {
        m_shownPictures = PictureMemory();
        m_shownView = m_view;
    }
    m_shownIndex = picture.picture;
    m_shown = m_pictures.picture(m_shownIndex, QImage::Format_RGB32);
    if (before < 0) m_changed = m_shown.rect();
    for (const Rectangle& told : picture.changed) {
        const Rectangle part = cutTo(told, m_shown.width(), m_shown.height());
        m_changed += QRect(part.left, part.top, part.width, part.height);
    }
    if (m_changed.rectCount() > kMaxRects) m_changed = m_changed.boundingRect();
    if (before < 0 || before == m_shownIndex) return;
    if (m_display) m_display->finish();
    if (m_pictures.giveBack(before)) m_channel->send(ToMovie(Release{}));
}

bool PictureFeed::putNow(const ShownPlace& place)
{
    if (!m_display || !m_display->can() || m_shown.isNull() || !isOfView()) return false;
    if (m_display->put(m_pictures, m_shownIndex, place.window, place.origin, place.parts & m_shown.rect()))
        return true;
    // Who knows what of the pictures before has come to the screen.
    m_changed = m_shown.rect();
    tellReady();
    return false;
}

// ---- the thread -------------------------------------------------------------------------------------------

void PictureFeed::run()
{
    std::unique_lock turn(m_turn);
    while (!m_ends) {
        if (!m_place || m_isOver || m_isBad) {
            m_turnCame.wait(turn);
            continue;
        }
        // Sleeps on while the window's thread has something to do in between.
        turn.unlock();
        pollfd socket{m_channel->descriptor(), POLLIN, 0};
        const int ready = poll(&socket, 1, -1);
        turn.lock();
        if (m_ends || ready <= 0) continue;
        if (m_place)
            show();
        else
            tellReady();
    }
}

void PictureFeed::show()
{
    receive();
    const QRegion parts = m_changed & m_place->parts;
    if (!parts.isEmpty() && putNow({m_place->window, m_place->origin, parts})) {
        m_changed -= parts;
        m_shownMeanwhile += parts;
        if (m_shownMeanwhile.rectCount() > kMaxRects) m_shownMeanwhile = m_shownMeanwhile.boundingRect();
    }
    // What lies under something has to be painted.
    if (!m_changed.isEmpty() || m_isOver || m_isBad) tellReady();
}

void PictureFeed::tellReady()
{
    QMetaObject::invokeMethod(
        &m_context,
        [this] {
            // The thread waits for its turn: what comes next is for this one to hear of.
            haveTurn();
            if (!m_isOver && !m_isBad) m_notifier->setEnabled(true);
            m_ready();
        },
        Qt::QueuedConnection);
}

} // namespace flash::control
