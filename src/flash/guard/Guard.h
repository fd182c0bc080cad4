#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

// What one movie may use of the machine, and how it is stopped. Bounds of what a file may define stand in
// swf::ParseLimits, those of calls and of the time of scripts in avm1::Vm.
namespace flash::guard
{

/// Instances that exist at one time, on the stage or taken off it.
constexpr std::size_t kMaxInstances = 100'000;
/// Instances within each other.
constexpr int kDeepestNesting = 1000;
/// Objects, texts, lists and bitmaps that scripts made and can still reach, and those not yet collected.
constexpr std::size_t kMaxScriptBytes = std::size_t{512} << 20;
/// What the process may grow by while the movie plays, whatever it is that takes the memory. Looked at now
/// and then; what can be counted is bounded below this.
constexpr std::size_t kMaxGrowthBytes = std::size_t{2} << 30;
/// The text of one text field, UTF-16 units.
constexpr std::size_t kLongestFieldText = std::size_t{1} << 19;
/// One text of a script, UTF-16 units.
constexpr std::size_t kLongestText = std::size_t{1} << 25;
/// Elements that an array keeps; its length may be larger.
constexpr std::size_t kMaxElements = std::size_t{1} << 23;
/// Answers that wait for their frame.
constexpr std::size_t kMaxLoads = 300;
constexpr std::size_t kMaxLoadedBytes = std::size_t{256} << 20;
/// What is held at one time of all that was loaded together: the bytes of movies, inflated, what their tags
/// become, pictures, sounds, videos and the pictures that these are decoded to. See Holding.h.
constexpr std::size_t kMaxHeldBytes = std::size_t{1} << 30;
/// Commands and addresses that wait for the host until the scripts at hand are done.
constexpr std::size_t kMaxRequests = 10'000;
constexpr std::size_t kMaxRequestBytes = std::size_t{32} << 20;
/// Timers that run at one time.
constexpr std::size_t kMaxTimers = 1000;
/// Shared objects that a movie looks at in one run.
constexpr std::size_t kMaxSharedObjects = 256;
/// Scripts that wait to be run.
constexpr std::size_t kMaxQueued = 1'000'000;
/// From the beginning of a frame, until the user is asked between two scripts whether to go on.
constexpr std::chrono::milliseconds kFrameTime{15'000};
/// The same, until what cannot be asked in between ends the movie; scripts may be allowed more.
constexpr std::chrono::milliseconds kLongestFrameTime{25'000};
/// For drawing one picture.
constexpr std::chrono::milliseconds kDrawTime{10'000};

/// What can be refused piece by piece; each is reported once for a movie.
enum class Bound : std::uint8_t {
    Instances,
    Nesting,
    SelfContained,
    ScriptMemory,
    Texts,
    Loads,
    Held,
    Requests,
    Scripts,
    SharedObjects,
    Timers,
    Filters,
};

/// The movie cannot go on: thrown from wherever that shows, caught by the engine, which closes the movie.
/// What the movie leaves behind is fit for nothing but to be destroyed.
class MovieEnded : public std::exception
{
public:
    enum class Cause : std::uint8_t { Memory, Time, Interrupted };
    MovieEnded(Cause cause, std::string why) : m_cause(cause), m_why(std::move(why)) {}
    [[nodiscard]] Cause cause() const { return m_cause; }
    [[nodiscard]] const char* what() const noexcept override { return m_why.c_str(); }

private:
    Cause m_cause;
    std::string m_why;
};

class Ledger;

/// The process is about to end: every movie in it is interrupted for ever. From any thread or signal handler.
void interruptAll() noexcept;

/// @returns what the process holds in memory; 0 where the system does not tell.
[[nodiscard]] std::size_t residentBytes();

/// Watches over one movie. Belongs to the engine; while that works for the movie, a Turn makes it known to
/// all that happens on the thread, so that code deep within a walk or a filter can ask without being handed
/// it.
class Guard
{
public:
    using Clock = std::chrono::steady_clock;
    /// @param text English, for the log
    using Report = std::function<void(Bound, std::string_view text)>;

    using ResidentBytes = std::size_t (*)();
    explicit Guard(ResidentBytes measure = &residentBytes);
    ~Guard();
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    void setReport(Report report) { m_report = std::move(report); }

    enum class Until : std::uint8_t {
        NextMovie,
        Ever, ///< the process is about to end
    };
    /// Stops whatever the movie does, within some milliseconds. From any thread or signal handler.
    void interrupt(Until until) noexcept
    {
        if (until == Until::Ever) m_forever.store(true, std::memory_order_relaxed);
        m_interrupted.store(true, std::memory_order_relaxed);
    }
    [[nodiscard]] bool isInterrupted() const noexcept;
    /// What was interrupted has ended.
    void settle()
    {
        m_interrupted.store(m_forever.load(std::memory_order_relaxed), std::memory_order_relaxed);
    }
    /// Another movie begins: reports are made again, only what was interrupted for ever stays so, and what
    /// the movie before still holds until it is gone counts no more.
    void renew();
    /// How much the movies to come may hold; kMaxHeldBytes by default.
    void setMostHeld(std::size_t bytes);
    [[nodiscard]] const std::shared_ptr<Ledger>& ledger() const { return m_ledger; }

    /// A frame begins, or the user was asked and wants to go on.
    void restartClock() { m_start = Clock::now(); }
    [[nodiscard]] Clock::duration elapsed() const { return Clock::now() - m_start; }
    /// Scripts may run for that long before the user is asked.
    void setScriptTime(std::chrono::milliseconds time) { m_scriptTime = time; }
    [[nodiscard]] bool isOverdue() const { return elapsed() > std::max(kFrameTime, m_scriptTime); }

    /// @throws MovieEnded when the movie has been interrupted or the process has grown too much
    void lookAround();

    /// The movie is being taken down: nothing throws any more.
    void setEnding(bool ending) { m_ending = ending; }

    void spend(std::uint32_t steps)
    {
        if (steps < m_stepsLeft)
            m_stepsLeft -= steps;
        else
            look();
    }
    void refuse(Bound bound, std::string_view text);

    enum class Work : std::uint8_t { Frames, Drawing };

private:
    friend class Turn;
    void look();

    ResidentBytes m_measure;
    Report m_report;
    std::shared_ptr<Ledger> m_ledger; ///< of the movie at hand
    std::atomic<bool> m_interrupted = false, m_forever = false;
    bool m_ending = false;
    Clock::time_point m_start = Clock::now();
    // Since its memory was measured last the movie has worked for `m_workedBefore` in turns that are over, and
    // in the one at hand since `m_workingSince`.
    Clock::time_point m_measuredAt{}, m_workingSince = m_start;
    Clock::duration m_workedBefore{0};
    std::size_t m_bytesBefore = 0; ///< resident, when the movie began
    std::chrono::milliseconds m_scriptTime{0};
    Work m_work = Work::Frames;
    std::uint32_t m_stepsLeft = 0;
    std::uint32_t m_refused = 0; ///< a bit for each Bound
    int m_turns = 0;
};

/// The engine works for the guard's movie for as long as this exists. Turns may nest; the outermost starts
/// the clock.
class Turn
{
public:
    using Work = Guard::Work;
    explicit Turn(Guard& guard, Work work = Work::Frames);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    Guard& m_guard;
    Guard* m_outer;
    Work m_outerWork;
};

/// The guard whose turn it is on this thread, or null.
[[nodiscard]] Guard* current();

/// To be called in every loop, walk or recursion whose length a movie decides. @param steps of a microsecond
/// @throws MovieEnded when the movie has been interrupted or its time is up
inline void check(std::uint32_t steps = 1)
{
    if (Guard* guard = current()) guard->spend(steps);
}

/// Something the movie wanted is not done. Once for each bound the host is told.
inline void refuse(Bound bound, std::string_view text)
{
    if (Guard* guard = current()) guard->refuse(bound, text);
}

inline void restartClock()
{
    if (Guard* guard = current()) guard->restartClock();
}

} // namespace flash::guard
