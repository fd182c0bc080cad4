#pragma once

#include "flash/render/Mask.h"
#include "flash/render/Spans.h"
#include "flash/render/Surface.h"
#include "flash/swf/Geometry.h"
#include "flash/swf/Shape.h"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace flash::render
{

class SpanPainter;
struct Target;

/// What scan conversion made of an outline, to be painted again wherever that comes out the same: moved by
/// whole pixels, or by less within a step of the grid that points lie on.
class Stamp
{
public:
    static constexpr int kMaxWidth = 0xFFFF;

    /// @param bounds what was converted, relative to the whole pixel that the outline was moved to; at most
    ///               kMaxWidth wide
    explicit Stamp(const IntRect& bounds = {}) : m_bounds(bounds) {}
    [[nodiscard]] const IntRect& bounds() const { return m_bounds; }
    [[nodiscard]] std::size_t bytes() const;

    /// Rows come from above, relative like the bounds.
    void addRow(int x, int y, std::span<const StyleSpan> spans);
    /// @param clip columns of the bounds must not be cut by it
    void paint(SpanPainter& painter, const Target& target, const IntRect& clip, int dx, int dy) const;

private:
    struct Piece {
        std::uint16_t x = 0; ///< from the left of the bounds, however far those lie from the shape's origin
        std::uint16_t count = 0, style = 0, coverage = 0;
        std::uint32_t coverages = kEven; ///< index of the first
    };
    static constexpr std::uint32_t kEven = 0xFFFFFFFF;
    [[nodiscard]] std::span<const Piece> row(std::size_t index) const;
    void paintRow(std::span<const Piece> pieces, std::uint32_t color, std::uint32_t* to) const;

    IntRect m_bounds;
    std::uint32_t m_onlyStyle = 0; ///< 0: none yet; kSeveral
    static constexpr std::uint32_t kSeveral = 0xFFFFFFFF;
    std::vector<std::uint32_t> m_rowEnds; ///< index past the last piece of each
    std::vector<Piece> m_pieces;
    std::vector<std::uint8_t> m_coverages;
};

/// All that is converted for a shape, in the order of painting.
struct StampedShape {
    std::vector<Stamp> parts;
    [[nodiscard]] std::size_t bytes() const;
};

/// The sink that makes a stamp.
class StampSink final : public SpanSink
{
public:
    /// @param dx,dy the whole pixel that the outline is moved to
    StampSink(Stamp& stamp, int dx, int dy) : m_stamp(stamp), m_dx(dx), m_dy(dy) {}
    void row(int y, std::span<const StyleSpan> spans) override { m_stamp.addRow(m_dx, y - m_dy, spans); }

private:
    Stamp& m_stamp;
    int m_dx, m_dy;
};

/// Stamps of shapes, for each place within a pixel. What is drawn just once, as what turns or is drawn anew
/// in every frame, leaves nothing but a trace of a few bytes here; of what comes again the least recently
/// used go when the budget is spent.
class StampCache
{
public:
    explicit StampCache(std::size_t budgetBytes) : m_budget(budgetBytes) {}

    struct Key {
        const swf::Shape* shape = nullptr;
        double a = 0, b = 0, c = 0, d = 0;
        double x = 0, y = 0;       ///< of what is left of the translation without whole pixels
        double pixelScale = 0;     ///< 0 where it does not matter
        std::uint64_t bounds = 0;  ///< a hash of those of all parts
        std::uint32_t quality = 0; ///< whatever else decides
        friend bool operator==(const Key&, const Key&) = default;
    };
    /// @returns null when there is none
    std::shared_ptr<const StampedShape> find(const Key& key);
    /// Whether it has been asked for before, not too long ago; from now on it has.
    bool isKnown(const Key& key);
    void keep(const Key& key, const std::shared_ptr<const swf::Shape>& owner,
              std::shared_ptr<const StampedShape> stamps);
    [[nodiscard]] std::size_t usedBytes() const { return m_used; }

private:
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };
    struct Entry {
        std::weak_ptr<const swf::Shape> owner; ///< another shape may come to lie at the address of a dead one
        std::shared_ptr<const StampedShape> stamps;
        std::size_t bytes = 0;
        std::uint64_t lastUse = 0;
    };
    void makeRoom();

    std::size_t m_budget, m_used = 0;
    std::uint64_t m_clock = 0;
    std::unordered_map<Key, Entry, KeyHash> m_entries;
    std::vector<std::size_t> m_known; ///< hashes, each at the place that its lower bits tell
};

} // namespace flash::render
