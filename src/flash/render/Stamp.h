#pragma once

#include "flash/render/DenseCells.h"
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
    explicit Stamp(const IntRect& bounds = {}) { begin(bounds); }
    /// Starts over, with the memory there is.
    void begin(const IntRect& bounds);
    [[nodiscard]] const IntRect& bounds() const { return m_bounds; }
    [[nodiscard]] std::size_t bytes() const;

    /// Rows come from above, relative like the bounds.
    void addRow(int x, int y, std::span<const StyleSpan> spans);
    /// What is to be kept, in no more memory than that takes.
    [[nodiscard]] Stamp compacted() const { return *this; }
    /// @param clip columns of the bounds must not be cut by it
    void paint(SpanPainter& painter, const Target& target, const IntRect& clip, int dx, int dy) const;

    static constexpr unsigned kCoverageBits = 10;
    static constexpr std::uint32_t kEach = (1U << kCoverageBits) - 1;
    /// Pixels of one style in a row: all covered to the same degree, of 256, or (kEach) each to its own, of
    /// 255, in as many of the row's coverages.
    struct Piece {
        std::uint16_t x = 0; ///< from the left of the bounds, however far those lie from the shape's origin
        std::uint16_t count = 0;
        std::uint16_t styleAndCoverage = 0; ///< the lower kCoverageBits
        [[nodiscard]] std::uint32_t style() const { return styleAndCoverage >> kCoverageBits; }
        [[nodiscard]] std::uint32_t coverage() const { return styleAndCoverage & kEach; }
    };
    /// Where a row begins among the pieces and coverages; the next one begins where it ends.
    struct Row {
        std::uint32_t piece = 0, coverage = 0;
    };

private:
    enum class Neighbours : std::uint8_t { Apart, Sharing };
    void addPiece(const Piece& piece, Neighbours neighbours);
    void addEach(int x, const StyleSpan& span, int begin, int end, Neighbours neighbours);
    void addApart(int x, const StyleSpan& span);
    void endRow();

    IntRect m_bounds;
    std::uint32_t m_onlyStyle = 0; ///< 0: none yet; kSeveral
    static constexpr std::uint32_t kSeveral = 0xFFFFFFFF;
    bool m_mayGrow = false;  ///< the last piece is of the present row and shares no pixels
    std::vector<Row> m_rows; ///< and one for where the last one ends
    std::vector<Piece> m_pieces;
    // Groups of them are read at once: behind the last are some that count for nothing.
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
/// in every frame, leaves nothing but a trace of a few bytes here. When the budget is spent, what was not
/// used for long goes first, then a part of the rest that is always the same: of a movie that goes round in
/// more than there is room for, some stays from one round to the next.
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
    /// To make stamps in: what is kept is a copy that fits.
    [[nodiscard]] Stamp& workpiece() { return m_workpiece; }

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
    Stamp m_workpiece;
    std::unordered_map<Key, Entry, KeyHash> m_entries;
    std::vector<std::size_t> m_known; ///< hashes, each at the place that its lower bits tell
};

} // namespace flash::render
