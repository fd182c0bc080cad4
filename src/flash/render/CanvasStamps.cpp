#include "flash/render/CanvasImpl.h"

#include <algorithm>
#include <bit>
#include <cmath>

// Shapes that are drawn again as they were, or moved: scan conversion is done once for each place within a
// pixel where it makes a difference.
namespace flash::render
{
namespace
{

constexpr std::size_t kMostLayers = 16;
// Where the coordinates of pixels are whole numbers with room for fractions.
constexpr double kFar = 1e6;

IntRect moved(const IntRect& r, int dx, int dy)
{
    return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
}

std::uint64_t mixed(std::uint64_t hash, const IntRect& r)
{
    for (const int value : {r.left, r.top, r.right, r.bottom})
        hash = (hash ^ static_cast<std::uint32_t>(value)) * 0x100000001B3U;
    return hash;
}

} // namespace

Canvas::Impl::WholePixels Canvas::Impl::wholePixels(const swf::Matrix& m, int steps)
{
    WholePixels result;
    if (!(std::abs(m.tx) < kFar && std::abs(m.ty) < kFar)) return result;
    const auto split = [steps](double value, int& left) {
        const auto units = static_cast<int>(std::lrint(value * steps));
        left = units & (steps - 1);
        return (units - left) / steps;
    };
    result.dx = split(m.tx, result.stepsX);
    result.dy = split(m.ty, result.stepsY);
    result.isNear = true;
    return result;
}

std::shared_ptr<const StampedShape> Canvas::Impl::stampsOf(const std::shared_ptr<const swf::Shape>& shape,
                                                           const FlatShape& flat, const StrokedShape* strokes,
                                                           const Destination& to, const swf::Matrix& m,
                                                           const WholePixels& whole)
{
    if (!whole.isNear || flat.layers.size() > kMostLayers) return nullptr;
    // What decides besides the matrix: where the parts begin and end, because pixels are worked with in
    // groups that are counted from there.
    m_reaches.clear();
    std::uint64_t hash = 0;
    bool isWhole = true;
    const auto add = [&](const IntRect& reach, std::size_t styles) {
        const auto count = static_cast<std::uint32_t>(styles);
        isWhole = isWhole && (reach.isEmpty() ||
                              (reach.left >= to.clip.left && reach.right <= to.clip.right &&
                               reach.width() <= Stamp::kMaxWidth &&
                               DenseCells<std::int16_t>::suits(reach.width(), reach.height(), count)));
        m_reaches.push_back(moved(reach, -whole.dx, -whole.dy));
        hash = mixed(hash, m_reaches.back());
    };
    const swf::Point offset{m.tx, m.ty};
    std::size_t nextLine = 0;
    for (std::size_t i = 0; i < flat.layers.size() && isWhole; ++i) {
        if (!flat.layers[i].runs.empty())
            add(OutlineDrawer::reach(to.coverage, flat.layers[i], m), shape->layers[i].fills.size());
        while (strokes != nullptr && nextLine < strokes->lines.size() && strokes->lines[nextLine].layer == i)
            add(OutlineDrawer::reach(to.coverage, strokes->lines[nextLine++].outline, offset), 1);
    }
    if (!isWhole) return nullptr;

    StampCache::Key key{shape.get(), m.a, m.b, m.c, m.d};
    // Points of lines are rounded together with the translation.
    key.x = strokes != nullptr ? m.tx - whole.dx : whole.stepsX;
    key.y = strokes != nullptr ? m.ty - whole.dy : whole.stepsY;
    key.pixelScale = strokes != nullptr ? m_pixelScale : 0;
    key.bounds = hash;
    key.quality = static_cast<std::uint32_t>(to.coverage);
    StampCache& cache = m_cache.impl().stamps();
    if (auto found = cache.find(key))
        return std::ranges::equal(found->parts, m_reaches, {}, &Stamp::bounds) ? found : nullptr;
    if (!cache.isKnown(key)) return nullptr;

    auto made = std::make_shared<StampedShape>();
    made->parts.reserve(m_reaches.size());
    Destination into = to;
    into.mask = nullptr;
    const auto part = [&](const auto& draw) {
        const IntRect& reach = m_reaches[made->parts.size()];
        Stamp& stamp = cache.workpiece();
        stamp.begin(reach);
        StampSink sink(stamp, whole.dx, whole.dy);
        into.clip = into.whole = moved(reach, whole.dx, whole.dy);
        into.stamp = &sink;
        draw();
        made->parts.push_back(stamp.compacted());
    };
    nextLine = 0;
    for (std::size_t i = 0; i < flat.layers.size(); ++i) {
        if (!flat.layers[i].runs.empty()) {
            m_drawer.styles().clear();
            m_drawer.styles().resize(shape->layers[i].fills.size());
            part([&] { m_drawer.fills(into, flat.layers[i], m, fillRuleOf(shape->layers[i])); });
        }
        setSingleStyle({});
        while (strokes != nullptr && nextLine < strokes->lines.size() && strokes->lines[nextLine].layer == i)
            part([&] { m_drawer.stroke(into, strokes->lines[nextLine++].outline, offset); });
    }
    cache.keep(key, shape, made);
    return made;
}

} // namespace flash::render
