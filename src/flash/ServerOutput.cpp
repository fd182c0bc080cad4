#include "flash/ServerOutput.h"

#include "flash/sound/Mixer.h"

#include <QTimer>

#include <dlfcn.h>
#include <pulse/simple.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace flash
{

namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Who has not asked for so long wants no sound any more.
constexpr auto kForgotten = std::chrono::seconds(30);
// What lies ready for the thread that writes, and how often that is seen to.
constexpr std::size_t kBlockFrames = sound::kMixRate / 50, kBlocksAhead = 3;
constexpr milliseconds kFillEvery(10);
constexpr std::uint32_t kServerBufferMs = 100;

/// Between the thread that mixes and the one that waits for the server.
struct Queue {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::vector<sound::StereoFrame>> blocks;
    bool isEnded = false;
    std::atomic<bool> isLost = false;
};

void writeAll(const std::shared_ptr<Queue>& queue, const std::unique_ptr<SoundStream>& stream)
{
    while (true) {
        std::unique_lock lock(queue->mutex);
        queue->changed.wait(lock, [&] { return queue->isEnded || !queue->blocks.empty(); });
        if (queue->isEnded) return;
        const std::vector<sound::StereoFrame> block = std::move(queue->blocks.front());
        queue->blocks.pop_front();
        lock.unlock();
        if (stream->write(block)) continue;
        queue->isLost = true;
        return;
    }
}

class StreamDevice final : public OutputDevice
{
public:
    StreamDevice(std::unique_ptr<SoundStream> stream, QIODevice& from) : m_from(from)
    {
        // Never waited for: a server that hangs holds it, and nobody else.
        std::thread([queue = m_queue, stream = std::move(stream)] { writeAll(queue, stream); }).detach();
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { fill(); });
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.start(kFillEvery);
    }
    ~StreamDevice() override
    {
        const std::scoped_lock lock(m_queue->mutex);
        m_queue->isEnded = true;
        m_queue->changed.notify_one();
    }
    [[nodiscard]] bool isLost() const override { return m_queue->isLost; }

private:
    [[nodiscard]] std::size_t blocksAhead() const
    {
        const std::scoped_lock lock(m_queue->mutex);
        return m_queue->blocks.size();
    }
    void fill()
    {
        if (isLost()) return;
        for (std::size_t count = blocksAhead(); count < kBlocksAhead; ++count) {
            std::vector<sound::StereoFrame> block(kBlockFrames);
            const qint64 bytes = m_from.read(reinterpret_cast<char*>(block.data()),
                                             static_cast<qint64>(kBlockFrames * sizeof(sound::StereoFrame)));
            if (bytes <= 0) return;
            block.resize(static_cast<std::size_t>(bytes) / sizeof(sound::StereoFrame));
            const std::scoped_lock lock(m_queue->mutex);
            m_queue->blocks.push_back(std::move(block));
            m_queue->changed.notify_one();
        }
    }

    QIODevice& m_from;
    std::shared_ptr<Queue> m_queue = std::make_shared<Queue>();
    QTimer m_timer;
};

/// The functions in use, opened when they are first needed: most players never lose their sound.
struct Pulse {
    decltype(&::pa_simple_new) connect = nullptr;
    decltype(&::pa_simple_write) write = nullptr;
    decltype(&::pa_simple_free) release = nullptr;

    /// @returns null where the library is not there
    static const Pulse* get()
    {
        static const std::optional<Pulse> table = load();
        return table ? &*table : nullptr;
    }

private:
    static std::optional<Pulse> load()
    {
        // Never closed: the functions are used until the process ends.
        void* library = dlopen("libpulse-simple.so.0", RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) return {};
        const Pulse table{
            reinterpret_cast<decltype(connect)>(dlsym(library, "pa_simple_new")),
            reinterpret_cast<decltype(write)>(dlsym(library, "pa_simple_write")),
            reinterpret_cast<decltype(release)>(dlsym(library, "pa_simple_free")),
        };
        if (table.connect == nullptr || table.write == nullptr || table.release == nullptr) return {};
        return table;
    }
};

class PulseStream final : public SoundStream
{
public:
    PulseStream(const Pulse& pulse, pa_simple* stream) : m_pulse(pulse), m_stream(stream) {}
    ~PulseStream() override { m_pulse.release(m_stream); }
    PulseStream(const PulseStream&) = delete;
    PulseStream& operator=(const PulseStream&) = delete;
    bool write(std::span<const sound::StereoFrame> frames) override
    {
        return m_pulse.write(m_stream, frames.data(), frames.size_bytes(), nullptr) >= 0;
    }

private:
    const Pulse& m_pulse;
    pa_simple* m_stream;
};

} // namespace

OpenStream pulseStreams(std::string application)
{
    return [application = std::move(application)]() -> std::unique_ptr<SoundStream> {
        const Pulse* pulse = Pulse::get();
        if (pulse == nullptr) return nullptr;
        const pa_sample_spec format{PA_SAMPLE_S16NE, sound::kMixRate, 2};
        constexpr auto kServerChooses = static_cast<std::uint32_t>(-1);
        const pa_buffer_attr buffer{kServerChooses,
                                    sound::kMixRate * kServerBufferMs / 1000 *
                                        static_cast<std::uint32_t>(sizeof(sound::StereoFrame)),
                                    kServerChooses, kServerChooses, kServerChooses};
        pa_simple* stream = pulse->connect(nullptr, application.c_str(), PA_STREAM_PLAYBACK, nullptr,
                                           application.c_str(), &format, nullptr, &buffer, nullptr);
        if (stream == nullptr) return nullptr;
        return std::make_unique<PulseStream>(*pulse, stream);
    };
}

struct ServerOutput::Search {
    explicit Search(milliseconds pauseBetween) : pause(pauseBetween) {}
    const milliseconds pause;
    std::mutex mutex;
    std::condition_variable changed;
    steady_clock::time_point asked;
    bool isRunning = false, isEnded = false;
    std::unique_ptr<SoundStream> found;

    static void run(const std::shared_ptr<Search>& search, const OpenStream& open)
    {
        std::unique_lock lock(search->mutex);
        while (!search->isEnded && steady_clock::now() - search->asked < kForgotten) {
            lock.unlock();
            auto stream = open();
            lock.lock();
            if (stream != nullptr) {
                search->found = std::move(stream);
                break;
            }
            search->changed.wait_for(lock, search->pause, [&] { return search->isEnded; });
        }
        search->isRunning = false;
    }
};

ServerOutput::ServerOutput(OpenStream open, milliseconds pause)
    : m_open(std::move(open)), m_search(std::make_shared<Search>(pause))
{
}

ServerOutput::~ServerOutput()
{
    const std::scoped_lock lock(m_search->mutex);
    m_search->isEnded = true;
    m_search->changed.notify_one();
}

std::unique_ptr<OutputDevice> ServerOutput::open(QIODevice& from)
{
    std::unique_ptr<SoundStream> stream;
    {
        const std::scoped_lock lock(m_search->mutex);
        m_search->asked = steady_clock::now();
        stream = std::move(m_search->found);
        if (stream == nullptr && !m_search->isRunning) {
            m_search->isRunning = true;
            std::thread([search = m_search, open = m_open] { Search::run(search, open); }).detach();
        }
    }
    if (stream == nullptr) return nullptr;
    return std::make_unique<StreamDevice>(std::move(stream), from);
}

} // namespace flash
