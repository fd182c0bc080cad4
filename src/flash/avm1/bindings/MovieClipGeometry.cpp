#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/MovieClipMembers.h"
#include "flash/stage/Graphics.h"

#include <cmath>
#include <limits>

// Where a clip is, and what lies at a place.
namespace flash::avm1::movieclip
{

namespace
{

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

swf::Matrix wholeTwips(swf::Matrix matrix)
{
    matrix.tx = std::round(matrix.tx);
    matrix.ty = std::round(matrix.ty);
    return matrix;
}

/// As the player keeps what scripts turn and scale: in units of 1/65536.
swf::Matrix asKept(swf::Matrix matrix)
{
    constexpr double kUnits = 65536;
    for (double* part : {&matrix.a, &matrix.b, &matrix.c, &matrix.d})
        *part = std::round(*part * kUnits) / kUnits;
    return matrix;
}

/// As Node::toStage(), added up as the player does it for points: each step lies on whole twips.
swf::Matrix wholeTwipsToStage(const stage::Node& node)
{
    swf::Matrix matrix = asKept(node.matrix());
    for (const stage::Node* outer = node.parent(); outer; outer = outer->parent()) {
        if (const auto& scroll = outer->scrollRect()) {
            matrix.tx -= scroll->xMin;
            matrix.ty -= scroll->yMin;
        }
        matrix = wholeTwips(asKept(outer->matrix()) * matrix);
    }
    return matrix;
}

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
    const swf::Matrix toStage = wholeTwipsToStage(*clip);
    const swf::Matrix matrix = toGlobal ? toStage : wholeTwips(toStage.inverted());
    constexpr double kTwips = swf::kTwipsPerPixel;
    // Twips are of 32 bits here, and wrap around.
    const swf::Point mapped =
        matrix.map(avm1::toInt32(px.number() * kTwips), avm1::toInt32(py.number() * kTwips));
    setHiddenOrNot(vm, *point, x, Value(std::round(mapped.x) / kTwips));
    setHiddenOrNot(vm, *point, y, Value(std::round(mapped.y) / kTwips));
    return {};
}
} // namespace

Value getBounds(Call& call) { return boundsIn(call, stage::Node::Extent::WithStrokes); }
Value getRect(Call& call) { return boundsIn(call, stage::Node::Extent::WithoutStrokes); }

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
    if (!target) {
        const std::u16string path = textArg(call, 0);
        if (path.empty()) return Value(false);
        target = call.vm.resolveTarget(call.self.asObject(), path);
    }
    stage::Node* other = binding.nodeOf(target);
    if (!other) return Value(false);
    const swf::Rect a = swf::mapBounds(clip->toStage(), clip->bounds());
    const swf::Rect b = swf::mapBounds(other->toStage(), other->bounds());
    if (a.isEmpty() || b.isEmpty()) return Value(false);
    return Value(!swf::intersect(a, b).isEmpty());
}

} // namespace flash::avm1::movieclip
