#pragma once

#include "flash/swf/Shape.h"

#include <memory>

namespace flash::stage
{

/// How the outlines of a clip with a scaling grid spread when it is scaled: the four corners outside the grid
/// keep their size, the sides between them are scaled along one axis, the middle along both. Each fill as a
/// whole is stretched over what becomes of the area it covers; strokes keep their width.
///
/// Maps from the clip's space to that space times the absolute values of the clip's scale; the outermost
/// edges land where plain scaling would put them.
class ScalingGrid
{
public:
    /// @param grid   the middle, twips of the clip's space; what lies outside the bounds does not count
    /// @param bounds of all that the clip shows
    ScalingGrid(const swf::Rect& grid, const swf::Rect& bounds, double scaleX, double scaleY);

    [[nodiscard]] swf::Point map(swf::Point point) const;
    /// @param toClip from the shape's space to the clip's
    [[nodiscard]] swf::Shape apply(const swf::Shape& shape, const swf::Matrix& toClip) const;

    friend bool operator==(const ScalingGrid&, const ScalingGrid&) = default;

private:
    friend class Slicer;

    /// A line that is cut in three, each part stretched evenly.
    struct Axis {
        double cuts[2] = {0, 0};
        double factors[3] = {1, 1, 1}, offsets[3] = {0, 0, 0};
        Axis(double outerMin, double gridMin, double gridMax, double outerMax, double scale);
        [[nodiscard]] std::size_t part(double value) const
        {
            return value < cuts[0] ? 0 : value <= cuts[1] ? 1 : 2;
        }
        [[nodiscard]] double map(double value, std::size_t part) const
        {
            return factors[part] * value + offsets[part];
        }
        friend bool operator==(const Axis&, const Axis&) = default;
    };
    Axis m_x, m_y;
};

} // namespace flash::stage
