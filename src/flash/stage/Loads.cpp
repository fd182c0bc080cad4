#include "flash/stage/Loads.h"

#include "base/PercentCode.h"
#include "flash/guard/Guard.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <utility>

namespace flash::stage
{

// Frames between a request for something that is out of reach and its answer; and for nothing, which takes
// longer when it is asked for as the movie begins.
constexpr int kRefusalFrames = 2, kEmptyFrames = 1, kFirstEmptyFrames = 2;
// Bytes of a movie's file that are there at once.
constexpr double kFirstBytes = 1024;

std::shared_ptr<Clip> Loads::makeLevel(int number, MoviePtr movie, std::string url)
{
    m_stage.linkage().linkImports(*movie, url);
    auto timeline = std::shared_ptr<const swf::Timeline>(movie, &movie->timeline);
    auto clip = std::make_shared<Clip>(m_stage, movie, std::move(timeline));
    clip->becomeLevel(number);
    clip->becomeMovieRoot(std::move(url));
    m_stage.displayList().setLevel(number, clip);
    m_stage.displayList().enlist(clip);
    setQueryVariables(*clip, clip->url());
    m_stage.view().invalidateAll();
    return clip;
}

void Loads::setQueryVariables(Clip& clip, const std::string& url)
{
    const std::size_t query = url.find('?');
    if (query == std::string::npos) return;
    std::string_view rest = std::string_view(url).substr(query + 1);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('&'), rest.size());
        const std::string_view pair = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const std::size_t equals = pair.find('=');
        if (equals == std::string_view::npos || equals == 0) continue;
        m_stage.script().setVariable(clip, base::percentDecoded(pair.substr(0, equals), base::Plus::Space),
                                     base::percentDecoded(pair.substr(equals + 1), base::Plus::Space));
    }
}

base::Result<LoadAnswer> Loads::answerTo(const LoadRequest& request)
{
    guard::check();
    if (m_pending.size() >= guard::kMaxLoads || m_bytes >= guard::kMaxLoadedBytes) {
        constexpr std::string_view kText = "The movie loads more at once than is allowed; the rest fails";
        guard::refuse(guard::Bound::Loads, kText);
        return base::fail(base::ErrorCode::LimitReached, request.url + ": too many loads at once");
    }
    auto answer = m_stage.services().loader.load(request);
    if (answer) m_bytes += answer->bytes.size();
    return answer;
}

void Loads::wait(Pending load)
{
    // Those that fail are told of it, but not without end.
    constexpr std::size_t kMaxReported = 4 * guard::kMaxLoads;
    if (m_pending.size() < kMaxReported)
        m_pending.push_back(std::move(load));
    else if (load.answer) // an answer that nobody waits for
        m_bytes -= load.answer->bytes.size();
}

namespace
{

/// The address that scripts see: what was asked for as it was written, beside the movie that asked. Empty
/// where that takes more than putting the two together.
std::string resolvedUrl(const LoadRequest& request)
{
    if (request.url.find("://") != std::string::npos) return request.url;
    const bool plain = !request.url.starts_with('/') && request.url.find('\\') == std::string::npos &&
                       request.url.find("..") == std::string::npos;
    if (!plain || request.baseUrl.find("://") == std::string::npos) return {};
    return request.baseUrl.substr(0, request.baseUrl.rfind('/') + 1) + request.url;
}

} // namespace

void Loads::intoClip(Clip& target, LoadRequest request, std::shared_ptr<LoadListener> listener)
{
    if (target.levelNumber() >= 0) {
        intoLevel(target.levelNumber(), std::move(request), std::move(listener));
        return;
    }
    Pending load;
    load.clip = std::static_pointer_cast<Clip>(target.shared_from_this());
    load.intoClip = true;
    load.url = resolvedUrl(request);
    load.answer = answerTo(request);
    load.listener = std::move(listener);
    load.frame = dueFrame(load);
    wait(std::move(load));
}

void Loads::intoLevel(int level, LoadRequest request, std::shared_ptr<LoadListener> listener)
{
    Pending load;
    load.level = level;
    load.intoLevel = true;
    load.url = resolvedUrl(request);
    load.answer = answerTo(request);
    load.listener = std::move(listener);
    load.frame = dueFrame(load);
    wait(std::move(load));
}

long long Loads::dueFrame(const Pending& load) const
{
    const bool denied = !load.answer && load.answer.error().code == base::ErrorCode::Denied;
    const long long now = m_stage.frameCounter();
    if (denied) return now + kRefusalFrames;
    if (load.unload) return now + (now == 0 ? kFirstEmptyFrames : kEmptyFrames);
    return now;
}

void Loads::requestUnload(Clip& target)
{
    if (target.levelNumber() >= 0) return requestUnload(target.levelNumber());
    Pending load;
    load.clip = std::static_pointer_cast<Clip>(target.shared_from_this());
    load.intoClip = load.unload = true;
    load.frame = dueFrame(load);
    wait(std::move(load));
}

void Loads::requestUnload(int level)
{
    Pending load;
    load.level = level;
    load.intoLevel = load.unload = true;
    load.frame = dueFrame(load);
    wait(std::move(load));
}

void Loads::fetch(LoadRequest request, Done done)
{
    Pending load;
    load.answer = answerTo(request);
    load.done = std::move(done);
    load.frame = m_stage.frameCounter();
    wait(std::move(load));
}

void Loads::deliver()
{
    std::vector<Pending> due, later;
    for (Pending& load : m_pending)
        (load.frame > m_stage.frameCounter() ? later : due).push_back(std::move(load));
    m_pending = std::move(later);
    for (const Pending& load : due)
        if (load.answer) m_bytes -= load.answer->bytes.size();
    for (Pending& load : due) {
        guard::check();
        finish(load);
        m_stage.queue().run();
    }
}

void Loads::reportInitialized()
{
    if (m_initializing.empty()) return;
    const auto ready = std::exchange(m_initializing, {});
    for (auto entry = ready.rbegin(); entry != ready.rend(); ++entry) {
        const std::shared_ptr<Clip> clip = entry->first.lock();
        if (clip && !clip->isRemoved()) entry->second->initialized(*clip);
    }
    m_stage.queue().run();
}

void Loads::finish(Pending& load)
{
    if (load.done) {
        if (!load.answer) m_stage.services().host.logLine(load.answer.error().what);
        load.done(load.answer);
        return;
    }
    std::shared_ptr<Clip> clip = load.clip.lock();
    if (load.unload) {
        if (load.intoLevel)
            unloadLevel(load.level);
        else if (clip && !clip->isRemoved())
            unloadClip(*clip);
        return;
    }
    const bool gone = load.intoClip && (!clip || clip->isRemoved());
    if (!load.answer) return fail(load, clip, gone);
    if (gone) return;
    // Its address is the one that was asked for, however that was written.
    if (!load.url.empty()) load.answer->url = load.url;
    const auto movie = swf::parseMovie(load.answer->bytes);
    if (movie && (*movie)->isAs3) {
        m_stage.services().host.logLine(load.answer->url +
                                        ": a movie of ActionScript 1 or 2 cannot show one of ActionScript 3");
        if (load.listener) load.listener->failed(clip.get(), "LoadNeverCompleted");
        return;
    }
    if (load.intoLevel) {
        clip = putIntoLevel(load.level, *load.answer, movie ? *movie : nullptr);
    } else if (movie) {
        clip->load(*movie, load.answer->url);
        setQueryVariables(*clip, load.answer->url);
    } else {
        fillFrom(*clip, *load.answer);
    }
    if (load.listener) {
        const double size = clip->bytesLoaded();
        load.listener->started(*clip);
        load.listener->progressed(*clip, size, size);
        // What does not come with the first bytes is reported once more when it is there.
        if (movie && size > kFirstBytes) load.listener->progressed(*clip, size, size);
        load.listener->completed(*clip);
        m_initializing.emplace_back(clip, load.listener);
    }
    m_stage.queue().addEvent(*clip, Event::Data);
}

void Loads::fail(Pending& load, std::shared_ptr<Clip> clip, bool gone)
{
    m_stage.services().host.logLine(load.answer.error().what);
    if (load.intoLevel) {
        Clip* root = m_stage.displayList().level(load.level);
        clip = root ? std::static_pointer_cast<Clip>(root->shared_from_this()) : nullptr;
    }
    // Another place than the movie's own is not even asked.
    const bool denied = load.answer.error().code == base::ErrorCode::Denied;
    if (load.intoClip && !gone && !denied) {
        clip->load(nullptr, load.url);
        clip->showContent(Clip::Content::Missing);
    }
    if (load.listener)
        load.listener->failed(gone ? nullptr : clip.get(), denied ? "IllegalRequest" : "URLNotFound");
}

std::shared_ptr<Clip> Loads::putIntoLevel(int level, const LoadAnswer& answer, const MoviePtr& movie)
{
    if (level == 0 && movie) return m_stage.replaceMovie(movie, answer.url);
    unloadLevel(level);
    if (movie) return makeLevel(level, movie, answer.url);
    auto clip = std::make_shared<Clip>(m_stage, m_stage.movie(), m_stage.displayList().emptyTimeline());
    clip->becomeLevel(level);
    m_stage.displayList().setLevel(level, clip);
    m_stage.displayList().enlist(clip);
    fillFrom(*clip, answer);
    return clip;
}

// What is no movie may be a picture.
void Loads::fillFrom(Clip& clip, const LoadAnswer& answer)
{
    auto picture = swf::decodePicture(answer.bytes);
    clip.load(nullptr, answer.url);
    clip.showContent(picture ? Clip::Content::Picture : Clip::Content::Missing, answer.bytes.size());
    if (!picture) {
        m_stage.services().host.logLine(answer.url + ": " + picture.error().what);
        return;
    }
    clip.attachBitmap(*picture, kTimelineDepth + 1, false);
}

void Loads::unloadLevel(int level)
{
    Clip* found = m_stage.displayList().level(level);
    if (!found) return;
    const NodePtr root = found->shared_from_this();
    if (m_stage.displayList().queueUnload(*root)) m_stage.queue().run();
    m_stage.view().invalidateAll();
    m_stage.displayList().eraseLevel(level);
    m_stage.displayList().retire(*root);
}

void Loads::unloadClip(Clip& target)
{
    if (target.levelNumber() >= 0) return unloadLevel(target.levelNumber());
    target.unload();
}

void Loads::clear()
{
    m_pending.clear();
    m_initializing.clear();
    m_bytes = 0;
}

} // namespace flash::stage
