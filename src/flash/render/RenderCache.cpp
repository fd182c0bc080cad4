#include "flash/render/RenderCache.h"

#include "flash/render/Bands.h"
#include "flash/render/RenderCacheImpl.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace flash::render
{

std::size_t StrokedShape::bytes() const
{
    std::size_t sum = sizeof(StrokedShape);
    for (const StrokedLine& line : lines)
        sum += sizeof(StrokedLine) + line.outline.points.capacity() * sizeof(FlatPoint) +
               line.outline.contourEnds.capacity() * sizeof(std::uint32_t);
    return sum;
}

std::size_t RenderCache::Impl::KeyHash::operator()(const Key& key) const
{
    std::size_t hash = std::hash<const void*>{}(key.shape) * 8 + static_cast<std::size_t>(key.kind);
    for (const double value : {key.a, key.b, key.c, key.d, key.x, key.y})
        hash = (hash ^ std::hash<double>{}(value)) * 0x9E3779B97F4A7C15U;
    return hash;
}

RenderCache::Impl::Entry* RenderCache::Impl::find(const Key& key)
{
    const auto found = m_entries.find(key);
    if (found == m_entries.end()) return nullptr;
    if (found->second.owner.expired()) {
        drop(found);
        return nullptr;
    }
    found->second.lastUse = ++m_clock;
    return &found->second;
}

void RenderCache::Impl::drop(std::unordered_map<Key, Entry, KeyHash>::iterator at)
{
    m_letters.clear();
    m_used -= at->second.bytes;
    m_entries.erase(at);
}

void RenderCache::Impl::insert(const Key& key, Entry entry)
{
    entry.lastUse = ++m_clock;
    entry.bytes += sizeof(Key) + sizeof(Entry);
    if (const auto found = m_entries.find(key); found != m_entries.end()) drop(found);
    m_used += entry.bytes;
    m_entries.emplace(key, std::move(entry));
    if (m_used > m_budget)
        makeRoom();
    else if (m_used > m_lookAgainAt)
        dropDead();
}

/// What scripts draw comes and goes; what is kept of it stays below twice what lives, or a little.
void RenderCache::Impl::dropDead()
{
    constexpr std::size_t kLittleBytes = std::size_t{1} << 20;
    m_letters.clear();
    std::erase_if(m_entries, [this](const auto& item) {
        if (!item.second.owner.expired()) return false;
        m_used -= item.second.bytes;
        return true;
    });
    m_lookAgainAt = std::max(2 * m_used, kLittleBytes);
}

// Dead shapes first, then what was not used for longest, until a quarter of the budget is free.
void RenderCache::Impl::makeRoom()
{
    dropDead();
    const std::size_t goal = m_budget / 4 * 3;
    if (m_used <= goal) return;
    std::vector<std::pair<std::uint64_t, Key>> byAge;
    byAge.reserve(m_entries.size());
    for (const auto& [key, entry] : m_entries) byAge.emplace_back(entry.lastUse, key);
    std::ranges::sort(byAge, {}, &std::pair<std::uint64_t, Key>::first);
    for (const auto& [use, key] : byAge) {
        if (m_used <= goal) return;
        drop(m_entries.find(key));
    }
}

std::shared_ptr<const FlatShape> RenderCache::Impl::flatShape(const std::shared_ptr<const swf::Shape>& shape,
                                                              int scaleStep)
{
    const Key key{shape.get(), Kind::Fills, static_cast<double>(scaleStep)};
    if (const Entry* entry = find(key)) return std::get<std::shared_ptr<const FlatShape>>(entry->made);
    auto flat = std::make_shared<const FlatShape>(flatten(*shape, scaleStep));
    insert(key, {.owner = shape, .made = flat, .bytes = flat->bytes()});
    return flat;
}

std::shared_ptr<const StrokedShape>
RenderCache::Impl::findStrokes(const std::shared_ptr<const swf::Shape>& shape, const swf::Matrix& m,
                               StrokeScale scale)
{
    const Entry* entry = find({shape.get(), Kind::Strokes, m.a, m.b, m.c, m.d, scale.pixelScale,
                               static_cast<double>(scale.flatteningStep)});
    return entry == nullptr ? nullptr : std::get<std::shared_ptr<const StrokedShape>>(entry->made);
}

void RenderCache::Impl::keepStrokes(const std::shared_ptr<const swf::Shape>& shape, const swf::Matrix& m,
                                    StrokeScale scale, std::shared_ptr<const StrokedShape> strokes)
{
    const std::size_t bytes = strokes->bytes();
    insert({shape.get(), Kind::Strokes, m.a, m.b, m.c, m.d, scale.pixelScale,
            static_cast<double>(scale.flatteningStep)},
           {.owner = shape, .made = std::move(strokes), .bytes = bytes});
}

const Mask* RenderCache::Impl::findLetter(const std::shared_ptr<const swf::Shape>& outline,
                                          const swf::Matrix& m)
{
    if (const Mask* mask = m_letters.find(outline, m)) return mask;
    const Entry* entry = find({outline.get(), Kind::Letter, m.a, m.b, m.c, m.d, m.tx, m.ty});
    if (entry == nullptr) return nullptr;
    const Mask* mask = std::get<std::shared_ptr<const Mask>>(entry->made).get();
    m_letters.keep(outline, m, mask);
    return mask;
}

void RenderCache::Impl::keepLetter(const std::shared_ptr<const swf::Shape>& outline, const swf::Matrix& m,
                                   std::shared_ptr<const Mask> mask)
{
    const std::size_t bytes = sizeof(Mask) + mask->coverage.capacity();
    insert({outline.get(), Kind::Letter, m.a, m.b, m.c, m.d, m.tx, m.ty},
           {.owner = outline, .made = std::move(mask), .bytes = bytes});
}

std::shared_ptr<const GradientRamp> RenderCache::Impl::ramp(const std::shared_ptr<const swf::Shape>& shape,
                                                            std::size_t layer, std::size_t fill,
                                                            const swf::ColorTransform& color)
{
    if (!color.isIdentity()) return m_tintedRamps.ramp(shape, layer, fill, color);
    const Key key{shape.get(), Kind::Ramp, static_cast<double>(layer), static_cast<double>(fill)};
    if (const Entry* entry = find(key)) return std::get<std::shared_ptr<const GradientRamp>>(entry->made);
    auto ramp = std::make_shared<const GradientRamp>(makeRamp(shape->layers[layer].fills[fill].gradient, {}));
    insert(key, {.owner = shape, .made = ramp, .bytes = sizeof(GradientRamp)});
    return ramp;
}

RenderCache::RenderCache(std::size_t budgetBytes)
    : m_impl(std::make_unique<Impl>(budgetBytes)), m_budget(budgetBytes)
{
}
RenderCache::~RenderCache() = default;
RenderCache::RenderCache(RenderCache&&) noexcept = default;
RenderCache& RenderCache::operator=(RenderCache&&) noexcept = default;
std::size_t RenderCache::usedBytes() const { return m_impl->usedBytes(); }

void RenderCache::setSecondThread(SecondThread when)
{
    if (when == m_secondThread) return;
    m_secondThread = when;
    m_bands.reset();
    if (when != SecondThread::Never) m_bands = std::make_unique<Bands>(when, m_budget / 2);
}

} // namespace flash::render
