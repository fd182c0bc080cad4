#include "flash/render/Stamp.h"

#include "flash/render/Compose.h"
#include "flash/render/Pixel.h"
#include "flash/render/SpanPainter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <functional>

namespace flash::render
{

std::size_t Stamp::bytes() const
{
    return sizeof(Stamp) + m_rowEnds.capacity() * sizeof(std::uint32_t) +
           m_pieces.capacity() * sizeof(Piece) + m_coverages.capacity();
}

std::size_t StampedShape::bytes() const
{
    std::size_t sum = sizeof(StampedShape);
    for (const Stamp& part : parts) sum += part.bytes();
    return sum;
}

std::span<const Stamp::Piece> Stamp::row(std::size_t index) const
{
    if (index >= m_rowEnds.size()) return {};
    const std::size_t first = index == 0 ? 0 : m_rowEnds[index - 1];
    return std::span(m_pieces).subspan(first, m_rowEnds[index] - first);
}

void Stamp::addRow(int x, int y, std::span<const StyleSpan> spans)
{
    const auto index = static_cast<std::size_t>(y - m_bounds.top);
    while (m_rowEnds.size() < index) m_rowEnds.push_back(static_cast<std::uint32_t>(m_pieces.size()));
    for (const StyleSpan& span : spans) {
        Piece piece;
        piece.x = static_cast<std::uint16_t>(span.x - x - m_bounds.left);
        piece.count = static_cast<std::uint16_t>(span.count);
        piece.style = static_cast<std::uint16_t>(span.style);
        piece.coverage = static_cast<std::uint16_t>(span.coverage);
        if (span.coverages != nullptr) {
            piece.coverages = static_cast<std::uint32_t>(m_coverages.size());
            m_coverages.insert(m_coverages.end(), span.coverages, span.coverages + span.count);
        }
        m_pieces.push_back(piece);
        if (m_onlyStyle != 0 && m_onlyStyle != span.style)
            m_onlyStyle = kSeveral;
        else
            m_onlyStyle = span.style;
    }
    m_rowEnds.push_back(static_cast<std::uint32_t>(m_pieces.size()));
}

// As the painter does it, with nothing asked from span to span.
void Stamp::paintRow(std::span<const Piece> pieces, std::uint32_t color, std::uint32_t* to) const
{
    for (const Piece& piece : pieces) {
        if (piece.coverages != kEven)
            composeSolid(to + piece.x, m_coverages.data() + piece.coverages, piece.count, color);
        else
            composeSolid(to + piece.x, piece.count, scale256(color, piece.coverage));
    }
}

void Stamp::paint(SpanPainter& painter, const Target& target, const IntRect& clip, int dx, int dy) const
{
    const int first = std::max(clip.top, m_bounds.top + dy);
    const int end = std::min(clip.bottom, m_bounds.top + dy + static_cast<int>(m_rowEnds.size()));
    if (m_onlyStyle == 0 || first >= end) return;
    const int left = m_bounds.left + dx;
    const auto indexOf = [&](int y) { return static_cast<std::size_t>(y - dy - m_bounds.top); };
    if (m_onlyStyle != kSeveral) {
        if (const auto color = painter.plainColor(m_onlyStyle)) {
            for (int y = first; y < end; ++y) {
                const auto pieces = row(indexOf(y));
                if (!pieces.empty()) paintRow(pieces, *color, target.at(left, y));
            }
            return;
        }
    }
    std::vector<StyleSpan> spans;
    for (int y = first; y < end; ++y) {
        spans.clear();
        for (const Piece& piece : row(indexOf(y)))
            spans.push_back({piece.x + left, piece.count, piece.style, piece.coverage,
                             piece.coverages == kEven ? nullptr : m_coverages.data() + piece.coverages});
        if (!spans.empty()) painter.row(y, spans);
    }
}

std::size_t StampCache::KeyHash::operator()(const Key& key) const
{
    std::uint64_t hash = std::hash<const void*>{}(key.shape) ^ key.bounds ^ key.quality;
    for (const double value : {key.a, key.b, key.c, key.d, key.x, key.y, key.pixelScale}) {
        hash = (hash ^ std::bit_cast<std::uint64_t>(value)) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32U;
    }
    return hash;
}

std::shared_ptr<const StampedShape> StampCache::find(const Key& key)
{
    const auto found = m_entries.find(key);
    if (found == m_entries.end()) return nullptr;
    if (found->second.owner.expired()) {
        m_used -= found->second.bytes;
        m_entries.erase(found);
        return nullptr;
    }
    found->second.lastUse = ++m_clock;
    return found->second.stamps;
}

bool StampCache::isKnown(const Key& key)
{
    // As many as a busy scene has of them in some frames; what takes longer to come again is no loss.
    constexpr std::size_t kPlaces = 8192;
    if (m_known.empty()) m_known.resize(kPlaces);
    const std::size_t hash = KeyHash{}(key);
    return std::exchange(m_known[hash % kPlaces], hash) == hash;
}

void StampCache::keep(const Key& key, const std::shared_ptr<const swf::Shape>& owner,
                      std::shared_ptr<const StampedShape> stamps)
{
    constexpr std::size_t kLeastThatFit = 16;
    const std::size_t bytes = stamps->bytes() + sizeof(Key) + sizeof(Entry);
    if (bytes > m_budget / kLeastThatFit) return;
    m_used += bytes;
    m_entries.insert_or_assign(key, Entry{owner, std::move(stamps), bytes, ++m_clock});
    if (m_used > m_budget) makeRoom();
}

// Dead shapes first, then what was not used for longest, until a quarter of the budget is free.
void StampCache::makeRoom()
{
    const std::size_t goal = m_budget / 4 * 3;
    std::vector<std::pair<std::uint64_t, Key>> byAge;
    byAge.reserve(m_entries.size());
    for (const auto& [key, entry] : m_entries)
        byAge.emplace_back(entry.owner.expired() ? 0 : entry.lastUse, key);
    std::ranges::sort(byAge, {}, &std::pair<std::uint64_t, Key>::first);
    for (const auto& [use, key] : byAge) {
        if (use != 0 && m_used <= goal) return;
        const auto found = m_entries.find(key);
        m_used -= found->second.bytes;
        m_entries.erase(found);
    }
}

} // namespace flash::render
