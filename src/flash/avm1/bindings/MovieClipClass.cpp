#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/MovieClipMembers.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Graphics.h"

#include <cmath>
#include <limits>

namespace flash::avm1
{

namespace movieclip
{

Value hiddenOrNot(Vm& vm, Object& object, Name name)
{
    const std::uint16_t flags = object.flagsOf(vm, name);
    if (isVisible(flags, vm.version())) return object.get(vm, name);
    object.changeFlags(vm, name, 0, flags);
    const Value value = object.get(vm, name);
    object.changeFlags(vm, name, flags, 0);
    return value;
}

void setHiddenOrNot(Vm& vm, Object& object, Name name, Value value)
{
    const std::uint16_t flags = object.flagsOf(vm, name);
    if (isVisible(flags, vm.version())) return object.put(vm, name, value);
    object.changeFlags(vm, name, 0, flags);
    object.put(vm, name, value);
    object.changeFlags(vm, name, flags, 0);
}

} // namespace movieclip

namespace
{

/// The object's own enumerable properties go to a new instance before its scripts run.
std::function<void(stage::Node&)> initialiser(Call& call, std::size_t index)
{
    Object* source = call.arg(index).asObject();
    if (!source) return {};
    return [&vm = call.vm, source](stage::Node& node) {
        Object* target = StageBinding::of(vm).objectOf(&node);
        if (!target) return;
        const RootedNames names = source->enumerate(vm);
        for (auto name = names.rbegin(); name != names.rend(); ++name)
            target->put(vm, *name, movieclip::hiddenOrNot(vm, *source, *name));
    };
}

/// Depths that scripts may put things at, the timeline's zone and what lies below it included.
/// @returns nothing for others, which makes the call do nothing.
std::optional<int> depthArg(Call& call, std::size_t index)
{
    const double number = numberArg(call, index);
    if (std::isnan(number)) return {};
    const double depth = avm1::toInt32(number);
    if (!(std::abs(depth) <= stage::kMaxScriptDepth + 1.0)) return {};
    return static_cast<int>(depth);
}

Value attachMovie(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    stage::Clip* clip = selfClip(call);
    const auto depth = depthArg(call, 2);
    if (!clip || !depth || !clip->movie()) return {};
    const std::string name = utf8Arg(call, 0);
    const std::optional<std::uint16_t> id = binding.stage().linkage().exportedCharacter(clip->movie(), name);
    if (!id) return {};
    const auto initialise = initialiser(call, 3);
    const stage::NodePtr made = clip->attach(clip->movie(), *id, *depth, utf8Arg(call, 1),
                                             [&](stage::Node& node) { binding.prepare(node, initialise); });
    if (made) binding.construct(*made, initialise);
    return made ? Value(binding.objectOf(made.get())) : Value();
}

Value createEmptyMovieClip(Call& call)
{
    stage::Clip* clip = selfClip(call);
    const auto depth = depthArg(call, 1);
    if (!clip || !depth) return {};
    const std::shared_ptr<stage::Clip> made = clip->attachEmpty(*depth, utf8Arg(call, 0));
    if (!made) return {};
    Object* const object = StageBinding::of(call).objectOf(made.get());
    call.vm.callMethod(object, "onConstruct");
    return object;
}

Value createTextField(Call& call)
{
    stage::Clip* clip = selfClip(call);
    const auto depth = depthArg(call, 1);
    if (!clip || !depth) return {};
    installTextFieldProperties(call.vm);
    const double x = std::trunc(numberArg(call, 2)), y = std::trunc(numberArg(call, 3));
    const double width = std::trunc(numberArg(call, 4)), height = std::trunc(numberArg(call, 5));
    const auto twips = [](double pixels) {
        constexpr double kMaxPixels = 1e7;
        return static_cast<std::int32_t>((std::abs(pixels) < kMaxPixels ? pixels : 0) * swf::kTwipsPerPixel);
    };
    const stage::NodePtr field =
        clip->attachTextField(*depth, utf8Arg(call, 0), {0, twips(width), 0, twips(height)});
    if (!field) return {};
    field->setX(x);
    field->setY(y);
    Object* object = StageBinding::of(call).objectOf(field.get());
    return call.vm.version() >= 8 ? Value(object) : Value();
}

Value duplicateMovieClip(Call& call)
{
    const std::string name = utf8Arg(call, 0);
    const auto depth = depthArg(call, 1);
    stage::Clip* clip = selfClip(call);
    stage::Clip* parent = clip ? clip->parentClip() : nullptr;
    if (!parent || !depth) return {};
    StageBinding& binding = StageBinding::of(call);
    const auto initialise = initialiser(call, 2);
    const stage::NodePtr copy =
        parent->duplicate(*clip, *depth, name, [&](stage::Node& node) { binding.prepare(node, initialise); });
    if (copy) binding.construct(*copy, initialise);
    return copy ? Value(StageBinding::of(call).objectOf(copy.get())) : Value();
}

Value removeMovieClip(Call& call)
{
    // Works on other things of the stage, too, and reaches further up than the action does.
    stage::Node* node = selfNode(call);
    stage::Clip* parent = node ? node->parentClip() : nullptr;
    constexpr int kLastRemovableDepth = 2130690031;
    if (parent && node->depth() >= 0 && node->depth() <= kLastRemovableDepth) parent->removeChild(*node);
    return {};
}

stage::PixelSnapping snappingOf(std::u16string_view name)
{
    if (name == u"never") return stage::PixelSnapping::Never;
    return name == u"always" ? stage::PixelSnapping::Always : stage::PixelSnapping::Auto;
}

Value attachBitmap(Call& call)
{
    // What asks for texts and numbers may run script, which may take the clip away.
    const auto depth = depthArg(call, 1);
    const stage::PixelSnapping snapping = snappingOf(toText(call.vm, call.arg(2)));
    stage::Clip* clip = selfClip(call);
    Object* object = call.arg(0).asObject();
    if (!clip || !object || !depth) return {};
    if (auto bitmap = StageBinding::of(call).bitmapOf(object)) {
        const bool smooth = toBoolean(call.vm, call.arg(3));
        const stage::NodePtr node = clip->attachBitmap(std::move(bitmap), *depth, smooth);
        if (node) static_cast<stage::BitmapNode&>(*node).setSnapping(snapping);
    }
    return {};
}

Value attachVideo(Call&) { return {}; } // cameras only

// ---- timeline ---------------------------------------------------------------------------------------------

Value gotoAnd(Call& call, bool play)
{
    StageBinding& binding = StageBinding::of(call);
    Object* self = call.self.asObject();
    if (!binding.clipOf(self)) return {};
    Value where = call.arg(0);
    if (where.isObject()) where = Value(toString(call.vm, where));
    if (where.isString()) {
        std::u16string label = toText(call.vm, where);
        // "/clip:5" and "/clip:label" are frames of another clip.
        if (const std::size_t colon = label.rfind(u':'); colon != std::u16string::npos && colon > 0) {
            Object* const other = call.vm.resolveTarget(self, std::u16string_view(label).substr(0, colon));
            if (binding.clipOf(other)) {
                self = other;
                label.erase(0, colon + 1);
                where = Value(call.vm.string(label));
            }
        }
        if (binding.host().gotoLabel(self, label, play)) return {};
    }
    const double number = toNumber(call.vm, where);
    if (!std::isfinite(number)) return {};
    if (where.isString() && std::trunc(number) != number) return {};
    // Frames count from 1 here; the lowest number of all wraps around to one behind the last frame.
    const int frame = toInt32(number) == std::numeric_limits<int>::min() ? std::numeric_limits<int>::max()
                                                                         : toInt32(number);
    // Anything before the first does not go anywhere but obeys "and play".
    if (frame < 1) {
        if (play)
            binding.host().play(self);
        else
            binding.host().stop(self);
        return {};
    }
    binding.host().gotoFrame(self, frame - 1, play);
    return {};
}
Value gotoAndPlay(Call& call) { return gotoAnd(call, true); }
Value gotoAndStop(Call& call) { return gotoAnd(call, false); }
Value play(Call& call)
{
    StageBinding::of(call).host().play(call.self.asObject());
    return {};
}
Value stop(Call& call)
{
    StageBinding::of(call).host().stop(call.self.asObject());
    return {};
}
Value nextFrame(Call& call)
{
    StageBinding::of(call).host().nextFrame(call.self.asObject());
    return {};
}
Value prevFrame(Call& call)
{
    StageBinding::of(call).host().previousFrame(call.self.asObject());
    return {};
}

// ---- depths -----------------------------------------------------------------------------------------------

Value swapDepths(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    stage::Clip* clip = selfClip(call);
    stage::Clip* parent = clip ? clip->parentClip() : nullptr;
    if (!clip || call.count() == 0) return {};
    Object* target = call.arg(0).asObject();
    if (!target && call.arg(0).isString())
        target = call.vm.resolveTarget(call.self.asObject(), textArg(call, 0));
    if (stage::Node* other = binding.nodeOf(target)) {
        if (parent && other->parentClip() == parent) parent->swapDepths(*clip, other->depth());
        return {};
    }
    if (call.arg(0).isUndefined()) return {};
    const int depth = toInt32(call.vm, call.arg(0));
    if (depth < stage::kTimelineDepth || depth > stage::kMaxScriptDepth) return {};
    if (parent)
        parent->swapDepths(*clip, depth);
    else
        clip->setRootDepth(depth);
    return {};
}

Value getDepth(Call& call)
{
    stage::Node* node = selfNode(call);
    return node ? Value(node->depth()) : Value();
}

Value getNextHighestDepth(Call& call)
{
    stage::Clip* clip = selfClip(call);
    return clip ? Value(clip->nextHighestDepth()) : Value();
}

Value getInstanceAtDepth(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    stage::Clip* clip = selfClip(call);
    if (!clip || call.arg(0).isUndefined()) return {};
    stage::Node* node = clip->childAt(intArg(call, 0));
    if (!node) return {};
    Object* object = binding.objectOf(node);
    return object ? Value(object) : call.self;
}

// ---- dragging, loading
// ---------------------------------------------------------------------------------------

Value startDrag(Call& call)
{
    DragRequest request;
    request.clip = call.self.asObject();
    request.lockCenter = toBoolean(call.vm, call.arg(0));
    request.constrained = call.count() > 4;
    request.left = numberArg(call, 1);
    request.top = numberArg(call, 2);
    request.right = numberArg(call, 3);
    request.bottom = numberArg(call, 4);
    StageBinding::of(call).host().startDrag(request);
    return {};
}
Value stopDrag(Call& call)
{
    StageBinding::of(call).host().endDrag();
    return {};
}

Value getTextSnapshot(Call& call)
{
    stage::Clip* clip = selfClip(call);
    if (!clip) return {};
    std::string all;
    for (const stage::NodePtr& child : clip->children())
        if (child->kind() == stage::NodeKind::StaticText)
            all += static_cast<stage::StaticTextNode&>(*child).text();
    Object* snapshot = call.vm.newObject();
    snapshot->define(call.vm, "text", StageBinding::of(call).utf8(all), kBuiltIn);
    static constexpr MemberInfo kMembers[] = {
        {"getCount", 0, 0,
         [](Call& c) -> Value {
             return Value(static_cast<double>(
                 toText(c.vm, c.self.asObject()->get(c.vm, c.vm.name(std::string_view("text")))).size()));
         }},
        {"getText", 2, 0,
         [](Call& c) -> Value {
             const std::u16string text =
                 toText(c.vm, c.self.asObject()->get(c.vm, c.vm.name(std::string_view("text"))));
             const auto from = static_cast<std::size_t>(std::max(0, intArg(c, 0)));
             const auto to = std::min(static_cast<std::size_t>(std::max(0, intArg(c, 1))), text.size());
             return c.vm.string(from < to ? text.substr(from, to - from) : std::u16string());
         }},
    };
    call.vm.addMembers(snapshot, kMembers);
    return snapshot;
}

Value construct(Call&) { return {}; }

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"attachMovie",           3, 0,      &attachMovie},
    {"swapDepths",            1, 0,      &swapDepths},
    {"localToGlobal",         1, 0,      &movieclip::localToGlobal},
    {"globalToLocal",         1, 0,      &movieclip::globalToLocal},
    {"hitTest",               1, 0,      &movieclip::hitTest},
    {"getBounds",             0, 0,      &movieclip::getBounds},
    {"getBytesTotal",         0, 0,      &movieclip::getBytesTotal},
    {"getBytesLoaded",        0, 0,      &movieclip::getBytesLoaded},
    {"attachAudio",           1, kFrom6, &attachAudio},
    {"attachVideo",           0, kFrom6, &attachVideo},
    {"getDepth",              0, kFrom6, &getDepth},
    {"setMask",               1, kFrom6, &movieclip::setMask},
    {"play",                  0, 0,      &play},
    {"stop",                  0, 0,      &stop},
    {"nextFrame",             0, 0,      &nextFrame},
    {"prevFrame",             0, 0,      &prevFrame},
    {"gotoAndPlay",           1, 0,      &gotoAndPlay},
    {"gotoAndStop",           1, 0,      &gotoAndStop},
    {"duplicateMovieClip",    2, 0,      &duplicateMovieClip},
    {"removeMovieClip",       0, 0,      &removeMovieClip},
    {"startDrag",             0, 0,      &startDrag},
    {"stopDrag",              0, 0,      &stopDrag},
    {"getURL",                1, 0,      &movieclip::getUrl},
    {"loadMovie",             1, 0,      &movieclip::loadMovie},
    {"loadVariables",         1, 0,      &movieclip::loadVariables},
    {"unloadMovie",           0, 0,      &movieclip::unloadMovie},
    {"createEmptyMovieClip",  2, kFrom6, &createEmptyMovieClip},
    {"createTextField",       6, 0,      &createTextField},
    {"getNextHighestDepth",   0, kFrom7, &getNextHighestDepth},
    {"getInstanceAtDepth",    1, kFrom7, &getInstanceAtDepth},
    {"getSWFVersion",         0, 0,      &movieclip::getSwfVersion},
    {"getTextSnapshot",       0, kFrom6, &getTextSnapshot},
    {"attachBitmap",          2, kFrom8, &attachBitmap},
    {"getRect",               0, kFrom8, &movieclip::getRect},
};
// clang-format on

} // namespace

void installMovieClip(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("MovieClip", &construct, kMembers);
    Object* prototype = vm.prototypeOf(constructor);
    movieclip::addLook(vm, prototype);
    addTabIndex(vm, prototype, kBuiltIn);
    prototype->define(vm, "enabled", Value(true), kDontEnum | kDontDelete);
    prototype->define(vm, "useHandCursor", Value(true), kDontEnum | kDontDelete);
    installMovieClipDrawing(binding, prototype);
    constexpr int kMovieClipTable = 104;
    vm.registerNative(kMovieClipTable, 200, &createTextField, 6);
}

void installButton(StageBinding& binding)
{
    Vm& vm = binding.vm();
    for (const char* name : {"Button", "Video"}) {
        Object* prototype = vm.prototypeOf(vm.defineClass(name, &construct));
        if (std::string_view(name) == "Video") {
            movieclip::addLook(vm, prototype);
            continue;
        }
        movieclip::addButtonLook(vm, prototype);
        addTabIndex(vm, prototype);
        prototype->define(vm, "getDepth", vm.newFunction(&getDepth), 0);
        prototype->define(vm, "enabled", Value(true), 0);
        prototype->define(vm, "useHandCursor", Value(true), 0);
    }
}

} // namespace flash::avm1
