#pragma once

#include "flash/render/Flatten.h"
#include "flash/render/LetterSlots.h"
#include "flash/render/OutlineDrawer.h"
#include "flash/render/Paint.h"
#include "flash/render/RampCache.h"
#include "flash/render/RenderCache.h"
#include "flash/render/Stamp.h"
#include "flash/render/Stroker.h"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <variant>

namespace flash::render
{

/// The strokes of one line style of a shape, outlined for one matrix without its translation.
struct StrokedLine {
    std::size_t layer = 0;
    std::uint16_t line = 0; ///< number of the line style, from 1
    StrokeOutline outline;
};
struct StrokedShape {
    std::vector<StrokedLine> lines; ///< in painting order
    [[nodiscard]] std::size_t bytes() const;
};

/// What the outlines of strokes depend on besides their matrix.
struct StrokeScale {
    double pixelScale = 1;  ///< device pixels to a pixel of the stage
    int flatteningStep = 0; ///< of the curves that they follow
};

class RenderCache::Impl
{
public:
    explicit Impl(std::size_t budgetBytes)
        : m_budget(budgetBytes - budgetBytes / 4), m_stamps(budgetBytes / 4)
    {
    }

    std::shared_ptr<const FlatShape> flatShape(const std::shared_ptr<const swf::Shape>& shape, int scaleStep);

    /// @returns null when there is none yet
    std::shared_ptr<const StrokedShape> findStrokes(const std::shared_ptr<const swf::Shape>& shape,
                                                    const swf::Matrix& linear, StrokeScale scale);
    void keepStrokes(const std::shared_ptr<const swf::Shape>& shape, const swf::Matrix& linear,
                     StrokeScale scale, std::shared_ptr<const StrokedShape> strokes);

    /// The coverage of a letter's outline, placed by `matrix` near (0, 0), as long as nothing is asked for;
    /// null when there is none yet.
    /// @param matrix moves by whole subpixels, within the first pixel
    const Mask* findLetter(const std::shared_ptr<const swf::Shape>& outline, const swf::Matrix& matrix);
    void keepLetter(const std::shared_ptr<const swf::Shape>& outline, const swf::Matrix& matrix,
                    std::shared_ptr<const Mask> mask);

    /// The ramp of a fill's gradient.
    /// @param layer,fill which of the shape's, both from 0
    std::shared_ptr<const GradientRamp> ramp(const std::shared_ptr<const swf::Shape>& shape,
                                             std::size_t layer, std::size_t fill,
                                             const swf::ColorTransform& color);

    /// Its scratch memory is worth keeping, too: megabytes, which canvases that live for one frame would
    /// otherwise get and clear for each. It holds nothing from one drawing call to the next.
    [[nodiscard]] OutlineDrawer& drawer() { return m_drawer; }

    [[nodiscard]] StampCache& stamps() { return m_stamps; }

    [[nodiscard]] std::size_t usedBytes() const { return m_used + m_stamps.usedBytes(); }

private:
    enum class Kind : std::uint8_t { Fills, Strokes, Letter, Ramp };
    // What an entry was made for. Fills: `a` is the scale step, the rest 0. Ramp: `a` is the layer, `b` the
    // fill, the rest 0.
    struct Key {
        const swf::Shape* shape = nullptr;
        Kind kind = Kind::Fills;
        double a = 0, b = 0, c = 0, d = 0;
        double x = 0, y = 0; ///< strokes: the pixel scale, and the flattening step
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };
    // Small: entries are looked up for each shape and letter of a frame.
    using Made = std::variant<std::shared_ptr<const FlatShape>, std::shared_ptr<const StrokedShape>,
                              std::shared_ptr<const Mask>, std::shared_ptr<const GradientRamp>>;
    struct Entry {
        std::weak_ptr<const swf::Shape> owner; ///< another shape may come to lie at the address of a dead one
        Made made;                             ///< of its kind
        std::size_t bytes = 0;
        std::uint64_t lastUse = 0;
    };
    Entry* find(const Key& key);
    void insert(const Key& key, Entry entry);
    void drop(std::unordered_map<Key, Entry, KeyHash>::iterator at);
    void makeRoom();
    void dropDead();

    OutlineDrawer m_drawer;
    std::size_t m_budget;
    std::size_t m_used = 0;
    std::size_t m_lookAgainAt = 0; ///< bytes in use with which dead ones may have become many
    std::uint64_t m_clock = 0;
    std::unordered_map<Key, Entry, KeyHash> m_entries;
    LetterSlots m_letters; ///< of what entries hold
    StampCache m_stamps;
    TintedRamps m_tintedRamps;
};

} // namespace flash::render
