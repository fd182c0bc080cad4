#pragma once

#include "flash/swf/Geometry.h"

#include <cstddef>
#include <optional>
#include <span>

namespace flash::stage
{

enum class Direction { Down, Up, Left, Right };

/// Which of some boxes an arrow key leads to. Only what reaches further that way than `from` does counts, and
/// upwards only what ends above it; of that, first what lies straight ahead, downwards then what lies beside,
/// then the rest; the nearest of those that are equal in this, and the first of those that are equally near.
/// @param from, boxes of one space, whatever its unit
/// @returns the index of the box; nothing when none lies that way
std::optional<std::size_t> nextInDirection(const swf::Rect& from, std::span<const swf::Rect> boxes,
                                           Direction direction);

} // namespace flash::stage
