#include "flash/stage/Stage.h"

#include "base/Ascii.h"
#include "base/TextCodes.h"
#include "flash/guard/Guard.h"
#include "flash/render/RenderCache.h"
#include "flash/stage/Button.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/TextField.h"
#include "flash/stage/TextFonts.h"

#include <algorithm>
#include <cmath>

namespace flash::stage
{

Stage::Stage(Services services, ScriptHost* script)
    : m_services(services), m_script(script ? script : &m_noScript),
      m_renderCache(std::make_unique<render::RenderCache>()), m_textFonts(std::make_unique<TextFonts>(*this))
{
}

Stage::~Stage() { close(); }

void Stage::setScript(ScriptHost* script) { m_script = script ? script : &m_noScript; }

std::string Stage::textOf(const MoviePtr& movie, std::string_view bytes) const
{
    if (movie && movie->header.version >= 6) return std::string(bytes);
    return textCode().utf8From(bytes);
}

Clip* Stage::level(int number)
{
    const auto found = m_levels.find(number);
    return found == m_levels.end() ? nullptr : found->second.get();
}

void Stage::open(MoviePtr movie, std::string url)
{
    close();
    m_movie = movie;
    m_url = url;
    adoptHeader();
    m_nowMs = 0;
    m_nextFrameMs = frameMs();
    m_frameCounter = 0;
    m_instanceCounter = 0;
    m_services.host.readyStateChanged(1);
    makeLevel(0, std::move(movie), std::move(url))->begin();
    runQueue();
    deliverLoads();
    syncTextFields();
    m_script->frameEnded();
    m_services.host.progressed(100);
    m_services.host.readyStateChanged(4);
}

void Stage::adoptHeader()
{
    m_frameRate = m_movie->header.frameRate > 0 ? m_movie->header.frameRate : 12;
    m_movieBackground = m_hostBackground = false;
    m_background = m_movie->hasBackground ? m_movie->background : swf::Rgba{255, 255, 255, 255};
    invalidateAll();
}

void Stage::close()
{
    m_services.sound.stopAll();
    m_focus.reset();
    m_over.reset();
    m_pressed.reset();
    m_dragged.reset();
    m_dropTarget = nullptr;
    m_loads.clear();
    m_initializing.clear();
    m_holdRequests = false;
    m_requests.clear();
    m_requestBytes = m_loadedBytes = 0;
    m_unloading.clear();
    for (int priority = 0; priority < kPriorities; ++priority) {
        m_queue[priority].clear();
        m_queueHead[priority] = 0;
    }
    const auto levels = std::move(m_levels);
    m_levels.clear();
    for (const auto& [number, root] : levels) retire(*root);
    m_clips.clear();
    m_initialized.clear();
    m_linkageNames.clear();
    m_changedNodes.clear();
    m_boundFields.clear();
    m_keysDown.clear();
    m_keysAsked = false;
    m_movie.reset();
    invalidateAll();
}

// ---- instances --------------------------------------------------------------------------------------------

std::shared_ptr<const swf::Timeline> Stage::emptyTimeline()
{
    if (!m_emptyTimeline) m_emptyTimeline = std::make_shared<swf::Timeline>();
    return m_emptyTimeline;
}

bool Stage::hasRoomIn(const Node& parent) const
{
    guard::check();
    if (parent.m_nesting + 1 >= guard::kDeepestNesting) {
        guard::refuse(guard::Bound::Nesting, "Clips are nested too deeply; the innermost are left out");
        return false;
    }
    if (*m_instances < guard::kMostInstances) return true;
    guard::refuse(guard::Bound::Instances,
                  "The movie shows too many things at one time; further ones are left out");
    return false;
}

bool Stage::wouldContainItself(const Node& node, const Node& parent)
{
    for (const Node* above = &parent; above->m_parent; above = above->m_parent) {
        if (above->m_characterId == node.m_characterId && above->m_movie == node.m_movie &&
            above->m_kind == node.m_kind) {
            guard::refuse(guard::Bound::SelfContained, "Character " + std::to_string(node.m_characterId) +
                                                           " contains itself; the inner one is left out");
            return true;
        }
        // Scripts may put anything into anything; they come to an end by themselves.
        if (above->m_placedFrame < 0 && above->m_parent->m_kind == NodeKind::Clip) return false;
    }
    return false;
}

NodePtr Stage::makeNode(const MoviePtr& movie, std::uint16_t characterId)
{
    if (movie) {
        // What an imported character places is of its own movie.
        if (const auto other = movie->imports.find(characterId); other != movie->imports.end())
            return makeNode(other->second.movie, other->second.id);
    }
    const swf::Character* character = movie ? movie->character(characterId) : nullptr;
    if (!character) return nullptr;
    NodePtr node;
    if (const auto* shape = std::get_if<swf::ShapeCharacter>(&character->data)) {
        if (shape->shape) node = std::make_shared<ShapeNode>(*this, shape->shape);
    } else if (const auto* morph = std::get_if<swf::MorphCharacter>(&character->data)) {
        if (morph->morph) node = std::make_shared<MorphNode>(*this, morph->morph);
    } else if (const auto* text = std::get_if<swf::StaticText>(&character->data)) {
        node = std::make_shared<StaticTextNode>(*this, movie, *text);
    } else if (const auto* edit = std::get_if<swf::EditText>(&character->data)) {
        node = std::make_shared<TextField>(*this, movie, *edit);
    } else if (const auto* button = std::get_if<swf::Button>(&character->data)) {
        node = std::make_shared<Button>(*this, movie, *button);
    } else if (const auto* video = std::get_if<swf::VideoStream>(&character->data)) {
        node = std::make_shared<VideoNode>(*this, *video);
    } else if (const auto* bitmap = std::get_if<swf::BitmapCharacter>(&character->data)) {
        if (bitmap->bitmap) node = std::make_shared<BitmapNode>(*this, bitmap->bitmap, false);
    } else if (const auto* sprite = std::get_if<swf::Sprite>(&character->data)) {
        auto clip =
            std::make_shared<Clip>(*this, movie, sprite->timeline ? sprite->timeline : emptyTimeline());
        node = clip;
    }
    if (!node) return nullptr;
    node->m_movie = movie;
    node->m_characterId = characterId;
    node->m_scalingGrid = character->scalingGrid;
    return node;
}

void Stage::begin(Node& node)
{
    const bool scriptable = node.kind() == NodeKind::Clip || node.kind() == NodeKind::Button ||
                            node.kind() == NodeKind::TextField || node.kind() == NodeKind::Video;
    // Only what files place is given a name; scripts may have given an empty one.
    if (scriptable && node.name().empty() && !node.m_scriptTransformed)
        node.setName("instance" + std::to_string(++m_instanceCounter));
    if (Clip* clip = asClip(&node)) {
        if (Clip* parent = clip->parentClip(); parent && clip->m_url.empty()) clip->m_url = parent->m_url;
        const bool listed = !m_clips.empty() && m_clips.back().get() == clip;
        if (!clip->m_inert && !listed) enlist(std::static_pointer_cast<Clip>(clip->shared_from_this()));
        clip->begin();
    } else if (node.kind() == NodeKind::Button) {
        static_cast<Button&>(node).begin();
    } else if (node.kind() == NodeKind::TextField) {
        static_cast<TextField&>(node).syncVariable();
        m_script->textFieldPlaced(static_cast<TextField&>(node));
    }
}

void Stage::noteRemoved(Node& node) { addDirty(node.m_drawnBounds); }

void Stage::retire(Node& node)
{
    if (node.m_removed) return;
    guard::check();
    const NodePtr keep = node.shared_from_this();
    m_script->nodeRemoved(node);
    std::vector<NodePtr> children(node.children().begin(), node.children().end());
    if (node.kind() == NodeKind::Button) {
        auto& button = static_cast<Button&>(node);
        children.insert(children.end(), button.m_hitNodes.begin(), button.m_hitNodes.end());
    }
    for (const NodePtr& child : children) retire(*child);
    node.m_removed = true;
    node.unlist();
    node.m_parent = nullptr;
    if (node.m_mask) node.setMask(nullptr);
    if (node.m_maskee) node.m_maskee->setMask(nullptr);
    if (Clip* clip = asClip(&node)) {
        if (clip->m_streaming) m_services.sound.stopStream(clip);
        clip->m_streaming = false;
        clip->m_children.clear();
        clip->forgetBounds();
        if (m_dragged.get() == clip) m_dragged.reset();
        if (m_dropTarget == clip) m_dropTarget = nullptr;
    } else if (node.kind() == NodeKind::Button) {
        auto& button = static_cast<Button&>(node);
        button.m_children.clear();
        button.m_byRecord.clear();
        button.m_hitNodes.clear();
    }
    if (m_focus.get() == &node) m_focus.reset();
    if (m_over.get() == &node || m_pressed.get() == &node) noteLost(node);
    if (m_over.get() == &node) m_over.reset();
    if (m_pressed.get() == &node) m_pressed.reset();
    m_services.sound.ownerRemoved(&node);
}

bool Stage::queueUnload(Node& node)
{
    Clip* clip = asClip(&node);
    if (clip && clip->m_inert) return false;
    guard::check();
    const bool own =
        clip && (clip->hasClipEvent(Event::Unload) || m_script->hasHandler(*clip, Event::Unload));
    // The innermost hear of it first. A clip that hears of it itself keeps everything until then; of another
    // one only those children stay that do.
    bool any = own;
    const std::vector<NodePtr> children(node.children().begin(), node.children().end());
    std::vector<NodePtr> deaf;
    for (const NodePtr& child : children) {
        if (queueUnload(*child))
            any = true;
        else
            deaf.push_back(child);
    }
    if (own) queueEvent(*clip, Event::Unload);
    if (!any) return false;
    if (clip && !own) {
        for (const NodePtr& child : deaf) {
            clip->take(*child);
            retire(*child);
        }
    }
    if (node.parent() && !node.m_unloading) m_unloading.push_back(node.shared_from_this());
    return true;
}

void Stage::finishUnloading()
{
    while (!m_unloading.empty()) {
        const std::vector<NodePtr> gone = std::move(m_unloading);
        m_unloading.clear();
        for (const NodePtr& node : gone) {
            // Entries below the one that was taken off the list go with it.
            if (!node->m_unloading || node->m_removed) continue;
            if (Clip* parent = asClip(node->m_parent)) parent->take(*node);
            retire(*node);
        }
    }
}

std::string Stage::linkageName(const MoviePtr& movie, std::uint16_t characterId)
{
    if (!movie || movie->exports.empty()) return {};
    auto [entry, fresh] = m_linkageNames.try_emplace(movie);
    if (fresh)
        for (const auto& [name, id] : movie->exports) entry->second.emplace(id, textOf(movie, name));
    const auto found = entry->second.find(characterId);
    return found == entry->second.end() ? std::string() : found->second;
}

std::optional<std::uint16_t> Stage::exportedCharacter(const MoviePtr& movie, std::string_view name)
{
    if (!movie) return {};
    std::string key(name);
    auto found = movie->exports.find(key);
    if (found == movie->exports.end() && movie->header.version < 6) {
        key = textCode().fromUtf8(key);
        found = movie->exports.find(key);
    }
    if (found != movie->exports.end()) return found->second;
    // Linkage names do not tell cases apart.
    for (const auto& [exported, id] : movie->exports)
        if (base::equalIgnoringAsciiCase(exported, key)) return id;
    return {};
}

// ---- the action queue -------------------------------------------------------------------------------------

void Stage::queueBlock(Clip& target, MoviePtr movie, swf::ActionBlock actions)
{
    if (actions.isEmpty() || target.m_inert) return;
    Queued item;
    item.kind = Queued::Kind::Block;
    item.node = target.shared_from_this();
    item.movie = std::move(movie);
    item.block = actions;
    m_queue[kOrdinary].push_back(std::move(item));
}

void Stage::queueInit(Clip& target, const MoviePtr& movie, const swf::DoInitAction& init)
{
    if (!m_initialized[movie].insert(init.spriteId).second) return;
    Queued item;
    item.kind = Queued::Kind::Init;
    item.node = target.shared_from_this();
    item.movie = movie;
    item.block = init.actions;
    m_queue[kInitActions].push_back(std::move(item));
}

void Stage::queueEvent(Node& node, Event event, int keyCode)
{
    Clip* clip = asClip(&node);
    if (clip && clip->m_inert) return;
    Priority priority = kOrdinary;
    if (event == Event::Initialize) {
        if (!clip || !clip->hasClipEvent(event)) return;
        priority = kInitialize;
    } else if (event == Event::Construct) {
        if (!clip || clip->constructed) return;
        if (!clip->hasClipEvent(event) && !m_script->hasRegisteredClass(*clip)) return;
        priority = kConstruct;
    }
    Queued item;
    item.kind = Queued::Kind::Event;
    item.event = event;
    item.keyCode = keyCode;
    item.node = node.shared_from_this();
    m_queue[priority].push_back(std::move(item));
}

void Stage::runEvent(Node& node, Event event, int keyCode)
{
    const NodePtr keep = node.shared_from_this();
    if (Clip* clip = asClip(&node)) {
        const std::uint32_t bit = clipEventBit(event);
        if (event == Event::Construct) m_script->assignClass(*clip);
        const std::vector<swf::ClipAction> actions =
            (clip->hasClipEvent(event)) ? clip->m_clipActions : std::vector<swf::ClipAction>();
        for (const swf::ClipAction& action : actions) {
            if ((action.events & bit) == 0) continue;
            if (event == Event::KeyPress && action.keyCode != keyCode) continue;
            m_script->runActions(*clip, clip->m_clipActionsMovie ? clip->m_clipActionsMovie : clip->m_movie,
                                 action.actions);
        }
        if (event == Event::Construct) {
            if (!clip->constructed) m_script->constructClip(*clip);
            clip->constructed = true;
            return;
        }
    }
    const bool key = event == Event::KeyDown || event == Event::KeyUp;
    if (key && m_focus.get() != &node) return;
    if (event != Event::Initialize && event != Event::KeyPress) m_script->dispatch(node, event);
}

void Stage::runQueue()
{
    if (m_runningQueue) return;
    m_runningQueue = true;
    for (;;) {
        guard::check();
        askWhenOverdue();
        int priority = 0;
        while (priority < kPriorities && m_queueHead[priority] == m_queue[priority].size()) {
            m_queue[priority].clear();
            m_queueHead[priority] = 0;
            ++priority;
        }
        if (priority == kPriorities) {
            if (!m_unloading.empty()) {
                finishUnloading();
            } else if (!m_requests.empty() && !m_holdRequests) {
                const Request request = std::move(m_requests.front());
                m_requests.pop_front();
                m_requestBytes -= request.bytes;
                request.run();
            } else {
                break;
            }
            continue;
        }
        const Queued item = std::move(m_queue[priority][m_queueHead[priority]++]);
        if (item.node->isRemoved()) continue;
        if (item.kind == Queued::Kind::Event) {
            const bool last = item.event == Event::Load || item.event == Event::Unload;
            if (!last && item.node->isLeaving()) continue;
            runEvent(*item.node, item.event, item.keyCode);
        } else if (!item.node->isLeaving()) {
            m_script->runActions(static_cast<Clip&>(*item.node), item.movie, item.block);
        }
    }
    m_runningQueue = false;
}

void Stage::askWhenOverdue()
{
    guard::Guard* guard = guard::current();
    if (!guard || !guard->isOverdue()) return;
    m_script->stopSlowScripts();
    guard->restartClock();
}

bool Stage::takesRequest(std::size_t bytes) const
{
    if (m_requests.size() < guard::kMostRequests && m_requestBytes + bytes <= guard::kMostRequestBytes)
        return true;
    guard::refuse(guard::Bound::Requests,
                  "The movie gives more commands at once than are taken; the rest is dropped");
    return false;
}

void Stage::queueRequest(std::function<void()> request, std::size_t bytes)
{
    if (!takesRequest(bytes)) return;
    m_requestBytes += bytes;
    m_requests.push_back({std::move(request), bytes});
}

// ---- time -------------------------------------------------------------------------------------------------

double Stage::frameMs() const { return 1000 / m_frameRate; }

void Stage::stepClips()
{
    // The newest first. Those made meanwhile have had their first frame by then.
    for (std::size_t i = m_clips.size(); i-- > 0;) {
        const std::shared_ptr<Clip> clip = m_clips[i];
        clip->step();
    }
    std::erase_if(m_clips, [](const std::shared_ptr<Clip>& clip) { return clip->isRemoved(); });
}

void Stage::forgetGoneNodes()
{
    constexpr std::size_t kFew = 256;
    if (m_changedNodes.size() < 2 * m_changedKept + kFew) return;
    std::erase_if(m_changedNodes, [](const std::weak_ptr<Node>& entry) {
        const NodePtr node = entry.lock();
        return !node || node->isRemoved(); // its place was noted as dirty when it went
    });
    m_changedKept = m_changedNodes.size();
}

void Stage::advanceFrame()
{
    guard::restartClock();
    ++m_frameCounter;
    // Commands that answers give, such as to quit, wait until the frame has run.
    m_holdRequests = true;
    deliverLoads();
    stepClips();
    runQueue();
    reportInitialized();
    m_holdRequests = false;
    runQueue();
    deliverLoads();
    if (m_mouseInside) updatePointer();
    syncTextFields();
    forgetGoneNodes();
    m_script->frameEnded();
}

void Stage::noteBound(TextField& field)
{
    m_boundFields.push_back(std::static_pointer_cast<TextField>(field.shared_from_this()));
}

void Stage::syncTextFields()
{
    std::erase_if(m_boundFields, [](const std::weak_ptr<TextField>& entry) {
        const auto field = entry.lock();
        return !field || field->isRemoved();
    });
    // Reading a variable may run a getter, which may make more fields.
    for (std::size_t i = 0; i < m_boundFields.size(); ++i)
        if (const auto field = m_boundFields[i].lock()) field->syncVariable();
}

void Stage::runTimersAndQueue()
{
    guard::check();
    askWhenOverdue();
    m_script->runTimers(m_nowMs);
    runQueue();
}

double Stage::msToNextEvent()
{
    double wait = m_movie ? std::max(0.0, m_nextFrameMs - m_nowMs) : 1000;
    const double timer = m_script->nextTimerMs();
    if (timer >= 0) wait = std::min(wait, timer);
    return wait;
}

void Stage::advance(double ms)
{
    if (!m_movie || !(ms > 0)) return;
    guard::restartClock();
    const double target = m_nowMs + ms;
    int frames = 0, timerRounds = 0;
    // Timers of no interval would otherwise hold the clock for ever.
    constexpr int kMaxTimerRounds = 10'000;
    while (m_movie) {
        const double timer = m_script->nextTimerMs();
        const double timerAt = timer >= 0 && timerRounds < kMaxTimerRounds ? m_nowMs + timer : target + 1;
        if (std::min(timerAt, m_nextFrameMs) > target) break;
        if (timerAt < m_nextFrameMs) {
            m_nowMs = std::max(m_nowMs, timerAt);
            ++timerRounds;
            runTimersAndQueue();
            continue;
        }
        if (frames++ >= kMaxCatchUpFrames) {
            m_nextFrameMs = target + frameMs();
            continue;
        }
        m_nowMs = std::max(m_nowMs, m_nextFrameMs);
        m_nextFrameMs += frameMs();
        advanceFrame();
    }
    m_nowMs = std::max(m_nowMs, target);
}

bool Stage::isPlaying() const
{
    const auto root = m_levels.find(0);
    return root != m_levels.end() && root->second->isPlaying();
}

void Stage::play()
{
    if (Clip* clip = root()) clip->play();
}

void Stage::stop()
{
    if (Clip* clip = root()) clip->stop();
}

void Stage::gotoFrame(int frame)
{
    if (Clip* clip = root()) clip->gotoFrame(frame);
    runQueue();
}

int Stage::currentFrame()
{
    Clip* clip = root();
    return clip ? clip->currentFrame() : -1;
}

int Stage::totalFrames()
{
    Clip* clip = root();
    return clip ? clip->totalFrames() : 0;
}

} // namespace flash::stage
