#include "export/encode/EncodingThread.h"

namespace exporter
{

namespace
{

// Enough that neither side waits for the other's slower pictures; one of full size takes 3 MB.
constexpr std::size_t kMaxWaiting = 4;

} // namespace

EncodingThread::EncodingThread(Container& container, AVCodecContext& encoder, AVStream& track)
    : m_container(container), m_encoder(encoder), m_track(track), m_thread([this] { run(); })
{
}

EncodingThread::~EncodingThread()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_task == Task::Encode) m_task = Task::GiveUp;
    }
    m_changed.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

void EncodingThread::run()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return !m_waiting.empty() || m_task != Task::Encode; });
        if (m_task == Task::GiveUp) return;
        av::Owned<AVFrame> picture; // none: the encoder gives what it holds back
        if (!m_waiting.empty()) {
            picture = std::move(m_waiting.front());
            m_waiting.pop_front();
            m_changed.notify_all();
        }
        lock.unlock();
        auto encoded = m_container.encode(m_encoder, picture.get(), m_track);
        lock.lock();
        if (!encoded) m_error = std::move(encoded).error();
        if (m_error || picture == nullptr) break;
    }
    m_changed.notify_all();
}

base::Result<void> EncodingThread::result() const
{
    if (m_error) return tl::unexpected(*m_error);
    return {};
}

base::Result<void> EncodingThread::give(av::Owned<AVFrame> picture)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting.size() < kMaxWaiting || m_error; });
    CHECK_RESULT(result());
    m_waiting.push_back(std::move(picture));
    m_changed.notify_all();
    return {};
}

base::Result<void> EncodingThread::finish()
{
    {
        const std::lock_guard lock(m_mutex);
        m_task = Task::Finish;
    }
    m_changed.notify_all();
    m_thread.join();
    return result();
}

} // namespace exporter
