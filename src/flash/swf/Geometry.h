#pragma once

#include <cmath>
#include <cstdint>

namespace flash::swf
{

// Lengths are twips (20 to the pixel of the stage) unless a name says otherwise.

constexpr int kTwipsPerPixel = 20;

struct Point {
    double x = 0, y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

/// Empty when xMax < xMin: the neutral element of unite().
struct Rect {
    std::int32_t xMin = 0, xMax = -1, yMin = 0, yMax = -1;
    [[nodiscard]] bool isEmpty() const { return xMax < xMin || yMax < yMin; }
    [[nodiscard]] std::int32_t width() const { return isEmpty() ? 0 : xMax - xMin; }
    [[nodiscard]] std::int32_t height() const { return isEmpty() ? 0 : yMax - yMin; }
    friend bool operator==(const Rect&, const Rect&) = default;
};

/// Maps (x, y) to (a x + c y + tx, b x + d y + ty).
struct Matrix {
    double a = 1, b = 0, c = 0, d = 1;
    double tx = 0, ty = 0; ///< twips
    [[nodiscard]] Point map(double x, double y) const { return {a * x + c * y + tx, b * x + d * y + ty}; }
    [[nodiscard]] Point map(Point p) const { return map(p.x, p.y); }
    [[nodiscard]] double determinant() const { return a * d - b * c; }
    [[nodiscard]] bool isInvertible() const
    {
        const double det = determinant();
        return det != 0 && std::isfinite(det);
    }
    /// The identity when the matrix cannot be inverted.
    [[nodiscard]] Matrix inverted() const
    {
        if (!isInvertible()) return {};
        const double f = 1 / determinant();
        return {d * f, -b * f, -c * f, a * f, (c * ty - d * tx) * f, (b * tx - a * ty) * f};
    }
    friend bool operator==(const Matrix&, const Matrix&) = default;
};

/// First `right`, then `left`: (left * right).map(p) == left.map(right.map(p)).
inline Matrix operator*(const Matrix& left, const Matrix& right)
{
    return {left.a * right.a + left.c * right.b,
            left.b * right.a + left.d * right.b,
            left.a * right.c + left.c * right.d,
            left.b * right.c + left.d * right.d,
            left.a * right.tx + left.c * right.ty + left.tx,
            left.b * right.tx + left.d * right.ty + left.ty};
}

/// Not premultiplied.
struct Rgba {
    std::uint8_t r = 0, g = 0, b = 0, a = 255;
    friend bool operator==(const Rgba&, const Rgba&) = default;
};

/// Each channel becomes clamp(channel * multiplier / 256 + addend, 0, 255), on colours that are not
/// premultiplied. Multipliers are 8.8 fixed point (256 is one) and addends -255..255, both kept in the 16
/// bits that the genuine player has for them.
struct ColorTransform {
    std::int16_t redMul = 256, greenMul = 256, blueMul = 256, alphaMul = 256;
    std::int16_t redAdd = 0, greenAdd = 0, blueAdd = 0, alphaAdd = 0;
    [[nodiscard]] bool isIdentity() const { return *this == ColorTransform{}; }
    friend bool operator==(const ColorTransform&, const ColorTransform&) = default;
};

/// First `inner` (the child's), then `outer` (the parent's).
ColorTransform operator*(const ColorTransform& outer, const ColorTransform& inner);
Rgba apply(const ColorTransform& transform, Rgba color);

/// The smallest rectangle around the four mapped corners, rounded outwards to whole twips and saturated to
/// 32 bits; empty stays empty.
Rect mapBounds(const Matrix& matrix, const Rect& rect);
Rect unite(const Rect& a, const Rect& b);
Rect intersect(const Rect& a, const Rect& b);

} // namespace flash::swf
