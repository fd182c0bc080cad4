#include "flash/render/GpuRaster.h"

#include "flash/guard/Guard.h"
#include "flash/render/GpuPixels.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace flash::render
{

namespace
{

std::array<float, 4> read(const GpuStream& stream, std::size_t corner)
{
    std::array<float, 4> result = {0, 0, 0, 1};
    const std::size_t from = corner * stream.stride + stream.offset;
    const auto number = [&](std::size_t i) {
        return from + i < stream.words.size() ? std::bit_cast<float>(stream.words[from + i]) : 0.0F;
    };
    switch (stream.format) {
    case GpuStream::Format::None: break;
    case GpuStream::Format::Bytes4: {
        const std::uint32_t word = from < stream.words.size() ? stream.words[from] : 0;
        for (std::size_t i = 0; i < 4; ++i) result[i] = static_cast<float>(word >> 8 * i & 0xFFU) / 255;
        break;
    }
    default: {
        const auto count = static_cast<std::size_t>(stream.format);
        for (std::size_t i = 0; i < count; ++i) result[i] = number(i);
    }
    }
    return result;
}

/// Corners as the vertex program puts them out, each run once however many triangles meet in it.
class Corners
{
public:
    explicit Corners(const GpuDraw& draw) : m_draw(draw)
    {
        std::vector<std::uint16_t> wanted(draw.indices.begin(), draw.indices.end());
        std::ranges::sort(wanted);
        wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
        m_corners.resize(wanted.size());
        GpuLanes lanes(*draw.vertex, *draw.vertexConstants, {});
        for (std::size_t from = 0; from < wanted.size(); from += kGpuLanes) {
            guard::check(static_cast<std::uint32_t>(1 + draw.vertex->steps.size() / 8));
            const std::size_t count = std::min(kGpuLanes, wanted.size() - from);
            run(lanes, std::span(wanted).subspan(from, count), from);
        }
        m_wanted = std::move(wanted);
    }
    [[nodiscard]] const GpuCorner& operator[](std::uint16_t index) const
    {
        const auto found = std::ranges::lower_bound(m_wanted, index);
        return m_corners[static_cast<std::size_t>(found - m_wanted.begin())];
    }

private:
    void run(GpuLanes& lanes, std::span<const std::uint16_t> corners, std::size_t to)
    {
        for (std::size_t a = 0; a < GpuProgram::kAttributes; ++a) {
            if (!(m_draw.vertex->attributes >> a & 1U)) continue;
            for (std::size_t i = 0; i < corners.size(); ++i) {
                const auto value = read(m_draw.streams[a], corners[i]);
                for (std::size_t k = 0; k < 4; ++k) lanes.attributes[a][k][i] = value[k];
            }
        }
        lanes.run();
        for (std::size_t i = 0; i < corners.size(); ++i) {
            GpuCorner& corner = m_corners[to + i];
            for (std::size_t k = 0; k < 4; ++k) corner.position[k] = lanes.output[k][i];
            for (std::size_t v = 0; v < GpuProgram::kVaryings; ++v) {
                if (!(m_draw.vertex->varyings >> v & 1U)) continue;
                for (std::size_t k = 0; k < 4; ++k) corner.varyings[v][k] = lanes.varyings[v][k][i];
            }
        }
    }
    const GpuDraw& m_draw;
    std::vector<std::uint16_t> m_wanted;
    std::vector<GpuCorner> m_corners;
};

/// How far within each border of what is drawn a corner lies; negative outside.
using Plane = std::array<float, 5>; ///< factors of x, y, z, w, and what is taken off
/// Pictures are drawn from corners somewhat outside of them, which costs nothing; far ones are cut off.
constexpr float kAround = 8, kNearest = 1e-6F;
constexpr Plane kPlanes[] = {
    {0, 0, 0, 1, kNearest}, {0, 0, 1, 0, 0},       {0, 0, -1, 1, 0},       {1, 0, 0, kAround, 0},
    {-1, 0, 0, kAround, 0}, {0, 1, 0, kAround, 0}, {0, -1, 0, kAround, 0},
};
float distance(const GpuCorner& corner, const Plane& plane)
{
    const auto& p = corner.position;
    return p[0] * plane[0] + p[1] * plane[1] + p[2] * plane[2] + p[3] * plane[3] - plane[4];
}

GpuCorner between(const GpuCorner& a, const GpuCorner& b, float share)
{
    GpuCorner result;
    const auto mix = [share](const auto& from, const auto& to, auto& into) {
        for (std::size_t k = 0; k < 4; ++k) into[k] = from[k] + (to[k] - from[k]) * share;
    };
    mix(a.position, b.position, result.position);
    for (std::size_t v = 0; v < GpuProgram::kVaryings; ++v)
        mix(a.varyings[v], b.varyings[v], result.varyings[v]);
    return result;
}

void cut(std::vector<GpuCorner>& polygon, std::vector<GpuCorner>& kept, const Plane& plane)
{
    kept.clear();
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const GpuCorner &a = polygon[i], &b = polygon[(i + 1) % polygon.size()];
        const float da = distance(a, plane), db = distance(b, plane);
        if (da >= 0) kept.push_back(a);
        // From inside to outside, so that two triangles get the same corner on the edge they share.
        if (da >= 0 && db < 0) kept.push_back(between(a, b, da / (da - db)));
        if (da < 0 && db >= 0) kept.push_back(between(b, a, db / (db - da)));
    }
    polygon.swap(kept);
}

bool isFinite(const GpuCorner& corner)
{
    return std::ranges::all_of(corner.position, [](float number) { return std::isfinite(number); });
}

} // namespace

void drawGpuTriangles(const GpuDraw& draw, const GpuState& state, const GpuTarget& target)
{
    const Corners corners(draw);
    GpuPixels pixels(draw, state, target);
    std::vector<GpuCorner> polygon, kept;
    for (std::size_t i = 0; i + 2 < draw.indices.size(); i += 3) {
        guard::check();
        const std::array<const GpuCorner*, 3> t = {&corners[draw.indices[i]], &corners[draw.indices[i + 1]],
                                                   &corners[draw.indices[i + 2]]};
        bool isWhole = true, isAway = false, isNumber = true;
        for (const GpuCorner* corner : t) isNumber = isNumber && isFinite(*corner);
        if (!isNumber) continue;
        for (const Plane& plane : kPlanes) {
            int outside = 0;
            for (const GpuCorner* corner : t) outside += distance(*corner, plane) < 0 ? 1 : 0;
            isWhole = isWhole && outside == 0;
            isAway = isAway || outside == 3;
        }
        if (isAway) continue;
        if (isWhole) {
            pixels.triangle(*t[0], *t[1], *t[2]);
            continue;
        }
        polygon = {*t[0], *t[1], *t[2]};
        for (const Plane& plane : kPlanes) cut(polygon, kept, plane);
        for (std::size_t k = 2; k < polygon.size(); ++k)
            pixels.triangle(polygon[0], polygon[k - 1], polygon[k]);
    }
}

} // namespace flash::render
