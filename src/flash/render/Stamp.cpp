#include "flash/render/Stamp.h"

#include "flash/render/Compose.h"
#include "flash/render/ComposeWide.h"
#include "flash/render/Pixel.h"
#include "flash/render/SpanPainter.h"
#include "flash/render/WidePixels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <functional>

namespace flash::render
{
namespace
{

constexpr std::size_t kReadAtOnce = 8; // coverages

static_assert(DenseCells<std::int16_t>::kMaxStyles < 1U << (16U - Stamp::kCoverageBits) &&
              DenseCells<std::int32_t>::kMaxStyles == DenseCells<std::int16_t>::kMaxStyles &&
              kSubpixels < Stamp::kEach);

/// @param x counts from the left side of the stamp
Stamp::Piece pieceOf(int x, int count, std::uint32_t style, std::uint32_t coverage)
{
    return {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(count),
            static_cast<std::uint16_t>(style << Stamp::kCoverageBits | coverage)};
}

// Rows of a stamp, and where their first pixels go.
struct StampRows {
    const Stamp::Row* rows = nullptr;
    std::size_t count = 0;
    const Stamp::Piece* pieces = nullptr;
    const std::uint8_t* coverages = nullptr;
    std::uint32_t* to = nullptr;
    std::ptrdiff_t stride = 0;
};

// As the painter does it, with nothing asked from piece to piece.
void layRowsPlain(const StampRows& stamp, std::uint32_t color)
{
    const std::uint8_t* coverages = stamp.coverages + stamp.rows->coverage;
    for (std::size_t row = 0; row < stamp.count; ++row) {
        std::uint32_t* to = stamp.to + static_cast<std::ptrdiff_t>(row) * stamp.stride;
        for (std::uint32_t i = stamp.rows[row].piece; i < stamp.rows[row + 1].piece; ++i) {
            const Stamp::Piece& piece = stamp.pieces[i];
            if (piece.coverage() != Stamp::kEach) {
                plain::composeSolid(to + piece.x, piece.count, scale256(color, piece.coverage()));
                continue;
            }
            plain::composeSolid(to + piece.x, coverages, piece.count, color);
            coverages += piece.count;
        }
    }
}

#ifdef ZORVEX_HAS_WIDE
// Pictures are larger than caches, and the short pieces of a shape's rows are nothing that a processor would
// foresee.
inline void foresee(const StampRows& stamp, std::size_t row)
{
    constexpr int kLinePixels = 16;
    const std::uint32_t first = stamp.rows[row].piece, end = stamp.rows[row + 1].piece;
    if (first == end) return;
    const std::uint32_t* to = stamp.to + static_cast<std::ptrdiff_t>(row) * stamp.stride;
    const Stamp::Piece& last = stamp.pieces[end - 1];
    for (int x = stamp.pieces[first].x; x < last.x + last.count; x += kLinePixels)
        __builtin_prefetch(to + x, 1);
}

ZORVEX_WIDE_INLINE void fill(std::uint32_t* to, std::size_t count, __m256i pixels)
{
    if (count < wide8::kGroup) {
        wide8::store(to, wide8::firstOf(count), pixels);
        return;
    }
    for (std::size_t i = 0; i + wide8::kGroup <= count; i += wide8::kGroup) wide8::store(to + i, pixels);
    wide8::store(to + count - wide8::kGroup, pixels);
}

ZORVEX_WIDE_INLINE void layEven(std::uint32_t* to, std::size_t count, const wide8::Channels& source)
{
    for (; count >= wide8::kGroup; count -= wide8::kGroup, to += wide8::kGroup)
        wide8::store(to, wide8::over(source, wide8::load(to)));
    if (count == 0) return;
    const __m256i wanted = wide8::firstOf(count);
    wide8::store(to, wanted, wide8::over(source, wide8::load(to, wanted)));
}

ZORVEX_WIDE_INLINE void layEach(std::uint32_t* to, const std::uint8_t* coverages, std::size_t count,
                                const wide8::Channels& source)
{
    for (; count >= wide8::kGroup; count -= wide8::kGroup, to += wide8::kGroup, coverages += wide8::kGroup) {
        const wide8::Channels part =
            wide8::scaled(source, wide8::spreadCoverage(wide8::eightCoverages(coverages)));
        wide8::store(to, wide8::over(part, wide8::load(to)));
    }
    if (count == 0) return;
    const __m256i wanted = wide8::firstOf(count);
    const wide8::Channels part =
        wide8::scaled(source, wide8::spreadCoverage(wide8::eightCoverages(coverages)));
    wide8::store(to, wanted, wide8::over(part, wide8::load(to, wanted)));
}

ZORVEX_WIDE void layRowsWide(const StampRows& stamp, std::uint32_t color)
{
    constexpr std::size_t kAhead = 4;
    const __m256i full = _mm256_set1_epi32(static_cast<int>(color));
    const wide8::Channels source = wide8::channelsOf(full);
    const bool opaque = alphaOf(color) == 255;
    for (std::size_t row = 0; row < std::min(kAhead, stamp.count); ++row) foresee(stamp, row);
    const std::uint8_t* coverages = stamp.coverages + stamp.rows->coverage;
    for (std::size_t row = 0; row < stamp.count; ++row) {
        if (row + kAhead < stamp.count) foresee(stamp, row + kAhead);
        std::uint32_t* to = stamp.to + static_cast<std::ptrdiff_t>(row) * stamp.stride;
        for (std::uint32_t i = stamp.rows[row].piece; i < stamp.rows[row + 1].piece; ++i) {
            const Stamp::Piece& piece = stamp.pieces[i];
            if (piece.coverage() == Stamp::kEach) {
                layEach(to + piece.x, coverages, piece.count, source);
                coverages += piece.count;
            } else if (piece.coverage() == kSubpixels && opaque) {
                fill(to + piece.x, piece.count, full);
            } else {
                const auto even = static_cast<int>(scale256(color, piece.coverage()));
                layEven(to + piece.x, piece.count, wide8::channelsOf(_mm256_set1_epi32(even)));
            }
        }
    }
}
#endif

void layRows(const StampRows& stamp, std::uint32_t color)
{
#ifdef ZORVEX_HAS_WIDE
    if (wide8::hasWide()) return layRowsWide(stamp, color);
#endif
    layRowsPlain(stamp, color);
}

} // namespace

void Stamp::begin(const IntRect& bounds)
{
    m_bounds = bounds;
    m_onlyStyle = 0;
    m_mayGrow = false;
    m_rows.assign(1, Row{});
    m_pieces.clear();
    m_coverages.assign(kReadAtOnce, 0);
}

std::size_t Stamp::bytes() const
{
    return sizeof(Stamp) + m_rows.capacity() * sizeof(Row) + m_pieces.capacity() * sizeof(Piece) +
           m_coverages.capacity();
}

std::size_t StampedShape::bytes() const
{
    std::size_t sum = sizeof(StampedShape);
    for (const Stamp& part : parts) sum += part.bytes();
    return sum;
}

void Stamp::endRow()
{
    m_rows.push_back({static_cast<std::uint32_t>(m_pieces.size()),
                      static_cast<std::uint32_t>(m_coverages.size() - kReadAtOnce)});
    m_mayGrow = false;
}

void Stamp::addPiece(const Piece& piece, Neighbours neighbours)
{
    const bool isApart = neighbours == Neighbours::Apart;
    if (isApart && m_mayGrow && piece.coverage() != kEach) {
        Piece& last = m_pieces.back();
        if (last.styleAndCoverage == piece.styleAndCoverage && last.x + last.count == piece.x) {
            last.count = static_cast<std::uint16_t>(last.count + piece.count);
            return;
        }
    }
    m_pieces.push_back(piece);
    m_mayGrow = isApart;
}

void Stamp::addEach(int x, const StyleSpan& span, int begin, int end, Neighbours neighbours)
{
    if (begin == end) return;
    m_coverages.insert(m_coverages.end() - kReadAtOnce, span.coverages + begin, span.coverages + end);
    addPiece(pieceOf(span.x - x - m_bounds.left + begin, end - begin, span.style, kEach), neighbours);
}

// Groups of pixels are told as a whole: what is not covered is left out, and what is wholly covered becomes
// part of the stretch beside it.
void Stamp::addApart(int x, const StyleSpan& span)
{
    constexpr int kLong = 6;
    int begin = 0;
    for (int at = 0; at < span.count;) {
        const std::uint8_t value = span.coverages[at];
        int end = at + 1;
        if (value == 0 || value == 255)
            while (end < span.count && span.coverages[end] == value) ++end;
        const bool isEnd = at == 0 || end == span.count;
        if ((value == 0 || value == 255) && (isEnd || end - at >= kLong)) {
            addEach(x, span, begin, at, Neighbours::Apart);
            if (value != 0)
                addPiece(pieceOf(span.x - x - m_bounds.left + at, end - at, span.style, kSubpixels),
                         Neighbours::Apart);
            begin = end;
        }
        at = end;
    }
    addEach(x, span, begin, span.count, Neighbours::Apart);
}

void Stamp::addRow(int x, int y, std::span<const StyleSpan> spans)
{
    const auto index = static_cast<std::size_t>(y - m_bounds.top);
    while (m_rows.size() <= index) endRow();
    for (std::size_t i = 0; i < spans.size(); ++i) {
        const StyleSpan& span = spans[i];
        const bool shares =
            (i > 0 && spans[i - 1].x == span.x) || (i + 1 < spans.size() && spans[i + 1].x == span.x);
        const Neighbours neighbours = shares ? Neighbours::Sharing : Neighbours::Apart;
        if (span.coverages == nullptr)
            addPiece(pieceOf(span.x - x - m_bounds.left, span.count, span.style, span.coverage), neighbours);
        else if (shares)
            addEach(x, span, 0, span.count, neighbours);
        else
            addApart(x, span);
        m_onlyStyle = m_onlyStyle != 0 && m_onlyStyle != span.style ? kSeveral : span.style;
    }
    endRow();
}

void Stamp::paint(SpanPainter& painter, const Target& target, const IntRect& clip, int dx, int dy) const
{
    const int first = std::max(clip.top, m_bounds.top + dy);
    const int end = std::min(clip.bottom, m_bounds.top + dy + static_cast<int>(m_rows.size()) - 1);
    if (m_onlyStyle == 0 || first >= end) return;
    const Row* rows = m_rows.data() + (first - dy - m_bounds.top);
    if (m_onlyStyle != kSeveral) {
        if (const auto color = painter.plainColor(m_onlyStyle)) {
            layRows({rows, static_cast<std::size_t>(end - first), m_pieces.data(), m_coverages.data(),
                     target.at(m_bounds.left + dx, first), target.view.stride},
                    *color);
            return;
        }
    }
    const int left = m_bounds.left + dx;
    std::vector<StyleSpan> spans;
    const std::uint8_t* coverages = m_coverages.data() + rows->coverage;
    for (int y = first; y < end; ++y, ++rows) {
        spans.clear();
        for (std::uint32_t i = rows->piece; i < rows[1].piece; ++i) {
            const Piece& piece = m_pieces[i];
            const bool each = piece.coverage() == kEach;
            spans.push_back({left + piece.x, piece.count, piece.style(), each ? 0U : piece.coverage(),
                             each ? coverages : nullptr});
            if (each) coverages += piece.count;
        }
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
    ++m_clock;
    const auto found = m_entries.find(key);
    if (found == m_entries.end()) return nullptr;
    if (found->second.owner.expired()) {
        m_used -= found->second.bytes;
        m_entries.erase(found);
        return nullptr;
    }
    found->second.lastUse = m_clock;
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
    m_entries.insert_or_assign(key, Entry{owner, std::move(stamps), bytes, m_clock});
    if (m_used > m_budget) makeRoom();
}

void StampCache::makeRoom()
{
    // Times that stamps were asked for: some rounds of a busy movie, and some frames of it.
    constexpr std::uint64_t kLong = std::uint64_t{1} << 17, kLately = std::uint64_t{1} << 11;
    const std::size_t goal = m_budget / 8 * 7;
    const auto drop = [&](auto&& mayGo) {
        for (auto at = m_entries.begin(); at != m_entries.end() && m_used > goal;) {
            if (!mayGo(at->second)) {
                ++at;
                continue;
            }
            m_used -= at->second.bytes;
            at = m_entries.erase(at);
        }
    };
    const auto age = [this](const Entry& entry) { return m_clock - entry.lastUse; };
    drop([&](const Entry& entry) { return entry.owner.expired() || age(entry) > kLong; });
    drop([&](const Entry& entry) { return age(entry) > kLately; });
    drop([](const Entry&) { return true; });
}

} // namespace flash::render
