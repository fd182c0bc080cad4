#pragma once

#include "flash/swf/Space.h"

#include <array>
#include <memory>
#include <optional>

namespace flash::stage
{

/// Where a node stands that has left the plane of its parent.
struct SpacePlace {
    std::array<double, 3> place{}; ///< pixels
    std::array<double, 3> turn{};  ///< degrees, about x first, then y, then z
    std::array<double, 3> scale{1, 1, 1};
    swf::Matrix3D matrix; ///< to the parent's space, twips
    /// Makes the matrix of the other three.
    void recompose();
    /// What of it is seen without any depth: the node's place among flat ones.
    [[nodiscard]] swf::Matrix flat() const;
};

/// What a node has that is not flat.
struct Space {
    std::optional<SpacePlace> placed;
    std::optional<swf::Perspective> perspective; ///< in which what it contains is seen
    std::shared_ptr<const int> listed;           ///< the view's: shared by all there are
};

} // namespace flash::stage
