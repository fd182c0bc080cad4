#include "flash/avm1/classes/FilterFields.h"

#include "flash/avm1/classes/GeomValues.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flash::avm1
{
namespace
{

using F = FilterField;
using V = FilterValue;

// clang-format off
constexpr FilterProperty kBlur[] = {
    {"blurX", V::Blur, F::BlurX}, {"blurY", V::Blur, F::BlurY}, {"quality", V::Quality, F::Quality},
};
constexpr FilterProperty kDropShadow[] = {
    {"distance", V::Number, F::Distance}, {"angle", V::Angle, F::Angle}, {"color", V::Color, F::Color},
    {"alpha", V::Alpha, F::Alpha}, {"blurX", V::Blur, F::BlurX}, {"blurY", V::Blur, F::BlurY},
    {"strength", V::Strength, F::Strength}, {"quality", V::Quality, F::Quality}, {"inner", V::Boolean, F::Inner},
    {"knockout", V::Boolean, F::Knockout}, {"hideObject", V::Boolean, F::HideObject},
};
constexpr FilterProperty kGlow[] = {
    {"color", V::Color, F::Color}, {"alpha", V::Alpha, F::Alpha}, {"blurX", V::Blur, F::BlurX},
    {"blurY", V::Blur, F::BlurY}, {"strength", V::Strength, F::Strength}, {"quality", V::Quality, F::Quality},
    {"inner", V::Boolean, F::Inner}, {"knockout", V::Boolean, F::Knockout},
};
constexpr FilterProperty kBevel[] = {
    {"distance", V::Number, F::Distance}, {"angle", V::Angle, F::Angle}, {"highlightColor", V::Color, F::Color},
    {"highlightAlpha", V::Alpha, F::Alpha}, {"shadowColor", V::Color, F::ShadowColor},
    {"shadowAlpha", V::Alpha, F::ShadowAlpha}, {"blurX", V::Blur, F::BlurX}, {"blurY", V::Blur, F::BlurY},
    {"strength", V::Strength, F::Strength}, {"quality", V::Quality, F::Quality},
    {"type", V::Placement, F::Placement}, {"knockout", V::Boolean, F::Knockout},
};
constexpr FilterProperty kGradient[] = {
    {"distance", V::Number, F::Distance}, {"angle", V::Angle, F::Angle}, {"colors", V::Colors, F::Count},
    {"alphas", V::Alphas, F::Count}, {"ratios", V::Ratios, F::Count}, {"blurX", V::Blur, F::BlurX},
    {"blurY", V::Blur, F::BlurY}, {"strength", V::Strength, F::Strength}, {"quality", V::Quality, F::Quality},
    {"type", V::Placement, F::Placement}, {"knockout", V::Boolean, F::Knockout},
};
constexpr FilterProperty kConvolution[] = {
    {"matrixX", V::Side, F::MatrixX}, {"matrixY", V::Side, F::MatrixY}, {"matrix", V::Cells, F::Count},
    {"divisor", V::Number, F::Divisor}, {"bias", V::Number, F::Bias},
    {"preserveAlpha", V::Boolean, F::PreserveAlpha}, {"clamp", V::Boolean, F::Clamp},
    {"color", V::Color, F::Color}, {"alpha", V::Alpha, F::Alpha},
};
constexpr FilterProperty kDisplacementMap[] = {
    {"mapBitmap", V::Map, F::Count}, {"mapPoint", V::Point, F::Count}, {"componentX", V::Whole, F::ComponentX},
    {"componentY", V::Whole, F::ComponentY}, {"scaleX", V::Scale, F::ScaleX}, {"scaleY", V::Scale, F::ScaleY},
    {"mode", V::Mode, F::Mode}, {"color", V::Color, F::Color}, {"alpha", V::Alpha, F::Alpha},
};
constexpr FilterProperty kColorMatrix[] = {{"matrix", V::Twenty, F::Count}};
// clang-format on

// In the order of DisplacementMode; the first also stands for every other text.
constexpr std::string_view kModeNames[] = {"wrap", "clamp", "ignore", "color"};
constexpr double kQuarterPi = 0.785398163; // what the genuine player starts with; not exactly 45 degrees

double clampNumber(double number, double low, double high)
{
    return number == number ? std::clamp(number, low, high) : low;
}

/// The elements of anything with a length and numbered members; a string's are its letters.
RootedValues elements(Vm& vm, Value value, std::size_t most)
{
    RootedValues found(vm.heap());
    Object* object = toObject(vm, value);
    if (object == nullptr) return found;
    const double stated = toNumber(vm, object->get(vm, vm.common().length));
    const auto length = static_cast<std::uint32_t>(clampNumber(stated, 0, static_cast<double>(most)));
    for (std::uint32_t i = 0; i < length; ++i) found.push_back(object->get(vm, vm.names().fromIndex(i)));
    return found;
}

/// @returns whether the object is one of the class flash.display.BitmapData.
bool isPicture(Vm& vm, const Object* object)
{
    Object* step = vm.global();
    for (const char* name : {"flash", "display", "BitmapData"}) {
        step = step->get(vm, vm.name(std::string_view(name))).asObject();
        if (step == nullptr) return false;
    }
    Object* prototype = vm.prototypeOf(step);
    return object != nullptr && prototype != nullptr && object->isInstance(vm, prototype);
}

Value arrayOf(Vm& vm, const RootedValues& values) { return vm.newArray(*values); }

void writeStops(Vm& vm, FilterNative& filter, FilterValue kind, Value value)
{
    if (value.isNullish()) return;
    const RootedValues given = elements(vm, value, FilterNative::kMaxStops);
    const int count = static_cast<int>(given.size());
    // The colours say how many stops there are; the other lists may only take some away.
    if (kind == V::Colors) filter.stopCount = count;
    if (kind == V::Ratios) filter.stopCount = std::min(filter.stopCount, count);
    for (int i = 0; i < filter.stopCount; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (kind == V::Alphas) {
            const double alpha = i < count ? clampNumber(toNumber(vm, given[at]), 0, 1) : 1;
            filter.stopAlphas[at] = static_cast<std::uint8_t>(std::lround(alpha * 255));
        } else if (kind == V::Colors) {
            filter.stopColors[at] = static_cast<std::uint32_t>(toInt32(vm, given[at])) & 0xFFFFFF;
        } else {
            filter.stopRatios[at] = static_cast<std::uint8_t>(clampNumber(toNumber(vm, given[at]), 0, 255));
        }
    }
}

Value readStops(Vm& vm, const FilterNative& filter, FilterValue kind)
{
    RootedValues values(vm.heap());
    for (std::size_t i = 0; i < static_cast<std::size_t>(filter.stopCount); ++i) {
        values.push_back(kind == V::Colors   ? Value(static_cast<double>(filter.stopColors[i]))
                         : kind == V::Alphas ? Value(filter.stopAlphas[i] / 255.0)
                                             : Value(static_cast<double>(filter.stopRatios[i])));
    }
    return arrayOf(vm, values);
}

void growMatrix(FilterNative& filter)
{
    const auto cells = static_cast<std::size_t>(filter[F::MatrixX] * filter[F::MatrixY]);
    if (filter.matrix.size() < cells) filter.matrix.resize(cells, 0.0);
}

void writeMatrix(Vm& vm, FilterNative& filter, FilterValue kind, Value value)
{
    if (value.isNullish()) return;
    constexpr std::size_t kMaxCells = 15 * 15;
    RootedValues given(vm.heap());
    if (kind == V::Twenty) {
        // Always twenty, whatever length the list has; what is missing is not a number.
        Object* object = toObject(vm, value);
        for (std::uint32_t i = 0; object != nullptr && i < 20; ++i)
            given.push_back(object->get(vm, vm.names().fromIndex(i)));
    } else {
        *given = *elements(vm, value, kMaxCells);
    }
    filter.matrix.clear();
    for (const Value& cell : given) filter.matrix.push_back(toNumber(vm, cell));
    if (kind == V::Cells) growMatrix(filter);
}

Value placementName(Vm& vm, double placement)
{
    switch (static_cast<FilterPlacement>(static_cast<int>(placement))) {
    case FilterPlacement::Inner: return vm.string(std::string_view("inner"));
    case FilterPlacement::Outer: return vm.string(std::string_view("outer"));
    case FilterPlacement::Full: break;
    }
    return vm.string(std::string_view("full"));
}

} // namespace

FilterNative::FilterNative(FilterKind newKind) : kind(newKind)
{
    FilterNative& self = *this;
    const bool isGlow = kind == FilterKind::Glow;
    self[F::Distance] = 4;
    self[F::Angle] = kQuarterPi;
    self[F::Color] = isGlow ? 0xFF0000 : kind == FilterKind::Bevel ? 0xFFFFFF : 0;
    const bool isClear = kind == FilterKind::Convolution || kind == FilterKind::DisplacementMap;
    self[F::Alpha] = isClear ? 0 : 255;
    self[F::ShadowAlpha] = 255;
    self[F::BlurX] = self[F::BlurY] = isGlow ? 6 : 4;
    self[F::Strength] = isGlow ? 2 : 1;
    self[F::Quality] = 1;
    self[F::Placement] = static_cast<double>(FilterPlacement::Inner);
    self[F::Divisor] = 1;
    self[F::PreserveAlpha] = self[F::Clamp] = 1;
    if (kind == FilterKind::ColorMatrix) {
        matrix.resize(20, 0.0);
        for (std::size_t row = 0; row < 4; ++row) matrix[row * 6] = 1;
    }
}

std::span<const FilterProperty> filterProperties(FilterKind kind)
{
    switch (kind) {
    case FilterKind::Blur: return kBlur;
    case FilterKind::DropShadow: return kDropShadow;
    case FilterKind::Glow: return kGlow;
    case FilterKind::Bevel: return kBevel;
    case FilterKind::GradientGlow:
    case FilterKind::GradientBevel: return kGradient;
    case FilterKind::Convolution: return kConvolution;
    case FilterKind::ColorMatrix: return kColorMatrix;
    case FilterKind::DisplacementMap: return kDisplacementMap;
    case FilterKind::Base:
    case FilterKind::Count: break;
    }
    return {};
}

std::span<const std::string_view> filterListing(FilterKind kind)
{
    // clang-format off
    static constexpr std::string_view kBevelListing[] = {
        "distance", "angle", "highlightColor", "highlightAlpha", "shadowColor", "shadowAlpha", "quality",
        "strength", "knockout", "blurX", "blurY", "type"};
    static constexpr std::string_view kDropShadowListing[] = {
        "distance", "angle", "color", "alpha", "quality", "inner", "knockout", "blurX", "blurY", "strength",
        "hideObject"};
    static constexpr std::string_view kGlowListing[] = {
        "color", "alpha", "quality", "inner", "knockout", "blurX", "blurY", "strength"};
    static constexpr std::string_view kGradientListing[] = {
        "distance", "angle", "colors", "alphas", "ratios", "blurX", "blurY", "quality", "strength", "knockout",
        "type"};
    // clang-format on
    switch (kind) {
    case FilterKind::Bevel: return kBevelListing;
    case FilterKind::DropShadow: return kDropShadowListing;
    case FilterKind::Glow: return kGlowListing;
    case FilterKind::GradientGlow:
    case FilterKind::GradientBevel: return kGradientListing;
    default: return {};
    }
}

Value readFilterProperty(Vm& vm, const FilterNative& filter, const FilterProperty& property)
{
    const double number = property.field == F::Count ? 0 : filter[property.field];
    switch (property.value) {
    case V::Angle: return number * 180 / std::numbers::pi;
    case V::Alpha: return number / 255;
    case V::Boolean: return number != 0;
    case V::Placement: return placementName(vm, number);
    case V::Colors:
    case V::Alphas:
    case V::Ratios: return readStops(vm, filter, property.value);
    case V::Cells:
    case V::Twenty: return arrayOf(vm, RootedValues(vm.heap(), filter.matrix.begin(), filter.matrix.end()));
    case V::Mode: return vm.string(kModeNames[static_cast<std::size_t>(number)]);
    case V::Map: return filter.map;
    case V::Point: return newPoint(vm, filter.mapX, filter.mapY);
    case V::Number:
    case V::Blur:
    case V::Strength:
    case V::Color:
    case V::Quality:
    case V::Whole:
    case V::Scale:
    case V::Side: break;
    }
    return number;
}

void writeFilterProperty(Vm& vm, FilterNative& filter, const FilterProperty& property, Value value)
{
    const auto number = [&] { return toNumber(vm, value); };
    switch (property.value) {
    case V::Number: filter[property.field] = number(); break;
    case V::Blur:
    case V::Strength: filter[property.field] = clampNumber(number(), 0, 255); break;
    case V::Angle: filter[property.field] = std::fmod(number(), 360) * std::numbers::pi / 180; break;
    case V::Color: filter[property.field] = toInt32(vm, value) & 0xFFFFFF; break;
    case V::Alpha: filter[property.field] = std::floor(clampNumber(number(), 0, 1) * 255); break;
    case V::Quality: filter[property.field] = std::floor(clampNumber(number(), 0, 15)); break;
    case V::Side:
        filter[property.field] = std::floor(clampNumber(number(), 0, 15));
        growMatrix(filter);
        break;
    case V::Boolean: filter[property.field] = toBoolean(vm, value) ? 1 : 0; break;
    case V::Placement: {
        const std::u16string text = toText(vm, value);
        const auto placement = text == u"inner"   ? FilterPlacement::Inner
                               : text == u"outer" ? FilterPlacement::Outer
                                                  : FilterPlacement::Full;
        filter[property.field] = static_cast<double>(placement);
        break;
    }
    case V::Whole: filter[property.field] = toInt32(vm, value); break;
    case V::Scale: {
        constexpr double kMaxScale = 65535;
        filter[property.field] = clampNumber(number(), -kMaxScale, kMaxScale);
        break;
    }
    case V::Mode: {
        const std::u16string text = toText(vm, value);
        std::size_t mode = 0;
        for (std::size_t i = 0; i < std::size(kModeNames); ++i) {
            if (std::equal(text.begin(), text.end(), kModeNames[i].begin(), kModeNames[i].end())) mode = i;
        }
        filter[property.field] = static_cast<double>(mode);
        break;
    }
    case V::Map:
        // What is no picture leaves the one that is there.
        if (isPicture(vm, value.asObject())) filter.map = value.asObject();
        break;
    case V::Point: {
        const swf::Point point = pointFromValue(vm, value);
        filter.mapX = toInt32(point.x);
        filter.mapY = toInt32(point.y);
        break;
    }
    case V::Colors:
    case V::Alphas:
    case V::Ratios: writeStops(vm, filter, property.value, value); break;
    case V::Cells:
    case V::Twenty: writeMatrix(vm, filter, property.value, value); break;
    }
}

} // namespace flash::avm1
