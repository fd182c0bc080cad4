#include "swfc/output/Outline.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <numbers>
#include <optional>

namespace swfc::output
{
namespace
{

constexpr std::size_t kMaxSegments = 1'000'000;

class PathParser
{
public:
    PathParser(std::string_view text, const Matrix& transform) : m_text(text), m_transform(transform) {}
    PathResult run();

private:
    void skipBlanks()
    {
        while (m_at < m_text.size() &&
               (std::isspace(static_cast<unsigned char>(m_text[m_at])) != 0 || m_text[m_at] == ','))
            ++m_at;
    }
    bool atNumber()
    {
        skipBlanks();
        if (m_at >= m_text.size()) return false;
        const char c = m_text[m_at];
        return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.';
    }
    double number();
    bool flag();
    Point point(bool relative)
    {
        const double x = number(), y = number();
        return relative ? Point{m_current.x + x, m_current.y + y} : Point{x, y};
    }
    void fail(const std::string& expected)
    {
        if (m_error.empty()) {
            m_error = "expected " + expected + " in path data at character " + std::to_string(m_at + 1);
        }
    }
    void command(char c);
    void startContour(Point at);
    void lineTo(Point to);
    void cubicTo(Point control1, Point control2, Point to);
    void quadraticTo(Point control, Point to);
    void arcTo(double rx, double ry, double rotation, bool large, bool sweep, Point to);
    void add(const PathSegment& segment);

    std::string_view m_text; // the caller's
    const Matrix& m_transform;
    std::size_t m_at = 0;
    PathData m_path;
    std::string m_error;
    std::size_t m_segments = 0;
    Point m_current, m_start;
    std::optional<Point> m_cubicControl, m_quadraticControl; // of the segment just read
    bool m_open = false;
};

double PathParser::number()
{
    if (!atNumber()) {
        fail("a number");
        return 0;
    }
    if (m_text[m_at] == '+') ++m_at;
    double value = 0;
    const auto parsed = std::from_chars(m_text.data() + m_at, m_text.data() + m_text.size(), value);
    if (parsed.ec != std::errc() || !std::isfinite(value)) {
        fail("a number");
        return 0;
    }
    m_at = static_cast<std::size_t>(parsed.ptr - m_text.data());
    return value;
}

/// The flags of an arc may stand without blanks between them.
bool PathParser::flag()
{
    skipBlanks();
    if (m_at < m_text.size() && (m_text[m_at] == '0' || m_text[m_at] == '1')) return m_text[m_at++] == '1';
    fail("0 or 1");
    return false;
}

void PathParser::startContour(Point at)
{
    m_path.push_back({m_transform.map(at), {}, false});
    m_start = m_current = at;
    m_open = true;
}

void PathParser::add(const PathSegment& segment)
{
    if (!m_open) startContour(m_current);
    if (++m_segments > kMaxSegments) {
        fail("at most a million segments");
        return;
    }
    PathSegment mapped = segment;
    mapped.control1 = m_transform.map(segment.control1);
    mapped.control2 = m_transform.map(segment.control2);
    mapped.anchor = m_transform.map(segment.anchor);
    m_path.back().segments.push_back(mapped);
    m_current = segment.anchor;
}

void PathParser::lineTo(Point to) { add({false, {}, {}, to}); }
void PathParser::cubicTo(Point control1, Point control2, Point to) { add({true, control1, control2, to}); }

void PathParser::quadraticTo(Point control, Point to)
{
    const auto toward = [&](Point end) {
        return Point{end.x + (control.x - end.x) * 2 / 3, end.y + (control.y - end.y) * 2 / 3};
    };
    cubicTo(toward(m_current), toward(to), to);
}

/// From end points to centre, as the SVG notes on implementation give it; then pieces of a quarter turn.
void PathParser::arcTo(double rx, double ry, double rotation, bool large, bool sweep, Point to)
{
    rx = std::abs(rx);
    ry = std::abs(ry);
    const Point from = m_current;
    if (rx == 0 || ry == 0 || (from.x == to.x && from.y == to.y)) {
        lineTo(to);
        return;
    }
    const double phi = rotation * std::numbers::pi / 180, cosPhi = std::cos(phi), sinPhi = std::sin(phi);
    const double hx = (from.x - to.x) / 2, hy = (from.y - to.y) / 2;
    const double x = cosPhi * hx + sinPhi * hy, y = -sinPhi * hx + cosPhi * hy;
    const double tooSmall = x * x / (rx * rx) + y * y / (ry * ry);
    if (tooSmall > 1) {
        rx *= std::sqrt(tooSmall);
        ry *= std::sqrt(tooSmall);
    }
    const double d = rx * rx * y * y + ry * ry * x * x;
    double f = d == 0 ? 0 : std::sqrt(std::max(0.0, (rx * rx * ry * ry - d) / d));
    if (large == sweep) f = -f;
    const double cx = f * rx * y / ry, cy = -f * ry * x / rx;
    const Point center{cosPhi * cx - sinPhi * cy + (from.x + to.x) / 2,
                       sinPhi * cx + cosPhi * cy + (from.y + to.y) / 2};
    const double start = std::atan2((y - cy) / ry, (x - cx) / rx);
    double turn = std::atan2((-y - cy) / ry, (-x - cx) / rx) - start;
    if (sweep && turn < 0) turn += 2 * std::numbers::pi;
    if (!sweep && turn > 0) turn -= 2 * std::numbers::pi;
    const int pieces =
        std::max(1, static_cast<int>(std::ceil(std::abs(turn) / (std::numbers::pi / 2) - 1e-9)));
    const double step = turn / pieces, k = 4.0 / 3 * std::tan(step / 4);
    const auto onEllipse = [&](double u, double v) {
        return Point{center.x + cosPhi * rx * u - sinPhi * ry * v,
                     center.y + sinPhi * rx * u + cosPhi * ry * v};
    };
    for (int i = 0; i < pieces; ++i) {
        const double a = start + step * i, b = a + step;
        const Point end = i + 1 == pieces ? to : onEllipse(std::cos(b), std::sin(b));
        cubicTo(onEllipse(std::cos(a) - k * std::sin(a), std::sin(a) + k * std::cos(a)),
                onEllipse(std::cos(b) + k * std::sin(b), std::sin(b) - k * std::cos(b)), end);
    }
}

void PathParser::command(char c)
{
    const bool relative = c >= 'a';
    const auto reflected = [&](const std::optional<Point>& control) {
        return control ? Point{2 * m_current.x - control->x, 2 * m_current.y - control->y} : m_current;
    };
    std::optional<Point> cubic, quadratic;
    switch (relative ? c - 32 : c) {
    case 'M': startContour(point(relative)); break;
    case 'L': lineTo(point(relative)); break;
    case 'H': lineTo({number() + (relative ? m_current.x : 0), m_current.y}); break;
    case 'V': lineTo({m_current.x, number() + (relative ? m_current.y : 0)}); break;
    case 'C':
    case 'S': {
        const Point first = c == 'C' || c == 'c' ? point(relative) : reflected(m_cubicControl);
        cubic = point(relative);
        cubicTo(first, *cubic, point(relative));
        break;
    }
    case 'Q':
    case 'T': {
        quadratic = c == 'Q' || c == 'q' ? point(relative) : reflected(m_quadraticControl);
        quadraticTo(*quadratic, point(relative));
        break;
    }
    case 'A': {
        const double rx = number(), ry = number(), rotation = number();
        const bool large = flag(), sweep = flag();
        arcTo(rx, ry, rotation, large, sweep, point(relative));
        break;
    }
    default: fail("one of the commands M L H V C S Q T A Z"); break;
    }
    m_cubicControl = cubic;
    m_quadraticControl = quadratic;
}

PathResult PathParser::run()
{
    char current = 0;
    while (m_error.empty()) {
        skipBlanks();
        if (m_at >= m_text.size()) break;
        if (!atNumber()) {
            current = m_text[m_at++];
            if (m_path.empty() && current != 'M' && current != 'm') {
                --m_at;
                fail("M as the first command");
                break;
            }
            if (current == 'Z' || current == 'z') {
                m_path.back().closed = true;
                m_current = m_start;
                m_open = false;
                m_cubicControl = m_quadraticControl = std::nullopt;
                current = 0;
                continue;
            }
        } else if (current == 0) {
            fail("a command");
            break;
        }
        command(current);
        // Further pairs after a move are lines.
        if (current == 'M') current = 'L';
        if (current == 'm') current = 'l';
    }
    return {std::move(m_path), m_error};
}

} // namespace

PathResult parsePath(std::string_view data, const Matrix& transform)
{
    return PathParser(data, transform).run();
}

} // namespace swfc::output
