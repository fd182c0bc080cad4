#include "flash/render/Canvas.h"

#include "flash/render/Bounds.h"
#include "flash/render/CanvasImpl.h"
#include "flash/render/Compose.h"
#include "flash/render/Pixel.h"
#include "flash/render/Recording.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace flash::render
{

namespace
{

std::size_t bytesOf(const swf::Shape& shape)
{
    std::size_t sum = sizeof(swf::Shape);
    for (const swf::ShapeLayer& layer : shape.layers) {
        sum += sizeof layer + layer.fills.size() * sizeof(swf::FillStyle) +
               layer.lines.size() * sizeof(swf::LineStyle);
        for (const swf::EdgeRun& run : layer.runs) sum += sizeof run + run.edges.size() * sizeof(swf::Edge);
    }
    return sum;
}

} // namespace

Canvas::Canvas(SurfaceView target, Quality quality, RenderCache& cache)
    : m_impl(std::make_unique<Impl>(target, quality, cache))
{
}

Canvas::~Canvas() = default;

void Canvas::setPixelScale(double scale)
{
    if (m_recording) {
        m_recording->setPixelScale(scale);
        return m_recording->add([=](Canvas& to) { to.setPixelScale(scale); });
    }
    m_impl->m_pixelScale = scale;
}

void Canvas::setClip(const IntRect& clip)
{
    if (m_recording) {
        m_recording->setClip(clip);
        return m_recording->add([=](Canvas& to) { to.setClip(clip); });
    }
    m_impl->setClip(clip);
}

IntRect Canvas::clip() const { return m_recording ? m_recording->clip() : m_impl->clip(); }

void Canvas::clear(swf::Rgba color)
{
    if (m_recording) return m_recording->add([=](Canvas& to) { to.clear(color); });
    const IntRect area = clip();
    m_impl->m_isStage = color.a == 255;
    const std::uint32_t pixel = premultiply(color);
    const Target& target = m_impl->m_target;
    const auto width = static_cast<std::size_t>(area.width()),
               height = static_cast<std::size_t>(area.height());
    if (area.width() == target.view.stride && height > 0) {
        fillPixels(target.at(area.left, area.top), width * height, pixel);
        return;
    }
    for (int y = area.top; y < area.bottom; ++y) fillPixels(target.at(area.left, y), width, pixel);
}

void Canvas::clearUnseen(swf::Rgba color)
{
    if (m_recording) return m_recording->add([=](Canvas& to) { to.clearUnseen(color); });
    m_impl->m_isStage = color.a == 255;
}

void Canvas::drawShape(const std::shared_ptr<const swf::Shape>& shape, const swf::Matrix& toDevice,
                       const swf::ColorTransform& color)
{
    if (shape == nullptr) return;
    if (m_recording && m_recording->isFull()) drawKept();
    if (m_recording) return m_recording->add([=](Canvas& to) { to.drawShape(shape, toDevice, color); });
    m_impl->drawShape(*shape, &shape, toDevice, color);
}

void Canvas::drawShape(const swf::Shape& shape, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (m_recording) {
        const auto copy = std::make_shared<const swf::Shape>(shape);
        m_recording->add([=](Canvas& to) { to.drawShape(*copy, toDevice, color); }, bytesOf(shape));
        if (m_recording->isFull()) drawKept();
        return;
    }
    m_impl->drawShape(shape, nullptr, toDevice, color);
}

void Canvas::drawGlyphs(std::span<const GlyphPlacement> glyphs, swf::Rgba color)
{
    if (m_recording) {
        return m_recording->add([copy = std::vector<GlyphPlacement>(glyphs.begin(), glyphs.end()),
                                 color](Canvas& to) { to.drawGlyphs(copy, color); });
    }
    m_impl->drawGlyphs(glyphs, color);
}

void Canvas::drawBitmap(const swf::Bitmap& bitmap, const swf::Matrix& toDevice,
                        const swf::ColorTransform& color, Smoothing smoothing)
{
    if (m_recording) {
        const auto copy = std::make_shared<const swf::Bitmap>(bitmap);
        m_recording->add([=](Canvas& to) { to.drawBitmap(*copy, toDevice, color, smoothing); },
                         bitmap.pixels.size() * sizeof(std::uint32_t));
        if (m_recording->isFull()) drawKept();
        return;
    }
    m_impl->drawPixels(pixelSource(bitmap), toDevice, color, smoothing);
}

void Canvas::drawBitmap(const std::shared_ptr<const swf::Bitmap>& bitmap, const swf::Matrix& toDevice,
                        const swf::ColorTransform& color, Smoothing smoothing)
{
    if (bitmap == nullptr) return;
    if (m_recording)
        return m_recording->add([=](Canvas& to) { to.drawBitmap(*bitmap, toDevice, color, smoothing); });
    m_impl->drawPixels(pixelSource(*bitmap), toDevice, color, smoothing);
}

void Canvas::fillRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return;
    if (m_recording) return m_recording->add([=](Canvas& to) { to.fillRect(twips, toDevice, color); });
    const std::array corners{toDevice.map(twips.xMin, twips.yMin), toDevice.map(twips.xMax, twips.yMin),
                             toDevice.map(twips.xMax, twips.yMax), toDevice.map(twips.xMin, twips.yMax)};
    m_impl->fillPolygon(corners, color);
}

void Canvas::fillBox(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return;
    if (m_recording) return m_recording->add([=](Canvas& to) { to.fillBox(twips, toDevice, color); });
    if (const auto box = Impl::snappedBox(twips, toDevice))
        m_impl->fillDeviceRect(*box, color);
    else
        fillRect(twips, toDevice, color);
}

bool Canvas::buildsMask() const { return m_recording ? m_recording->buildsMask() : m_impl->buildsMask(); }

void Canvas::strokeRect(const swf::Rect& twips, const swf::Matrix& toDevice, swf::Rgba color,
                        LastCorner corner)
{
    if (m_recording)
        return m_recording->add([=](Canvas& to) { to.strokeRect(twips, toDevice, color, corner); });
    m_impl->strokeRect(twips, toDevice, color, corner);
}

void Canvas::strokeInside(swf::Point min, swf::Point max, double width, swf::Rgba color)
{
    if (!(min.x < max.x && min.y < max.y)) return;
    if (m_recording) return m_recording->add([=](Canvas& to) { to.strokeInside(min, max, width, color); });
    const double across = std::min({width, (max.x - min.x) / 2, (max.y - min.y) / 2});
    const double left = min.x + across, right = max.x - across;
    const double top = min.y + across, bottom = max.y - across;
    // Around the outside, across to the inside and around it the other way, and back.
    const std::array corners{min,
                             swf::Point{max.x, min.y},
                             max,
                             swf::Point{min.x, max.y},
                             min,
                             swf::Point{left, top},
                             swf::Point{left, bottom},
                             swf::Point{right, bottom},
                             swf::Point{right, top},
                             swf::Point{left, top}};
    m_impl->fillPolygon(corners, color);
}

void Canvas::invertRect(const swf::Rect& twips, const swf::Matrix& toDevice)
{
    if (twips.isEmpty() || !isUsable(toDevice)) return;
    if (m_recording) return m_recording->add([=](Canvas& to) { to.invertRect(twips, toDevice); });
    // At least a pixel wide, so that a thin caret does not vanish between two.
    if (!Impl::isSquare(toDevice)) {
        swf::Rect line = twips;
        const double pixel = std::ceil(1 / std::hypot(toDevice.a, toDevice.b));
        line.xMax = std::max(line.xMax, line.xMin + static_cast<std::int32_t>(std::min(pixel, 1e6)));
        beginLayer(deviceBounds(line, toDevice));
        fillRect(line, toDevice, {255, 255, 255, 255});
        endLayer(swf::BlendMode::Invert);
        return;
    }
    const swf::Point a = toDevice.map(twips.xMin, twips.yMin), b = toDevice.map(twips.xMax, twips.yMax);
    // As recorded, halves of a pixel count to the left.
    constexpr double kNothing = 1e-3;
    const auto left = static_cast<int>(std::floor(std::clamp(std::min(a.x, b.x), -1e8, 1e8) + kNothing));
    const auto top = static_cast<int>(std::lround(std::clamp(std::min(a.y, b.y), -1e8, 1e8)));
    const auto width = static_cast<int>(std::lround(std::clamp(std::abs(b.x - a.x), 1.0, 1e8)));
    const auto bottom = static_cast<int>(std::lround(std::clamp(std::max(a.y, b.y), -1e8, 1e8)));
    m_impl->invertRect({left, top, left + width, std::max(bottom, top + 1)});
}

std::unique_ptr<Canvas> Canvas::companion(SurfaceView target) const
{
    return std::make_unique<Canvas>(target, m_impl->m_quality, m_impl->m_cache);
}

} // namespace flash::render
