#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/Filters.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Graphics.h"

#include <cmath>
#include <limits>

namespace flash::avm1
{

namespace
{

/// The value of a property, were it hidden from the running version.
Value hiddenOrNot(Vm& vm, Object& object, Name name)
{
    const std::uint16_t flags = object.flagsOf(vm, name);
    if (isVisible(flags, vm.version())) return object.get(vm, name);
    object.changeFlags(vm, name, 0, flags);
    const Value value = object.get(vm, name);
    object.changeFlags(vm, name, flags, 0);
    return value;
}

/// Sets a property, were it hidden from the running version.
void setHiddenOrNot(Vm& vm, Object& object, Name name, Value value)
{
    const std::uint16_t flags = object.flagsOf(vm, name);
    if (isVisible(flags, vm.version())) return object.put(vm, name, value);
    object.changeFlags(vm, name, 0, flags);
    object.put(vm, name, value);
    object.changeFlags(vm, name, flags, 0);
}

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
            target->put(vm, *name, hiddenOrNot(vm, *source, *name));
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
    furnishTextField(call.vm);
    const double x = std::trunc(numberArg(call, 2)), y = std::trunc(numberArg(call, 3));
    const double width = std::trunc(numberArg(call, 4)), height = std::trunc(numberArg(call, 5));
    const auto twips = [](double pixels) {
        constexpr double kLargestPixels = 1e7;
        return static_cast<std::int32_t>((std::abs(pixels) < kLargestPixels ? pixels : 0) *
                                         swf::kTwipsPerPixel);
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

Value attachBitmap(Call& call)
{
    stage::Clip* clip = selfClip(call);
    Object* object = call.arg(0).asObject();
    const auto depth = depthArg(call, 1);
    if (!clip || !object || !depth) return {};
    if (auto bitmap = StageBinding::of(call).bitmapOf(object)) {
        const bool smooth = toBoolean(call.vm, call.arg(3));
        const stage::NodePtr node = clip->attachBitmap(std::move(bitmap), *depth, smooth);
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
        if (binding.gotoLabel(self, label, play)) return {};
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
            binding.play(self);
        else
            binding.stop(self);
        return {};
    }
    binding.gotoFrame(self, frame - 1, play);
    return {};
}
Value gotoAndPlay(Call& call) { return gotoAnd(call, true); }
Value gotoAndStop(Call& call) { return gotoAnd(call, false); }
Value play(Call& call)
{
    StageBinding::of(call).play(call.self.asObject());
    return {};
}
Value stop(Call& call)
{
    StageBinding::of(call).stop(call.self.asObject());
    return {};
}
Value nextFrame(Call& call)
{
    StageBinding::of(call).nextFrame(call.self.asObject());
    return {};
}
Value prevFrame(Call& call)
{
    StageBinding::of(call).previousFrame(call.self.asObject());
    return {};
}

// ---- geometry ---------------------------------------------------------------------------------------------

/// @param nothing what each side of an empty rectangle reports
Object* rectObject(Vm& vm, const swf::Rect& rect, double nothing)
{
    // A bare object, without a class.
    Object* object = vm.newObject(nullptr);
    const auto value = [&](std::int32_t twips) {
        return Value(rect.isEmpty() ? nothing : twips / static_cast<double>(swf::kTwipsPerPixel));
    };
    object->define(vm, "yMax", value(rect.yMax));
    object->define(vm, "yMin", value(rect.yMin));
    object->define(vm, "xMax", value(rect.xMax));
    object->define(vm, "xMin", value(rect.xMin));
    return object;
}

Value boundsIn(Call& call, stage::Node::Extent extent)
{
    StageBinding& binding = StageBinding::of(call);
    stage::Clip* clip = selfClip(call);
    if (!clip) return {};
    stage::Node* space = clip;
    if (call.count() > 0 && !call.arg(0).isUndefined()) {
        Object* target = call.arg(0).asObject();
        if (!target) target = call.vm.resolveTarget(call.self.asObject(), textArg(call, 0));
        space = binding.nodeOf(target);
        if (!space) return {};
    }
    swf::Rect rect = clip->bounds(extent);
    if (space == clip->parent())
        rect = clip->boundsThrough(clip->matrix(), extent);
    else if (space != clip)
        rect = clip->boundsThrough(space->toStage().inverted() * clip->toStage(), extent);
    // The largest number of twips there is, minimum and maximum alike; in the clip's own space always the
    // smaller one.
    constexpr double kNothing = 6710886.35, kFurther = 6710886.4;
    if (call.vm.version() >= 8 || binding.stage().movie()->header.version >= 8)
        binding.emptyBoundsAreFurther = true;
    const bool further = binding.emptyBoundsAreFurther && space != clip;
    return rectObject(call.vm, rect, further ? kFurther : kNothing);
}
Value getBounds(Call& call) { return boundsIn(call, stage::Node::Extent::WithStrokes); }
Value getRect(Call& call) { return boundsIn(call, stage::Node::Extent::WithoutStrokes); }

Value convertPoint(Call& call, bool toGlobal)
{
    stage::Clip* clip = selfClip(call);
    Object* point = call.arg(0).asObject();
    if (!clip || !point) return {};
    Vm& vm = call.vm;
    const Name x = vm.name(std::string_view("x")), y = vm.name(std::string_view("y"));
    // Only the point's own data counts: no prototype and no getter is asked.
    const Value px = point->ownHiddenData(vm, x), py = point->ownHiddenData(vm, y);
    if (!px.isNumber() || !py.isNumber()) return {};
    const swf::Matrix matrix = toGlobal ? clip->toStage() : clip->toStage().inverted();
    constexpr double kTwips = swf::kTwipsPerPixel;
    // Twips are of 32 bits here, and wrap around.
    const swf::Point mapped =
        matrix.map(avm1::toInt32(px.number() * kTwips), avm1::toInt32(py.number() * kTwips));
    setHiddenOrNot(vm, *point, x, Value(std::round(mapped.x) / kTwips));
    setHiddenOrNot(vm, *point, y, Value(std::round(mapped.y) / kTwips));
    return {};
}
Value localToGlobal(Call& call) { return convertPoint(call, true); }
Value globalToLocal(Call& call) { return convertPoint(call, false); }

Value hitTest(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    stage::Clip* clip = selfClip(call);
    if (!clip) return call.vm.version() >= 5 ? Value(false) : Value();
    if (call.count() > 1) {
        const double x = numberArg(call, 0), y = numberArg(call, 1);
        if (!std::isfinite(x) || !std::isfinite(y)) return Value(false);
        // Coordinates are those of the main timeline, which scripts may have moved.
        const swf::Point point =
            clip->levelRoot()->matrix().map(x * swf::kTwipsPerPixel, y * swf::kTwipsPerPixel);
        if (toBoolean(call.vm, call.arg(2))) return Value(clip->hitsShape(point));
        const swf::Rect rect = swf::mapBounds(clip->toStage(), clip->bounds());
        return Value(!rect.isEmpty() && point.x >= rect.xMin && point.x <= rect.xMax &&
                     point.y >= rect.yMin && point.y <= rect.yMax);
    }
    if (call.count() == 0) return Value(false);
    Object* target = call.arg(0).asObject();
    if (!target) target = call.vm.resolveTarget(call.self.asObject(), textArg(call, 0));
    stage::Node* other = binding.nodeOf(target);
    if (!other) return Value(false);
    const swf::Rect a = swf::mapBounds(clip->toStage(), clip->bounds());
    const swf::Rect b = swf::mapBounds(other->toStage(), other->bounds());
    if (a.isEmpty() || b.isEmpty()) return Value(false);
    return Value(!swf::intersect(a, b).isEmpty());
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

// ---- dragging, masks, loading -----------------------------------------------------------------------------

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
    StageBinding::of(call).startDrag(request);
    return {};
}
Value stopDrag(Call& call)
{
    StageBinding::of(call).endDrag();
    return {};
}

Value setMask(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    // Borrowed, it works for text fields and buttons too.
    stage::Node* node = binding.nodeOf(call.self.asObject());
    if (!node || call.count() == 0) return {};
    if (call.arg(0).isNullish()) {
        node->setMask(nullptr);
        return Value(true);
    }
    Object* target = call.arg(0).asObject();
    if (!target) {
        // A text is read as a variable of the clip that contains the masked one, or as a path from there.
        stage::Clip* around = node->parentClip();
        Object* base = around ? binding.objectOf(around) : call.self.asObject();
        const std::u16string path = textArg(call, 0);
        target = call.vm.getVariable(base, path).asObject();
        if (!target) target = call.vm.resolveTarget(base, path);
    }
    stage::Node* mask = binding.nodeOf(target);
    if (!mask) return Value(false);
    node->setMask(mask);
    return Value(true);
}

UrlRequest::Method methodArg(Call& call, std::size_t index)
{
    if (call.arg(index).isUndefined()) return UrlRequest::Method::None;
    const std::u16string method = AtomTable::fold(textArg(call, index));
    if (method == u"get") return UrlRequest::Method::Get;
    if (method == u"post") return UrlRequest::Method::Post;
    return UrlRequest::Method::None;
}

void requestFor(Call& call, UrlRequest::Kind kind, std::size_t methodIndex)
{
    Object* self = call.self.asObject();
    if (!selfClip(call)) return;
    UrlRequest request;
    request.kind = kind;
    request.method = methodArg(call, methodIndex);
    if (kind != UrlRequest::Kind::MovieIntoClip || call.count() > 0) request.url = textArg(call, 0);
    if (kind == UrlRequest::Kind::Page && call.count() > 1) request.window = textArg(call, 1);
    request.target = self;
    request.sender = self;
    StageBinding::of(call).requestUrl(request);
}
Value loadMovie(Call& call)
{
    requestFor(call, UrlRequest::Kind::MovieIntoClip, 1);
    return {};
}
Value loadVariables(Call& call)
{
    requestFor(call, UrlRequest::Kind::Variables, 1);
    return {};
}
Value getUrl(Call& call)
{
    requestFor(call, UrlRequest::Kind::Page, 2);
    return {};
}
Value unloadMovie(Call& call)
{
    if (stage::Clip* clip = selfClip(call)) StageBinding::of(call).stage().loads().requestUnload(*clip);
    return {};
}
Value getBytesLoaded(Call& call)
{
    stage::Clip* clip = selfClip(call);
    return clip ? Value(clip->bytesLoaded()) : Value();
}
Value getBytesTotal(Call& call)
{
    stage::Clip* clip = selfClip(call);
    return clip ? Value(clip->bytesTotal()) : Value();
}
Value getSwfVersion(Call& call)
{
    stage::Node* node = selfNode(call);
    if (!node || !node->movie()) return Value(-1);
    const stage::Clip* clip = stage::asClip(node);
    const bool noMovie = clip && (clip->content() == stage::Clip::Content::Picture ||
                                  clip->content() == stage::Clip::Content::Missing);
    return Value(noMovie ? -1 : static_cast<int>(node->movie()->header.version));
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

// ---- properties of version 8 ------------------------------------------------------------------------------

constexpr const char* kBlendNames[] = {"normal", "layer",      "multiply", "screen",   "lighten",
                                       "darken", "difference", "add",      "subtract", "invert",
                                       "alpha",  "erase",      "overlay",  "hardlight"};

Value getBlendMode(Call& call)
{
    stage::Node* node = selfNode(call);
    if (!node) return {};
    const auto index = static_cast<std::size_t>(node->blend());
    return call.vm.string(std::string_view(kBlendNames[index >= 1 && index <= 14 ? index - 1 : 0]));
}
Value setBlendMode(Call& call)
{
    stage::Node* node = selfNode(call);
    if (!node) return {};
    if (call.arg(0).isNullish()) {
        node->setBlend(swf::BlendMode::Normal);
        return {};
    }
    if (call.arg(0).isNumber()) {
        // One byte in the movie format, and here.
        const int index = intArg(call, 0) & 0xFF;
        if (index >= 1 && index <= 14) node->setBlend(static_cast<swf::BlendMode>(index));
        return {};
    }
    if (!call.arg(0).isString()) return {};
    const std::u16string name = textArg(call, 0);
    for (std::size_t i = 0; i < std::size(kBlendNames); ++i)
        if (base::utf16FromUtf8(kBlendNames[i]) == name) node->setBlend(static_cast<swf::BlendMode>(i + 1));
    return {};
}
Value getCacheAsBitmap(Call& call)
{
    stage::Node* node = selfNode(call);
    return node ? Value(node->cacheAsBitmap() || !node->filters().empty()) : Value();
}
Value setCacheAsBitmap(Call& call)
{
    if (stage::Node* node = selfNode(call)) node->setCacheAsBitmap(toBoolean(call.vm, call.arg(0)));
    return {};
}
Value getOpaqueBackground(Call& call)
{
    stage::Node* node = selfNode(call);
    if (!node || !node->opaqueBackground()) return {};
    const swf::Rgba c = *node->opaqueBackground();
    return Value(c.r * 65536 + c.g * 256 + c.b);
}
Value setOpaqueBackground(Call& call)
{
    stage::Node* node = selfNode(call);
    if (!node) return {};
    if (call.arg(0).isNullish()) {
        node->setOpaqueBackground({});
        return {};
    }
    const int rgb = intArg(call, 0);
    node->setOpaqueBackground(swf::Rgba{static_cast<std::uint8_t>(rgb >> 16),
                                        static_cast<std::uint8_t>(rgb >> 8), static_cast<std::uint8_t>(rgb),
                                        255});
    return {};
}

Object* newRectangle(Vm& vm, double x, double y, double width, double height)
{
    Object* package = vm.global()->get(vm, vm.name(std::string_view("flash"))).asObject();
    package = package ? package->get(vm, vm.name(std::string_view("geom"))).asObject() : nullptr;
    const Value rectangle = package ? package->get(vm, vm.name(std::string_view("Rectangle"))) : Value();
    const Value args[] = {Value(x), Value(y), Value(width), Value(height)};
    return vm.construct(rectangle, args).asObject();
}

std::optional<swf::Rect> rectangleArg(Call& call)
{
    Object* object = call.arg(0).asObject();
    if (!object) return {};
    const auto number = [&](const char* name) {
        return toNumber(call.vm, object->get(call.vm, call.vm.name(std::string_view(name))));
    };
    const double x = number("x"), y = number("y"), width = number("width"), height = number("height");
    constexpr double kLargest = 1e7;
    for (const double n : {x, y, width, height})
        if (!(std::abs(n) < kLargest)) return {};
    const auto twips = [](double pixels) { return static_cast<std::int32_t>(std::lround(pixels * 20)); };
    return swf::Rect{twips(x), twips(x + width), twips(y), twips(y + height)};
}
Value rectangleOf(Call& call, const std::optional<swf::Rect>& rect)
{
    if (!rect) return {};
    return newRectangle(call.vm, rect->xMin / 20.0, rect->yMin / 20.0, rect->width() / 20.0,
                        rect->height() / 20.0);
}
Value getScrollRect(Call& call)
{
    stage::Node* node = selfNode(call);
    return node ? rectangleOf(call, node->scrollRect()) : Value();
}
Value setScrollRect(Call& call)
{
    if (stage::Node* node = selfNode(call)) node->setScrollRect(rectangleArg(call));
    return {};
}
Value getScalingGrid(Call& call)
{
    stage::Node* node = selfNode(call);
    return node ? rectangleOf(call, node->scalingGrid()) : Value();
}
Value setScalingGrid(Call& call)
{
    if (stage::Node* node = selfNode(call)) node->setScalingGrid(rectangleArg(call));
    return {};
}

Value getFilters(Call& call)
{
    stage::Node* node = selfNode(call);
    return node ? filtersToValue(call.vm, node->filters()) : Value();
}
Value setFilters(Call& call)
{
    if (stage::Node* node = selfNode(call)) node->setFilters(filtersFromValue(call.vm, call.arg(0)));
    return {};
}

Value construct(Call&) { return {}; }

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"attachMovie",          3, 0,     &attachMovie},
    {"swapDepths",           1, 0,     &swapDepths},
    {"localToGlobal",        1, 0,     &localToGlobal},
    {"globalToLocal",        1, 0,     &globalToLocal},
    {"hitTest",              1, 0,     &hitTest},
    {"getBounds",            0, 0,     &getBounds},
    {"getBytesTotal",        0, 0,     &getBytesTotal},
    {"getBytesLoaded",       0, 0,     &getBytesLoaded},
    {"attachAudio",          1, kFrom6, &attachAudio},
    {"attachVideo",          0, kFrom6, &attachVideo},
    {"getDepth",             0, kFrom6, &getDepth},
    {"setMask",              1, kFrom6, &setMask},
    {"play",                 0, 0,     &play},
    {"stop",                 0, 0,     &stop},
    {"nextFrame",            0, 0,     &nextFrame},
    {"prevFrame",            0, 0,     &prevFrame},
    {"gotoAndPlay",          1, 0,     &gotoAndPlay},
    {"gotoAndStop",          1, 0,     &gotoAndStop},
    {"duplicateMovieClip",   2, 0,     &duplicateMovieClip},
    {"removeMovieClip",      0, 0,     &removeMovieClip},
    {"startDrag",            0, 0,     &startDrag},
    {"stopDrag",             0, 0,     &stopDrag},
    {"getURL",               1, 0,     &getUrl},
    {"loadMovie",            1, 0,     &loadMovie},
    {"loadVariables",        1, 0,     &loadVariables},
    {"unloadMovie",          0, 0,     &unloadMovie},
    {"createEmptyMovieClip", 2, kFrom6, &createEmptyMovieClip},
    {"createTextField",      6, 0,     &createTextField},
    {"getNextHighestDepth",  0, kFrom7, &getNextHighestDepth},
    {"getInstanceAtDepth",   1, kFrom7, &getInstanceAtDepth},
    {"getSWFVersion",        0, 0,      &getSwfVersion},
    {"getTextSnapshot",      0, kFrom6, &getTextSnapshot},
    {"attachBitmap",         2, kFrom8, &attachBitmap},
    {"getRect",              0, kFrom8, &getRect},
};
constexpr AccessorInfo kAccessors[] = {
    {"blendMode",        kFrom8, &getBlendMode,        &setBlendMode},
    {"cacheAsBitmap",    kFrom8, &getCacheAsBitmap,    &setCacheAsBitmap},
    {"opaqueBackground", kFrom8, &getOpaqueBackground, &setOpaqueBackground},
    {"scrollRect",       kFrom8, &getScrollRect,       &setScrollRect},
    {"filters",          kFrom8, &getFilters,          &setFilters},
    {"scale9Grid",       kFrom8, &getScalingGrid,      &setScalingGrid},
};
/// Those that buttons share with clips.
constexpr AccessorInfo kButtonAccessors[] = {
    {"blendMode",        kFrom8, &getBlendMode,        &setBlendMode},
    {"cacheAsBitmap",    kFrom8, &getCacheAsBitmap,    &setCacheAsBitmap},
    {"filters",          kFrom8, &getFilters,          &setFilters},
    {"scale9Grid",       kFrom8, &getScalingGrid,      &setScalingGrid},
};
// clang-format on

} // namespace

void installMovieClip(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("MovieClip", &construct, kMembers);
    Object* prototype = vm.prototypeOf(constructor);
    vm.addAccessors(prototype, kAccessors);
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
            vm.addAccessors(prototype, kAccessors);
            continue;
        }
        vm.addAccessors(prototype, kButtonAccessors, 0);
        addTabIndex(vm, prototype);
        prototype->define(vm, "getDepth", vm.newFunction(&getDepth), 0);
        prototype->define(vm, "enabled", Value(true), 0);
        prototype->define(vm, "useHandCursor", Value(true), 0);
    }
}

} // namespace flash::avm1
