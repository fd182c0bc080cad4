#include "flash/render/Recording.h"

#include "flash/guard/Guard.h"
#include "flash/render/Filters.h"

#include <algorithm>

namespace flash::render
{

IntRect layerBounds(const IntRect& deviceBounds, const IntRect& clip, std::span<const swf::Filter> filters,
                    double pixelScale)
{
    const Growth growth = filterGrowth(filters, pixelScale);
    const IntRect bounds = grown(deviceBounds, growth);
    if (needsWhole(filters)) return bounds;
    // What lies outside the clip is needed as far as the filters carry it inside.
    return intersect(bounds, grown(grown(clip, filterReach(filters, pixelScale)), growth));
}

void Recording::replay(Canvas& canvas) const
{
    for (const Call& call : m_calls) {
        guard::check();
        call(canvas);
    }
}

bool Recording::buildsMask() const
{
    const auto found = std::ranges::find_if(m_open.rbegin(), m_open.rend(),
                                            [](const Open& o) { return o.kind != Kind::Ignored; });
    return found != m_open.rend() && found->kind == Kind::Mask;
}

void Recording::setClip(const IntRect& clip)
{
    m_clip = intersect(clip, m_target);
    m_touched = unite(m_touched, m_clip);
}

void Recording::beginMask(MaskKind kind)
{
    m_open.push_back({kind == MaskKind::Alpha ? Kind::AlphaMask : Kind::Mask, m_clip});
}

void Recording::beginLayer(const IntRect& deviceBounds, std::span<const swf::Filter> filters)
{
    const bool isIgnored = buildsMask();
    m_open.push_back({isIgnored ? Kind::Ignored : Kind::Layer, m_clip});
    if (!isIgnored) m_clip = layerBounds(deviceBounds, m_clip, filters, m_pixelScale);
}

void Recording::end()
{
    if (m_open.empty()) return;
    m_clip = m_open.back().clipBefore;
    m_open.pop_back();
}

} // namespace flash::render
