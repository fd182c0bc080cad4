#include "swfc/output/Outline.h"

#include <algorithm>
#include <cmath>

namespace swfc::output
{
namespace
{

Point lerp(Point a, Point b, double t) { return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}; }
double distance(Point a, Point b) { return std::hypot(a.x - b.x, a.y - b.y); }

/// Cuts the piece of a segment between two parameters.
PathSegment piece(Point start, const PathSegment& segment, double t0, double t1, Point& pieceStart)
{
    if (!segment.curved) {
        pieceStart = lerp(start, segment.anchor, t0);
        return {false, {}, {}, lerp(start, segment.anchor, t1)};
    }
    const auto blossom = [&](double u, double v, double w) {
        const Point a = lerp(start, segment.control1, u), b = lerp(segment.control1, segment.control2, u),
                    c = lerp(segment.control2, segment.anchor, u);
        return lerp(lerp(a, b, v), lerp(b, c, v), w);
    };
    pieceStart = blossom(t0, t0, t0);
    return {true, blossom(t0, t0, t1), blossom(t0, t1, t1), blossom(t1, t1, t1)};
}

/// How many equal pieces of a cubic one quadratic each can follow. The distance between a cubic and its
/// quadratic is bounded by |p3 - 3 c2 + 3 c1 - p0| * sqrt(3) / 36 and falls with the cube of the number.
int quadraticPieces(Point start, const PathSegment& s)
{
    const double dx = s.anchor.x - 3 * s.control2.x + 3 * s.control1.x - start.x;
    const double dy = s.anchor.y - 3 * s.control2.y + 3 * s.control1.y - start.y;
    const double error = std::hypot(dx, dy) * std::sqrt(3.0) / 36;
    if (!(error > kCurveTolerance)) return 1;
    constexpr double kMax = 64;
    return static_cast<int>(std::min(kMax, std::ceil(std::cbrt(error / kCurveTolerance))));
}

void appendEdges(Contour& contour, Point start, const PathSegment& segment, int pieces)
{
    for (int i = 0; i < pieces; ++i) {
        Point from;
        const PathSegment part = piece(start, segment, double(i) / pieces, double(i + 1) / pieces, from);
        if (!segment.curved) {
            contour.edges.push_back({false, {}, part.anchor});
            continue;
        }
        const Point control{(3 * (part.control1.x + part.control2.x) - from.x - part.anchor.x) / 4,
                            (3 * (part.control1.y + part.control2.y) - from.y - part.anchor.y) / 4};
        contour.edges.push_back({true, control, part.anchor});
    }
}

double lengthOf(Point start, const PathSegment& s)
{
    if (!s.curved) return distance(start, s.anchor);
    return distance(start, s.control1) + distance(s.control1, s.control2) + distance(s.control2, s.anchor);
}

void splitLongest(PathContour& contour, std::size_t wanted)
{
    if (contour.segments.empty()) contour.segments.push_back({false, {}, {}, contour.start});
    while (contour.segments.size() < wanted) {
        std::size_t longest = 0;
        double most = -1;
        Point start = contour.start, longestStart = contour.start;
        for (std::size_t i = 0; i < contour.segments.size(); ++i) {
            const double length = lengthOf(start, contour.segments[i]);
            if (length > most) {
                most = length;
                longest = i;
                longestStart = start;
            }
            start = contour.segments[i].anchor;
        }
        Point unused;
        const PathSegment whole = contour.segments[longest];
        contour.segments[longest] = piece(longestStart, whole, 0, 0.5, unused);
        contour.segments.insert(contour.segments.begin() + static_cast<std::ptrdiff_t>(longest) + 1,
                                piece(longestStart, whole, 0.5, 1, unused));
    }
}

void makeCurve(Point start, PathSegment& segment)
{
    if (segment.curved) return;
    segment = {true, lerp(start, segment.anchor, 1.0 / 3), lerp(start, segment.anchor, 2.0 / 3),
               segment.anchor};
}

void closeContour(PathContour& contour)
{
    if (!contour.closed) return;
    const Point last = contour.segments.empty() ? contour.start : contour.segments.back().anchor;
    if (distance(last, contour.start) > 0) contour.segments.push_back({false, {}, {}, contour.start});
}

} // namespace

Outline toOutline(const PathData& path)
{
    Outline outline;
    for (PathContour contour : path) {
        closeContour(contour);
        Contour made{contour.start, {}, contour.closed};
        Point at = contour.start;
        for (const PathSegment& segment : contour.segments) {
            appendEdges(made, at, segment, segment.curved ? quadraticPieces(at, segment) : 1);
            at = segment.anchor;
        }
        outline.push_back(std::move(made));
    }
    return outline;
}

bool toMorphOutlines(const PathData& from, const PathData& to, Outline& start, Outline& end)
{
    if (from.size() != to.size()) return false;
    for (std::size_t i = 0; i < from.size(); ++i) {
        PathContour a = from[i], b = to[i];
        closeContour(a);
        closeContour(b);
        const std::size_t count = std::max({a.segments.size(), b.segments.size(), std::size_t{1}});
        splitLongest(a, count);
        splitLongest(b, count);
        Contour first{a.start, {}, a.closed}, second{b.start, {}, b.closed};
        Point atA = a.start, atB = b.start;
        for (std::size_t s = 0; s < count; ++s) {
            PathSegment &segmentA = a.segments[s], &segmentB = b.segments[s];
            int pieces = 1;
            if (segmentA.curved || segmentB.curved) {
                makeCurve(atA, segmentA);
                makeCurve(atB, segmentB);
                pieces = std::max(quadraticPieces(atA, segmentA), quadraticPieces(atB, segmentB));
            }
            appendEdges(first, atA, segmentA, pieces);
            appendEdges(second, atB, segmentB, pieces);
            atA = segmentA.anchor;
            atB = segmentB.anchor;
        }
        start.push_back(std::move(first));
        end.push_back(std::move(second));
    }
    return true;
}

Bounds boundsOf(const Outline& outline)
{
    Bounds bounds;
    for (const Contour& contour : outline) {
        bounds.include(contour.start);
        Point at = contour.start;
        for (const Edge& edge : contour.edges) {
            bounds.include(edge.anchor);
            if (edge.curved) {
                // The curve turns where its derivative is zero, in each axis by itself.
                const auto turn = [](double p0, double p1, double p2) {
                    const double d = p0 - 2 * p1 + p2;
                    return d == 0 ? -1.0 : (p0 - p1) / d;
                };
                for (const double t :
                     {turn(at.x, edge.control.x, edge.anchor.x), turn(at.y, edge.control.y, edge.anchor.y)}) {
                    if (t <= 0 || t >= 1) continue;
                    bounds.include(lerp(lerp(at, edge.control, t), lerp(edge.control, edge.anchor, t), t));
                }
            }
            at = edge.anchor;
        }
    }
    return bounds;
}

} // namespace swfc::output
