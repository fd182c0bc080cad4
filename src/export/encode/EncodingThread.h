#pragma once

#include "export/encode/Container.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

namespace exporter
{

/// Encodes pictures beside the playing and drawing of the next ones.
class EncodingThread
{
public:
    /// @param container begun; all three are borrowed
    EncodingThread(Container& container, AVCodecContext& encoder, AVStream& track);
    /// What waits is given up.
    ~EncodingThread();
    EncodingThread(const EncodingThread&) = delete;
    EncodingThread& operator=(const EncodingThread&) = delete;

    /// Hands over a picture; waits while a few others are before it.
    /// @errors of an earlier picture; nothing is taken from then on
    base::Result<void> give(av::Owned<AVFrame> picture);
    /// Waits until all is encoded and written.
    base::Result<void> finish();

private:
    void run();
    [[nodiscard]] base::Result<void> result() const;

    Container& m_container;
    AVCodecContext& m_encoder;
    AVStream& m_track;
    std::mutex m_mutex; // of all that follows
    std::condition_variable m_changed;
    std::deque<av::Owned<AVFrame>> m_waiting;
    enum class Task { Encode, Finish, GiveUp } m_task = Task::Encode;
    std::optional<base::Error> m_error;
    std::thread m_thread; // the last: it uses the others from its start
};

} // namespace exporter
