#include "flash/avm2/bindings/Graphics.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

// Drawings of triangles, flat ones and those that lie askew in depth.
namespace flash::avm2
{

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;

struct Corner {
    swf::Point at, uv;
    double depth = 1; ///< as scripts have it: the greater, the nearer
};

/// A bitmap fill whose corners of the picture (0..1) lie where those of the triangle do.
std::optional<swf::FillStyle> stretched(const swf::FillStyle& fill, const std::array<Corner, 3>& t)
{
    if (!fill.bitmap) return {};
    const double w = fill.bitmap->width * kTwips, h = fill.bitmap->height * kTwips;
    const swf::Point u{(t[1].uv.x - t[0].uv.x) * w, (t[1].uv.y - t[0].uv.y) * h};
    const swf::Point v{(t[2].uv.x - t[0].uv.x) * w, (t[2].uv.y - t[0].uv.y) * h};
    const swf::Matrix source{u.x, u.y, v.x, v.y, t[0].uv.x * w, t[0].uv.y * h};
    if (!source.isInvertible()) return {};
    const swf::Matrix target{t[1].at.x - t[0].at.x,
                             t[1].at.y - t[0].at.y,
                             t[2].at.x - t[0].at.x,
                             t[2].at.y - t[0].at.y,
                             t[0].at.x,
                             t[0].at.y};
    swf::FillStyle result = fill;
    result.matrix = target * source.inverted() * swf::Matrix{kTwips, 0, 0, kTwips, 0, 0};
    return result;
}

void outline(stage::Drawing& pen, const std::array<Corner, 3>& corners)
{
    pen.moveTo(corners[0].at);
    pen.lineTo(corners[1].at);
    pen.lineTo(corners[2].at);
    pen.lineTo(corners[0].at);
}

/// A fill lies flat on its triangle. One whose corners are of different depth is therefore cut where an
/// edge's middle would show the wrong place of the picture, which leaves no gaps: triangles that share an
/// edge cut it alike.
/// @param cuts of an edge of the triangle at most, each of which makes two of a piece
/// @returns how many pieces it became
std::size_t fillInDepth(Vm& vm, stage::Drawing& pen, const swf::FillStyle& fill,
                        const std::array<Corner, 3>& corners, int cuts)
{
    constexpr double kSlack = 10; // twips
    vm.check();
    std::size_t worst = 0;
    double most = 0;
    for (std::size_t i = 0; i < 3 && cuts > 0; ++i) {
        const Corner &a = corners[i], &b = corners[(i + 1) % 3];
        if (!(a.depth > 0 && b.depth > 0)) continue;
        const double off =
            std::abs(b.depth / (a.depth + b.depth) - 0.5) * std::hypot(b.at.x - a.at.x, b.at.y - a.at.y);
        if (off > most) {
            most = off;
            worst = i;
        }
    }
    if (most <= kSlack) {
        if (auto own = stretched(fill, corners)) pen.beginFill(std::move(*own));
        outline(pen, corners);
        return 1;
    }
    const Corner &a = corners[worst], &b = corners[(worst + 1) % 3], &c = corners[(worst + 2) % 3];
    const double share = b.depth / (a.depth + b.depth);
    const Corner middle{{(a.at.x + b.at.x) / 2, (a.at.y + b.at.y) / 2},
                        {std::lerp(a.uv.x, b.uv.x, share), std::lerp(a.uv.y, b.uv.y, share)},
                        (a.depth + b.depth) / 2};
    return fillInDepth(vm, pen, fill, {a, middle, c}, cuts - 1) +
           fillInDepth(vm, pen, fill, {middle, b, c}, cuts - 1);
}

/// The pieces that a call may still make of triangles in depth: those that need few leave theirs to the rest,
/// and what a drawing has too much of already is drawn flat.
class Pieces
{
public:
    Pieces(std::size_t& drawn, std::size_t triangles)
        : m_drawn(drawn), m_left(drawn < kMostOfDrawing ? kMostOfCall : 0), m_triangles(triangles)
    {
    }
    /// For the next triangle.
    [[nodiscard]] int cuts()
    {
        constexpr std::size_t kMost = std::size_t{1} << 10U;
        const std::size_t share = std::min(m_left / std::max<std::size_t>(m_triangles, 1), kMost);
        return share == 0 ? 0 : static_cast<int>(std::bit_width(share)) - 1;
    }
    void spend(std::size_t pieces)
    {
        m_left -= std::min(m_left, pieces);
        m_drawn += pieces;
        skip();
    }
    void skip() { m_triangles -= std::min<std::size_t>(m_triangles, 1); }

private:
    static constexpr std::size_t kMostOfCall = std::size_t{1} << 14U, kMostOfDrawing = std::size_t{1} << 15U;
    std::size_t& m_drawn;
    std::size_t m_left, m_triangles;
};

} // namespace

void addTriangles(Vm& vm, GraphicsObject& graphics, Value vertexList, Value indexList, Value uvList,
                  std::u16string_view culling)
{
    const auto vertices = numbersOf(vm, vertexList), uvs = numbersOf(vm, uvList);
    std::vector<double> indices = numbersOf(vm, indexList);
    const bool indexed = !indexList.isNullish();
    if (vertices.size() % 2 != 0) invalidGraphicsArgument(vm);
    const std::size_t points = vertices.size() / 2;
    if (indexed ? indices.size() % 3 != 0 : vertices.size() % 6 != 0) invalidGraphicsArgument(vm);
    if (!indexed) {
        for (std::size_t i = 0; i < points; ++i) indices.push_back(static_cast<double>(i));
    }
    const std::size_t uvStep = points > 0 && uvs.size() >= 3 * points ? 3 : 2;
    const bool hasUv = points > 0 && uvs.size() >= uvStep * points;
    const std::optional<swf::FillStyle> fill = graphics.fill;
    stage::Drawing& pen = graphics.drawing();
    Pieces pieces(graphics.pieces, indices.size() / 3);
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        vm.check();
        std::array<Corner, 3> corners;
        bool known = true;
        for (std::size_t k = 0; k < 3; ++k) {
            const double index = indices[i + k];
            known = known && index >= 0 && index < static_cast<double>(points);
            if (!known) break;
            const auto n = static_cast<std::size_t>(index);
            corners[k].at = {penTwips(vertices[2 * n]), penTwips(vertices[2 * n + 1])};
            if (hasUv) corners[k].uv = {uvs[uvStep * n], uvs[uvStep * n + 1]};
            if (hasUv && uvStep == 3) corners[k].depth = uvs[uvStep * n + 2];
        }
        // One with a corner that there is not ends them.
        if (!known) break;
        const auto [a, b, c] = corners;
        const double turn = (b.at.x - a.at.x) * (c.at.y - a.at.y) - (b.at.y - a.at.y) * (c.at.x - a.at.x);
        if ((culling == u"positive" && turn > 0) || (culling == u"negative" && turn < 0)) {
            pieces.skip();
            continue;
        }
        const bool hasPicture = hasUv && fill && fill->kind == swf::FillStyle::Kind::Bitmap;
        if (hasPicture && (a.depth != b.depth || a.depth != c.depth)) {
            // Lines go around the whole of it.
            const int cuts = pieces.cuts();
            const std::optional<swf::LineStyle> line = pen.currentLine();
            pen.lineStyle({});
            // Twice, so that hardly anything shines through between the smooth edges of the parts.
            fillInDepth(vm, pen, *fill, corners, cuts);
            pieces.spend(fillInDepth(vm, pen, *fill, corners, cuts));
            if (!line) continue;
            pen.endFill();
            pen.lineStyle(line);
            outline(pen, corners);
            continue;
        }
        if (hasPicture) {
            if (auto own = stretched(*fill, corners)) pen.beginFill(std::move(*own));
        }
        pieces.skip();
        outline(pen, corners);
    }
    graphics.changed();
}

} // namespace flash::avm2
