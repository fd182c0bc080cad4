#include "swfc/output/ShapeEdges.h"

#include <algorithm>
#include <cstdlib>

namespace swfc::output
{
namespace
{

constexpr int kMinDeltaBits = 2, kMaxDeltaBits = 17;
constexpr std::int32_t kLongestDelta = (1 << (kMaxDeltaBits - 1)) - 1;

} // namespace

void EdgeWriter::beginNewStyles()
{
    m_out.bits(0, 1);
    m_out.bits(1, 1);
    m_out.bits(0, 4);
    m_out.align();
}

void EdgeWriter::styleChange(const Point* moveTo)
{
    const bool left = m_left != m_wantLeft, right = m_right != m_wantRight, line = m_line != m_wantLine;
    if (!left && !right && !line && moveTo == nullptr) return;
    m_out.bits(0, 2); // a style change without new styles
    m_out.bits(line ? 1 : 0, 1);
    m_out.bits(right ? 1 : 0, 1);
    m_out.bits(left ? 1 : 0, 1);
    m_out.bits(moveTo != nullptr ? 1 : 0, 1);
    if (moveTo != nullptr) {
        m_x = toTwips(moveTo->x);
        m_y = toTwips(moveTo->y);
        const int bits = std::max(bitsForSigned(m_x), bitsForSigned(m_y));
        m_out.bits(static_cast<std::uint32_t>(bits), 5);
        m_out.signedBits(m_x, bits);
        m_out.signedBits(m_y, bits);
    }
    if (left) m_out.bits(static_cast<std::uint32_t>(m_wantLeft), m_fillBits);
    if (right) m_out.bits(static_cast<std::uint32_t>(m_wantRight), m_fillBits);
    if (line) m_out.bits(static_cast<std::uint32_t>(m_wantLine), m_lineBits);
    m_left = m_wantLeft;
    m_right = m_wantRight;
    m_line = m_wantLine;
}

void EdgeWriter::straightPiece(std::int32_t dx, std::int32_t dy)
{
    const int bits = std::max({bitsForSigned(dx), bitsForSigned(dy), kMinDeltaBits});
    m_out.bits(3, 2); // an edge, straight
    m_out.bits(static_cast<std::uint32_t>(bits - kMinDeltaBits), 4);
    const bool general = dx != 0 && dy != 0;
    m_out.bits(general ? 1 : 0, 1);
    if (general) {
        m_out.signedBits(dx, bits);
        m_out.signedBits(dy, bits);
    } else {
        m_out.bits(dx == 0 ? 1 : 0, 1);
        m_out.signedBits(dx == 0 ? dy : dx, bits);
    }
    m_x += dx;
    m_y += dy;
}

void EdgeWriter::edge(const Edge& edge)
{
    const std::int32_t toX = toTwips(edge.anchor.x), toY = toTwips(edge.anchor.y);
    if (edge.curved) {
        const std::int32_t cx = toTwips(edge.control.x) - m_x, cy = toTwips(edge.control.y) - m_y;
        const std::int32_t ax = toX - m_x - cx, ay = toY - m_y - cy;
        const std::int32_t longest = std::max({std::abs(cx), std::abs(cy), std::abs(ax), std::abs(ay)});
        if (longest == 0 && !m_keepEmptyEdges) return;
        if (longest <= kLongestDelta) {
            const int bits = std::max(
                {bitsForSigned(cx), bitsForSigned(cy), bitsForSigned(ax), bitsForSigned(ay), kMinDeltaBits});
            m_out.bits(2, 2); // an edge, curved
            m_out.bits(static_cast<std::uint32_t>(bits - kMinDeltaBits), 4);
            for (const std::int32_t delta : {cx, cy, ax, ay}) m_out.signedBits(delta, bits);
            m_x = toX;
            m_y = toY;
            return;
        }
        // Too long for one record: two halves, each of which may be halved again.
        const Point from{m_x / kTwipsPerPixel, m_y / kTwipsPerPixel};
        const auto middle = [](Point a, Point b) { return Point{(a.x + b.x) / 2, (a.y + b.y) / 2}; };
        const Point c1 = middle(from, edge.control), c2 = middle(edge.control, edge.anchor),
                    m = middle(c1, c2);
        this->edge({true, c1, m});
        this->edge({true, c2, edge.anchor});
        return;
    }
    std::int32_t dx = toX - m_x, dy = toY - m_y;
    if (dx == 0 && dy == 0 && !m_keepEmptyEdges) return;
    const int pieces = std::max(std::abs(dx), std::abs(dy)) / kLongestDelta + 1;
    for (int left = pieces; left > 0; --left) {
        const std::int32_t stepX = dx / left, stepY = dy / left;
        straightPiece(stepX, stepY);
        dx -= stepX;
        dy -= stepY;
    }
}

void EdgeWriter::contour(const Contour& contour)
{
    styleChange(&contour.start);
    for (const Edge& part : contour.edges) edge(part);
    const std::int32_t startX = toTwips(contour.start.x), startY = toTwips(contour.start.y);
    const bool filled = m_wantLeft != 0 || m_wantRight != 0;
    if (!filled || (m_x == startX && m_y == startY)) return;
    if (!contour.closed) m_wantLine = 0;
    styleChange(nullptr);
    edge({false, {}, contour.start});
}

void EdgeWriter::plainContour(const Contour& contour)
{
    m_keepEmptyEdges = true;
    styleChange(&contour.start);
    for (const Edge& part : contour.edges) edge(part);
}

void EdgeWriter::end()
{
    m_out.bits(0, 6);
    m_out.align();
}

} // namespace swfc::output
