#pragma once

#include "flash/stage/Node.h"
#include "flash/video/StreamPictures.h"

#include <vector>

// What a timeline shows and scripts cannot name: shapes, morphs, static texts, and pictures.
namespace flash::stage
{

class ShapeNode final : public Node
{
public:
    ShapeNode(Stage& stage, std::shared_ptr<const swf::Shape> shape);
    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;
    [[nodiscard]] const std::shared_ptr<const swf::Shape>& shape() const { return m_shape; }

protected:
    std::shared_ptr<const swf::Shape> outline() override { return m_shape; }

private:
    std::shared_ptr<const swf::Shape> m_shape;
};

class MorphNode final : public Node
{
public:
    MorphNode(Stage& stage, std::shared_ptr<const swf::MorphShape> morph)
        : Node(stage, NodeKind::Morph), m_morph(std::move(morph))
    {
    }
    void setRatio(std::uint16_t ratio) override;
    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;

protected:
    std::shared_ptr<const swf::Shape> outline() override { return shape(); }

private:
    const std::shared_ptr<const swf::Shape>& shape();
    std::shared_ptr<const swf::MorphShape> m_morph;
    std::shared_ptr<const swf::Shape> m_shape; ///< at the present ratio; made when needed
};

class StaticTextNode final : public Node
{
public:
    /// @param text belongs to `movie`, which also holds the fonts
    StaticTextNode(Stage& stage, MoviePtr movie, const swf::StaticText& text);
    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;
    /// The characters of its glyphs, for text snapshots. UTF-8.
    [[nodiscard]] std::string text() const;
    [[nodiscard]] std::size_t glyphCount() const;
    struct GlyphInfo {
        std::uint16_t code = 0;
        swf::Rect bounds;   ///< of its outline, in its font's units
        swf::Matrix toNode; ///< from there
        std::string font;   ///< UTF-8
        double height = 0;  ///< twips to the em
        swf::Rgba color;
    };
    /// @param index less than glyphCount()
    [[nodiscard]] GlyphInfo glyph(std::size_t index) const;
    /// Paints the ground of selected characters, as scripts have selected them.
    void select(std::size_t index, bool isSelected, swf::Rgba color);

private:
    struct Glyph {
        std::shared_ptr<const swf::Shape> outline;
        swf::Matrix toNode;
        std::uint16_t code = 0;
        double advance = 0; ///< in units of its outline
    };
    struct Run {
        swf::Rgba color;
        std::vector<Glyph> glyphs;
        std::string font;
        double height = 0;
        double ascent = 0, descent = 0; ///< in units of its outlines
    };
    void drawSelection(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color);
    const swf::StaticText& m_text;
    std::vector<Run> m_runs;
    std::vector<bool> m_selected; ///< by glyph; empty: none
    swf::Rgba m_selectColor;
};

/// A picture: attached by script, or loaded in a movie's place. None shows nothing.
/// Whether a bitmap's corner is drawn on a whole pixel. Auto: as long as it is neither scaled nor turned.
enum class PixelSnapping { Auto, Always, Never };

class BitmapNode final : public Node
{
public:
    BitmapNode(Stage& stage, std::shared_ptr<const swf::Bitmap> bitmap, bool smooth)
        : Node(stage, NodeKind::Bitmap), m_bitmap(std::move(bitmap)), m_smooth(smooth)
    {
        noteSize();
    }
    [[nodiscard]] const std::shared_ptr<const swf::Bitmap>& bitmap() const { return m_bitmap; }
    void setBitmap(std::shared_ptr<const swf::Bitmap> bitmap);
    void noteSize()
    {
        m_width = m_bitmap ? m_bitmap->width : 0;
        m_height = m_bitmap ? m_bitmap->height : 0;
    }
    [[nodiscard]] bool isSmooth() const { return m_smooth; }
    void setSmooth(bool smooth);
    void setSnapping(PixelSnapping snapping);
    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;

private:
    std::shared_ptr<const swf::Bitmap> m_bitmap;
    int m_width = 0, m_height = 0; ///< the picture's, which a script may take from it
    bool m_smooth;
    PixelSnapping m_snapping = PixelSnapping::Auto;
};

/// A video's place on the stage: shows the frames embedded in the movie, or the pictures of a file that a
/// script attached.
class VideoNode final : public Node
{
public:
    VideoNode(Stage& stage, const swf::VideoStream& stream);
    [[nodiscard]] const swf::VideoStream& stream() const { return m_stream; }
    /// What is attached shows instead of the embedded frames. Null: nothing until the next picture.
    void setPicture(std::shared_ptr<const swf::Bitmap> picture);
    /// Of what is shown, pixels; 0 before the first picture.
    [[nodiscard]] int pictureWidth() const { return m_picture ? m_picture->width : 0; }
    [[nodiscard]] int pictureHeight() const { return m_picture ? m_picture->height : 0; }
    void setRatio(std::uint16_t ratio) override;
    [[nodiscard]] swf::Rect bounds(Extent extent = Extent::WithStrokes) override;
    [[nodiscard]] bool hitsShape(swf::Point stagePoint) override;
    void draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) override;
    [[nodiscard]] bool isScriptable() const override { return true; }
    void setSmoothing(bool on);
    [[nodiscard]] bool smoothing() const { return m_smoothing; }
    /// As scripts number it. For the pictures that come.
    void setDeblocking(int number);
    [[nodiscard]] int deblocking() const { return m_deblocking; }

private:
    const swf::VideoStream& m_stream; ///< belongs to movie()
    video::StreamPictures m_embedded;
    bool m_attached = false;
    bool m_stale = true; ///< the embedded frame has changed since m_picture was taken
    bool m_smoothing;
    int m_deblocking;
    std::shared_ptr<const swf::Bitmap> m_picture;
};

/// Whether lines of a shape keep their width when it is scaled, which leads them out of its stated bounds.
[[nodiscard]] bool hasUnscaledLines(const swf::Shape& shape);

/// Whether a stage point (twips) lies on a shape of the node, as its scaling grid may spread it.
bool shapeHit(Node& node, const swf::Shape& shape, swf::Point stagePoint);

/// Whether a stage point (twips) lies within a node's rectangle.
bool rectContains(const Node& node, const swf::Rect& rect, swf::Point stagePoint);

} // namespace flash::stage
