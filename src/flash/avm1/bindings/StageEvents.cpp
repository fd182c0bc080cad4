#include "flash/avm1/bindings/StageEvents.h"

#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/NodeObject.h"
#include "flash/avm1/bindings/StageBinding.h"
#include "flash/stage/TextField.h"
#include "flash/swf/LevelName.h"

#include <iterator>

namespace flash::avm1
{

namespace
{

// In the order of stage::Event; null for what scripts have no handler for.
constexpr const char* kHandlerNames[] = {
    "onLoad",    "onEnterFrame", "onUnload",  "onMouseMove", "onMouseDown", "onMouseUp",        "onKeyDown",
    "onKeyUp",   "onData",       nullptr,     "onPress",     "onRelease",   "onReleaseOutside", "onRollOver",
    "onRollOut", "onDragOver",   "onDragOut", nullptr,       nullptr};

} // namespace

Vm& StageEvents::vm() const { return m_binding.vm(); }
stage::Stage& StageEvents::stage() const { return m_binding.stage(); }

void StageEvents::restart(Vm& vm)
{
    static_assert(std::size(kHandlerNames) == kEvents);
    for (std::size_t i = 0; i < kEvents; ++i)
        if (kHandlerNames[i]) m_handlers[i] = vm.name(std::string_view(kHandlerNames[i]));
    m_enabled = vm.name(std::string_view("enabled"));
}

void StageEvents::forgetNames()
{
    m_handlers = {};
    m_enabled = {};
    m_menus.close();
}

void StageEvents::trace(Tracer& tracer)
{
    for (const Name name : m_handlers)
        if (!name.isNull()) tracer(name.cell());
    if (!m_enabled.isNull()) tracer(m_enabled.cell());
    m_menus.trace(tracer);
}

void StageEvents::runActions(stage::Node& target, const stage::MoviePtr& movie, const swf::ActionBlock& block)
{
    if (!movie) return;
    vm().run(movie, block, movie->header.version, m_binding.objectOf(&target));
}

Name StageEvents::handlerName(stage::Event event) { return m_handlers[static_cast<std::size_t>(event)]; }

bool StageEvents::findHandler(stage::Node& node, stage::Event event, Value& handler)
{
    const Name name = handlerName(event);
    const int version = node.movie() ? node.movie()->header.version : 6;
    if (name.isNull() || version < 6) return false;
    const Vm::VersionScope scope(vm(), version);
    // Without an object of its own an instance has only what its class has.
    Object* object = NodeObject::objectOf(node);
    if (!object)
        object = node.kind() == stage::NodeKind::Button ? m_binding.prototypes().button
                                                        : m_binding.prototypes().movieClip;
    return object && object->find(vm(), name, handler, Value(object));
}

bool StageEvents::hasHandler(stage::Node& node, stage::Event event)
{
    Value handler;
    return findHandler(node, event, handler) && handler.isObject() && handler.object()->isFunction();
}

bool StageEvents::namesHandler(stage::Node& node, stage::Event event)
{
    Value handler;
    return findHandler(node, event, handler);
}

void StageEvents::dispatch(stage::Node& node, stage::Event event)
{
    if (!hasHandler(node, event)) return;
    const Vm::VersionScope scope(vm(), node.movie() ? node.movie()->header.version : 6);
    Object* object = m_binding.objectOf(&node);
    vm().callMethod(object, handlerName(event), std::span<const Value>());
}

bool StageEvents::isEnabled(stage::Node& node)
{
    Object* object = NodeObject::objectOf(node);
    if (!object) return true;
    const Vm::VersionScope scope(vm(), node.movie() ? node.movie()->header.version : 6);
    Value value;
    if (!object->find(vm(), m_enabled, value, Value(object))) return true;
    return value.isUndefined() || toBoolean(vm(), value);
}

bool StageEvents::hasRegisteredClass(stage::Clip& clip)
{
    // The classes are registered by init actions, which may still wait in the queue when the clip is placed;
    // any exported clip is looked at again when its turn comes.
    return !clip.linkageName().empty();
}

void StageEvents::constructClip(stage::Clip& clip)
{
    const Vm::VersionScope scope(vm(), clip.movie() ? clip.movie()->header.version : 6);
    // Classes of clips came with version 6.
    if (clip.movie() && clip.movie()->header.version < 6) return;
    if (Function* constructor = classOf(clip)) vm().constructOn(m_binding.objectOf(&clip), constructor, {});
    m_binding.callHandler(m_binding.objectOf(&clip), "onConstruct");
}

void StageEvents::assignClass(stage::Clip& clip)
{
    Function* constructor = classOf(clip);
    Object* prototype = constructor ? vm().prototypeOf(constructor) : nullptr;
    if (prototype) m_binding.objectOf(&clip)->setProto(vm(), Value(prototype));
}

Function* StageEvents::classOf(stage::Clip& clip)
{
    const std::string name = clip.linkageName();
    if (name.empty()) return nullptr;
    const std::u16string symbol = base::utf16FromUtf8(name);
    if (Function* own = vm().symbolClass(std::shared_ptr<const void>(clip.movie()), symbol)) return own;
    // Symbols that a movie imports have the classes that it gave them.
    const stage::Clip* parent = clip.parentClip();
    return parent ? vm().symbolClass(std::shared_ptr<const void>(parent->movie()), symbol) : nullptr;
}

void StageEvents::broadcast(std::string_view objectName, std::string_view message,
                            std::initializer_list<Value> args)
{
    const int version = stage().movie() ? stage().movie()->header.version : 6;
    const Vm::VersionScope scope(vm(), version);
    Object* object = vm().global()->get(vm(), vm().name(objectName)).asObject();
    if (!object) return;
    RootedValues all(vm().heap());
    all.push_back(vm().string(message));
    all->insert(all->end(), args.begin(), args.end());
    vm().callMethod(object, vm().name(std::string_view("broadcastMessage")), *all);
}

void StageEvents::broadcastKey(stage::Event event)
{
    broadcast("Key", event == stage::Event::KeyDown ? "onKeyDown" : "onKeyUp");
}

bool StageEvents::hasKeyListeners()
{
    Object* key = vm().global()->get(vm(), vm().name(std::string_view("Key"))).asObject();
    Object* listeners = key ? key->get(vm(), vm().name(std::string_view("_listeners"))).asObject() : nullptr;
    if (!listeners) return false;
    return toNumber(vm(), listeners->get(vm(), vm().name(std::string_view("length")))) > 0;
}

void StageEvents::broadcastMouse(stage::Event event)
{
    broadcast("Mouse", event == stage::Event::MouseDown ? "onMouseDown"
                       : event == stage::Event::MouseUp ? "onMouseUp"
                                                        : "onMouseMove");
}

void StageEvents::broadcastWheel(int lines, stage::Node* node)
{
    stage::Node* named = node;
    while (named && !m_binding.objectOf(named)) named = named->parent();
    broadcast("Mouse", "onMouseWheel", {Value(lines), Value(m_binding.objectOf(named))});
}

void StageEvents::broadcastResize() { broadcast("Stage", "onResize"); }

void StageEvents::broadcastFullScreen(bool on) { broadcast("Stage", "onFullScreen", {Value(on)}); }

void StageEvents::focusChanged(stage::Node* before, stage::Node* now)
{
    Object* const from = m_binding.objectOf(before);
    Object* const to = m_binding.objectOf(now);
    const Value fromValue = from ? Value(from) : Value::null(), toValue = to ? Value(to) : Value::null();
    const int version = stage().movie() ? stage().movie()->header.version : 6;
    const Vm::VersionScope scope(vm(), version);
    if (from) m_binding.callHandler(from, "onKillFocus", {toValue});
    if (to) m_binding.callHandler(to, "onSetFocus", {fromValue});
    broadcast("Selection", "onSetFocus", {fromValue, toValue});
}

void StageEvents::textFieldPlaced(stage::TextField&) { installTextFieldProperties(vm()); }

void StageEvents::textChanged(stage::TextField& field)
{
    Object* object = m_binding.objectOf(&field);
    const Vm::VersionScope scope(vm(), field.movie() ? field.movie()->header.version : 6);
    m_binding.callHandler(object, "broadcastMessage",
                          {Value(vm().string(std::string_view("onChanged"))), Value(object)});
}

void StageEvents::textScrolled(stage::TextField& field)
{
    Object* object = m_binding.objectOf(&field);
    const Vm::VersionScope scope(vm(), field.movie() ? field.movie()->header.version : 6);
    m_binding.callHandler(object, "broadcastMessage",
                          {Value(vm().string(std::string_view("onScroller"))), Value(object)});
}

void StageEvents::followLink(stage::TextField& field, std::u16string_view url, std::u16string_view window)
{
    constexpr std::u16string_view kFunction = u"asfunction:";
    Object* timeline = m_binding.objectOf(field.parentClip());
    const Vm::VersionScope scope(vm(), field.movie() ? field.movie()->header.version : 6);
    if (AtomTable::fold(url.substr(0, kFunction.size())) == kFunction)
        return callLinked(timeline, url.substr(kFunction.size()));
    UrlRequest request;
    const bool isLevel = AtomTable::fold(window.substr(0, swf::kLevelPrefix.size())) == swf::kLevelPrefix;
    request.kind = isLevel ? UrlRequest::Kind::MovieIntoLevel : UrlRequest::Kind::Page;
    request.url = url;
    request.window = window;
    request.sender = timeline;
    m_binding.host().requestUrl(request);
}

/// @param call the function's name or path, then perhaps a comma and one argument, which may hold commas
void StageEvents::callLinked(Object* timeline, std::u16string_view call)
{
    const std::size_t comma = call.find(u',');
    const std::u16string_view path = call.substr(0, comma);
    const std::size_t last = path.find_last_of(u"/:.");
    const bool plain = last == std::u16string_view::npos;
    const Name name = vm().name(plain ? path : path.substr(last + 1));
    Object* owner = plain ? timeline : vm().resolveTarget(timeline, path.substr(0, last));
    Value function = owner ? owner->get(vm(), name) : Value();
    if (plain && function.isUndefined()) {
        owner = vm().global();
        function = owner->get(vm(), name);
    }
    if (!function.isObject()) return;
    if (comma == std::u16string_view::npos)
        vm().call(function, Value(owner), {});
    else
        vm().call(function, Value(owner), {Value(vm().string(std::u16string(call.substr(comma + 1))))});
}

std::optional<std::string> StageEvents::variable(stage::Clip& scope, std::string_view path)
{
    const Vm::VersionScope version(vm(), scope.movie() ? scope.movie()->header.version : 6);
    const Value value = vm().getVariable(m_binding.objectOf(&scope), base::utf16FromUtf8(path));
    if (value.isUndefined()) return {};
    return base::utf8FromUtf16(toText(vm(), value));
}

bool StageEvents::isClipVariable(stage::Clip& scope, std::string_view path)
{
    const std::size_t end = path.find_last_of(".:");
    if (end == std::string_view::npos) return true;
    const Vm::VersionScope version(vm(), scope.movie() ? scope.movie()->header.version : 6);
    Object* owner = vm().resolveTarget(m_binding.objectOf(&scope), base::utf16FromUtf8(path.substr(0, end)));
    return m_binding.host().isClip(owner);
}

bool StageEvents::setVariable(stage::Clip& scope, std::string_view path, std::string_view value)
{
    const Vm::VersionScope version(vm(), scope.movie() ? scope.movie()->header.version : 6);
    vm().setVariable(m_binding.objectOf(&scope), base::utf16FromUtf8(path), m_binding.utf8(value));
    return true;
}

void StageEvents::nodeNamed(std::string_view name)
{
    if (vm().names().noteNodeName(base::utf16FromUtf8(name))) vm().bumpEpoch();
}
void StageEvents::nodeRemoved(stage::Node& node)
{
    if (NodeObject* known = NodeObject::of(node)) known->leave(vm());
}

void StageEvents::clipReset(stage::Clip& clip)
{
    Object* object = NodeObject::objectOf(clip);
    if (!object) return;
    // References know an instance by its first path. One that has another name now is a new thing to them.
    auto* native = object->native<NodeObject>();
    if (native && native->isRenamed()) {
        native->leave(vm());
        clip.peer = nullptr;
        return;
    }
    // What the earlier movie's scripts put there goes with it.
    const Vm::VersionScope scope(vm(), 7);
    for (const Name name : object->enumerate(vm())) object->deletePlain(vm(), name);
    if (m_binding.prototypes().movieClip) object->setProto(vm(), Value(m_binding.prototypes().movieClip));
    if (clip.levelNumber() >= 0) m_binding.defineVersion(object);
}

std::optional<std::string> StageEvents::hostVariable(std::string_view path)
{
    stage::Clip* root = stage().root();
    return root ? variable(*root, path) : std::nullopt;
}

void StageEvents::setHostVariable(std::string_view path, std::string_view value)
{
    if (stage::Clip* root = stage().root()) setVariable(*root, path, value);
    stage().queue().run();
}

void StageEvents::stopSlowScripts()
{
    if (!vm().isDisabled() && m_binding.host().askToStopScript(0))
        vm().abortScript("The scripts of this movie ran for too long and were stopped.");
}

double StageEvents::nextTimerMs()
{
    std::optional<double> wait = vm().nextTimerMs();
    if (wait) *wait = std::max(0.0, *wait - stage().nowMs());
    const std::optional<double> stream = m_binding.msToNextOfStreams();
    if (stream && (!wait || *stream < *wait)) wait = stream;
    return wait.value_or(-1);
}

void StageEvents::runTimers(double)
{
    vm().advanceTimers();
    m_binding.followStreams();
}

void StageEvents::frameEnded()
{
    m_binding.reportSounds();
    stage().queue().run();
    // Between frames every instance stands in its place.
    if (vm().names().hasManyNodeNames()) m_binding.renewNodeNames();
    vm().collectIfDue();
}

} // namespace flash::avm1
