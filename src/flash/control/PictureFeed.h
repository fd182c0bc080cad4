#pragma once

#include "flash/control/Channel.h"
#include "flash/control/DisplayPut.h"
#include "flash/control/MoviePort.h"
#include "flash/control/PictureMemory.h"

#include <QImage>
#include <QObject>
#include <QRegion>
#include <QSocketNotifier>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace flash::control
{

/// The window's end of the pictures that a movie's process draws. They come by a socket of their own, so that
/// the window's thread need not wake up for each: as long as it sleeps, a small thread has the display take
/// them. Whatever that may show is said beforehand and holds until the window's thread is awake again.
class PictureFeed
{
public:
    /// @param ready called from the event loop when there is something to take()
    explicit PictureFeed(std::function<void()> ready);
    ~PictureFeed();
    PictureFeed(const PictureFeed&) = delete;
    PictureFeed& operator=(const PictureFeed&) = delete;

    /// @returns the movie's end of the socket, owned by the caller; or -1. Once
    int takeFarEnd() { return std::exchange(m_farEnd, -1); }
    /// To wait for it, beside others; -1 when nothing comes any more.
    [[nodiscard]] int descriptor() const { return m_channel && !m_isOver ? m_channel->descriptor() : -1; }

    /// Pictures of another size come from now on; the one that is shown stays until the first of them.
    /// @returns the descriptor of their memory, borrowed; or nothing when there is none to have
    std::optional<int> setView(int width, int height);
    /// Takes what has come. @returns false when it was no picture
    [[nodiscard]] bool take();
    /// Whether the picture taken last is of the size that was asked for last.
    [[nodiscard]] bool isOfView() const { return m_shownView == m_view; }
    /// The picture that is to be seen, to be painted; it stays as it is until the next call here or the event
    /// loop.
    const QImage& paintable()
    {
        haveTurn();
        m_wasPainted = true;
        return m_shown;
    }
    /// Of the movie's timeline, while pictures of the size asked for last are drawn.
    [[nodiscard]] std::optional<int> frame() const { return m_pictures.frame(); }
    /// How many have come.
    std::uint64_t count()
    {
        haveTurn();
        return m_count;
    }
    /// What of it has changed since this was asked last, and is not shown yet.
    QRegion takeChanged() { return std::exchange(m_changed, {}); }
    /// As MoviePort::put().
    bool put(const ShownPlace& place);

    /// The window's thread is about to sleep: what comes may be shown there. Nowhere: it is to be woken up.
    void letShow(const std::optional<ShownPlace>& place);
    /// It is awake, and nothing is shown without it any more.
    /// @returns what of the picture was, meanwhile
    QRegion stopShowing();

private:
    void haveTurn();
    void settlePaint();
    void receive();
    void take(const Picture& picture);
    bool putNow(const ShownPlace& place);
    void run();
    void show();
    void tellReady();

    std::function<void()> m_ready;
    std::unique_ptr<Channel> m_channel;
    int m_farEnd = -1; // owned
    std::unique_ptr<DisplayPut> m_display = DisplayPut::create();
    // The pictures that are drawn into now, and those that the one on the screen belongs to.
    PictureMemory m_pictures, m_shownPictures;
    QImage m_shown;
    int m_shownIndex = -1;
    std::uint32_t m_view = 0, m_shownView = 0;
    QRegion m_changed; // of the picture shown, and not told yet
    std::uint64_t m_count = 0;
    bool m_isBad = false, m_isOver = false;
    bool m_wasPainted = false; // and nothing was put since

    // The thread has its turn with all the above while there is a place; the window's has it otherwise.
    std::mutex m_turn;
    std::condition_variable m_turnCame;
    std::optional<ShownPlace> m_place;
    QRegion m_shownMeanwhile;
    bool m_ends = false;
    bool m_isLent = false; // the turn, as the window's thread knows it
    std::thread m_thread;
    QObject m_context; // of what is posted to the event loop
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace flash::control
