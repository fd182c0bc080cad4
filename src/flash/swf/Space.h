#pragma once

#include "flash/swf/Geometry.h"

#include <array>
#include <cstddef>
#include <optional>

// Geometry of three dimensions, and of planes that are seen in it. Lengths are twips in all three.
namespace flash::swf
{

/// Column by column; vectors are columns (x, y, z, w).
struct Matrix3D {
    std::array<double, 16> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    Matrix3D() = default;
    explicit Matrix3D(const std::array<double, 16>& numbers) : m(numbers) {}
    /// Moves within planes of the same depth.
    explicit Matrix3D(const Matrix& flat)
        : m{flat.a, flat.b, 0, 0, flat.c, flat.d, 0, 0, 0, 0, 1, 0, flat.tx, flat.ty, 0, 1}
    {
    }
    [[nodiscard]] std::array<double, 4> map(double x, double y, double z, double w = 1) const
    {
        std::array<double, 4> result{};
        for (std::size_t r = 0; r < 4; ++r)
            result[r] = m[r] * x + m[4 + r] * y + m[8 + r] * z + m[12 + r] * w;
        return result;
    }
    friend bool operator==(const Matrix3D&, const Matrix3D&) = default;
};

/// First `right`, then `left`.
inline Matrix3D operator*(const Matrix3D& left, const Matrix3D& right)
{
    Matrix3D result;
    for (std::size_t column = 0; column < 4; ++column) {
        const double* c = &right.m[4 * column];
        const auto mapped = left.map(c[0], c[1], c[2], c[3]);
        for (std::size_t r = 0; r < 4; ++r) result.m[4 * column + r] = mapped[r];
    }
    return result;
}

/// How things look smaller the further away they are.
struct Perspective {
    double fieldOfView = 55;         ///< degrees
    double focalLength = 0;          ///< pixels, from the eye to the plane of depth 0
    double centerX = 0, centerY = 0; ///< pixels: what lies straight ahead of the eye
    /// Onto the plane of depth 0, seen from the eye.
    [[nodiscard]] Matrix3D matrix() const
    {
        const double away = 1 / (focalLength * kTwipsPerPixel);
        return Matrix3D{
            {1, 0, 0, 0, 0, 1, 0, 0, centerX / focalLength, centerY / focalLength, 0, away, 0, 0, 0, 1}};
    }
    friend bool operator==(const Perspective&, const Perspective&) = default;
};

/// Plane to plane; row by row.
struct Homography {
    std::array<double, 9> m{1, 0, 0, 0, 1, 0, 0, 0, 1};
    /// Of what the plane of depth 0 becomes.
    static Homography ofPlane(const Matrix3D& s)
    {
        return {{s.m[0], s.m[4], s.m[12], s.m[1], s.m[5], s.m[13], s.m[3], s.m[7], s.m[15]}};
    }
    /// Before the division by the third number, which is not positive for what lies behind the eye.
    [[nodiscard]] std::array<double, 3> map(double x, double y) const
    {
        return {m[0] * x + m[1] * y + m[2], m[3] * x + m[4] * y + m[5], m[6] * x + m[7] * y + m[8]};
    }
    /// Nothing for a plane that is seen from its edge.
    [[nodiscard]] std::optional<Homography> inverted() const
    {
        const Homography a{{m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
                            m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
                            m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]}};
        const double determinant = m[0] * a.m[0] + m[1] * a.m[3] + m[2] * a.m[6];
        if (determinant == 0 || !std::isfinite(determinant)) return {};
        Homography result;
        for (std::size_t i = 0; i < result.m.size(); ++i) result.m[i] = a.m[i] / determinant;
        return result;
    }
    /// The flat matrix that does the same at a point, and nearly so around it.
    [[nodiscard]] Matrix tangentAt(double x, double y) const
    {
        const auto [px, py, w] = map(x, y);
        Matrix t{(m[0] - px / w * m[6]) / w,
                 (m[3] - py / w * m[6]) / w,
                 (m[1] - px / w * m[7]) / w,
                 (m[4] - py / w * m[7]) / w,
                 0,
                 0};
        t.tx = px / w - t.a * x - t.c * y;
        t.ty = py / w - t.b * x - t.d * y;
        return t;
    }
};

/// First `right`, then `left`.
inline Homography operator*(const Homography& left, const Homography& right)
{
    Homography result;
    for (std::size_t r = 0; r < 3; ++r)
        for (std::size_t c = 0; c < 3; ++c)
            result.m[3 * r + c] = left.m[3 * r] * right.m[c] + left.m[3 * r + 1] * right.m[3 + c] +
                                  left.m[3 * r + 2] * right.m[6 + c];
    return result;
}

} // namespace flash::swf
