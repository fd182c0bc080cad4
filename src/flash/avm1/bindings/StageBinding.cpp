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
#include "flash/swf/LevelName.h"

#include <algorithm>
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

} // namespace

struct StageBinding::State {
    std::vector<Atom*> keptNames;
    std::unordered_map<stage::SoundId, Object*> sounds; // whose end is waited for
    std::vector<std::shared_ptr<NetStream>> streams;    // those that play
    std::map<std::string, Object*, std::less<>> sharedObjects;
    std::map<std::u16string, Object*> localConnections;
    Prototypes prototypes;
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
    m_events.forgetNames();
    m_vm.reset();
    m_host.restart(m_inputs.randomSeed);
    emptyBoundsAreFurther = false;
    m_vm = std::make_unique<Vm>(m_host, &classes::installAll);
    m_state = std::make_unique<State>();
    m_vm->heap().addRootSource([this](Tracer& tracer) { traceNodes(tracer); });
    for (std::size_t i = 0; i < std::size(kPropertyNames); ++i) {
        const Name name = m_vm->name(std::string_view(kPropertyNames[i]));
        name.setDisplayProperty(static_cast<int>(i));
        m_state->keptNames.push_back(name.cell());
    }
    m_events.restart(*m_vm);
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
    installLocalConnection(*this);
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
    m_state->prototypes.movieClip = prototype("MovieClip");
    m_state->prototypes.button = prototype("Button");
    m_state->prototypes.textField = prototype("TextField");
    m_state->prototypes.video = prototype("Video");
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

template <class Visitor>
void StageBinding::forEachNode(Visitor&& visitor)
{
    if (!m_stage) return;
    const auto visit = [&](auto&& self, stage::Node& node) -> void {
        visitor(node);
        for (const stage::NodePtr& child : node.children()) self(self, *child);
    };
    for (const auto& [number, root] : m_stage->displayList().levels()) visit(visit, *root);
    for (const auto& clip : m_stage->displayList().clips()) visitor(*clip);
}

void StageBinding::renewNodeNames()
{
    m_vm->names().renewNodeNames(
        [this] { forEachNode([this](const stage::Node& node) { m_events.nodeNamed(node.name()); }); });
}

void StageBinding::traceNodes(Tracer& tracer)
{
    for (Atom* name : m_state->keptNames) tracer(name);
    m_events.trace(tracer);
    for (const auto& [id, object] : m_state->sounds) tracer(object);
    for (const auto& stream : m_state->streams) stream->trace(tracer);
    for (const auto& [key, object] : m_state->sharedObjects) tracer(object);
    for (const auto& [name, object] : m_state->localConnections) tracer(object);
    tracer(m_state->prototypes.movieClip);
    tracer(m_state->prototypes.button);
    tracer(m_state->prototypes.textField);
    tracer(m_state->prototypes.video);
    forEachNode([&](const stage::Node& node) { tracer(NodeObject::objectOf(node)); });
}

StageBinding& StageBinding::of(Call& call) { return of(call.vm); }
StageBinding& StageBinding::of(Vm& vm) { return *vm.host().binding(); }

std::map<std::string, Object*, std::less<>>& StageBinding::sharedObjects() { return m_state->sharedObjects; }

std::map<std::u16string, Object*>& StageBinding::localConnections() { return m_state->localConnections; }

Value StageBinding::utf8(std::string_view text) { return m_vm->string(base::utf16FromUtf8(text)); }
std::string StageBinding::toUtf8(std::u16string_view text) { return base::utf8FromUtf16(text); }

Object* StageBinding::objectOf(stage::Node* node)
{
    if (!node) return nullptr;
    if (Object* known = NodeObject::objectOf(*node)) return known;
    Object* prototype = nullptr;
    switch (node->kind()) {
    case stage::NodeKind::Clip: prototype = m_state->prototypes.movieClip; break;
    case stage::NodeKind::Button: prototype = m_state->prototypes.button; break;
    case stage::NodeKind::TextField: prototype = m_state->prototypes.textField; break;
    case stage::NodeKind::Video: prototype = m_state->prototypes.video; break;
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
    // Asked after every call: what only instances of the stage are tells them without asking the native.
    if (!object || object->exotic() != Exotic::Node) return nullptr;
    return static_cast<NodeObject*>(object->nativeBase())->live();
}

stage::Node* StageBinding::nodeAt(std::string_view path)
{
    const auto rest = swf::afterLevelPrefix(path);
    if (!m_stage || !rest) return nullptr;
    path = *rest;
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
        m_events.assignClass(*clip);
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

std::shared_ptr<const swf::Bitmap> StageBinding::bitmapOf(Object* object) { return bitmapFromObject(object); }

Object* StageBinding::scriptedChild(stage::Clip& clip, stage::Node* child)
{
    const bool isKnown = m_vm->version() >= 6 || child->kind() != stage::NodeKind::TextField;
    Object* object = isKnown ? objectOf(child) : nullptr;
    return object ? object : objectOf(&clip);
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

const StageBinding::Prototypes& StageBinding::prototypes() const { return m_state->prototypes; }

std::optional<double> StageBinding::msToNextOfStreams() const
{
    std::optional<double> wait;
    for (const auto& stream : m_state->streams) {
        const std::optional<double> next = stream->msToNext();
        if (next && (!wait || *next < *wait)) wait = next;
    }
    return wait;
}

void StageBinding::followStreams()
{
    // A handler may start and close streams.
    const auto streams = m_state->streams;
    for (const auto& stream : streams) stream->follow();
}

void StageBinding::reportSounds()
{
    for (const stage::SoundId sound : m_services.sound.takeFinished()) {
        const auto found = m_state->sounds.find(sound);
        if (found == m_state->sounds.end()) continue;
        Object* object = found->second;
        m_state->sounds.erase(found);
        const Vm::VersionScope scope(*m_vm, m_stage->movie() ? m_stage->movie()->header.version : 6);
        callHandler(object, "onSoundComplete");
    }
}

} // namespace flash::avm1
