#include "flash/render/Stroker.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flash::render
{
namespace
{

using swf::LineStyle;

constexpr double kMaxArcSteps = 256;
// Points closer than this are one; a direction between them would be noise.
constexpr double kSamePoint = 1e-4;
// Within a curve, bends up to about 60 degrees are mitred: at such a length the difference from an arc does
// not show.
constexpr double kSmoothBend = 0.5;

struct Vector {
    double x = 0, y = 0;
    friend Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y}; }
    friend Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y}; }
    friend Vector operator*(Vector a, double f) { return {a.x * f, a.y * f}; }
    friend Vector operator-(Vector a) { return {-a.x, -a.y}; }
};

double dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y; }
double cross(Vector a, Vector b) { return a.x * b.y - a.y * b.x; }
// The side on which one() walks along.
Vector normalOf(Vector direction) { return {direction.y, -direction.x}; }

struct Vertex {
    Vector at;
    bool corner = true;
};

// Draws one side of a path, then the other one, into the outline.
class PathStroker
{
public:
    PathStroker(StrokeOutline& outline, const LineStyle& style, double width, const Arcs& arcs)
        : m_outline(outline), m_style(style), m_half(width / 2), m_halved(arcs.halved)
    {
        const double ratio = std::clamp(1 - arcs.tolerance / std::max(m_half, 0.5), 0.0, 1.0);
        m_arcStep = std::max(2 * std::acos(ratio), 2 * std::numbers::pi / kMaxArcSteps);
    }

    void stroke(std::vector<Vertex> path, bool closed)
    {
        if (path.size() == 1) {
            dot(path[0].at);
            return;
        }
        if (closed) {
            loop(path);
            std::ranges::reverse(path);
            loop(path);
            return;
        }
        side(path);
        cap(path.back().at, direction(path[path.size() - 2], path.back()), m_style.endCap);
        std::ranges::reverse(path);
        side(path);
        cap(path.back().at, direction(path[path.size() - 2], path.back()), m_style.startCap);
        endContour();
    }

private:
    static Vector direction(const Vertex& from, const Vertex& to)
    {
        const Vector d = to.at - from.at;
        return d * (1 / std::hypot(d.x, d.y));
    }
    static double dot(Vector a, Vector b) { return render::dot(a, b); }

    void add(Vector p) { m_outline.points.push_back({static_cast<float>(p.x), static_cast<float>(p.y)}); }
    void endContour()
    {
        m_outline.contourEnds.push_back(static_cast<std::uint32_t>(m_outline.points.size()));
    }

    void side(const std::vector<Vertex>& path)
    {
        Vector before = direction(path[0], path[1]);
        double lengthBefore = lengthOf(path[0], path[1]);
        add(path[0].at + normalOf(before) * m_half);
        for (std::size_t i = 1; i + 1 < path.size(); ++i) {
            const Vector after = direction(path[i], path[i + 1]);
            const double lengthAfter = lengthOf(path[i], path[i + 1]);
            join(path[i], before, after, std::min(lengthBefore, lengthAfter));
            before = after;
            lengthBefore = lengthAfter;
        }
        add(path.back().at + normalOf(before) * m_half);
    }

    void loop(const std::vector<Vertex>& path)
    {
        const std::size_t count = path.size();
        for (std::size_t i = 0; i < count; ++i) {
            const Vertex& previous = path[(i + count - 1) % count];
            const Vertex& next = path[(i + 1) % count];
            join(path[i], direction(previous, path[i]), direction(path[i], next),
                 std::min(lengthOf(previous, path[i]), lengthOf(path[i], next)));
        }
        endContour();
    }

    static double lengthOf(const Vertex& a, const Vertex& b)
    {
        return std::hypot(a.at.x - b.at.x, a.at.y - b.at.y);
    }

    void join(const Vertex& vertex, Vector before, Vector after, double shorter)
    {
        const Vector p = vertex.at;
        const Vector n0 = normalOf(before), n1 = normalOf(after);
        const double turn = cross(before, after), along = dot(before, after);
        const auto meeting = [&] { return p + (n0 + n1) * (m_half / (1 + along)); };
        if (turn <= 0 && along > -0.999) {
            // The inner side: where the two borders meet, if they reach that far.
            const double reach = m_half * std::abs(turn) / (1 + along);
            if (reach <= shorter) {
                add(meeting());
            } else {
                add(p + n0 * m_half);
                add(p);
                add(p + n1 * m_half);
            }
            return;
        }
        if (!vertex.corner) {
            if (along > kSmoothBend)
                add(meeting());
            else
                arc(p, n0, n1, turn, along);
            return;
        }
        switch (m_style.join) {
        case LineStyle::Join::Round: arc(p, n0, n1, turn, along); break;
        case LineStyle::Join::Bevel:
            add(p + n0 * m_half);
            add(p + n1 * m_half);
            break;
        case LineStyle::Join::Miter: miter(p, before, after, along); break;
        }
    }

    // The tip is cut off at the limit, not replaced by a bevel.
    void miter(Vector p, Vector before, Vector after, double along)
    {
        const Vector n0 = normalOf(before), n1 = normalOf(after);
        const double halfCosine = std::sqrt(std::max((1 + along) / 2, 0.0));
        const double limit = std::max(m_style.miterLimit, 1.0);
        if (halfCosine * limit >= 1) {
            add(p + (n0 + n1) * (m_half / (1 + along)));
            return;
        }
        // How far each border goes on beyond the corner before the cut across the tip.
        const double halfSine = std::sqrt(std::max((1 - along) / 2, 0.0));
        const double further = m_half * (limit - halfCosine) / halfSine;
        add(p + n0 * m_half + before * further);
        add(p + n1 * m_half - after * further);
    }

    [[nodiscard]] int linesOf(double angle) const
    {
        const double lines = std::max(std::ceil(angle / m_arcStep), 1.0);
        return static_cast<int>(m_halved ? std::exp2(std::round(std::log2(lines))) : lines);
    }

    // From p + n0 to p + n1, turning the way the outer side of a bend does.
    void arc(Vector p, Vector n0, Vector n1, double turn, double along)
    {
        const double angle = std::abs(std::atan2(turn, along));
        const int steps = linesOf(angle);
        add(p + n0 * m_half);
        for (int i = 1; i < steps; ++i) {
            const double a = angle * i / steps;
            const double c = std::cos(a), s = std::sin(a);
            add(p + Vector{n0.x * c - n0.y * s, n0.x * s + n0.y * c} * m_half);
        }
        add(p + n1 * m_half);
    }

    void cap(Vector p, Vector direction, LineStyle::Cap cap)
    {
        const Vector n = normalOf(direction) * m_half;
        const Vector d = direction * m_half;
        switch (cap) {
        case LineStyle::Cap::None: break;
        case LineStyle::Cap::Round:
            if (m_halved) {
                arc(p, normalOf(direction), direction, 1, 0);
                arc(p, direction, -normalOf(direction), 1, 0);
            } else {
                arc(p, normalOf(direction), -normalOf(direction), 0, -1);
            }
            break;
        case LineStyle::Cap::Square:
            add(p + n + d);
            add(p - n + d);
            break;
        }
    }

    // A path without length.
    void dot(Vector p)
    {
        if (m_style.startCap == LineStyle::Cap::None) return;
        cap(p, {1, 0}, m_style.startCap);
        cap(p, {-1, 0}, m_style.startCap);
        endContour();
    }

    StrokeOutline& m_outline;
    const LineStyle& m_style;
    double m_half;
    double m_arcStep; ///< radians
    bool m_halved;
};

void measure(StrokeOutline& outline, std::size_t from)
{
    if (from == 0 && !outline.points.empty()) outline.min = outline.max = outline.points[0];
    for (std::size_t i = from; i < outline.points.size(); ++i) {
        const FlatPoint& p = outline.points[i];
        outline.min = {std::min(outline.min.x, p.x), std::min(outline.min.y, p.y)};
        outline.max = {std::max(outline.max.x, p.x), std::max(outline.max.y, p.y)};
    }
}

} // namespace

double strokeWidth(const LineStyle& style, const swf::Matrix& m, double pixelScale)
{
    double scale = pixelScale / swf::kTwipsPerPixel;
    if (!style.noHorizontalScale && !style.noVerticalScale)
        scale = std::hypot(m.a + m.c, m.b + m.d) / std::numbers::sqrt2;
    // As the genuine player has it: how far (1, 1) is moved that way, and nothing when it is moved back.
    else if (!style.noHorizontalScale)
        scale = m.a + m.c;
    else if (!style.noVerticalScale)
        scale = m.b + m.d;
    return std::max(style.width * scale, 1.0);
}

void addStroke(StrokeOutline& outline, std::span<const StrokePoint> path, const LineStyle& style,
               double width, const Arcs& arcs)
{
    std::vector<Vertex> vertices;
    vertices.reserve(path.size());
    for (const StrokePoint& point : path) {
        const Vector at{point.at.x, point.at.y};
        if (!vertices.empty() && std::abs(vertices.back().at.x - at.x) < kSamePoint &&
            std::abs(vertices.back().at.y - at.y) < kSamePoint) {
            vertices.back().corner |= point.corner;
            continue;
        }
        vertices.push_back({at, point.corner});
    }
    if (vertices.empty()) return;
    const FlatPoint first = path.front().at, last = path.back().at;
    bool closed = vertices.size() > 2 && !style.noClose && std::abs(first.x - last.x) < kSamePoint &&
                  std::abs(first.y - last.y) < kSamePoint;
    if (closed) vertices.pop_back();
    closed = closed && vertices.size() > 1;
    const std::size_t from = outline.points.size();
    PathStroker(outline, style, width, arcs).stroke(std::move(vertices), closed);
    measure(outline, from);
}

void hintStroke(std::span<StrokePoint> path, double width)
{
    const bool odd = std::lround(width) % 2 != 0;
    const auto snap = [odd](float v) { return odd ? std::floor(v) + 0.5F : std::round(v); };
    for (StrokePoint& point : path)
        if (point.corner) point.at = {snap(point.at.x), snap(point.at.y)};
}

} // namespace flash::render
