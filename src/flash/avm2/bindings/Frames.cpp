#include "flash/avm2/bindings/Player.h"

#include <algorithm>

// The phases of a frame. All clips move on, what the timeline takes off goes while they still count the old
// frame; enterFrame; what the timelines have placed is constructed; frameConstructed; the scripts of frames,
// parents first; exitFrame. A script that sends a clip elsewhere has the phases from the construction on run
// at once, for everything, since version 10; before, the frame at hand goes on with what is there then.
namespace flash::avm2
{

namespace
{
constexpr int kNestedFramesVersion = 10;
constexpr int kMaxNestedFrames = 64; ///< within each other, by scripts
} // namespace

void Player::noteListening(DispatcherObject& object, std::u16string_view type)
{
    Hearers& hearers = m_listening[std::u16string(type)];
    if (hearers.known.insert(&object).second) hearers.list.push_back(&object);
}

void Player::noteOffStage(DisplayObject& object)
{
    if (object.isListed || object.isStage || object.parent != nullptr) return;
    object.isListed = true;
    m_orphans.push_back(&object);
}

template <class Work>
void Player::forOrphans(Work&& work)
{
    RootedList<DisplayObject*> orphans(m_vm->heap());
    std::erase_if(m_orphans, [](DisplayObject* object) {
        if (object->parent == nullptr) return false;
        object->isListed = false;
        return true;
    });
    for (DisplayObject* object : m_orphans) orphans.push_back(object);
    for (std::size_t i = 0; i < orphans.size(); ++i) {
        if (orphans[i]->parent == nullptr) work(*orphans[i]);
    }
}

void Player::broadcast(std::string_view type)
{
    const auto listening = m_listening.find(widen(type));
    if (listening == m_listening.end() || listening->second.list.empty()) return;
    const Name name = m_vm->name(type);
    RootedList<DispatcherObject*> targets(m_vm->heap());
    Hearers& hearers = listening->second;
    hearers.forget([&](const DispatcherObject* object) { return !object->hasListener(name); });
    for (DispatcherObject* object : hearers.list) targets.push_back(object);
    for (std::size_t i = 0; i < targets.size(); ++i) m_vm->guarded([&] { fire(*m_vm, *targets[i], type); });
}

void Player::frameEnded()
{
    if (m_vm->isDisabled()) return;
    tellFinishedSounds();
    askForSamples();
    followStreams();
    if (!m_hasBegun) {
        begin();
    } else if (root() != nullptr) {
        syncHost();
        advance(*m_stageObject);
        forOrphans([&](DisplayObject& object) { advance(object); });
        advanceOldMovies();
        broadcast("enterFrame");
    }
    if (root() == nullptr) return;
    finishFrame();
    if (!std::exchange(m_isAnnounced, true)) {
        // All of the file is there from the beginning.
        for (const char* type : {"init", "complete"})
            m_vm->guarded([&] { fire(*m_vm, *mainMovie()->loaderInfo, type); });
    }
    const auto work = std::exchange(m_later, {});
    for (const auto& step : work) m_vm->guarded([&] { step(); });
    if (m_wantsRender) {
        m_wantsRender = false;
        broadcast("render");
    }
    syncHost();
    // What the frame's scripts have asked for.
    m_stage->loads().deliver();
    m_stage->queue().run();
    collectIfDue();
}

void Player::broadcastResize()
{
    if (!m_hasBegun || !m_stageObject || m_vm->isDisabled()) return;
    m_vm->guarded([&] { fire(*m_vm, *m_stageObject, "resize"); });
}

void Player::broadcastFullScreen(bool on)
{
    if (!m_hasBegun || !m_stageObject || m_vm->isDisabled()) return;
    m_vm->guarded([&] {
        const Value args[] = {Value(m_vm->name("fullScreen").string()), false, false, on};
        const Value cls(m_vm->nativeClass("flash.events::FullScreenEvent"));
        m_stageObject->dispatch(*m_vm, *as<EventObject>(m_vm->construct(cls, args)));
    });
}

void Player::finishFrame()
{
    m_vm->guarded([&] { constructAll(*m_stageObject); });
    forOrphans([&](DisplayObject& object) { m_vm->guarded([&] { constructAll(object); }); });
    broadcast("frameConstructed");
    runAllScripts(*m_stageObject);
    forOrphans([&](DisplayObject& object) { runAllScripts(object); });
    broadcast("exitFrame");
}

/// The host's buttons work on the main timeline through the stage's level, which no script sees.
void Player::syncHost()
{
    stage::Clip* level = m_stage->root();
    DisplayObject* main = root();
    if (level == nullptr || main == nullptr) return;
    if (level->isPlaying() != m_hostPlays) main->isPlaying = level->isPlaying();
    m_hostPlays = main->isPlaying;
    if (m_hostPlays)
        level->play();
    else
        level->stop();
    if (main->frame > 0) level->noteShown(main->frame - 1);
}

void Player::showRootFrame(int frame)
{
    DisplayObject* main = root();
    if (main == nullptr || m_vm->isDisabled()) return;
    m_vm->guarded([&] { jump(*main, frame + 1); });
    syncHost();
}

void Player::advance(DisplayObject& clip)
{
    // From the end of the list to its beginning, and within before around: what is told of the things that
    // go finds its holder in the frame before.
    RootedList<DisplayObject*> children(m_vm->heap(), clip.children.begin(), clip.children.end());
    for (std::size_t i = children.size(); i-- > 0;) {
        if (children[i]->parent == &clip) advance(*children[i]);
    }
    clip.hasStepped = true;
    const bool waits = std::exchange(clip.skipsStep, false);
    if (waits || !clip.isPlaying || clip.timeline == nullptr || clip.totalFrames() <= 1 ||
        !clip.isConstructed)
        return;
    const bool ends = clip.frame >= clip.totalFrames();
    const bool stays = ends && &clip == root() && !m_stage->loop();
    if (stays)
        clip.isPlaying = false;
    else
        m_vm->guarded([&] { showFrame(clip, ends ? 1 : clip.frame + 1); });
}

void Player::goTo(DisplayObject& clip, int frame)
{
    if (clip.timeline == nullptr) return;
    if (clip.isInScript) {
        clip.queuedFrame = std::clamp(frame, 1, clip.lastFrame());
        return;
    }
    jump(clip, frame);
}

void Player::jump(DisplayObject& clip, int frame)
{
    if (clip.timeline == nullptr) return;
    frame = std::clamp(frame, 1, clip.lastFrame());
    if (frame != clip.frame) showFrame(clip, frame);
    runNestedFrame(&clip);
}

/// @param clip where things are constructed even while the constructors of others of its children run
void Player::runNestedFrame(DisplayObject* clip)
{
    if (m_vm->version < kNestedFramesVersion || !m_hasBegun || m_nesting >= kMaxNestedFrames) return;
    ++m_nesting;
    const struct Leave {
        int& nesting;
        ~Leave() { --nesting; }
    } leave{m_nesting};
    if (clip != nullptr) m_vm->guarded([&] { constructChildren(*clip); });
    if (m_stageObject) finishFrame();
}

void Player::constructAll(DisplayObject& object)
{
    if (object.isBuilding) return;
    constructChildren(object);
    RootedList<DisplayObject*> children(m_vm->heap(), object.children.begin(), object.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) constructAll(*children[i]);
}

void Player::runFrameScripts(DisplayObject& clip)
{
    while (clip.hasPendingScript && !clip.isInScript) {
        clip.hasPendingScript = false;
        // Before there were frames within frames, what a jump has placed is made here.
        if (m_vm->version < kNestedFramesVersion) m_vm->guarded([&] { constructChildren(clip); });
        Value script;
        for (const auto& [frame, function] : clip.frameScripts) {
            if (frame == clip.frame) script = function;
        }
        if (script.isNullish()) {
            // A constructor that runs may have one yet.
            clip.hasPendingScript = clip.isConstructing;
            return;
        }
        clip.isInScript = true;
        m_vm->guarded([&] { m_vm->call(script, Value(&clip), {}); });
        clip.isInScript = false;
        if (const int wanted = std::exchange(clip.queuedFrame, 0); wanted != 0)
            m_vm->guarded([&] { jump(clip, wanted); });
    }
}

void Player::runAllScripts(DisplayObject& object)
{
    runFrameScripts(object);
    RootedList<DisplayObject*> children(m_vm->heap(), object.children.begin(), object.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) runAllScripts(*children[i]);
}

} // namespace flash::avm2
