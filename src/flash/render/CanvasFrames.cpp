#include "flash/render/Bands.h"
#include "flash/render/CanvasImpl.h"
#include "flash/render/Recording.h"

#include <limits>

// Frames as a whole, and the brackets within them: masks and layers.
namespace flash::render
{

void Canvas::beginFrame()
{
    Bands* bands = m_impl->m_cache.bands();
    if (bands == nullptr) return;
    if (bands->isWorthIt())
        m_recording = std::make_unique<Recording>(m_impl->m_target.bounds());
    else
        m_frameStart = bands->start();
}

void Canvas::endFrame()
{
    Bands* bands = m_impl->m_cache.bands();
    if (m_frameStart && bands != nullptr) bands->noteFrame(*m_frameStart);
    m_frameStart.reset();
    if (m_recording == nullptr || bands == nullptr) return;
    const std::unique_ptr<Recording> recording = std::move(m_recording);
    const IntRect rows = recording->touched().isEmpty() ? m_impl->m_target.bounds() : recording->touched();
    const int border = bands->divide(rows.top, rows.bottom);
    const auto draw = [&](RenderCache& cache, int top, int bottom) {
        Canvas half(m_impl->m_target.view, m_impl->m_quality, cache);
        half.m_impl->setBand(top, bottom);
        recording->replay(half);
    };
    using Rows = std::numeric_limits<int>;
    bands->draw([&] { draw(m_impl->m_cache, Rows::min(), border); },
                [&] { draw(bands->lowerCache(), border, Rows::max()); });
}

/// All that was put off, in one piece, and what comes after it at once.
void Canvas::drawKept()
{
    if (const Bands* bands = m_impl->m_cache.bands()) m_frameStart = bands->start();
    const std::unique_ptr<Recording> recording = std::move(m_recording);
    recording->replay(*this);
}

void Canvas::beginMask(MaskKind kind)
{
    if (m_recording) {
        m_recording->beginMask(kind);
        return m_recording->add([=](Canvas& to) { to.beginMask(kind); });
    }
    m_impl->beginMask(kind);
}

void Canvas::endMask()
{
    if (m_recording) {
        m_recording->end();
        return m_recording->add([](Canvas& to) { to.endMask(); });
    }
    m_impl->endMask();
}

void Canvas::popMask()
{
    if (m_recording) return m_recording->add([](Canvas& to) { to.popMask(); });
    m_impl->popMask();
}

void Canvas::beginLayer(const IntRect& deviceBounds, std::span<const swf::Filter> filters)
{
    if (m_recording) {
        m_recording->beginLayer(deviceBounds, filters);
        return m_recording->add(
            [deviceBounds, copy = std::vector<swf::Filter>(filters.begin(), filters.end())](Canvas& to) {
                to.beginLayer(deviceBounds, copy);
            });
    }
    m_impl->beginLayer(deviceBounds, filters);
}

void Canvas::endLayer(swf::BlendMode blend, const swf::ColorTransform& color,
                      std::span<const swf::Filter> filters)
{
    if (m_recording) {
        m_recording->end();
        return m_recording->add(
            [blend, color, copy = std::vector<swf::Filter>(filters.begin(), filters.end())](Canvas& to) {
                to.endLayer(blend, color, copy);
            });
    }
    m_impl->endLayer(blend, color, filters);
}

} // namespace flash::render
