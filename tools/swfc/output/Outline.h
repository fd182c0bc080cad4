#pragma once

#include "swfc/output/Records.h"

#include <string>
#include <string_view>
#include <vector>

namespace swfc::output
{

/// A straight line to `anchor`, or a quadratic curve to it over `control`.
struct Edge {
    bool curved = false;
    Point control, anchor;
};
struct Contour {
    Point start;
    std::vector<Edge> edges;
    bool closed = false; ///< ends with a stroke back to the start
};
using Outline = std::vector<Contour>;

/// A piece of a path as written: lines and cubic curves. Quadratic curves and arcs are turned into cubics.
struct PathSegment {
    bool curved = false;
    Point control1, control2, anchor;
};
struct PathContour {
    Point start;
    std::vector<PathSegment> segments;
    bool closed = false;
};
using PathData = std::vector<PathContour>;

struct PathResult {
    PathData path;
    std::string error; ///< empty: none; else what was expected at which character
};

/// Reads SVG path data: M L H V C S Q T A Z, absolute and relative.
PathResult parsePath(std::string_view data, const Matrix& transform);

/// Cubic curves become quadratic ones that stay within kCurveTolerance of them.
/// A contour with the last segment already back at its start keeps that segment.
constexpr double kCurveTolerance = 0.02; ///< pixels
Outline toOutline(const PathData& path);

/// Outlines of two paths with the same number of edges: the shorter of two contours has its longest segments
/// split until both have as many.
/// @returns false when the numbers of contours differ
bool toMorphOutlines(const PathData& from, const PathData& to, Outline& start, Outline& end);

Bounds boundsOf(const Outline& outline);

} // namespace swfc::output
