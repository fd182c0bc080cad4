#pragma once

#include "flash/render/Surface.h"
#include "flash/stage/Node.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace flash::render
{
class Canvas;
class RenderCache;
} // namespace flash::render

namespace flash::swf
{
struct Perspective;
}

namespace flash::stage
{

class Damage;
class DrawnPictures;

enum class ScaleMode : std::uint8_t { ShowAll, NoBorder, ExactFit, NoScale };
enum class Quality : std::uint8_t { Low, Medium, High, Best };
/// Bits: where the movie stands in a view of another shape; none is centred.
enum Align : std::uint8_t { kAlignLeft = 1, kAlignTop = 2, kAlignRight = 4, kAlignBottom = 8 };

/// The area that a stage is shown in: how the movie lies in it, how it is drawn, and what changed there.
class View
{
public:
    explicit View(Stage& stage);
    ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    /// Device pixels.
    void setSize(int width, int height);
    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    /// Device pixels to one pixel of the host's measure; only NoScale looks at it.
    void setDeviceScale(double scale);
    [[nodiscard]] double deviceScale() const { return m_deviceScale; }
    void setScaleMode(ScaleMode mode);
    [[nodiscard]] ScaleMode scaleMode() const { return m_scaleMode; }
    void setAlign(unsigned align);
    [[nodiscard]] unsigned align() const { return m_align; }
    void setQuality(Quality quality);
    [[nodiscard]] Quality quality() const { return m_quality; }
    [[nodiscard]] swf::Rgba background() const { return m_background; }
    void setBackground(swf::Rgba color); ///< by a movie's tag; ignored once the host has set one
    void setHostBackground(swf::Rgba color);
    /// Another movie is open: its background, as the header has it.
    void adopt(const swf::Movie& movie);
    /// Stage twips to device pixels.
    [[nodiscard]] swf::Matrix matrix() const;
    /// The stage as scripts see it (Stage.width and height), pixels.
    [[nodiscard]] double stageWidth() const;
    [[nodiscard]] double stageHeight() const;
    /// What has left the plane is seen in it, unless something around it has another.
    [[nodiscard]] swf::Perspective defaultPerspective() const;
    [[nodiscard]] bool isFullScreen() const { return m_fullScreen; }
    void setFullScreen(bool on);
    /// What scripts see of a movie in full screen that no host gives a size, pixels. Without, the size stays.
    void setScreenSize(int width, int height);
    void setShowsMenu(bool full);
    [[nodiscard]] bool showsMenu() const { return m_showsMenu; }

    // ---- drawing ----
    /// What changed since the last call of render(), device pixels: few boxes within the view, which may
    /// overlap. None when nothing did. Valid until something changes.
    [[nodiscard]] std::span<const render::IntRect> dirtyBoxes();
    /// Draws what lies in `boxes` (device pixels), background included, and forgets what was dirty.
    void render(render::Canvas& canvas, std::span<const render::IntRect> boxes);
    void render(render::Canvas& canvas, const render::IntRect& box) { render(canvas, std::span(&box, 1)); }
    void invalidateAll();
    /// Pictures that lie below all else of the stage. @param picture opaque; none: there is none any more
    /// @param x, y of its upper left corner, pixels of the stage
    void setBackdrop(std::size_t index, std::shared_ptr<const swf::Bitmap> picture, double x, double y);
    /// For canvases that draw this stage.
    [[nodiscard]] render::RenderCache& renderCache() { return *m_renderCache; }

    // ---- for nodes ----
    void noteChanged(Node& node) { m_changedNodes.push_back(node.weak_from_this()); }
    /// It is drawn no longer where it was.
    void noteRemoved(const Node& node, const render::IntRect& drawnBounds);
    /// From now on there may be nodes that are seen outside what they say they reach.
    void noteOutgrowth() { m_hasOutgrowth = true; }
    [[nodiscard]] bool hasOutgrowth() const { return m_hasOutgrowth; }
    /// A script has drawn on a picture: what shows it is drawn again.
    void noteDrawnOn(const swf::Bitmap& picture);
    /// How what is drawn as a picture of its own was drawn last.
    [[nodiscard]] DrawnPictures& drawnPictures() { return *m_drawnPictures; }
    /// Those that are gone hold on to their memory as long as they are listed.
    void forgetGoneNodes();
    void forgetNodes();
    /// To be held by whatever leaves the plane.
    [[nodiscard]] const std::shared_ptr<const int>& spaces() const { return m_spaces; }
    [[nodiscard]] bool hasSpaces() const { return m_spaces.use_count() > 1; }
    /// Instances listed as changed since the stage was drawn last, those that are gone by now included.
    [[nodiscard]] std::size_t notedChanges() const { return m_changedNodes.size(); }

private:
    [[nodiscard]] render::IntRect area() const;
    void collectDirty();
    void collectFocusFrame(const swf::Matrix& view);
    void drawBox(render::Canvas& canvas, const swf::Matrix& view, const render::IntRect& box,
                 const Node* ground);
    void drawBackdrops(render::Canvas& canvas, const swf::Matrix& view) const;

    struct Backdrop {
        std::shared_ptr<const swf::Bitmap> picture;
        double x = 0, y = 0;
        [[nodiscard]] swf::Matrix place() const; ///< its pixels to twips of the stage
        [[nodiscard]] swf::Rect reach() const;
    };

    Stage& m_stage;
    int m_width = 0, m_height = 0;
    double m_deviceScale = 1;
    ScaleMode m_scaleMode = ScaleMode::ShowAll;
    unsigned m_align = 0;
    Quality m_quality = Quality::High;
    swf::Rgba m_background{255, 255, 255, 255};
    bool m_hostBackground = false, m_movieBackground = false;
    bool m_fullScreen = false, m_showsMenu = true;
    int m_screenWidth = 0, m_screenHeight = 0;
    std::unique_ptr<render::RenderCache> m_renderCache;
    std::vector<Backdrop> m_backdrops;
    std::unique_ptr<Damage> m_damage;
    std::unique_ptr<DrawnPictures> m_drawnPictures;
    std::optional<std::array<swf::Point, 2>> m_focusFrame; ///< as drawn last
    bool m_hasOutgrowth = false;
    std::vector<std::weak_ptr<Node>> m_changedNodes;
    std::vector<const swf::Bitmap*> m_drawnOn; ///< for comparison only: they may be gone
    std::shared_ptr<const int> m_spaces = std::make_shared<const int>();
    std::size_t m_changedKept = 0; ///< of those, still there when last looked at
};

} // namespace flash::stage
