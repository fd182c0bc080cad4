#pragma once

#include "flash/avm1/interpreter/Vm.h"

#include <array>
#include <vector>

// What a filter object keeps and how its properties convert what is assigned to them.
namespace flash::avm1
{

enum class FilterKind : std::uint8_t {
    Base,
    Blur,
    DropShadow,
    Glow,
    Bevel,
    GradientGlow,
    GradientBevel,
    Convolution,
    ColorMatrix,
    DisplacementMap,
    Count
};

/// Where a value lives in FilterNative::numbers; the lists live in vectors of their own.
enum class FilterField : std::uint8_t {
    Distance,
    Angle, ///< radians
    Color, ///< 0xRRGGBB
    Alpha, ///< 0..255
    ShadowColor,
    ShadowAlpha,
    BlurX,
    BlurY,
    Strength,
    Quality,
    Inner,
    Knockout,
    HideObject,
    Placement, ///< BevelType
    MatrixX,
    MatrixY,
    Divisor,
    Bias,
    PreserveAlpha,
    Clamp,
    ComponentX,
    ComponentY,
    ScaleX,
    ScaleY,
    Mode, ///< DisplacementMode
    Count
};

enum class FilterPlacement : std::uint8_t { Full, Inner, Outer };
enum class DisplacementMode : std::uint8_t { Wrap, Clamp, Ignore, Color };

enum class FilterValue : std::uint8_t {
    Number,
    Blur,     ///< 0..255
    Strength, ///< 0..255
    Angle,    ///< degrees to scripts
    Color,
    Alpha,   ///< 0..1 to scripts
    Quality, ///< whole, 0..15
    Side,    ///< whole, 0..15; the matrix grows to hold all cells
    Boolean,
    Placement, ///< "inner", "outer" or "full"
    Colors,
    Alphas,
    Ratios,
    Cells,  ///< the matrix of a convolution
    Twenty, ///< the matrix of a colour matrix
    Whole,  ///< 32 bits
    Scale,  ///< -65535..65535
    Mode,   ///< "wrap", "clamp", "ignore" or "color"
    Map,    ///< a BitmapData, or nothing
    Point,  ///< anything with x and y; kept as whole numbers
};

struct FilterNative final : Native {
    static constexpr int kMaxStops = 16;
    static inline const char kTag = 0;

    explicit FilterNative(FilterKind kind);
    [[nodiscard]] const void* tag() const override { return &kTag; }
    [[nodiscard]] double& operator[](FilterField field) { return numbers[static_cast<std::size_t>(field)]; }
    [[nodiscard]] double operator[](FilterField field) const
    {
        return numbers[static_cast<std::size_t>(field)];
    }

    FilterKind kind;
    std::array<double, static_cast<std::size_t>(FilterField::Count)> numbers{};
    void trace(Tracer& tracer) override { tracer(map); }
    std::vector<double> matrix;
    Object* map = nullptr; ///< of a displacement
    double mapX = 0, mapY = 0;
    // Values beyond the count are kept and show again when the count grows.
    int stopCount = 0;
    std::array<std::uint32_t, kMaxStops> stopColors{};
    std::array<std::uint8_t, kMaxStops> stopAlphas{}, stopRatios{};
};

/// One property of a filter class, in the order of the constructor's arguments.
struct FilterProperty {
    const char* name;
    FilterValue value;
    FilterField field; ///< meaningless for the lists
};

std::span<const FilterProperty> filterProperties(FilterKind kind);
/// Names of the same properties in the order in which loops list them. Empty: the same order.
std::span<const std::string_view> filterListing(FilterKind kind);
Value readFilterProperty(Vm& vm, const FilterNative& filter, const FilterProperty& property);
void writeFilterProperty(Vm& vm, FilterNative& filter, const FilterProperty& property, Value value);

} // namespace flash::avm1
