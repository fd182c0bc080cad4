#include "flash/avm2/bindings/Conversions.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace flash::avm2
{

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;

Value make(Vm& vm, std::string_view cls, std::initializer_list<double> values)
{
    Object* made = vm.instantiate(vm.nativeClass(cls));
    std::uint32_t slot = 0;
    for (const double value : values) made->setSlot(slot++, value);
    return Value(made);
}

double truncated(double value)
{
    if (std::isnan(value)) return 0;
    return std::clamp(std::trunc(value), -2147483648.0, 2147483647.0);
}

struct BlendName {
    std::string_view name;
    swf::BlendMode mode;
};
constexpr auto kBlendNames = std::to_array<BlendName>({
    {"normal", swf::BlendMode::Normal},
    {"layer", swf::BlendMode::Layer},
    {"multiply", swf::BlendMode::Multiply},
    {"screen", swf::BlendMode::Screen},
    {"lighten", swf::BlendMode::Lighten},
    {"darken", swf::BlendMode::Darken},
    {"difference", swf::BlendMode::Difference},
    {"add", swf::BlendMode::Add},
    {"subtract", swf::BlendMode::Subtract},
    {"invert", swf::BlendMode::Invert},
    {"alpha", swf::BlendMode::Alpha},
    {"erase", swf::BlendMode::Erase},
    {"overlay", swf::BlendMode::Overlay},
    {"hardlight", swf::BlendMode::HardLight},
});

} // namespace

double slotNumber(Object& object, std::uint32_t slot)
{
    return slot < object.slotCount() && object.slot(slot).isNumber() ? object.slot(slot).number() : 0;
}

swf::Matrix matrixOf(Object& m)
{
    return {slotNumber(m, 0), slotNumber(m, 1),          slotNumber(m, 2),
            slotNumber(m, 3), slotNumber(m, 4) * kTwips, slotNumber(m, 5) * kTwips};
}
Value newMatrix(Vm& vm, const swf::Matrix& m)
{
    return make(vm, "flash.geom::Matrix", {m.a, m.b, m.c, m.d, m.tx / kTwips, m.ty / kTwips});
}
Value newPoint(Vm& vm, double x, double y) { return make(vm, "flash.geom::Point", {x, y}); }
Value newRectangle(Vm& vm, double x, double y, double width, double height)
{
    return make(vm, "flash.geom::Rectangle", {x, y, width, height});
}
Value newRectangle(Vm& vm, const swf::Rect& rect)
{
    if (rect.isEmpty()) return newRectangle(vm, 0, 0, 0, 0);
    return newRectangle(vm, rect.xMin / kTwips, rect.yMin / kTwips, rect.width() / kTwips,
                        rect.height() / kTwips);
}
swf::Rect twipsOf(Object& r)
{
    const auto twips = [](double pixels) {
        constexpr double kFar = 1 << 29;
        return static_cast<std::int32_t>(std::clamp(truncated(pixels * kTwips), -kFar, kFar));
    };
    const double x = slotNumber(r, 0), y = slotNumber(r, 1);
    return {twips(x), twips(x + slotNumber(r, 2)), twips(y), twips(y + slotNumber(r, 3))};
}
render::IntRect pixelsOf(Object& r)
{
    constexpr double kFar = 1 << 29;
    // Each edge goes to the nearest pixel, as recorded copies of parts of pixels show.
    const auto whole = [&](double value) {
        return static_cast<int>(std::clamp(truncated(std::floor(value + 0.5)), -kFar, kFar));
    };
    const double x = slotNumber(r, 0), y = slotNumber(r, 1);
    return {whole(x), whole(y), whole(x + slotNumber(r, 2)), whole(y + slotNumber(r, 3))};
}
swf::Point pointOf(Object& point) { return {slotNumber(point, 0), slotNumber(point, 1)}; }

swf::ColorTransform colorTransformOf(Object& transform)
{
    const auto part = [&](std::uint32_t slot, double scale) {
        return static_cast<std::int16_t>(
            std::clamp(truncated(slotNumber(transform, slot) * scale), -32768.0, 32767.0));
    };
    constexpr double kOne = 256;
    return {part(0, kOne), part(1, kOne), part(2, kOne), part(3, kOne),
            part(4, 1),    part(5, 1),    part(6, 1),    part(7, 1)};
}
Value newColorTransform(Vm& vm, const swf::ColorTransform& c)
{
    constexpr double kOne = 256;
    return make(vm, "flash.geom::ColorTransform",
                {c.redMul / kOne, c.greenMul / kOne, c.blueMul / kOne, c.alphaMul / kOne,
                 static_cast<double>(c.redAdd), static_cast<double>(c.greenAdd),
                 static_cast<double>(c.blueAdd), static_cast<double>(c.alphaAdd)});
}

Object* optionalArg(Call& call, std::uint32_t index, std::string_view cls)
{
    return call.vm.coerce(call.arg(index), call.vm.nativeClass(cls)->instances).asObject();
}

Object& objectArg(Call& call, std::uint32_t index, std::string_view cls, const char* parameter)
{
    Object* object = optionalArg(call, index, cls);
    if (object == nullptr)
        call.vm.throwError(ErrorClass::Type, 2007,
                           std::string("Parameter ") + parameter + " must be non-null.");
    return *object;
}

std::string_view blendModeName(swf::BlendMode mode)
{
    const auto found = std::ranges::find(kBlendNames, mode, &BlendName::mode);
    return found != kBlendNames.end() ? found->name : "normal";
}
std::optional<swf::BlendMode> blendModeOf(std::u16string_view name)
{
    for (const BlendName& entry : kBlendNames) {
        if (widen(entry.name) == name) return entry.mode;
    }
    return {};
}

} // namespace flash::avm2
