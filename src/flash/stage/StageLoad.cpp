#include "flash/guard/Guard.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"

#include <algorithm>

namespace flash::stage
{

namespace
{

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string decodedComponent(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+') {
            result += ' ';
        } else if (text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0 &&
                   hexDigit(text[i + 2]) >= 0) {
            result += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace

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
    clip->begin();
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
        m_script->setVariable(clip, decodedComponent(pair.substr(0, equals)),
                              decodedComponent(pair.substr(equals + 1)));
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
    if (m_loads.size() < kMostToldOf) m_loads.push_back(std::move(load));
}

void Stage::loadIntoClip(Clip& target, LoadRequest request, std::shared_ptr<LoadListener> listener)
{
    if (target.levelNumber() >= 0) {
        loadIntoLevel(target.levelNumber(), std::move(request), std::move(listener));
        return;
    }
    Pending load{std::static_pointer_cast<Clip>(target.shared_from_this()),
                 -1,
                 true,
                 false,
                 answerTo(request),
                 std::move(listener),
                 {},
                 m_frameCounter};
    wait(std::move(load));
}

void Stage::loadIntoLevel(int level, LoadRequest request, std::shared_ptr<LoadListener> listener)
{
    // Replacing the movie itself waits for its present frame to be over.
    const long long frame = level == 0 ? m_frameCounter + 1 : m_frameCounter;
    Pending load{{}, level, false, true, answerTo(request), std::move(listener), {}, frame};
    wait(std::move(load));
}

void Stage::fetch(LoadRequest request, LoadDone done)
{
    Pending load{{}, -1, false, false, answerTo(request), nullptr, std::move(done), m_frameCounter};
    wait(std::move(load));
}

void Stage::deliverLoads()
{
    std::vector<Pending> due, later;
    for (Pending& load : m_loads) (load.frame > m_frameCounter ? later : due).push_back(std::move(load));
    m_loads = std::move(later);
    for (const Pending& load : due)
        if (load.answer) m_loadedBytes -= load.answer->bytes.size();
    for (Pending& load : due) {
        guard::check();
        finishLoad(load);
        runQueue();
    }
}

void Stage::finishLoad(Pending& load)
{
    if (load.done) {
        if (!load.answer) m_services.host.logLine(load.answer.error().what);
        load.done(load.answer);
        return;
    }
    std::shared_ptr<Clip> clip = load.clip.lock();
    if (load.intoClip && (!clip || clip->isRemoved())) return;
    if (!load.answer) {
        m_services.host.logLine(load.answer.error().what);
        if (load.listener) {
            if (load.intoLevel) clip = m_levels.contains(load.level) ? m_levels[load.level] : nullptr;
            if (clip) load.listener->failed(*clip, "URLNotFound");
        }
        return;
    }
    if (load.intoLevel) {
        auto movie = swf::parseMovie(load.answer->bytes);
        MoviePtr parsed = movie ? *movie : nullptr;
        if (parsed && parsed->isAs3) {
            m_services.host.logLine(load.answer->url + ": ActionScript 3 is not supported");
            return;
        }
        if (load.level == 0 && parsed) {
            const std::string url = load.answer->url;
            m_movie = parsed;
            m_url = url;
            const auto levels = std::move(m_levels);
            m_levels.clear();
            for (const auto& [number, root] : levels) {
                queueUnload(*root);
                runQueue();
                retire(*root);
            }
            adoptHeader();
        } else {
            unloadLevel(load.level);
        }
        if (parsed) {
            clip = makeLevel(load.level, parsed, load.answer->url);
        } else {
            auto root = std::make_shared<Clip>(*this, m_movie, emptyTimeline());
            root->m_level = load.level;
            root->m_depth = kTimelineDepth + load.level;
            m_levels[load.level] = root;
            enlist(root);
            fillFrom(*root, *load.answer);
            clip = root;
        }
    } else if (!fillFrom(*clip, *load.answer)) {
        if (load.listener) load.listener->failed(*clip, "LoadNeverCompleted");
        return;
    }
    if (load.listener) {
        const std::size_t size = load.answer->bytes.size();
        load.listener->started(*clip);
        load.listener->progressed(*clip, size, size);
        load.listener->completed(*clip);
    }
    queueEvent(*clip, Event::Data);
    runQueue();
    if (load.listener && !clip->isRemoved()) load.listener->initialized(*clip);
}

void Stage::fill(Clip& clip, MoviePtr movie, std::string url)
{
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
    m_script->clipReset(clip);
}

bool Stage::fillFrom(Clip& clip, const LoadAnswer& answer)
{
    if (auto movie = swf::parseMovie(answer.bytes)) {
        if ((*movie)->isAs3) {
            m_services.host.logLine(answer.url + ": ActionScript 3 is not supported");
            return false;
        }
        fill(clip, *movie, answer.url);
        setQueryVariables(clip, answer.url);
        clip.begin();
        return true;
    }
    auto picture = swf::decodePicture(answer.bytes);
    fill(clip, nullptr, answer.url);
    if (!picture) {
        m_services.host.logLine(answer.url + ": " + picture.error().what);
        clip.begin();
        return false;
    }
    clip.attachBitmap(*picture, kTimelineDepth + 1, false);
    clip.begin();
    return true;
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
    if (target.levelNumber() >= 0) {
        unloadLevel(target.levelNumber());
        return;
    }
    queueEvent(target, Event::Unload);
    fill(target, nullptr, target.m_url);
    target.m_begun = true;
    target.m_frame = 0;
}

} // namespace flash::stage
