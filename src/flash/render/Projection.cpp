#include "flash/render/Projection.h"

#include "flash/guard/Guard.h"

#include <algorithm>
#include <cmath>

namespace flash::render
{
namespace
{

/// Of the distance from the eye to the plane of depth 0: what is closer is not seen.
constexpr double kNear = 1.0 / 64;

std::uint32_t between(std::uint32_t from, std::uint32_t to, std::uint32_t part)
{
    const std::uint32_t rest = 256 - part;
    const std::uint32_t low = ((from & 0x00FF00FF) * rest + (to & 0x00FF00FF) * part + 0x00800080) >> 8;
    const std::uint32_t high = (from >> 8 & 0x00FF00FF) * rest + (to >> 8 & 0x00FF00FF) * part + 0x00800080;
    return (low & 0x00FF00FF) | (high & 0xFF00FF00);
}

} // namespace

std::vector<swf::Point> seenCorners(const swf::Rect& rect, const swf::Homography& toDevice)
{
    std::vector<swf::Point> seen;
    if (rect.isEmpty()) return seen;
    const double left = rect.xMin, right = rect.xMax, top = rect.yMin, bottom = rect.yMax;
    const swf::Point corners[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    const auto nearness = [&](swf::Point p) { return toDevice.map(p.x, p.y)[2] - kNear; };
    for (std::size_t i = 0; i < 4; ++i) {
        const swf::Point from = corners[i], to = corners[(i + 1) % 4];
        const double a = nearness(from), b = nearness(to);
        if (a >= 0) seen.push_back(from);
        if ((a >= 0) != (b >= 0)) {
            const double part = a / (a - b);
            seen.push_back({std::lerp(from.x, to.x, part), std::lerp(from.y, to.y, part)});
        }
    }
    return seen;
}

IntRect projectedBounds(const std::vector<swf::Point>& seenCorners, const swf::Homography& toDevice)
{
    IntRect bounds;
    constexpr double kFar = 1 << 28;
    for (const swf::Point corner : seenCorners) {
        const auto [x, y, w] = toDevice.map(corner.x, corner.y);
        if (!std::isfinite(x / w) || !std::isfinite(y / w)) return {};
        const int left = static_cast<int>(std::floor(std::clamp(x / w, -kFar, kFar))),
                  top = static_cast<int>(std::floor(std::clamp(y / w, -kFar, kFar)));
        bounds = unite(bounds, {left - 1, top - 1, left + 2, top + 2});
    }
    return bounds;
}

Stretch stretchAt(const std::vector<swf::Point>& seenCorners, const swf::Homography& toDevice)
{
    Stretch most;
    for (const swf::Point corner : seenCorners) {
        const swf::Matrix tangent = toDevice.tangentAt(corner.x, corner.y);
        most.x = std::max(most.x, std::hypot(tangent.a, tangent.b));
        most.y = std::max(most.y, std::hypot(tangent.c, tangent.d));
    }
    return most;
}

void project(const Surface& picture, const swf::Homography& fromDevice, const IntRect& area,
             SurfaceView target)
{
    const int width = picture.width(), height = picture.height();
    const auto pixel = [&](int x, int y) {
        return x < 0 || y < 0 || x >= width || y >= height ? 0U : picture.pixel(x, y);
    };
    for (int y = 0; y < target.height; ++y) {
        guard::check(static_cast<std::uint32_t>(1 + target.width / 64));
        std::uint32_t* row = target.row(y);
        auto [u, v, w] = fromDevice.map(area.left + 0.5, area.top + y + 0.5);
        for (int x = 0; x < target.width; ++x) {
            if (w > 0) {
                const double across = u / w - 0.5, down = v / w - 0.5;
                if (across > -1 && down > -1 && across < width && down < height) {
                    constexpr double kParts = 256;
                    const int column = static_cast<int>(std::floor(across * kParts)),
                              line = static_cast<int>(std::floor(down * kParts));
                    const int left = column >> 8, top = line >> 8;
                    const auto partX = static_cast<std::uint32_t>(column & 0xFF),
                               partY = static_cast<std::uint32_t>(line & 0xFF);
                    row[x] = between(between(pixel(left, top), pixel(left + 1, top), partX),
                                     between(pixel(left, top + 1), pixel(left + 1, top + 1), partX), partY);
                }
            }
            u += fromDevice.m[0];
            v += fromDevice.m[3];
            w += fromDevice.m[6];
        }
    }
}

} // namespace flash::render
