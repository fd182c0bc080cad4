#include "flash/stage/FocusSteps.h"

#include <algorithm>
#include <cstdint>
#include <tuple>

namespace flash::stage
{

namespace
{

/// A box as seen by one who looks along the direction: `near` comes before `far`.
struct Seen {
    std::int64_t near, far, left, right;
};

Seen seen(const swf::Rect& box, Direction direction)
{
    switch (direction) {
    case Direction::Down: return {box.yMin, box.yMax, box.xMin, box.xMax};
    case Direction::Up: return {-std::int64_t{box.yMax}, -std::int64_t{box.yMin}, box.xMin, box.xMax};
    case Direction::Left: return {-std::int64_t{box.xMax}, -std::int64_t{box.xMin}, box.yMin, box.yMax};
    case Direction::Right: return {box.xMin, box.xMax, box.yMin, box.yMax};
    }
    return {};
}

/// What lies between two spans of one axis; 0 when they touch or overlap.
double gap(std::int64_t from, std::int64_t to, std::int64_t otherFrom, std::int64_t otherTo)
{
    return static_cast<double>(std::max<std::int64_t>({0, otherFrom - to, from - otherTo}));
}

} // namespace

std::optional<std::size_t> nextInDirection(const swf::Rect& from, std::span<const swf::Rect> boxes,
                                           Direction direction)
{
    const Seen origin = seen(from, direction);
    enum Kind { Ahead, Beside, Elsewhere };
    std::optional<std::size_t> best;
    std::pair<Kind, double> bestWorth{};
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const Seen box = seen(boxes[i], direction);
        // Up and down it is the lower borders that are compared.
        const bool isBehind = direction == Direction::Up ? box.near <= origin.near : box.far <= origin.far;
        if (isBehind) continue;
        const double along = gap(origin.near, origin.far, box.near, box.far);
        const double across = gap(origin.left, origin.right, box.left, box.right);
        // What stands to the side of the origin comes first on the way down only.
        const bool isBeside = direction == Direction::Down && box.near < origin.far;
        const Kind kind = across == 0 ? Ahead : isBeside ? Beside : Elsewhere;
        const std::pair worth{kind, along * along + across * across};
        if (best && !(worth < bestWorth)) continue;
        best = i;
        bestWorth = worth;
    }
    return best;
}

} // namespace flash::stage
