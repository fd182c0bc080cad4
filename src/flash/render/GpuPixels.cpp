#include "flash/render/GpuPixels.h"

#include "flash/guard/Guard.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace flash::render
{

namespace
{

constexpr int kAcross = static_cast<int>(kGpuLanesAcross), kDown = static_cast<int>(kGpuLanes) / kAcross;
/// Corners lie on a grid within the pixel.
constexpr double kGrid = 256;

/// Where samples lie in a pixel, on that grid, from its middle.
struct Place {
    int x, y;
};
constexpr std::array<Place, 4> kFour = {{{-32, -96}, {96, -32}, {-96, 32}, {32, 96}}};
constexpr std::array<Place, 4> kOne = {};

int laneX(std::size_t lane) { return static_cast<int>(lane % kGpuLanesAcross); }
int laneY(std::size_t lane) { return static_cast<int>(lane / kGpuLanesAcross); }

template <class T>
bool compares(GpuCompare how, T a, T b)
{
    switch (how) {
    case GpuCompare::Always: return true;
    case GpuCompare::Never: return false;
    case GpuCompare::Less: return a < b;
    case GpuCompare::LessEqual: return a <= b;
    case GpuCompare::Equal: return a == b;
    case GpuCompare::GreaterEqual: return a >= b;
    case GpuCompare::Greater: return a > b;
    case GpuCompare::NotEqual: return a != b;
    }
    return true;
}

[[gnu::always_inline]] inline void spreadAlpha(GpuColor& to, const GpuColor& color)
{
    to = __builtin_shufflevector(color, color, 3, 3, 3, 3);
}

/// How much of a colour counts.
[[gnu::always_inline]] inline void weigh(GpuColor& to, GpuBlend how, const GpuColor& source,
                                         const GpuColor& destination)
{
    const GpuColor none{};
    switch (how) {
    case GpuBlend::Zero: to = none; return;
    case GpuBlend::One: to = none + 1; return;
    case GpuBlend::SourceColor: to = source; return;
    case GpuBlend::OneMinusSourceColor: to = 1 - source; return;
    case GpuBlend::SourceAlpha: spreadAlpha(to, source); return;
    case GpuBlend::OneMinusSourceAlpha:
        spreadAlpha(to, source);
        to = 1 - to;
        return;
    case GpuBlend::DestinationAlpha: spreadAlpha(to, destination); return;
    case GpuBlend::OneMinusDestinationAlpha:
        spreadAlpha(to, destination);
        to = 1 - to;
        return;
    case GpuBlend::DestinationColor: to = destination; return;
    case GpuBlend::OneMinusDestinationColor: to = 1 - destination; return;
    }
    to = none;
}

/// Between 0 and 1, what is no number being 0.
[[gnu::always_inline]] inline void bound(GpuColor& color)
{
    const GpuColor none{}, most = none + 1;
    color = color > none ? color : none;
    color = color < most ? color : most;
}

} // namespace

/// A triangle on the picture.
struct GpuPixels::Setup {
    std::array<Edge, 3> edges;
    std::array<std::int64_t, 3> least{}, most{}; ///< of each edge over a block and a pixel around it
    Plane depth, inverseW;
    std::array<std::array<Plane, 4>, GpuProgram::kVaryings> varyings;
    std::size_t face = 0; ///< 0: its corners run clockwise
};

GpuPixels::GpuPixels(const GpuDraw& draw, const GpuState& state, const GpuTarget& target)
    : m_draw(draw), m_state(state), m_target(target), m_clip{0, 0, target.width, target.height},
      m_lanes(*draw.fragment, *draw.fragmentConstants, draw.samplers),
      m_testsFirst(!draw.fragment->kills && !draw.fragment->writesDepth), m_usesStencil(false),
      m_cost(static_cast<std::uint32_t>(1 + draw.fragment->steps.size() / 8))
{
    if (state.scissor) m_clip = intersect(m_clip, *state.scissor);
    const auto acts = [](const GpuStencil& s) {
        return s.compare != GpuCompare::Always || s.pass != GpuStencilAction::Keep ||
               s.depthFails != GpuStencilAction::Keep || s.fails != GpuStencilAction::Keep;
    };
    m_usesStencil = !target.stencils.empty() && (acts(state.stencil[0]) || acts(state.stencil[1]));
}

std::size_t GpuPixels::at(int x, int y, std::size_t lane) const
{
    return m_target.samples *
           (static_cast<std::size_t>(y + laneY(lane)) * static_cast<std::size_t>(m_target.width) +
            static_cast<std::size_t>(x + laneX(lane)));
}

void GpuPixels::triangle(const GpuCorner& a, const GpuCorner& b, const GpuCorner& c)
{
    std::array<const GpuCorner*, 3> corners = {&a, &b, &c};
    std::array<std::int64_t, 3> x{}, y{};
    for (std::size_t i = 0; i < 3; ++i) {
        // What was cut off between numbers near the largest ones may be anywhere, or none.
        constexpr double kFar = 16;
        const auto& p = corners[i]->position;
        const double across = static_cast<double>(p[0]) / static_cast<double>(p[3]);
        const double up = static_cast<double>(p[1]) / static_cast<double>(p[3]);
        if (!(std::abs(across) <= kFar && std::abs(up) <= kFar)) return;
        x[i] = std::llround((across + 1) / 2 * m_target.width * kGrid);
        y[i] = std::llround((1 - up) / 2 * m_target.height * kGrid);
    }
    std::int64_t area = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
    if (area == 0) return;
    Setup setup;
    setup.face = area > 0 ? 0 : 1;
    if (setup.face == 0 ? m_state.cullsClockwise : m_state.cullsOthers) return;
    if (area < 0) {
        std::swap(corners[1], corners[2]);
        std::swap(x[1], x[2]);
        std::swap(y[1], y[2]);
        area = -area;
    }
    const auto [left, right] = std::minmax({x[0], x[1], x[2]});
    const auto [top, bottom] = std::minmax({y[0], y[1], y[2]});
    constexpr auto kUnit = static_cast<std::int64_t>(kGrid);
    const IntRect box =
        intersect(m_clip, {static_cast<int>(left / kUnit) - 1, static_cast<int>(top / kUnit) - 1,
                           static_cast<int>(right / kUnit) + 2, static_cast<int>(bottom / kUnit) + 2});
    if (box.isEmpty()) return;
    for (std::size_t i = 0; i < 3; ++i) {
        // The edge across from corner i.
        const std::size_t p = (i + 1) % 3, q = (i + 2) % 3;
        const std::int64_t dx = x[q] - x[p], dy = y[q] - y[p];
        Edge& edge = setup.edges[i];
        edge.dx = -dy * kUnit;
        edge.dy = dx * kUnit;
        edge.value = dx * (kUnit / 2 - y[p]) - dy * (kUnit / 2 - x[p]);
        // What lies on an edge belongs to the triangle below it or to the right.
        if (!(dy < 0 || (dy == 0 && dx > 0))) --edge.value;
        // Samples lie beside their pixel's middle.
        const auto [leastX, mostX] = std::minmax({-edge.dx, edge.dx * kAcross});
        const auto [leastY, mostY] = std::minmax({-edge.dy, edge.dy * kDown});
        setup.least[i] = leastX + leastY;
        setup.most[i] = mostX + mostY;
    }
    const auto plane = [&](double f0, double f1, double f2) {
        Plane result;
        const auto whole = static_cast<double>(area);
        const double x1 = static_cast<double>(x[1] - x[0]), y1 = static_cast<double>(y[1] - y[0]);
        const double x2 = static_cast<double>(x[2] - x[0]), y2 = static_cast<double>(y[2] - y[0]);
        result.dx = ((f1 - f0) * y2 - (f2 - f0) * y1) / whole * kGrid;
        result.dy = ((f2 - f0) * x1 - (f1 - f0) * x2) / whole * kGrid;
        result.value = f0 + result.dx * (0.5 - static_cast<double>(x[0]) / kGrid) +
                       result.dy * (0.5 - static_cast<double>(y[0]) / kGrid);
        return result;
    };
    std::array<double, 3> inverse{};
    for (std::size_t i = 0; i < 3; ++i) inverse[i] = 1.0 / static_cast<double>(corners[i]->position[3]);
    const auto weighted = [&](auto&& number) {
        return plane(number(*corners[0]) * inverse[0], number(*corners[1]) * inverse[1],
                     number(*corners[2]) * inverse[2]);
    };
    setup.inverseW = plane(inverse[0], inverse[1], inverse[2]);
    setup.depth = weighted([](const GpuCorner& corner) { return static_cast<double>(corner.position[2]); });
    for (std::size_t v = 0; v < GpuProgram::kVaryings; ++v) {
        if (!(m_draw.fragment->varyings >> v & 1U)) continue;
        for (std::size_t k = 0; k < 4; ++k)
            setup.varyings[v][k] =
                weighted([&](const GpuCorner& corner) { return static_cast<double>(corner.varyings[v][k]); });
    }
    rows(setup, box);
}

void GpuPixels::rows(const Setup& setup, const IntRect& box)
{
    Coverage whole{};
    for (std::size_t s = 0; s < m_target.samples; ++s) whole[s] = kAllGpuLanes;
    for (int row = box.top & ~(kDown - 1); row < box.bottom; row += kDown) {
        guard::check();
        const bool isCutAcross = row < box.top || row + kDown > box.bottom;
        for (int column = box.left & ~(kAcross - 1); column < box.right; column += kAcross) {
            std::array<std::int64_t, 3> edges;
            bool isOutside = false;
            bool isInside = !isCutAcross && column >= box.left && column + kAcross <= box.right;
            for (std::size_t i = 0; i < 3; ++i) {
                edges[i] = setup.edges[i].value + setup.edges[i].dx * column + setup.edges[i].dy * row;
                isOutside = isOutside || edges[i] + setup.most[i] < 0;
                isInside = isInside && edges[i] + setup.least[i] >= 0;
            }
            if (isOutside) continue;
            const Coverage covered = isInside ? whole : coverage(setup, box, column, row, edges);
            if ((covered[0] | covered[1] | covered[2] | covered[3]) != 0) block(setup, column, row, covered);
        }
    }
}

/// @param edges at the middle of the block's first pixel
GpuPixels::Coverage GpuPixels::coverage(const Setup& setup, const IntRect& box, int x, int y,
                                        const std::array<std::int64_t, 3>& edges) const
{
    // Lanes whose pixels are in the box.
    std::uint32_t lanes = 0;
    for (int row = 0; row < kDown; ++row) {
        if (y + row < box.top || y + row >= box.bottom) continue;
        const int from = std::max(box.left - x, 0), to = std::min(box.right - x, kAcross);
        lanes |= ((1U << to) - (1U << from)) << row * kAcross;
    }
    Coverage covered{};
    const auto& places = m_target.samples > 1 ? kFour : kOne;
    for (std::size_t s = 0; s < m_target.samples; ++s) {
        // A sign bit where an edge leaves the sample outside.
        std::array<std::int64_t, kGpuLanes> outside{};
        for (std::size_t i = 0; i < 3; ++i) {
            constexpr auto kUnit = static_cast<std::int64_t>(kGrid);
            const Edge& edge = setup.edges[i];
            const std::int64_t first =
                edges[i] + edge.dx / kUnit * places[s].x + edge.dy / kUnit * places[s].y;
            for (std::size_t lane = 0; lane < kGpuLanes; ++lane)
                outside[lane] |= first + edge.dx * laneX(lane) + edge.dy * laneY(lane);
        }
        for (std::size_t lane = 0; lane < kGpuLanes; ++lane)
            covered[s] |= static_cast<std::uint32_t>(outside[lane] >= 0) << lane;
        covered[s] &= lanes;
    }
    return covered;
}

void GpuPixels::block(const Setup& setup, int x, int y, Coverage covered)
{
    const auto isNone = [&covered] { return (covered[0] | covered[1] | covered[2] | covered[3]) == 0; };
    if (m_testsFirst) {
        covered = test(setup, x, y, covered);
        if (isNone()) return;
    }
    guard::check(m_cost);
    shade(setup, x, y);
    if (!m_testsFirst) {
        for (std::uint32_t& lanes : covered) lanes &= ~m_lanes.killed;
        covered = test(setup, x, y, covered);
    }
    if (!isNone()) blend(x, y, covered);
}

void GpuPixels::shade(const Setup& setup, int x, int y)
{
    // Lanes are counted by row and column, which the compiler takes several of at once.
    const auto eachLane = [](auto work) {
        for (int row = 0; row < kDown; ++row) {
            for (int column = 0; column < kAcross; ++column)
                work(static_cast<std::size_t>(row * kAcross + column), column, row);
        }
    };
    GpuLane w;
    eachLane([&](std::size_t i, int column, int row) {
        w[i] = static_cast<float>(
            1 / (setup.inverseW.value + setup.inverseW.dx * (x + column) + setup.inverseW.dy * (y + row)));
    });
    for (std::size_t v = 0; v < GpuProgram::kVaryings; ++v) {
        if (!(m_draw.fragment->varyings >> v & 1U)) continue;
        for (std::size_t k = 0; k < 4; ++k) {
            const Plane& plane = setup.varyings[v][k];
            const double first = plane.value + plane.dx * x + plane.dy * y;
            GpuLane& lane = m_lanes.varyings[v][k];
            eachLane([&](std::size_t i, int column, int row) {
                lane[i] = static_cast<float>(first + plane.dx * column + plane.dy * row) * w[i];
            });
        }
    }
    m_lanes.run();
}

std::uint8_t GpuPixels::stenciled(GpuStencilAction action, std::uint8_t now) const
{
    switch (action) {
    case GpuStencilAction::Keep: return now;
    case GpuStencilAction::Zero: return 0;
    case GpuStencilAction::Set: return m_state.stencilReference;
    case GpuStencilAction::IncrementSaturate: return now == 255 ? now : static_cast<std::uint8_t>(now + 1);
    case GpuStencilAction::IncrementWrap: return static_cast<std::uint8_t>(now + 1);
    case GpuStencilAction::DecrementSaturate: return now == 0 ? now : static_cast<std::uint8_t>(now - 1);
    case GpuStencilAction::DecrementWrap: return static_cast<std::uint8_t>(now - 1);
    case GpuStencilAction::Invert: return static_cast<std::uint8_t>(~now);
    }
    return now;
}

/// Of one sample, whose marks change by it.
bool GpuPixels::passes(std::size_t face, std::size_t sample, float depth)
{
    const GpuStencil& stencil = m_state.stencil[face];
    const auto act = [&](GpuStencilAction action) {
        if (!m_usesStencil) return;
        std::uint8_t& now = m_target.stencils[sample];
        const std::uint8_t mask = m_state.stencilWriteMask;
        now = static_cast<std::uint8_t>((now & ~mask) | (stenciled(action, now) & mask));
    };
    if (m_usesStencil && !compares<int>(stencil.compare, m_state.stencilReference & m_state.stencilReadMask,
                                        m_target.stencils[sample] & m_state.stencilReadMask)) {
        act(stencil.fails);
        return false;
    }
    const bool usesDepth = !m_target.depths.empty();
    if (usesDepth && !compares(m_state.depthCompare, depth, m_target.depths[sample])) {
        act(stencil.depthFails);
        return false;
    }
    act(stencil.pass);
    if (usesDepth && m_state.writesDepth) m_target.depths[sample] = depth;
    return true;
}

GpuPixels::Coverage GpuPixels::test(const Setup& setup, int x, int y, Coverage covered)
{
    const auto& places = m_target.samples > 1 ? kFour : kOne;
    for (std::size_t s = 0; s < m_target.samples; ++s) {
        for (std::uint32_t left = covered[s]; left != 0; left &= left - 1) {
            const auto lane = static_cast<std::size_t>(std::countr_zero(left));
            const double px = x + laneX(lane) + places[s].x / kGrid,
                         py = y + laneY(lane) + places[s].y / kGrid;
            const float depth =
                m_draw.fragment->writesDepth
                    ? m_lanes.depth[lane]
                    : static_cast<float>(setup.depth.value + setup.depth.dx * px + setup.depth.dy * py);
            if (!passes(setup.face, at(x, y, lane) + s, depth)) covered[s] &= ~(1U << lane);
        }
    }
    return covered;
}

std::uint32_t GpuPixels::blended(const GpuColor& source, std::uint32_t below) const
{
    GpuColor mixed = source;
    if (m_state.source != GpuBlend::One || m_state.destination != GpuBlend::Zero) {
        GpuColor under, share, shareUnder;
        spread(under, below);
        weigh(share, m_state.source, source, under);
        weigh(shareUnder, m_state.destination, source, under);
        mixed = source * share + under * shareUnder;
        bound(mixed);
    }
    return (below & ~m_state.colorMask) | (gathered(mixed) & m_state.colorMask);
}

void GpuPixels::blend(int x, int y, const Coverage& covered)
{
    for (std::uint32_t left = covered[0] | covered[1] | covered[2] | covered[3]; left != 0;
         left &= left - 1) {
        const auto lane = static_cast<std::size_t>(std::countr_zero(left));
        const GpuRegister& out = m_lanes.output;
        GpuColor source = {out[2][lane], out[1][lane], out[0][lane], out[3][lane]};
        bound(source);
        const std::size_t first = at(x, y, lane);
        std::uint32_t below = 0, result = 0;
        bool isKnown = false; // samples of a pixel mostly lie on the same
        for (std::size_t s = 0; s < m_target.samples; ++s) {
            if (!(covered[s] >> lane & 1U)) continue;
            std::uint32_t& color = m_target.colors[first + s];
            if (!isKnown || color != below) result = blended(source, below = color);
            isKnown = true;
            color = result;
        }
    }
}

} // namespace flash::render
