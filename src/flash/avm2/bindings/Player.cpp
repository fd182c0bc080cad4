#include "flash/avm2/bindings/Player.h"

#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>
#include <numbers>
#include <set>

namespace flash::avm2
{

namespace
{

std::vector<NativeLibrary> allLibraries()
{
    std::vector<NativeLibrary> all;
    for (const NativeLibrary& library : classes::library()) all.push_back(library);
    for (const NativeLibrary& library : bindingsLibrary()) all.push_back(library);
    return all;
}

} // namespace

Player::Player(stage::Services services, PlayerInputs inputs)
    : m_services(services), m_inputs(std::move(inputs)), m_vm(std::make_unique<Vm>(*this, allLibraries())),
      m_domain(m_vm->heap()), m_stageObject(m_vm->heap()), m_root(m_vm->heap()), m_listening(m_vm->heap()),
      m_random(m_inputs.randomSeed)
{
    m_vm->binding = this;
}

Player::~Player()
{
    m_vm->disable();
    m_timers.clear();
    m_localConnections.clear();
    m_sharedObjects.clear();
    m_symbols.clear();
}

void Player::trace(std::u16string_view text) { m_services.host.traceLine(toUtf8(text)); }
void Player::log(std::string_view text) { m_services.host.logLine(text); }
void Player::uncaught(std::u16string_view text) { m_services.host.logLine(toUtf8(text)); }

std::uint32_t Player::random()
{
    m_random ^= m_random << 13U;
    m_random ^= m_random >> 17U;
    m_random ^= m_random << 5U;
    return m_random;
}

bool Player::askToStopScript(double) { return m_services.host.abortSlowScript(); }

std::u16string Player::nextInstanceName() { return u"instance" + numberText(m_nextInstance++); }

void Player::noteListening(DisplayObject& object)
{
    if (std::ranges::find(*m_listening, &object) == m_listening->end()) m_listening.push_back(&object);
}

void Player::broadcast(std::string_view type)
{
    const Name name = m_vm->name(type);
    RootedList<DisplayObject*> targets(m_vm->heap());
    for (DisplayObject* object : m_listening) {
        if (object->hasListener(name)) targets.push_back(object);
    }
    for (std::size_t i = 0; i < targets.size(); ++i) m_vm->guarded([&] { fire(*m_vm, *targets[i], type); });
}

void Player::loadScripts(std::size_t frame)
{
    if (frame < m_loadedFrames) return;
    m_loadedFrames = frame + 1;
    for (const swf::ScriptTags::Block& block : m_tags.blocks) {
        if (block.frame != frame) continue;
        auto parsed = abc::parseAbc(block.bytes);
        if (!parsed) {
            m_services.host.logLine(parsed.error().what);
            continue;
        }
        m_vm->guarded([&] {
            Unit* unit = m_domain->load(*m_vm, *parsed);
            if (!block.lazy) unit->runAllScripts(*m_vm);
        });
    }
    for (const swf::ScriptTags::Symbol& symbol : m_tags.symbols) {
        if (symbol.frame != frame) continue;
        m_vm->guarded([&] {
            Value found;
            if (!m_domain->lookUp(*m_vm, fromUtf8(symbol.className), found)) {
                m_services.host.logLine("No class " + symbol.className);
                return;
            }
            if (auto* cls = as<ClassObject>(found))
                m_symbols.try_emplace(symbol.characterId, m_vm->heap(), cls);
        });
    }
}

ClassObject* Player::classOf(const stage::MoviePtr& movie, std::uint16_t characterId)
{
    if (const auto found = m_symbols.find(characterId); found != m_symbols.end()) return found->second.get();
    const swf::Character* character = movie->character(characterId);
    if (character == nullptr) return nullptr;
    const char* name = "flash.display::Shape";
    if (std::holds_alternative<swf::Sprite>(character->data))
        name = "flash.display::MovieClip";
    else if (std::holds_alternative<swf::Button>(character->data))
        name = "flash.display::SimpleButton";
    else if (std::holds_alternative<swf::EditText>(character->data))
        name = "flash.text::TextField";
    else if (std::holds_alternative<swf::StaticText>(character->data))
        name = "flash.text::StaticText";
    else if (std::holds_alternative<swf::MorphCharacter>(character->data))
        name = "flash.display::MorphShape";
    else if (std::holds_alternative<swf::BitmapCharacter>(character->data))
        name = "flash.display::Bitmap";
    else if (std::holds_alternative<swf::VideoStream>(character->data))
        name = "flash.media::Video";
    else if (!std::holds_alternative<swf::ShapeCharacter>(character->data))
        return nullptr;
    return m_vm->nativeClass(name);
}

std::uint16_t Player::characterOf(const ClassObject* cls, stage::MoviePtr& movie)
{
    for (const ClassObject* at = cls; at != nullptr; at = at->base) {
        for (const auto& [id, symbol] : m_symbols) {
            if (symbol.get() != at || id == 0) continue;
            movie = m_movie;
            return id;
        }
    }
    return 0;
}

void Player::showCharacter(DisplayObject& object, const stage::MoviePtr& movie, std::uint16_t characterId)
{
    object.movie = movie;
    object.characterId = characterId;
    const swf::Character* character = movie->character(characterId);
    if (character == nullptr) return;
    if (const auto* sprite = std::get_if<swf::Sprite>(&character->data);
        sprite != nullptr && object.frame == 0) {
        object.timeline = sprite->timeline;
        gotoFrame(object, 1);
    }
}

void Player::begin()
{
    m_hasBegun = true;
    m_movie = m_stage->movie();
    if (!m_movie) return;
    m_tags = swf::readScriptTags(*m_movie);
    m_vm->version = m_movie->header.version;
    m_domain = m_vm->heap().make<Domain>(m_vm->systemDomain());
    m_vm->movieDomain = m_domain.get();
    m_vm->guarded([&] {
        m_stageObject =
            as<DisplayObject>(Value(m_vm->instantiate(m_vm->nativeClass("flash.display::Stage"))));
        m_stageObject->isStage = m_stageObject->isConstructed = true;
    });
    loadScripts(0);
    m_vm->guarded([&] {
        const auto found = m_symbols.find(0);
        ClassObject* cls =
            found != m_symbols.end() ? found->second.get() : m_vm->nativeClass("flash.display::MovieClip");
        m_root = as<DisplayObject>(Value(m_vm->instantiate(cls)));
        if (!m_root) {
            m_services.host.logLine("The class of the movie is none of a display object");
            return;
        }
        m_root->isRoot = true;
        m_root->movie = m_movie;
        m_root->name = Value(m_vm->name("root1").string());
        m_root->timeline = std::shared_ptr<const swf::Timeline>(m_movie, &m_movie->timeline);
        m_root->node = m_stage->root()->weak_from_this();
        m_root->parent = m_stageObject.get();
        m_stageObject->children.push_back(m_root.get());
        gotoFrame(*m_root, 1);
        m_root->isConstructed = true;
        if (cls->constructor != nullptr) {
            m_vm->guarded([&] { m_vm->invoke(*cls->constructor, Value(m_root.get()), {}); });
        }
        m_vm->guarded([&] { fire(*m_vm, *m_root, "added", true); });
        m_vm->guarded([&] { fire(*m_vm, *m_root, "addedToStage"); });
    });
}

void Player::frameEnded()
{
    if (m_vm->isDisabled()) return;
    if (!m_hasBegun) {
        begin();
    } else if (m_root) {
        RootedList<DisplayObject*> clips(m_vm->heap());
        advance(*m_root);
        broadcast("enterFrame");
    }
    if (!m_root) return;
    m_vm->guarded([&] { constructAll(*m_stageObject); });
    broadcast("frameConstructed");
    runAllScripts(*m_stageObject);
    broadcast("exitFrame");
    syncPicture(*m_root);
    // What the frame's scripts have asked for.
    m_stage->loads().deliver();
    m_stage->queue().run();
    if (m_vm->heap().shouldCollect()) m_vm->heap().collect();
}

void Player::advance(DisplayObject& clip)
{
    RootedList<DisplayObject*> children(m_vm->heap(), clip.children.begin(), clip.children.end());
    if (clip.isPlaying && clip.timeline != nullptr && clip.totalFrames() > 1) {
        m_vm->guarded([&] { gotoFrame(clip, clip.frame >= clip.totalFrames() ? 1 : clip.frame + 1); });
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
        if (children[i]->parent == &clip) advance(*children[i]);
    }
}

void Player::constructAll(DisplayObject& object)
{
    constructChildren(object);
    RootedList<DisplayObject*> children(m_vm->heap(), object.children.begin(), object.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) constructAll(*children[i]);
}

void Player::runFrameScripts(DisplayObject& clip)
{
    while (clip.hasPendingScript) {
        clip.hasPendingScript = false;
        Value script;
        for (const auto& [frame, function] : clip.frameScripts) {
            if (frame == clip.frame) script = function;
        }
        if (script.isNullish()) return;
        m_vm->guarded([&] { m_vm->call(script, Value(&clip), {}); });
        // A script that goes elsewhere has that frame's script run next.
        m_vm->guarded([&] { constructAll(clip); });
    }
}

void Player::runAllScripts(DisplayObject& object)
{
    runFrameScripts(object);
    RootedList<DisplayObject*> children(m_vm->heap(), object.children.begin(), object.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) runAllScripts(*children[i]);
}

void Player::constructChildren(DisplayObject& parent)
{
    RootedList<DisplayObject*> children(m_vm->heap(), parent.children.begin(), parent.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) {
        DisplayObject& child = *children[i];
        if (child.isConstructed || child.parent != &parent) continue;
        child.isConstructed = true;
        ClassObject* cls = child.traits()->cls;
        if (cls != nullptr && cls->constructor != nullptr)
            m_vm->guarded([&] { m_vm->invoke(*cls->constructor, Value(&child), {}); });
        // Only what is there whole is seen under its name.
        if (child.name.isString() && child.depth > 0) {
            m_vm->guarded([&] {
                const Multiname name = m_vm->publicName(m_vm->names().intern(m_vm->toString(child.name)));
                if (parent.traits()->find(name) != nullptr || parent.isDynamic())
                    m_vm->set(Value(&parent), name, Value(&child));
            });
        }
        m_vm->guarded([&] { fire(*m_vm, child, "added", true); });
        if (child.top() == m_stageObject.get()) m_vm->guarded([&] { fire(*m_vm, child, "addedToStage"); });
    }
}

namespace
{

/// What the timeline shows at a depth.
struct Placed {
    std::uint16_t characterId = 0;
    int frame = 0; ///< 1-based
    std::optional<swf::Matrix> matrix;
    std::optional<std::string> name;
    std::optional<swf::ColorTransform> color;
    std::optional<bool> visible;
};

std::map<int, Placed> placedAt(const swf::Timeline& timeline, int frame)
{
    std::map<int, Placed> result;
    for (int i = 0; i < frame && i < static_cast<int>(timeline.frames.size()); ++i) {
        for (const swf::ControlTag& tag : timeline.frames[static_cast<std::size_t>(i)].tags) {
            if (const auto* place = std::get_if<swf::PlaceObject>(&tag)) {
                Placed& entry = result[place->depth];
                if (place->characterId &&
                    (!place->move || entry.characterId == 0 || *place->characterId != entry.characterId)) {
                    if (!place->move) entry = {};
                    entry.characterId = *place->characterId;
                    entry.frame = i + 1;
                }
                if (place->matrix) entry.matrix = place->matrix;
                if (place->name) entry.name = place->name;
                if (place->color) entry.color = place->color;
                if (place->visible) entry.visible = place->visible;
            } else if (const auto* remove = std::get_if<swf::RemoveObject>(&tag)) {
                result.erase(remove->depth);
            }
        }
    }
    return result;
}

void applyMatrix(DisplayObject& child, const swf::Matrix& matrix)
{
    child.x = matrix.tx / swf::kTwipsPerPixel;
    child.y = matrix.ty / swf::kTwipsPerPixel;
    child.scaleX = std::hypot(matrix.a, matrix.b);
    child.scaleY = std::hypot(matrix.c, matrix.d);
    child.rotation = std::atan2(matrix.b, matrix.a) * 180 / std::numbers::pi;
}

} // namespace

void Player::gotoFrame(DisplayObject& clip, int frame)
{
    if (clip.timeline == nullptr) return;
    frame = std::clamp(frame, 1, clip.totalFrames());
    if (&clip == m_root.get()) {
        for (int i = clip.frame; i < frame; ++i) loadScripts(static_cast<std::size_t>(i));
    }
    if (frame == clip.frame) return;
    clip.frame = frame;
    clip.hasPendingScript = true;
    place(clip, frame);
}

void Player::place(DisplayObject& clip, int frame)
{
    const auto wanted = placedAt(*clip.timeline, frame);
    RootedList<DisplayObject*> before(m_vm->heap(), clip.children.begin(), clip.children.end());
    std::set<int> kept;
    for (std::size_t i = 0; i < before.size(); ++i) {
        DisplayObject& child = *before[i];
        if (child.depth == 0 || child.parent != &clip) continue;
        const auto found = wanted.find(child.depth);
        if (found == wanted.end() || found->second.characterId != child.characterId ||
            found->second.frame != child.placedFrame) {
            removeChild(clip, child);
            continue;
        }
        kept.insert(child.depth);
        if (found->second.matrix && !child.isTransformed) applyMatrix(child, *found->second.matrix);
    }
    for (const auto& [depth, entry] : wanted) {
        if (kept.contains(depth) || entry.characterId == 0) continue;
        ClassObject* cls = classOf(clip.movie, entry.characterId);
        if (cls == nullptr) continue;
        auto* child = as<DisplayObject>(Value(m_vm->instantiate(cls)));
        if (child == nullptr) continue;
        child->depth = depth;
        child->placedFrame = entry.frame;
        child->name = Value(m_vm->string(entry.name ? fromUtf8(*entry.name) : nextInstanceName()));
        if (entry.matrix) applyMatrix(*child, *entry.matrix);
        std::size_t index = 0;
        while (index < clip.children.size() &&
               (clip.children[index]->depth == 0 ? false : clip.children[index]->depth < depth))
            ++index;
        child->parent = &clip;
        clip.children.insert(clip.children.begin() + static_cast<std::ptrdiff_t>(index), child);
        showCharacter(*child, clip.movie, entry.characterId);
    }
}

void Player::insert(DisplayObject& parent, DisplayObject& child, std::size_t index, bool)
{
    const bool isMove = child.parent == &parent;
    if (child.parent != nullptr) {
        if (isMove)
            std::erase(parent.children, &child);
        else
            removeChild(*child.parent, child);
    }
    child.parent = &parent;
    child.depth = 0;
    index = std::min(index, parent.children.size());
    parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(index), &child);
    if (isMove) return;
    fire(*m_vm, child, "added", true);
    if (m_stageObject && child.top() == m_stageObject.get()) {
        RootedList<DisplayObject*> all(m_vm->heap());
        all.push_back(&child);
        for (std::size_t i = 0; i < all.size(); ++i) {
            fire(*m_vm, *all[i], "addedToStage");
            for (DisplayObject* inner : all[i]->children) all.push_back(inner);
        }
    }
}

void Player::removeChild(DisplayObject& parent, DisplayObject& child)
{
    fire(*m_vm, child, "removed", true);
    if (m_stageObject && child.top() == m_stageObject.get()) {
        RootedList<DisplayObject*> all(m_vm->heap());
        all.push_back(&child);
        for (std::size_t i = 0; i < all.size(); ++i) {
            fire(*m_vm, *all[i], "removedFromStage");
            for (DisplayObject* inner : all[i]->children) all.push_back(inner);
        }
    }
    if (child.parent != &parent) return;
    if (child.depth > 0 && child.name.isString()) {
        m_vm->guarded([&] {
            const Multiname name = m_vm->publicName(m_vm->names().intern(m_vm->toString(child.name)));
            if (m_vm->hasOwn(Value(&parent), name) &&
                m_vm->get(Value(&parent), name).bits() == Value(&child).bits())
                m_vm->set(Value(&parent), name, Value::null());
        });
    }
    std::erase(parent.children, &child);
    child.parent = nullptr;
}

void Player::syncPicture(DisplayObject& object)
{
    const auto node = object.node.lock();
    if (node == nullptr || node->isRemoved()) return;
    stage::Clip* clip = stage::asClip(node.get());
    if (clip == nullptr) return;
    if (object.timeline != nullptr) {
        if (!object.isPlaying && clip->isPlaying())
            clip->stop();
        else if (object.isPlaying && !clip->isPlaying())
            clip->play();
        if (object.frame > 0 && clip->currentFrame() != object.frame - 1) clip->gotoFrame(object.frame - 1);
    }
    RootedList<DisplayObject*> children(m_vm->heap(), object.children.begin(), object.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) {
        DisplayObject& child = *children[i];
        if (child.depth == 0) continue;
        stage::Node* shown = clip->childAt(stage::kTimelineDepth + child.depth);
        if (shown == nullptr) continue;
        child.node = shown->weak_from_this();
        if (child.isTransformed) {
            shown->setX(child.x);
            shown->setY(child.y);
            shown->setScaleX(child.scaleX * 100);
            shown->setScaleY(child.scaleY * 100);
            shown->setRotation(child.rotation);
        }
        syncPicture(child);
    }
}

double Player::nextTimerMs()
{
    double next = -1;
    for (const auto& [id, timer] : m_timers) {
        const double wait = std::max(0.0, timer->dueMs - timeMs());
        if (next < 0 || wait < next) next = wait;
    }
    return next;
}

void Player::runTimers(double nowMs)
{
    constexpr int kMaxAtOnce = 1000;
    for (int i = 0; i < kMaxAtOnce && !m_vm->isDisabled(); ++i) {
        Timer* due = nullptr;
        for (const auto& [id, timer] : m_timers) {
            if (timer->dueMs <= nowMs && (due == nullptr || timer->dueMs < due->dueMs)) due = timer.get();
        }
        if (due == nullptr) return;
        const std::uint32_t id = due->id;
        Root<Object> function(m_vm->heap(), due->function.get());
        RootedList<Value> args(m_vm->heap(), due->args.begin(), due->args.end());
        if (due->repeats)
            due->dueMs += std::max(1.0, due->everyMs);
        else
            removeTimer(id);
        m_vm->guarded([&] { m_vm->call(Value(function.get()), Value(), std::span<const Value>(*args)); });
    }
}

std::uint32_t Player::addTimer(Value function, std::span<const Value> args, double everyMs, bool repeats)
{
    constexpr std::size_t kMaxTimers = 1000;
    if (m_timers.size() >= kMaxTimers) return 0;
    auto timer =
        std::make_unique<Timer>(Timer{Root<Object>(m_vm->heap(), function.asObject()),
                                      RootedList<Value>(m_vm->heap(), args.begin(), args.end()),
                                      timeMs() + std::max(0.0, everyMs), everyMs, m_nextTimer, repeats});
    m_timers[m_nextTimer] = std::move(timer);
    return m_nextTimer++;
}

void Player::removeTimer(std::uint32_t id) { m_timers.erase(id); }
void Player::movieReplaced() { m_timers.clear(); }

} // namespace flash::avm2
