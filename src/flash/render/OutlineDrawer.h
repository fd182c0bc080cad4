#pragma once

#include "flash/render/Flatten.h"
#include "flash/render/Mask.h"
#include "flash/render/ScanConverter.h"
#include "flash/render/SpanPainter.h"
#include "flash/render/Stamp.h"
#include "flash/render/Stroker.h"

#include <vector>

namespace flash::render
{

/// Where outlines go at the moment: onto pixels, through a mask, or into a mask that is being made.
struct Destination {
    Target target;
    IntRect clip;               ///< within the target and the mask
    IntRect whole;              ///< the clip with all rows, of which it may be a band
    const Mask* mask = nullptr; ///< null for none; never a plain rectangle, which the clip stands for
    Mask* building = nullptr;   ///< not null: coverage is added here, nothing is painted
    Coverage coverage = Coverage::Exact;
    StampSink* stamp = nullptr; ///< not null: takes all there is within the clip, and nothing is painted
};

/// Converts outlines and paints them, with scratch memory that is kept from one to the next.
class OutlineDrawer
{
public:
    /// The paints of the outlines that follow: index 0 is style 1. While a mask is built only their number
    /// counts.
    std::vector<StylePaint>& styles() { return m_painter.styles(); }

    /// Fills of a flattened layer. Fill numbers without a style draw nothing.
    void fills(const Destination& to, const FlatLayer& layer, const swf::Matrix& toDevice, FillRule rule);
    /// The same with whatever fills there are as style 1.
    void silhouette(const Destination& to, const FlatLayer& layer, const swf::Matrix& toDevice,
                    FillRule rule);
    /// A stroke with style 1.
    /// @param offset what is still missing from the outline's coordinates to device pixels
    void stroke(const Destination& to, const StrokeOutline& outline, swf::Point offset);
    /// What fills() or stroke() would do again. @param dx,dy the whole pixel that the outline is moved to
    void stamp(const Destination& to, const Stamp& stamp, int dx, int dy);
    /// What those two would touch without any clip.
    [[nodiscard]] static IntRect reach(Coverage coverage, const FlatLayer& layer,
                                       const swf::Matrix& toDevice);
    [[nodiscard]] static IntRect reach(Coverage coverage, const StrokeOutline& outline, swf::Point offset);
    /// A convex or other polygon in device pixels with style 1.
    void polygon(const Destination& to, std::span<const swf::Point> corners);

private:
    enum class Numbers { AsTheyAre, AllOne };
    void drawLayer(const Destination& to, const FlatLayer& layer, const swf::Matrix& toDevice, FillRule rule,
                   Numbers numbers);
    template <class Feed>
    void convert(const Destination& to, const IntRect& bounds, FillRule rule, const Feed& feed);
    template <class Feed>
    void convertPart(const Destination& to, const IntRect& area, int wholeHeight, FillRule rule,
                     const Feed& feed, SpanSink& sink);

    ScanConverter m_converter;
    SpanPainter m_painter;
};

} // namespace flash::render
