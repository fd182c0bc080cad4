#pragma once

#include "flash/stage/Clip.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flash::stage
{

/// What a load reports to whoever asked (MovieClipLoader); all optional.
struct LoadListener {
    virtual ~LoadListener() = default;
    virtual void started(Clip&) {}
    virtual void progressed(Clip&, double /*loaded*/, double /*total*/) {}
    virtual void completed(Clip&) {}
    /// The first frame's scripts have run.
    virtual void initialized(Clip&) {}
    /// @param clip null when it is gone
    virtual void failed(Clip* /*clip*/, std::string_view /*error*/) {}
};

/// What scripts and the host have loaded into a running movie.
///
/// Loads have their answers at the end of the frame in which they were asked for. They report in that
/// order; the movies that came run their first frames in the next frame, as the other clips do: the newest
/// first, and are reported as ready in that order when all scripts of the frame are done. What is refused,
/// has its answer at the start of the frame after the next one, a load of nothing (an empty address) at that
/// of the next.
class Loads
{
public:
    explicit Loads(Stage& stage) : m_stage(stage) {}
    Loads(const Loads&) = delete;
    Loads& operator=(const Loads&) = delete;

    void intoClip(Clip& target, LoadRequest request, std::shared_ptr<LoadListener> listener = nullptr);
    void intoLevel(int level, LoadRequest request, std::shared_ptr<LoadListener> listener = nullptr);
    /// At once.
    void unloadLevel(int level);
    void unloadClip(Clip& target);
    /// As a load of nothing.
    void requestUnload(Clip& target);
    void requestUnload(int level);
    /// Fetches bytes; `done` runs with this frame's other answers.
    using Done = std::function<void(const base::Result<LoadAnswer>&)>;
    void fetch(LoadRequest request, Done done);

    /// A level of its own for a movie; its first frame is yet to be shown.
    std::shared_ptr<Clip> makeLevel(int number, MoviePtr movie, std::string url);
    /// Hands out the answers that are due.
    void deliver();
    /// Tells those whose movies came that the first frames have run.
    void reportInitialized();
    void clear();

private:
    struct Pending {
        std::weak_ptr<Clip> clip;
        int level = -1; ///< when there is no clip
        bool intoClip = false, intoLevel = false, unload = false;
        std::string url; ///< as asked for, for what cannot be had
        base::Result<LoadAnswer> answer = LoadAnswer{};
        std::shared_ptr<LoadListener> listener;
        Done done;
        long long frame = 0; ///< not before this one
    };

    void wait(Pending load);
    base::Result<LoadAnswer> answerTo(const LoadRequest& request);
    [[nodiscard]] long long dueFrame(const Pending& load) const;
    void finish(Pending& load);
    void fail(Pending& load, std::shared_ptr<Clip> clip, bool gone);
    /// @returns what the movie, or the picture when it is none, was put into
    std::shared_ptr<Clip> putIntoLevel(int level, const LoadAnswer& answer, const MoviePtr& movie);
    void fillFrom(Clip& clip, const LoadAnswer& answer);
    void setQueryVariables(Clip& clip, const std::string& url);

    Stage& m_stage;
    std::vector<Pending> m_pending;
    std::size_t m_bytes = 0; ///< that wait in m_pending
    /// Loads whose movies have come but not run yet.
    std::vector<std::pair<std::weak_ptr<Clip>, std::shared_ptr<LoadListener>>> m_initializing;
};

} // namespace flash::stage
