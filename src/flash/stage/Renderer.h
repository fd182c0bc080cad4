#pragma once

#include "flash/render/Canvas.h"
#include "flash/stage/Node.h"

#include <optional>

namespace flash::stage
{

/// Places on the stage are whole twips: what scaled parents leave of them is rounded, at each level.
/// @param placed some space to device pixels
/// @param view stage twips to device pixels, and `toStage` back
[[nodiscard]] swf::Matrix onWholeTwips(swf::Matrix placed, const swf::Matrix& view,
                                       const swf::Matrix& toStage);

/// Walks a display list and paints it: depth order, clip layers, masks, layers with blend modes and filters.
class Renderer
{
public:
    /// @param view stage twips to device pixels; masks that lie elsewhere on the stage are placed by it
    Renderer(render::Canvas& canvas, const swf::Matrix& view)
        : m_canvas(canvas), m_view(view), m_toStage(view.isInvertible() ? view.inverted() : swf::Matrix{})
    {
    }

    /// Draws nothing of the nodes before `ground`, which hides them, but notes where they lie. It must be
    /// among what is drawn, see groundOf(). Null: all is drawn.
    void beginAt(const Node* ground) { m_ground = ground; }
    /// A node with all below, unless it is hidden or serves as a mask.
    void drawNode(Node& node, const swf::Matrix& parentToDevice, const swf::ColorTransform& parentColor);
    /// What a node shows, placed by the caller, into a picture that is not the stage: its own place, look and
    /// visibility do not count, its mask does, and a node that serves as a mask shows nothing.
    void drawForPicture(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color);

private:
    void drawContent(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color);
    void drawOwn(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color);
    void drawPlaced(Node& node, const swf::Matrix& placed, const swf::ColorTransform& color);
    static swf::Matrix snapped(swf::Matrix matrix, const swf::Rect& rect);
    void drawChildren(Node& node, const swf::Matrix& toDevice, const swf::ColorTransform& color);
    void drawAsMask(Node& mask, const swf::Matrix& toDevice);
    // ---- what has left the plane ----
    /// Whether a node is drawn with all it contains, or what it shows itself.
    enum class Part : std::uint8_t { Whole, Own };
    void drawOutOfPlane(Node& node, const swf::Matrix& parentToDevice, const swf::ColorTransform& color);
    void drawInSpace(Node& node, const swf::Matrix3D& toDevice, const swf::ColorTransform& color);
    void drawChildrenInSpace(Node& node, const swf::Matrix3D& toDevice, const swf::ColorTransform& color);
    void drawProjected(Node& node, const swf::Matrix3D& toDevice, const swf::ColorTransform& color,
                       Part part);

    render::Canvas& m_canvas;
    swf::Matrix m_view, m_toStage; ///< and back
    int m_depth = 0;
    const Node* m_ground = nullptr; ///< null once it is reached
    /// What a picture is drawn of; what is drawn then says nothing about where the stage must be drawn again.
    Node* m_pictureRoot = nullptr;
    /// Where all that is drawn is seen, when that is elsewhere; device pixels.
    std::optional<render::IntRect> m_noteAs;
};

} // namespace flash::stage
