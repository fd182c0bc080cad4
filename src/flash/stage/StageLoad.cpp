#include "base/PercentCode.h"
#include "flash/guard/Guard.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <utility>

namespace flash::stage
{

// Frames between a request for nothing, or for something that is out of reach, and its answer.
constexpr int kSlowFrames = 2;
// Bytes of a movie's file that are there at once.
constexpr double kFirstBytes = 1024;

void Stage::linkImports(const swf::Movie& movie, const std::string& url, int& librariesLeft)
{
    if (movie.importsKnown) return;
    movie.importsKnown = true;
    for (const swf::Frame& frame : movie.timeline.frames) {
        for (const swf::ControlTag& tag : frame.tags) {
            const auto* wanted = std::get_if<swf::ImportAssets>(&tag);
            // Movies that import from each other in a circle, or from themselves many times over, end here.
            if (!wanted || librariesLeft-- <= 0) continue;
            LoadRequest request;
            request.url = textOf(MoviePtr(MoviePtr(), &movie), wanted->url);
            request.baseUrl = url;
            const auto answer = m_services.loader.load(request);
            if (!answer) {
                m_services.host.logLine(answer.error().what);
                continue;
            }
            const auto library = swf::parseMovie(answer->bytes);
            if (!library) {
                m_services.host.logLine(answer->url + ": " + library.error().what);
                continue;
            }
            linkImports(**library, answer->url, librariesLeft);
            for (const auto& [id, name] : wanted->names) {
                const auto found = (*library)->exports.find(name);
                if (found == (*library)->exports.end())
                    m_services.host.logLine(answer->url + ": exports no " + name);
                else
                    movie.imports[id] = {*library, found->second};
            }
        }
    }
}

std::shared_ptr<Clip> Stage::makeLevel(int number, MoviePtr movie, std::string url)
{
    int librariesLeft = kMostLibraries;
    linkImports(*movie, url, librariesLeft);
    auto timeline = std::shared_ptr<const swf::Timeline>(movie, &movie->timeline);
    auto clip = std::make_shared<Clip>(*this, movie, std::move(timeline));
    clip->m_level = number;
    clip->m_depth = kTimelineDepth + number;
    clip->m_movieRoot = true;
    clip->m_url = std::move(url);
    m_levels[number] = clip;
    enlist(clip);
    setQueryVariables(*clip, clip->m_url);
    invalidateAll();
    return clip;
}

void Stage::setQueryVariables(Clip& clip, const std::string& url)
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
        m_script->setVariable(clip, base::percentDecoded(pair.substr(0, equals), base::Plus::Space),
                              base::percentDecoded(pair.substr(equals + 1), base::Plus::Space));
    }
}

base::Result<LoadAnswer> Stage::answerTo(const LoadRequest& request)
{
    guard::check();
    if (m_loads.size() >= guard::kMostLoads || m_loadedBytes >= guard::kMostLoadedBytes) {
        constexpr std::string_view kText = "The movie loads more at once than is allowed; the rest fails";
        guard::refuse(guard::Bound::Loads, kText);
        return base::fail(base::ErrorCode::LimitReached, request.url + ": too many loads at once");
    }
    auto answer = m_services.loader.load(request);
    if (answer) m_loadedBytes += answer->bytes.size();
    return answer;
}

void Stage::wait(Pending load)
{
    // Those that fail are told of it, but not without end.
    constexpr std::size_t kMostToldOf = 4 * guard::kMostLoads;
    if (m_loads.size() < kMostToldOf)
        m_loads.push_back(std::move(load));
    else if (load.answer) // an answer that nobody waits for
        m_loadedBytes -= load.answer->bytes.size();
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

void Stage::loadIntoClip(Clip& target, LoadRequest request, std::shared_ptr<LoadListener> listener)
{
    if (target.levelNumber() >= 0) {
        loadIntoLevel(target.levelNumber(), std::move(request), std::move(listener));
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

void Stage::loadIntoLevel(int level, LoadRequest request, std::shared_ptr<LoadListener> listener)
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

long long Stage::dueFrame(const Pending& load) const
{
    const bool denied = !load.answer && load.answer.error().code == base::ErrorCode::Denied;
    return denied || load.unload ? m_frameCounter + kSlowFrames : m_frameCounter;
}

void Stage::requestUnload(Clip& target)
{
    if (target.levelNumber() >= 0) return requestUnload(target.levelNumber());
    Pending load;
    load.clip = std::static_pointer_cast<Clip>(target.shared_from_this());
    load.intoClip = load.unload = true;
    load.frame = dueFrame(load);
    wait(std::move(load));
}

void Stage::requestUnload(int level)
{
    Pending load;
    load.level = level;
    load.intoLevel = load.unload = true;
    load.frame = dueFrame(load);
    wait(std::move(load));
}

void Stage::fetch(LoadRequest request, LoadDone done)
{
    Pending load;
    load.answer = answerTo(request);
    load.done = std::move(done);
    load.frame = m_frameCounter;
    wait(std::move(load));
}

void Stage::deliverLoads()
{
    std::vector<Pending> due, later;
    for (Pending& load : m_loads) (load.frame > m_frameCounter ? later : due).push_back(std::move(load));
    m_loads = std::move(later);
    for (const Pending& load : due)
        if (load.answer) m_loadedBytes -= load.answer->bytes.size();
    deliver(std::move(due));
}

void Stage::deliver(std::vector<Pending> due)
{
    for (Pending& load : due) {
        guard::check();
        finishLoad(load);
        runQueue();
    }
}

void Stage::reportInitialized()
{
    if (m_initializing.empty()) return;
    const auto ready = std::exchange(m_initializing, {});
    for (auto entry = ready.rbegin(); entry != ready.rend(); ++entry) {
        const std::shared_ptr<Clip> clip = entry->first.lock();
        if (clip && !clip->isRemoved()) entry->second->initialized(*clip);
    }
    runQueue();
}

void Stage::finishLoad(Pending& load)
{
    if (load.done) {
        if (!load.answer) m_services.host.logLine(load.answer.error().what);
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
    if (!load.answer) {
        m_services.host.logLine(load.answer.error().what);
        if (load.intoLevel) clip = m_levels.contains(load.level) ? m_levels[load.level] : nullptr;
        // Another place than the movie's own is not even asked.
        const bool denied = load.answer.error().code == base::ErrorCode::Denied;
        if (load.intoClip && !gone && !denied) {
            fill(*clip, nullptr, load.url);
            clip->m_content = Clip::Content::Missing;
            clip->m_begun = true;
            clip->m_frame = 0;
        }
        if (load.listener)
            load.listener->failed(gone ? nullptr : clip.get(), denied ? "IllegalRequest" : "URLNotFound");
        return;
    }
    if (gone) return;
    // Its address is the one that was asked for, however that was written.
    if (!load.url.empty()) load.answer->url = load.url;
    const auto movie = swf::parseMovie(load.answer->bytes);
    if (movie && (*movie)->isAs3) {
        m_services.host.logLine(load.answer->url + ": ActionScript 3 is not supported");
        if (load.listener) load.listener->failed(clip.get(), "LoadNeverCompleted");
        return;
    }
    if (load.intoLevel && load.level == 0 && movie) {
        // The movie itself is replaced, with all levels and timers.
        m_script->movieReplaced();
        const auto levels = std::move(m_levels);
        m_levels.clear();
        m_movie = *movie;
        m_url = load.answer->url;
        for (const auto& [number, root] : levels) {
            queueUnload(*root);
            runQueue();
            retire(*root);
        }
        adoptHeader();
        clip = makeLevel(0, *movie, load.answer->url);
    } else if (load.intoLevel) {
        unloadLevel(load.level);
        if (movie) {
            clip = makeLevel(load.level, *movie, load.answer->url);
        } else {
            clip = std::make_shared<Clip>(*this, m_movie, emptyTimeline());
            clip->m_level = load.level;
            clip->m_depth = kTimelineDepth + load.level;
            m_levels[load.level] = clip;
            enlist(clip);
            fillFrom(*clip, *load.answer);
        }
    } else if (movie) {
        fill(*clip, *movie, load.answer->url);
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
    queueEvent(*clip, Event::Data);
}

void Stage::fill(Clip& clip, MoviePtr movie, std::string url)
{
    // What was here hears of its end before its variables go.
    if (clip.hasClipEvent(Event::Unload) || m_script->hasHandler(clip, Event::Unload))
        runEvent(clip, Event::Unload);
    clip.invalidate();
    clip.removeAllChildren();
    if (clip.m_streaming) m_services.sound.stopStream(&clip);
    clip.m_streaming = false;
    clip.m_drawing.reset();
    clip.forgetBounds();
    if (!clip.m_clipActionsMovie) clip.m_clipActionsMovie = clip.m_movie;
    if (movie) {
        int librariesLeft = kMostLibraries;
        linkImports(*movie, url, librariesLeft);
        clip.m_timeline = std::shared_ptr<const swf::Timeline>(movie, &movie->timeline);
        clip.m_movie = std::move(movie);
    } else {
        clip.m_timeline = emptyTimeline();
    }
    clip.m_movieRoot = true;
    clip.m_url = std::move(url);
    clip.m_frame = -1;
    clip.m_playing = true;
    clip.m_begun = false;
    clip.m_content = Clip::Content::Timeline;
    m_script->clipReset(clip);
    // A loaded movie takes its turn as one that has just come.
    const auto self = std::static_pointer_cast<Clip>(clip.shared_from_this());
    if (std::erase(m_clips, self) > 0) enlist(self);
}

// What is no movie may be a picture.
void Stage::fillFrom(Clip& clip, const LoadAnswer& answer)
{
    auto picture = swf::decodePicture(answer.bytes);
    fill(clip, nullptr, answer.url);
    clip.m_begun = true;
    clip.m_frame = 0;
    clip.m_content = picture ? Clip::Content::Picture : Clip::Content::Missing;
    clip.m_fileBytes = answer.bytes.size();
    if (!picture) {
        m_services.host.logLine(answer.url + ": " + picture.error().what);
        return;
    }
    clip.attachBitmap(*picture, kTimelineDepth + 1, false);
}

void Stage::unloadLevel(int level)
{
    const auto found = m_levels.find(level);
    if (found == m_levels.end()) return;
    const std::shared_ptr<Clip> root = found->second;
    if (queueUnload(*root)) runQueue();
    invalidateAll();
    m_levels.erase(level);
    retire(*root);
}

void Stage::unloadClip(Clip& target)
{
    if (target.levelNumber() >= 0) return unloadLevel(target.levelNumber());
    fill(target, nullptr, target.parentClip() ? target.parentClip()->m_url : target.m_url);
    if (const Clip* parent = target.parentClip()) target.m_movie = parent->m_movie;
    target.m_content = Clip::Content::Unloaded;
    target.m_begun = true;
    target.m_frame = 0;
}

} // namespace flash::stage
