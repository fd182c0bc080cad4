#include "flash/render/BlendModes.h"
#include "flash/render/Bounds.h"
#include "flash/render/CanvasImpl.h"
#include "flash/render/Pixel.h"
#include "flash/render/Stroker.h"

#include <algorithm>
#include <array>
#include <cmath>

// Rectangles: the ground, border and caret of text fields.
namespace flash::render
{

void Canvas::Impl::fillPolygon(std::span<const swf::Point> corners, swf::Rgba color)
{
    setSingleStyle({premultiply(color), nullptr});
    m_drawer.polygon(destination(), corners);
}

bool Canvas::Impl::isSquare(const swf::Matrix& m)
{
    // What sines and cosines leave of right angles.
    constexpr double kNothing = 1e-6;
    const bool straight = std::abs(m.b) < kNothing && std::abs(m.c) < kNothing;
    const bool turned = std::abs(m.a) < kNothing && std::abs(m.d) < kNothing;
    return straight || turned;
}

std::optional<IntRect> Canvas::Impl::snappedBox(const swf::Rect& twips, const swf::Matrix& m)
{
    if (!isSquare(m)) return {};
    const swf::Point a = m.map(twips.xMin, twips.yMin), b = m.map(twips.xMax, twips.yMax);
    // Place and size are rounded each by itself, so that a field keeps its size wherever it stands; halves go
    // to the even number.
    const auto rounded = [](double v) {
        constexpr double kFar = 1e8;
        return static_cast<int>(std::nearbyint(std::clamp(v, -kFar, kFar)));
    };
    const int left = rounded(std::min(a.x, b.x)), top = rounded(std::min(a.y, b.y));
    return IntRect{left, top, left + rounded(std::abs(b.x - a.x)), top + rounded(std::abs(b.y - a.y))};
}

void Canvas::Impl::fillDeviceRect(const IntRect& rect, swf::Rgba color)
{
    if (rect.isEmpty()) return;
    const double left = rect.left, top = rect.top, right = rect.right, bottom = rect.bottom;
    const std::array<swf::Point, 4> corners{
        swf::Point{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    fillPolygon(corners, color);
}

void Canvas::Impl::strokeRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color,
                              LastCorner corner)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return;
    if (const auto box = snappedBox(twips, toDevice)) {
        fillDeviceRect({box->left, box->top, box->right + 1, box->top + 1}, color);
        fillDeviceRect({box->left, box->top + 1, box->left + 1, box->bottom + 1}, color);
        fillDeviceRect({box->right, box->top + 1, box->right + 1, box->bottom}, color);
        fillDeviceRect({box->left + 1, box->bottom, box->right, box->bottom + 1}, color);
        if (corner == LastCorner::Open) return;
        if (corner == LastCorner::InPart) {
            constexpr std::uint32_t kCovered = 10, kSamples = 16;
            color.a = static_cast<std::uint8_t>(color.a * kCovered / kSamples);
        }
        fillDeviceRect({box->right, box->bottom, box->right + 1, box->bottom + 1}, color);
        return;
    }
    std::array<StrokePoint, 5> path;
    const std::array corners{toDevice.map(twips.xMin, twips.yMin), toDevice.map(twips.xMax, twips.yMin),
                             toDevice.map(twips.xMax, twips.yMax), toDevice.map(twips.xMin, twips.yMax)};
    for (std::size_t i = 0; i < path.size(); ++i) {
        const swf::Point& corner = corners[i % corners.size()];
        path[i].at = {static_cast<float>(corner.x), static_cast<float>(corner.y)};
    }
    swf::LineStyle style;
    style.join = swf::LineStyle::Join::Miter;
    StrokeOutline outline;
    addStroke(outline, path, style, 1);
    setSingleStyle({premultiply(color), nullptr});
    m_drawer.stroke(destination(), outline, {});
}

void Canvas::Impl::invertRect(const IntRect& rect)
{
    const Destination to = destination();
    if (to.building != nullptr) return;
    const IntRect area = intersect(to.clip, rect);
    const std::vector<std::uint32_t> white(static_cast<std::size_t>(area.width()), 0xFFFFFFFF);
    for (int y = area.top; y < area.bottom; ++y)
        blendRow(swf::BlendMode::Invert, to.target.at(area.left, y), white.data(),
                 to.mask == nullptr ? nullptr : to.mask->at(area.left, y), white.size());
}

} // namespace flash::render
