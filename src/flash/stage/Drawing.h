#pragma once

#include "flash/swf/Shape.h"

#include <memory>
#include <optional>

namespace flash::stage
{

/// What a clip's script draws: a pen that leaves a shape. Coordinates are twips of the clip's space.
class Drawing
{
public:
    void beginFill(swf::FillStyle fill);
    void endFill();
    /// @param style nothing ends lines
    void lineStyle(std::optional<swf::LineStyle> style);
    /// Whether what a path goes around twice in one direction is filled, too, or a hole. Counts for what is
    /// begun from now on; a path amid its edges goes on as it is.
    enum class Winding { EvenOdd, NonZero };
    void setWinding(Winding winding);
    void moveTo(swf::Point to);
    /// How far the box around lines goes beyond them: before version 8 by the whole width.
    enum class Reach { HalfWidth, Width };
    void setReach(Reach reach) { m_reach = reach; }
    void lineTo(swf::Point to);
    void curveTo(swf::Point control, swf::Point to);
    void clear();
    [[nodiscard]] swf::Point pen() const { return m_pen; }

    [[nodiscard]] bool isEmpty() const;
    /// What is drawn so far, an open fill closed. The same object until the next change.
    [[nodiscard]] const std::shared_ptr<const swf::Shape>& shape() const;
    /// The style that lines have now; for scripts that change only its paint.
    [[nodiscard]] const std::optional<swf::LineStyle>& currentLine() const { return m_line; }

private:
    swf::EdgeRun& run();
    void splitByWinding();
    void append(const swf::Edge& edge);
    void closePath();
    void include(swf::Point point);
    swf::Shape m_work;
    mutable std::shared_ptr<const swf::Shape> m_built;
    std::optional<swf::LineStyle> m_line;
    Reach m_reach = Reach::HalfWidth;
    Winding m_winding = Winding::EvenOdd;
    bool m_filling = false, m_runOpen = false, m_layerOpen = false;
    std::uint16_t m_lineIndex = 0; ///< of m_line in the open layer, from 1; 0 while it is not there
    swf::Point m_pen, m_pathStart;
};

} // namespace flash::stage
