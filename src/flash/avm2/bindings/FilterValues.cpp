#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Shaders.h"

#include <algorithm>
#include <cmath>
#include <numbers>

// Filters as scripts have them, and as the renderer does. The slots stand in the order of their constructors.
namespace flash::avm2
{

namespace
{

constexpr double kDegree = std::numbers::pi / 180;
constexpr std::size_t kMatrixSize = 20;
// In the order of the modes; the first also stands for every other text.
constexpr std::string_view kDisplacementModes[] = {"wrap", "clamp", "ignore", "color"};

swf::Rgba rgba(Object& object, std::uint32_t colorSlot, std::uint32_t alphaSlot)
{
    const auto rgb = static_cast<std::uint32_t>(std::clamp(slotNumber(object, colorSlot), 0.0, 4294967295.0));
    return solidFill(rgb, slotNumber(object, alphaSlot)).color;
}
int passes(Object& object, std::uint32_t slot)
{
    constexpr double kMax = 15;
    return static_cast<int>(std::clamp(slotNumber(object, slot), 0.0, kMax));
}
double blur(Object& object, std::uint32_t slot)
{
    constexpr double kMax = 255;
    return std::clamp(slotNumber(object, slot), 0.0, kMax);
}
bool flag(Vm& vm, Object& object, std::uint32_t slot) { return vm.toBoolean(object.slot(slot)); }

swf::Filter gradientFilter(Vm& vm, Object& f, bool bevel)
{
    swf::GradientFilter result;
    result.bevel = bevel;
    result.distance = slotNumber(f, 0);
    result.angle = slotNumber(f, 1) * kDegree;
    if (const auto fill = gradientOf(vm, u"linear", f.slot(2), f.slot(3), f.slot(4), Value(), u"", u"", 0))
        result.stops = fill->gradient.stops;
    result.blurX = blur(f, 5);
    result.blurY = blur(f, 6);
    result.strength = slotNumber(f, 7);
    result.passes = passes(f, 8);
    const std::u16string type = f.slot(9).isString() ? std::u16string(vm.text(f.slot(9))) : u"inner";
    result.inner = type == u"inner";
    result.onTop = type == u"full";
    result.knockout = flag(vm, f, 10);
    return result;
}

Object* make(Vm& vm, std::string_view name) { return vm.instantiate(vm.nativeClass(name)); }
std::uint32_t rgbOf(const swf::Rgba& c)
{
    return static_cast<std::uint32_t>(c.r) << 16U | static_cast<std::uint32_t>(c.g) << 8U | c.b;
}
double alphaOf(const swf::Rgba& c) { return c.a / 255.0; }
void fill(Object& object, std::initializer_list<Value> values)
{
    std::uint32_t slot = 0;
    for (const Value& value : values) object.setSlot(slot++, value);
}
Value typeName(Vm& vm, bool inner, bool onTop)
{
    return Value(vm.name(onTop ? "full" : inner ? "inner" : "outer").string());
}

struct ToValue {
    Vm& vm;
    Value operator()(const swf::BlurFilter& f) const
    {
        Object* made = make(vm, "flash.filters::BlurFilter");
        fill(*made, {f.blurX, f.blurY, f.passes});
        return Value(made);
    }
    Value operator()(const swf::GlowFilter& f) const
    {
        Object* made = make(vm, "flash.filters::GlowFilter");
        fill(*made, {Value(static_cast<double>(rgbOf(f.color))), alphaOf(f.color), f.blurX, f.blurY,
                     f.strength, f.passes, f.inner, f.knockout});
        return Value(made);
    }
    Value operator()(const swf::DropShadowFilter& f) const
    {
        Object* made = make(vm, "flash.filters::DropShadowFilter");
        fill(*made,
             {f.distance, f.angle / kDegree, Value(static_cast<double>(rgbOf(f.color))), alphaOf(f.color),
              f.blurX, f.blurY, f.strength, f.passes, f.inner, f.knockout, !f.compositeSource});
        return Value(made);
    }
    Value operator()(const swf::BevelFilter& f) const
    {
        Object* made = make(vm, "flash.filters::BevelFilter");
        fill(*made, {f.distance, f.angle / kDegree, Value(static_cast<double>(rgbOf(f.highlight))),
                     alphaOf(f.highlight), Value(static_cast<double>(rgbOf(f.shadow))), alphaOf(f.shadow),
                     f.blurX, f.blurY, f.strength, f.passes, typeName(vm, f.inner, f.onTop), f.knockout});
        return Value(made);
    }
    Value operator()(const swf::GradientFilter& f) const
    {
        Object* made =
            make(vm, f.bevel ? "flash.filters::GradientBevelFilter" : "flash.filters::GradientGlowFilter");
        auto* colors = static_cast<ArrayObject*>(vm.newArray());
        auto* alphas = static_cast<ArrayObject*>(vm.newArray());
        auto* ratios = static_cast<ArrayObject*>(vm.newArray());
        for (const swf::Gradient::Stop& stop : f.stops) {
            colors->push(vm, Value(static_cast<double>(rgbOf(stop.color))));
            alphas->push(vm, Value(alphaOf(stop.color)));
            ratios->push(vm, Value(stop.ratio));
        }
        fill(*made, {f.distance, f.angle / kDegree, Value(colors), Value(alphas), Value(ratios), f.blurX,
                     f.blurY, f.strength, f.passes, typeName(vm, f.inner, f.onTop), f.knockout});
        return Value(made);
    }
    Value operator()(const swf::ConvolutionFilter& f) const
    {
        Object* made = make(vm, "flash.filters::ConvolutionFilter");
        auto* matrix = static_cast<ArrayObject*>(vm.newArray());
        for (const double value : f.matrix) matrix->push(vm, Value(value));
        fill(*made, {f.columns, f.rows, Value(matrix), f.divisor, f.bias, f.preserveAlpha, f.clamp,
                     Value(static_cast<double>(rgbOf(f.defaultColor))), alphaOf(f.defaultColor)});
        return Value(made);
    }
    Value operator()(const swf::ColorMatrixFilter& f) const
    {
        Object* made = make(vm, "flash.filters::ColorMatrixFilter");
        auto* matrix = static_cast<ArrayObject*>(vm.newArray());
        for (const double value : f.matrix) matrix->push(vm, Value(value));
        made->setSlot(0, Value(matrix));
        return Value(made);
    }
    Value operator()(const swf::DisplacementMapFilter& f) const
    {
        Object* made = make(vm, "flash.filters::DisplacementMapFilter");
        fill(*made, {f.map ? newBitmapData(vm, f.map) : Value::null(), newPoint(vm, f.mapX, f.mapY),
                     f.componentX, f.componentY, f.scaleX, f.scaleY,
                     Value(vm.name(kDisplacementModes[static_cast<std::size_t>(f.mode)]).string()),
                     Value(static_cast<double>(rgbOf(f.color))), alphaOf(f.color)});
        return Value(made);
    }
};

swf::Filter displacementFilter(Vm& vm, Object& f)
{
    swf::DisplacementMapFilter result;
    if (const auto* map = as<BitmapDataObject>(f.slot(0))) result.map = map->bitmap;
    if (Object* point = f.slot(1).asObject()) {
        const auto whole = [](double value) {
            constexpr double kFar = 1 << 29;
            return static_cast<int>(std::clamp(std::isnan(value) ? 0 : std::trunc(value), -kFar, kFar));
        };
        const swf::Point at = pointOf(*point);
        result.mapX = whole(at.x);
        result.mapY = whole(at.y);
    }
    result.componentX = vm.toInt(f.slot(2));
    result.componentY = vm.toInt(f.slot(3));
    result.scaleX = slotNumber(f, 4);
    result.scaleY = slotNumber(f, 5);
    if (f.slot(6).isString()) {
        const std::u16string_view mode = vm.text(f.slot(6));
        for (std::size_t i = 0; i < std::size(kDisplacementModes); ++i) {
            if (std::ranges::equal(mode, kDisplacementModes[i]))
                result.mode = static_cast<swf::DisplacementMapFilter::Mode>(i);
        }
    }
    result.color = rgba(f, 7, 8);
    return result;
}

} // namespace

std::optional<swf::Filter> filterOf(Vm& vm, Value value)
{
    if (!value.isObject()) return {};
    Traits* traits = value.object()->traits();
    while (traits->base != nullptr && traits->ns->uri.view() != u"flash.filters") traits = traits->base;
    Object& f = *value.object();
    const std::u16string_view name = traits->name.view();
    if (traits->ns->uri.view() != u"flash.filters") return {};
    if (name == u"BlurFilter") return swf::BlurFilter{blur(f, 0), blur(f, 1), passes(f, 2)};
    if (name == u"GlowFilter")
        return swf::GlowFilter{rgba(f, 0, 1),  blur(f, 2),     blur(f, 3), slotNumber(f, 4),
                               flag(vm, f, 6), flag(vm, f, 7), true,       passes(f, 5)};
    // The strength of a shadow is an 8.8 number.
    constexpr double kStrengthOne = 256;
    if (name == u"DropShadowFilter")
        return swf::DropShadowFilter{
            rgba(f, 2, 3),    blur(f, 4),
            blur(f, 5),       slotNumber(f, 1) * kDegree,
            slotNumber(f, 0), std::trunc(slotNumber(f, 6) * kStrengthOne) / kStrengthOne,
            flag(vm, f, 8),   flag(vm, f, 9),
            !flag(vm, f, 10), passes(f, 7)};
    if (name == u"BevelFilter") {
        const std::u16string type = f.slot(10).isString() ? std::u16string(vm.text(f.slot(10))) : u"inner";
        return swf::BevelFilter{
            rgba(f, 2, 3),    rgba(f, 4, 5),    blur(f, 6),       blur(f, 7),      slotNumber(f, 1) * kDegree,
            slotNumber(f, 0), slotNumber(f, 8), type == u"inner", flag(vm, f, 11), true,
            type == u"full",  passes(f, 9)};
    }
    if (name == u"GradientGlowFilter") return gradientFilter(vm, f, false);
    if (name == u"GradientBevelFilter") return gradientFilter(vm, f, true);
    if (name == u"ColorMatrixFilter") {
        swf::ColorMatrixFilter result;
        for (std::size_t i = 0; i < 4; ++i) result.matrix[i * 6] = 1;
        const auto numbers = numbersOf(vm, f.slot(0));
        if (!numbers.empty()) {
            for (std::size_t i = 0; i < kMatrixSize; ++i)
                result.matrix[i] = i < numbers.size() && !std::isnan(numbers[i]) ? numbers[i] : 0;
        }
        return result;
    }
    if (name == u"ConvolutionFilter") {
        constexpr double kMaxSide = 15;
        swf::ConvolutionFilter result;
        result.columns = static_cast<int>(std::clamp(slotNumber(f, 0), 0.0, kMaxSide));
        result.rows = static_cast<int>(std::clamp(slotNumber(f, 1), 0.0, kMaxSide));
        result.matrix = numbersOf(vm, f.slot(2));
        result.matrix.resize(static_cast<std::size_t>(result.columns) *
                             static_cast<std::size_t>(result.rows));
        result.divisor = static_cast<float>(slotNumber(f, 3));
        result.bias = static_cast<float>(slotNumber(f, 4));
        result.preserveAlpha = flag(vm, f, 5);
        result.clamp = flag(vm, f, 6);
        result.defaultColor = rgba(f, 7, 8);
        return result;
    }
    if (name == u"DisplacementMapFilter") return displacementFilter(vm, f);
    if (name == u"ShaderFilter") return shaderFilterOf(vm, f);
    return {};
}

Value newFilter(Vm& vm, const swf::Filter& filter) { return std::visit(ToValue{vm}, filter); }

} // namespace flash::avm2
