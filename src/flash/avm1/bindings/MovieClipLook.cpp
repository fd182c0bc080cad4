#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/MovieClipMembers.h"
#include "flash/avm1/classes/Filters.h"

#include <cmath>

// What a clip, a button or a video looks like: its mask, and the properties of version 8.
namespace flash::avm1::movieclip
{

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

namespace
{

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
    constexpr double kMax = 1e7;
    for (const double n : {x, y, width, height})
        if (!(std::abs(n) < kMax)) return {};
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

// clang-format off
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

void addLook(Vm& vm, Object* prototype) { vm.addAccessors(prototype, kAccessors); }
void addButtonLook(Vm& vm, Object* prototype) { vm.addAccessors(prototype, kButtonAccessors, 0); }

} // namespace flash::avm1::movieclip
