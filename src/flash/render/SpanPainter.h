#pragma once

#include "flash/render/Mask.h"
#include "flash/render/Paint.h"
#include "flash/render/Spans.h"
#include "flash/render/Surface.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace flash::render
{

/// A piece of the device's plane: `view`'s upper left pixel is device pixel (left, top).
struct Target {
    SurfaceView view;
    int left = 0, top = 0;
    [[nodiscard]] std::uint32_t* at(int x, int y) const { return view.row(y - top) + (x - left); }
    [[nodiscard]] IntRect bounds() const { return {left, top, left + view.width, top + view.height}; }
};

/// What a style looks like: a colour, premultiplied, or a paint.
struct StylePaint {
    std::uint32_t color = 0;
    std::unique_ptr<Paint> paint;
};

/// Paints what is swept. Styles are numbered from 1.
class SpanPainter final : public SpanSink
{
public:
    /// @param mask null for none; must contain all that is swept
    void setTarget(const Target& target, const Mask* mask);
    std::vector<StylePaint>& styles() { return m_styles; }

    void row(int y, std::span<const StyleSpan> spans) override;
    [[nodiscard]] PixelGround ground() const override
    {
        return {m_target.view.pixels, m_target.view.stride, m_target.left, m_target.top};
    }
    [[nodiscard]] std::optional<std::uint32_t> plainColor(std::uint32_t style) const override
    {
        if (m_mask != nullptr || m_styles[style - 1].paint != nullptr) return std::nullopt;
        return m_styles[style - 1].color;
    }
    [[nodiscard]] const Paint* plainPaint(std::uint32_t style) const override
    {
        const Paint* paint = m_styles[style - 1].paint.get();
        const bool isLaid =
            m_mask == nullptr && paint != nullptr && paint->canLay() && !paint->hasRowColors();
        return isLaid ? paint : nullptr;
    }

private:
    void single(const StyleSpan& span);
    void shared(std::span<const StyleSpan> parts);
    void evenlyShared(std::span<const StyleSpan> parts);
    void layMixed(int x, std::size_t count);
    void extendRun(const StyleSpan& span);
    void flushRun();
    void applyMask(int x, std::size_t count);
    /// Whether a style has one colour in each row; else its colours have to be fetched.
    [[nodiscard]] static bool isPlain(const StylePaint& style);
    /// That colour in this row.
    [[nodiscard]] std::uint32_t colorOf(const StylePaint& style) const;

    Target m_target;
    const Mask* m_mask = nullptr;
    std::vector<StylePaint> m_styles;
    int m_y = 0;
    // Neighbouring pixels of one style that has to be fetched, or masked, are painted together.
    std::uint32_t m_runStyle = 0;
    int m_runStart = 0, m_runEnd = 0;
    std::vector<std::uint8_t> m_coverage; ///< of the run, index 0 is m_runStart
    std::vector<std::uint32_t> m_fetched;
    std::vector<std::uint32_t> m_mixed;
    std::vector<std::uint16_t> m_sums; ///< four channels to the pixel
};

} // namespace flash::render
