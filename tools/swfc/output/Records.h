#pragma once

#include "swfc/output/BitWriter.h"

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// The small records that many tags share. Lengths are pixels unless a name says twips; one pixel is 20 twips.
namespace swfc::output
{

constexpr double kTwipsPerPixel = 20;

struct Point {
    double x = 0, y = 0;
};

struct Rgba {
    std::uint8_t r = 0, g = 0, b = 0, a = 255;
    friend bool operator==(const Rgba&, const Rgba&) = default;
};

/// Maps (x, y) to (a x + c y + tx, b x + d y + ty).
struct Matrix {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;
    [[nodiscard]] Point map(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
    friend bool operator==(const Matrix&, const Matrix&) = default;
};
/// First `right`, then `left`.
Matrix operator*(const Matrix& left, const Matrix& right);

/// Each channel becomes channel * multiply + add, with multiply 1 and add 0 for no change; add counts to 255.
struct ColorTransform {
    std::array<double, 4> multiply{1, 1, 1, 1};
    std::array<double, 4> add{0, 0, 0, 0};
    friend bool operator==(const ColorTransform&, const ColorTransform&) = default;
};

/// In pixels; grows by include().
struct Bounds {
    double xMin = std::numeric_limits<double>::max(), xMax = std::numeric_limits<double>::lowest();
    double yMin = std::numeric_limits<double>::max(), yMax = std::numeric_limits<double>::lowest();
    [[nodiscard]] bool isEmpty() const { return xMax < xMin; }
    void include(Point p);
    void include(const Bounds& other);
    void expand(double by);
};

std::int32_t toTwips(double pixels);

void writeBounds(BitWriter& out, const Bounds& bounds);
void writeMatrix(BitWriter& out, const Matrix& matrix);
void writeColorTransform(BitWriter& out, const ColorTransform& transform); // the kind with alpha
void writeRgb(BitWriter& out, Rgba color);
void writeRgba(BitWriter& out, Rgba color);

// ---- filters ----------------------------------------------------------------------------------------------

struct Filter {
    enum class Kind : std::uint8_t {
        DropShadow,
        Blur,
        Glow,
        Bevel,
        GradientGlow,
        Convolution,
        ColorMatrix,
        GradientBevel
    };
    struct Stop {
        Rgba color;
        std::uint8_t ratio = 0;
    };
    Kind kind = Kind::Blur;
    Rgba color, highlight{255, 255, 255, 255}; // color: of the shadow, where there are two
    double blurX = 4, blurY = 4, angleDegrees = 45, distance = 4, strength = 1;
    int passes = 1;
    bool inner = false, knockout = false, hideObject = false, onTop = false;
    std::vector<Stop> stops;
    // Convolution
    int columns = 0, rows = 0;
    double divisor = 1, bias = 0;
    bool clamp = true, preserveAlpha = true;
    std::vector<double> matrix; // Convolution: columns * rows; ColorMatrix: 20
};
void writeFilters(BitWriter& out, const std::vector<Filter>& filters);

// ---- sound cues -------------------------------------------------------------------------------------------

struct SoundCue {
    struct Envelope {
        std::uint32_t position44 = 0; // samples at 44.1 kHz
        std::uint16_t left = 32768, right = 32768;
    };
    bool stop = false, noMultiple = false;
    std::optional<std::uint32_t> inPoint44, outPoint44;
    int loops = 1;
    std::vector<Envelope> envelope;
};
void writeSoundCue(BitWriter& out, const SoundCue& cue);

} // namespace swfc::output
