#include "flash/avm1/bindings/StageBinding.h"

#include "base/TextCodes.h"
#include "flash/avm1/bindings/BitmapDataClass.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/DataLoading.h"
#include "flash/avm1/bindings/NetStream.h"
#include "flash/avm1/bindings/NodeObject.h"
#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/classes/Filters.h"
#include "flash/avm1/classes/GeomValues.h"
#include "flash/avm1/classes/XmlNode.h"
#include "flash/stage/Button.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace flash::avm1
{

namespace
{

// By number, as the actions GetProperty and SetProperty have them.
constexpr const char* kPropertyNames[] = {
    "_x",          "_y",     "_xscale",      "_yscale",    "_currentframe", "_totalframes",  "_alpha",
    "_visible",    "_width", "_height",      "_rotation",  "_target",       "_framesloaded", "_name",
    "_droptarget", "_url",   "_highquality", "_focusrect", "_soundbuftime", "_quality",      "_xmouse",
    "_ymouse"};

// In the order of stage::Event; null for what scripts have no handler for.
constexpr const char* kHandlerNames[] = {
    "onLoad",    "onEnterFrame", "onUnload",  "onMouseMove", "onMouseDown", "onMouseUp",        "onKeyDown",
    "onKeyUp",   "onData",       nullptr,     "onPress",     "onRelease",   "onReleaseOutside", "onRollOver",
    "onRollOut", "onDragOver",   "onDragOut", nullptr,       nullptr};

} // namespace

struct StageBinding::State {
    std::array<Name, std::size(kHandlerNames)> handlers;
    Name enabled;
    std::vector<Atom*> keptNames;
    std::unordered_map<stage::SoundId, Object*> sounds; // whose end is waited for
    std::vector<std::shared_ptr<NetStream>> streams;    // those that play
    std::map<std::string, Object*, std::less<>> sharedObjects;
    Object* movieClip = nullptr; // prototypes
    Object* button = nullptr;
    Object* textField = nullptr;
    Object* video = nullptr;
};

StageBinding::StageBinding(stage::Services services, BindingInputs inputs)
    : m_services(services), m_inputs(std::move(inputs))
{
    reset();
}

StageBinding::~StageBinding() = default;

void StageBinding::attach(stage::Stage& stage) { m_stage = &stage; }

void StageBinding::reset()
{
    m_state.reset();
    m_vm.reset();
    m_random = m_inputs.randomSeed;
    emptyBoundsAreFurther = false;
    m_vm = std::make_unique<Vm>(*this, &classes::installAll);
    m_state = std::make_unique<State>();
    m_vm->heap().addRootSource([this](Tracer& tracer) { traceNodes(tracer); });
    for (std::size_t i = 0; i < std::size(kPropertyNames); ++i) {
        const Name name = m_vm->name(std::string_view(kPropertyNames[i]));
        name.setDisplayProperty(static_cast<int>(i));
        m_state->keptNames.push_back(name.cell());
    }
    for (std::size_t i = 0; i < std::size(kHandlerNames); ++i) {
        if (!kHandlerNames[i]) continue;
        m_state->handlers[i] = m_vm->name(std::string_view(kHandlerNames[i]));
        m_state->keptNames.push_back(m_state->handlers[i].cell());
    }
    m_state->enabled = m_vm->name(std::string_view("enabled"));
    m_state->keptNames.push_back(m_state->enabled.cell());
    installClasses();
}

void StageBinding::installClasses()
{
    installBroadcaster(*this);
    installMovieClip(*this);
    installButton(*this);
    installKey(*this);
    installMouse(*this);
    installSelection(*this);
    installStage(*this);
    installColor(*this);
    installSound(*this);
    installTextField(*this);
    installLoadVars(*this);
    installSharedObject(*this);
    installSystem(*this);
    installMovieClipLoader(*this);
    installDeviceClasses(*this);
    installNetStream(*this);
    installXml(*m_vm);
    if (Object* xml = m_vm->global()->get(*m_vm, m_vm->name(std::string_view("XML"))).asObject())
        addLoading(*m_vm, m_vm->prototypeOf(xml), 0);
    installFlashPackage();
    const auto prototype = [this](const char* name) -> Object* {
        Object* constructor = m_vm->global()->get(*m_vm, m_vm->name(std::string_view(name))).asObject();
        return constructor ? m_vm->prototypeOf(constructor) : nullptr;
    };
    m_state->movieClip = prototype("MovieClip");
    m_state->button = prototype("Button");
    m_state->textField = prototype("TextField");
    m_state->video = prototype("Video");
}

void StageBinding::installFlashPackage()
{
    Object* flash = m_vm->newObject();
    m_vm->global()->define(*m_vm, "flash", flash, kDontEnum | kFrom8);
    const auto package = [&](const char* name) {
        Object* made = m_vm->newObject();
        flash->define(*m_vm, name, made);
        return made;
    };
    installBitmapData(*this, package("display"));
    installFilters(*m_vm, package("filters"));
    Object* geom = package("geom");
    installColorTransform(*m_vm, geom);
    installTransform(*this, geom);
    installGeomPrelude(*m_vm);
    installLibrary(*this, flash);
}

void StageBinding::traceNodes(Tracer& tracer)
{
    for (Atom* name : m_state->keptNames) tracer(name);
    for (const auto& [id, object] : m_state->sounds) tracer(object);
    for (const auto& stream : m_state->streams) stream->trace(tracer);
    for (const auto& [key, object] : m_state->sharedObjects) tracer(object);
    tracer(m_state->movieClip);
    tracer(m_state->button);
    tracer(m_state->textField);
    tracer(m_state->video);
    if (!m_stage) return;
    const auto visit = [&](auto&& self, stage::Node& node) -> void {
        tracer(static_cast<Object*>(node.peer));
        for (const stage::NodePtr& child : node.children()) self(self, *child);
    };
    for (const auto& [number, root] : m_stage->displayList().levels()) visit(visit, *root);
    for (const auto& clip : m_stage->displayList().clips()) tracer(static_cast<Object*>(clip->peer));
}

StageBinding& StageBinding::of(Call& call) { return of(call.vm); }
StageBinding& StageBinding::of(Vm& vm) { return static_cast<StageBinding&>(vm.host()); }

std::map<std::string, Object*, std::less<>>& StageBinding::sharedObjects() { return m_state->sharedObjects; }

Value StageBinding::utf8(std::string_view text) { return m_vm->string(base::utf16FromUtf8(text)); }
std::string StageBinding::toUtf8(std::u16string_view text) { return base::utf8FromUtf16(text); }

Object* StageBinding::objectOf(stage::Node* node)
{
    if (!node) return nullptr;
    if (node->peer) return static_cast<Object*>(node->peer);
    Object* prototype = nullptr;
    switch (node->kind()) {
    case stage::NodeKind::Clip: prototype = m_state->movieClip; break;
    case stage::NodeKind::Button: prototype = m_state->button; break;
    case stage::NodeKind::TextField: prototype = m_state->textField; break;
    case stage::NodeKind::Video: prototype = m_state->video; break;
    case stage::NodeKind::Shape:
    case stage::NodeKind::Morph:
    case stage::NodeKind::StaticText:
    case stage::NodeKind::Bitmap: return nullptr;
    }
    Object* object = m_vm->newObject(prototype);
    object->attachNew<NodeObject>(*this, node->shared_from_this(), *object);
    // The instance lives as long as its object, and there may be many that have left the stage.
    m_vm->heap().noteExternalBytes(sizeof(stage::Clip));
    // A text field listens to itself.
    if (node->kind() == stage::NodeKind::TextField) {
        const Value own[] = {Value(object)};
        object->define(*m_vm, "_listeners", Value(m_vm->newArray(own)), kBuiltIn);
    }
    if (stage::Clip* clip = stage::asClip(node); clip && clip->levelNumber() >= 0) defineVersion(object);
    return object;
}

void StageBinding::defineVersion(Object* root)
{
    root->define(*m_vm, "$version", utf8(m_inputs.playerVersion));
}

stage::Node* StageBinding::nodeOf(Object* object)
{
    NodeObject* native = object ? object->native<NodeObject>() : nullptr;
    return native ? native->live() : nullptr;
}

stage::Node* StageBinding::nodeAt(std::string_view path)
{
    constexpr std::string_view kLevel = "_level";
    if (!m_stage || !path.starts_with(kLevel)) return nullptr;
    path.remove_prefix(kLevel.size());
    const std::size_t dot = std::min(path.find('.'), path.size());
    stage::Node* node = m_stage->displayList().level(std::atoi(std::string(path.substr(0, dot)).c_str()));
    path.remove_prefix(dot);
    while (node && !path.empty()) {
        path.remove_prefix(1);
        const std::size_t end = std::min(path.find('.'), path.size());
        stage::Clip* const clip = stage::asClip(node);
        node = clip ? clip->childByName(path.substr(0, end), stage::Clip::Case::Sensitive) : nullptr;
        path.remove_prefix(end);
    }
    return node;
}

stage::Clip* StageBinding::clipOf(Object* object) { return stage::asClip(nodeOf(object)); }

std::optional<int> StageBinding::propertyIndex(Name name)
{
    const int number = name.displayProperty();
    return number < 0 ? std::nullopt : std::optional(number);
}

void StageBinding::callHandler(Object* object, std::string_view handler, std::initializer_list<Value> args)
{
    if (object) m_vm->callMethod(object, handler, args);
}

// ---- stage::ScriptHost ------------------------------------------------------------------------------------

void StageBinding::runActions(stage::Clip& target, const stage::MoviePtr& movie,
                              const swf::ActionBlock& block)
{
    if (!movie) return;
    m_vm->run(movie, block, movie->header.version, objectOf(&target));
}

Name StageBinding::handlerName(stage::Event event)
{
    return m_state->handlers[static_cast<std::size_t>(event)];
}

bool StageBinding::findHandler(stage::Node& node, stage::Event event, Value& handler)
{
    const Name name = handlerName(event);
    const int version = node.movie() ? node.movie()->header.version : 6;
    if (name.isNull() || version < 6) return false;
    const Vm::VersionScope scope(*m_vm, version);
    // Without an object of its own an instance has only what its class has.
    Object* object = static_cast<Object*>(node.peer);
    if (!object) object = node.kind() == stage::NodeKind::Button ? m_state->button : m_state->movieClip;
    return object && object->find(*m_vm, name, handler, Value(object));
}

bool StageBinding::hasHandler(stage::Node& node, stage::Event event)
{
    Value handler;
    return findHandler(node, event, handler) && handler.isObject() && handler.object()->isFunction();
}

bool StageBinding::namesHandler(stage::Node& node, stage::Event event)
{
    Value handler;
    return findHandler(node, event, handler);
}

void StageBinding::dispatch(stage::Node& node, stage::Event event)
{
    if (!hasHandler(node, event)) return;
    const Vm::VersionScope scope(*m_vm, node.movie() ? node.movie()->header.version : 6);
    Object* object = objectOf(&node);
    m_vm->callMethod(object, handlerName(event), std::span<const Value>());
}

bool StageBinding::isEnabled(stage::Node& node)
{
    Object* object = static_cast<Object*>(node.peer);
    if (!object) return true;
    const Vm::VersionScope scope(*m_vm, node.movie() ? node.movie()->header.version : 6);
    Value value;
    if (!object->find(*m_vm, m_state->enabled, value, Value(object))) return true;
    return value.isUndefined() || toBoolean(*m_vm, value);
}

bool StageBinding::hasRegisteredClass(stage::Clip& clip)
{
    // The classes are registered by init actions, which may still wait in the queue when the clip is placed;
    // any exported clip is looked at again when its turn comes.
    return !clip.linkageName().empty();
}

void StageBinding::constructClip(stage::Clip& clip)
{
    const Vm::VersionScope scope(*m_vm, clip.movie() ? clip.movie()->header.version : 6);
    // Classes of clips came with version 6.
    if (clip.movie() && clip.movie()->header.version < 6) return;
    if (Function* constructor = classOf(clip)) m_vm->constructOn(objectOf(&clip), constructor, {});
    callHandler(objectOf(&clip), "onConstruct");
}

namespace
{

constexpr int kFirstThatInitialisesLate = 7;

} // namespace

void StageBinding::prepare(stage::Node& node, const std::function<void(stage::Node&)>& initialise)
{
    if (stage::Clip* clip = stage::asClip(&node)) {
        // Not queued: construct() follows as soon as the first frame's children are there.
        clip->constructed = true;
        // Setters of the class see the initial values.
        assignClass(*clip);
    }
    if (initialise && m_vm->version() < kFirstThatInitialisesLate) initialise(node);
}

void StageBinding::construct(stage::Node& node, const std::function<void(stage::Node&)>& initialise)
{
    const stage::NodePtr keep = node.shared_from_this();
    if (initialise && m_vm->version() >= kFirstThatInitialisesLate) initialise(node);
    stage::Clip* clip = stage::asClip(&node);
    if (!clip || clip->isRemoved()) return;
    clip->constructed = false;
    m_stage->queue().runEvent(*clip, stage::Event::Construct);
}

void StageBinding::assignClass(stage::Clip& clip)
{
    Function* constructor = classOf(clip);
    Object* prototype = constructor ? m_vm->prototypeOf(constructor) : nullptr;
    if (prototype) objectOf(&clip)->setProto(*m_vm, Value(prototype));
}

Function* StageBinding::classOf(stage::Clip& clip)
{
    const std::string name = clip.linkageName();
    if (name.empty()) return nullptr;
    const std::u16string symbol = base::utf16FromUtf8(name);
    if (Function* own = m_vm->symbolClass(std::shared_ptr<const void>(clip.movie()), symbol)) return own;
    // Symbols that a movie imports have the classes that it gave them.
    const stage::Clip* parent = clip.parentClip();
    return parent ? m_vm->symbolClass(std::shared_ptr<const void>(parent->movie()), symbol) : nullptr;
}

std::shared_ptr<const swf::Bitmap> StageBinding::bitmapOf(Object* object) { return bitmapFromObject(object); }

void StageBinding::broadcast(std::string_view objectName, std::string_view message,
                             std::initializer_list<Value> args)
{
    const int version = m_stage->movie() ? m_stage->movie()->header.version : 6;
    const Vm::VersionScope scope(*m_vm, version);
    Object* object = m_vm->global()->get(*m_vm, m_vm->name(objectName)).asObject();
    if (!object) return;
    RootedValues all(m_vm->heap());
    all.push_back(m_vm->string(message));
    all->insert(all->end(), args.begin(), args.end());
    m_vm->callMethod(object, m_vm->name(std::string_view("broadcastMessage")), *all);
}

void StageBinding::broadcastKey(stage::Event event)
{
    broadcast("Key", event == stage::Event::KeyDown ? "onKeyDown" : "onKeyUp");
}

bool StageBinding::hasKeyListeners()
{
    Object* key = m_vm->global()->get(*m_vm, m_vm->name(std::string_view("Key"))).asObject();
    Object* listeners =
        key ? key->get(*m_vm, m_vm->name(std::string_view("_listeners"))).asObject() : nullptr;
    if (!listeners) return false;
    return toNumber(*m_vm, listeners->get(*m_vm, m_vm->name(std::string_view("length")))) > 0;
}

void StageBinding::broadcastMouse(stage::Event event)
{
    broadcast("Mouse", event == stage::Event::MouseDown ? "onMouseDown"
                       : event == stage::Event::MouseUp ? "onMouseUp"
                                                        : "onMouseMove");
}

void StageBinding::broadcastWheel(int lines, stage::Node* node)
{
    stage::Node* named = node;
    while (named && !objectOf(named)) named = named->parent();
    broadcast("Mouse", "onMouseWheel", {Value(lines), Value(objectOf(named))});
}

void StageBinding::broadcastResize() { broadcast("Stage", "onResize"); }

void StageBinding::broadcastFullScreen(bool on) { broadcast("Stage", "onFullScreen", {Value(on)}); }

void StageBinding::focusChanged(stage::Node* before, stage::Node* now)
{
    Object* const from = objectOf(before);
    Object* const to = objectOf(now);
    const Value fromValue = from ? Value(from) : Value::null(), toValue = to ? Value(to) : Value::null();
    const int version = m_stage->movie() ? m_stage->movie()->header.version : 6;
    const Vm::VersionScope scope(*m_vm, version);
    if (from) callHandler(from, "onKillFocus", {toValue});
    if (to) callHandler(to, "onSetFocus", {fromValue});
    broadcast("Selection", "onSetFocus", {fromValue, toValue});
}

void StageBinding::textFieldPlaced(stage::TextField&) { furnishTextField(*m_vm); }

void StageBinding::textChanged(stage::TextField& field)
{
    Object* object = objectOf(&field);
    const Vm::VersionScope scope(*m_vm, field.movie() ? field.movie()->header.version : 6);
    callHandler(object, "broadcastMessage",
                {Value(m_vm->string(std::string_view("onChanged"))), Value(object)});
}

void StageBinding::textScrolled(stage::TextField& field)
{
    Object* object = objectOf(&field);
    const Vm::VersionScope scope(*m_vm, field.movie() ? field.movie()->header.version : 6);
    callHandler(object, "broadcastMessage",
                {Value(m_vm->string(std::string_view("onScroller"))), Value(object)});
}

void StageBinding::followLink(stage::TextField& field, std::u16string_view url, std::u16string_view window)
{
    constexpr std::u16string_view kFunction = u"asfunction:";
    Object* timeline = objectOf(field.parentClip());
    const Vm::VersionScope scope(*m_vm, field.movie() ? field.movie()->header.version : 6);
    if (AtomTable::fold(url.substr(0, kFunction.size())) == kFunction)
        return callLinked(timeline, url.substr(kFunction.size()));
    UrlRequest request;
    const bool isLevel = AtomTable::fold(window.substr(0, 6)) == u"_level";
    request.kind = isLevel ? UrlRequest::Kind::MovieIntoLevel : UrlRequest::Kind::Page;
    request.url = url;
    request.window = window;
    request.sender = timeline;
    requestUrl(request);
}

/// @param call the function's name or path, then perhaps a comma and one argument, which may hold commas
void StageBinding::callLinked(Object* timeline, std::u16string_view call)
{
    const std::size_t comma = call.find(u',');
    const std::u16string_view path = call.substr(0, comma);
    const std::size_t last = path.find_last_of(u"/:.");
    const bool plain = last == std::u16string_view::npos;
    const Name name = m_vm->name(plain ? path : path.substr(last + 1));
    Object* owner = plain ? timeline : m_vm->resolveTarget(timeline, path.substr(0, last));
    Value function = owner ? owner->get(*m_vm, name) : Value();
    if (plain && function.isUndefined()) {
        owner = m_vm->global();
        function = owner->get(*m_vm, name);
    }
    if (!function.isObject()) return;
    if (comma == std::u16string_view::npos)
        m_vm->call(function, Value(owner), {});
    else
        m_vm->call(function, Value(owner), {Value(m_vm->string(std::u16string(call.substr(comma + 1))))});
}

std::optional<std::string> StageBinding::variable(stage::Clip& scope, std::string_view path)
{
    const Vm::VersionScope version(*m_vm, scope.movie() ? scope.movie()->header.version : 6);
    const Value value = m_vm->getVariable(objectOf(&scope), base::utf16FromUtf8(path));
    if (value.isUndefined()) return {};
    return base::utf8FromUtf16(toText(*m_vm, value));
}

bool StageBinding::isClipVariable(stage::Clip& scope, std::string_view path)
{
    const std::size_t end = path.find_last_of(".:");
    if (end == std::string_view::npos) return true;
    const Vm::VersionScope version(*m_vm, scope.movie() ? scope.movie()->header.version : 6);
    Object* owner = m_vm->resolveTarget(objectOf(&scope), base::utf16FromUtf8(path.substr(0, end)));
    return isClip(owner);
}

bool StageBinding::setVariable(stage::Clip& scope, std::string_view path, std::string_view value)
{
    const Vm::VersionScope version(*m_vm, scope.movie() ? scope.movie()->header.version : 6);
    m_vm->setVariable(objectOf(&scope), base::utf16FromUtf8(path), utf8(value));
    return true;
}

void StageBinding::nodeNamed(std::string_view name)
{
    if (m_vm->names().noteNodeName(base::utf16FromUtf8(name))) m_vm->bumpEpoch();
}
void StageBinding::nodeRenamed(stage::Node& node)
{
    if (!node.peer) return;
    if (auto* native = static_cast<Object*>(node.peer)->native<NodeObject>()) native->keepPath();
}

void StageBinding::nodeRemoved(stage::Node& node)
{
    if (!node.peer) return;
    if (auto* native = static_cast<Object*>(node.peer)->native<NodeObject>()) native->leave(*m_vm);
}

void StageBinding::clipReset(stage::Clip& clip)
{
    Object* object = static_cast<Object*>(clip.peer);
    if (!object) return;
    // References know an instance by its first path. One that has another name now is a new thing to them.
    auto* native = object->native<NodeObject>();
    if (native && native->isRenamed()) {
        native->leave(*m_vm);
        clip.peer = nullptr;
        return;
    }
    // What the earlier movie's scripts put there goes with it.
    const Vm::VersionScope scope(*m_vm, 7);
    for (const Name name : object->enumerate(*m_vm)) object->deletePlain(*m_vm, name);
    if (m_state->movieClip) object->setProto(*m_vm, Value(m_state->movieClip));
    if (clip.levelNumber() >= 0) defineVersion(object);
}

double StageBinding::nextTimerMs()
{
    std::optional<double> wait = m_vm->nextTimerMs();
    if (wait) *wait = std::max(0.0, *wait - timeMs());
    for (const auto& stream : m_state->streams) {
        const std::optional<double> next = stream->msToNext();
        if (next && (!wait || *next < *wait)) wait = next;
    }
    return wait.value_or(-1);
}

void StageBinding::runTimers(double)
{
    m_vm->advanceTimers();
    // A handler may start and close streams.
    const auto streams = m_state->streams;
    for (const auto& stream : streams) stream->follow();
}

void StageBinding::watchStream(std::shared_ptr<NetStream> stream)
{
    unwatchStream(*stream);
    m_state->streams.push_back(std::move(stream));
}

void StageBinding::unwatchStream(const NetStream& stream)
{
    std::erase_if(m_state->streams, [&](const auto& entry) { return entry.get() == &stream; });
}

void StageBinding::detachScreen(const stage::VideoNode& screen)
{
    for (const auto& stream : m_state->streams) stream->removeScreen(screen);
}

void StageBinding::watchSound(stage::SoundId sound, Object* object) { m_state->sounds[sound] = object; }

void StageBinding::frameEnded()
{
    for (const stage::SoundId sound : m_services.sound.takeFinished()) {
        const auto found = m_state->sounds.find(sound);
        if (found == m_state->sounds.end()) continue;
        Object* object = found->second;
        m_state->sounds.erase(found);
        const Vm::VersionScope scope(*m_vm, m_stage->movie() ? m_stage->movie()->header.version : 6);
        callHandler(object, "onSoundComplete");
    }
    m_stage->queue().run();
    m_vm->collectIfDue();
}

std::optional<std::string> StageBinding::hostVariable(std::string_view path)
{
    stage::Clip* root = m_stage->root();
    return root ? variable(*root, path) : std::nullopt;
}

void StageBinding::setHostVariable(std::string_view path, std::string_view value)
{
    if (stage::Clip* root = m_stage->root()) setVariable(*root, path, value);
    m_stage->queue().run();
}

} // namespace flash::avm1
