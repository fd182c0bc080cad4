#pragma once

#include "flash/render/Surface.h"
#include "flash/stage/Services.h"
#include "flash/swf/Movie.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace flash::render
{
class Canvas;
}
namespace flash::swf
{
struct Matrix3D;
struct Perspective;
} // namespace flash::swf

namespace flash::stage
{

class Stage;
class Clip;
class Button;
class Node;
struct Space;
struct SpacePlace;
enum class Event : std::uint8_t;
enum class Cursor : std::uint8_t;
enum class TextCommand : std::uint8_t;
using NodePtr = std::shared_ptr<Node>;

enum class NodeKind : std::uint8_t { Shape, Morph, StaticText, Clip, Button, TextField, Video, Bitmap };

// Depths are those scripts see: a depth of the file counts from kTimelineDepth.
constexpr int kTimelineDepth = -16384;
constexpr int kMaxScriptDepth = 2130690044;
/// An instance whose unload handlers have yet to run waits at kUnloadDepthBase - depth.
constexpr int kUnloadDepthBase = -32769;

/// What a script machine knows an instance by; each machine derives its own.
class Peer
{
public:
    /// @returns null for that of another machine
    template <class T>
    [[nodiscard]] T* as()
    {
        return m_tag == &T::kTag ? static_cast<T*>(this) : nullptr;
    }

protected:
    /// @param tag address of the derived class's `kTag`
    explicit Peer(const void* tag) : m_tag(tag) {}
    ~Peer() = default;

private:
    const void* m_tag;
};

/// One instance on (or once on) a display list.
///
/// Shared by its parent's list and by script objects: a script may keep an instance that left the stage;
/// isRemoved() tells. Created by DisplayList and by what contains it.
class Node : public std::enable_shared_from_this<Node>
{
public:
    Node(Stage& stage, NodeKind kind);
    virtual ~Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    [[nodiscard]] Stage& stage() const { return m_stage; }
    [[nodiscard]] NodeKind kind() const { return m_kind; }
    /// The clip or, for what a button shows, the button. Null for a level's root and for removed nodes.
    [[nodiscard]] Node* parent() const { return m_parent; }
    /// The nearest clip above: what scripts know as `_parent`.
    [[nodiscard]] Clip* parentClip() const;
    /// The root of the level this node is on (never null while it is on the stage).
    [[nodiscard]] Clip* levelRoot();
    [[nodiscard]] bool isRemoved() const { return m_removed; }
    /// It is off its depth and goes as soon as its unload handlers have run.
    [[nodiscard]] bool isUnloading() const { return m_unloading; }
    /// It, or something that contains it, is unloading.
    [[nodiscard]] bool isLeaving() const;
    [[nodiscard]] int depth() const { return m_depth; }
    [[nodiscard]] const std::string& name() const { return m_name; } ///< UTF-8; empty when it has none
    void setName(std::string name);
    /// The movie whose dictionary the instance comes from; its version rules its scripts.
    [[nodiscard]] const MoviePtr& movie() const { return m_movie; }
    [[nodiscard]] std::uint16_t characterId() const { return m_characterId; }
    /// `/a/b`, with `_levelN` in front unless it is level 0.
    [[nodiscard]] std::string slashPath();
    /// `_level0.a.b`
    [[nodiscard]] std::string dotPath();

    // ---- place and look. Every setter marks the node as changed. ----
    [[nodiscard]] const swf::Matrix& matrix() const { return m_matrix; }
    void setMatrix(const swf::Matrix& matrix);     ///< forgets the cached scale and rotation
    void setMatrixOnly(const swf::Matrix& matrix); ///< what scripts see as scale and rotation stays
    [[nodiscard]] virtual double x() { return m_matrix.tx / swf::kTwipsPerPixel; } ///< pixels
    [[nodiscard]] virtual double y() { return m_matrix.ty / swf::kTwipsPerPixel; }
    virtual void setX(double pixels);
    virtual void setY(double pixels);
    /// What scripts see and set: kept as numbers of their own, because a matrix loses signs, the rotation of
    /// a scale of zero and the last digits. Percent and degrees.
    [[nodiscard]] double scaleX();
    [[nodiscard]] double scaleY();
    [[nodiscard]] double rotation();
    void setScaleX(double percent);
    void setScaleY(double percent);
    void setRotation(double degrees);
    /// Of the bounds in the parent's space, pixels; setting scales.
    [[nodiscard]] double width();
    [[nodiscard]] double height();
    virtual void setWidth(double pixels);
    virtual void setHeight(double pixels);
    [[nodiscard]] const swf::ColorTransform& color() const { return m_color; }
    void setColor(const swf::ColorTransform& color);
    [[nodiscard]] double alpha() const; ///< percent
    void setAlpha(double percent);
    [[nodiscard]] bool isVisible() const { return m_visible; }
    void setVisible(bool visible);
    [[nodiscard]] swf::BlendMode blend() const { return m_blend; }
    void setBlend(swf::BlendMode mode);
    [[nodiscard]] const std::vector<swf::Filter>& filters() const { return m_filters; }
    void setFilters(std::vector<swf::Filter> filters);
    [[nodiscard]] bool cacheAsBitmap() const { return m_cacheAsBitmap; }
    void setCacheAsBitmap(bool on);
    [[nodiscard]] const std::optional<swf::Rgba>& opaqueBackground() const { return m_opaqueBackground; }
    void setOpaqueBackground(std::optional<swf::Rgba> color);
    [[nodiscard]] const std::optional<swf::Rect>& scrollRect() const { return m_scrollRect; }
    void setScrollRect(std::optional<swf::Rect> rect);
    [[nodiscard]] const std::optional<swf::Rect>& scalingGrid() const { return m_scalingGrid; }
    void setScalingGrid(std::optional<swf::Rect> grid);
    [[nodiscard]] std::uint16_t ratio() const { return m_ratio; }
    virtual void setRatio(std::uint16_t ratio);
    /// Depth up to which this node clips its siblings; nothing for ordinary nodes.
    [[nodiscard]] std::optional<int> clipDepth() const { return m_clipDepth; }
    void setClipDepth(std::optional<int> depth);
    /// setMask: a node has at most one mask and masks at most one node.
    [[nodiscard]] Node* mask() const { return m_mask; }
    [[nodiscard]] Node* maskee() const { return m_maskee; }
    void setMask(Node* mask);

    /// Set by a script: the timeline no longer moves it.
    [[nodiscard]] bool isScriptTransformed() const { return m_scriptTransformed; }
    void setScriptTransformed() { m_scriptTransformed = true; }

    // ---- space: null and unused as long as nothing leaves its plane ----
    [[nodiscard]] const Space* space() const { return m_space.get(); }
    /// Whether it has a place in space, which then counts instead of its matrix. The matrix, and what scripts
    /// see as scale and rotation, follow it as far as they can.
    [[nodiscard]] const SpacePlace* spacePlace() const;
    /// That place, or the one that its matrix gives it.
    [[nodiscard]] SpacePlace spacePlaceOrFlat();
    void setSpacePlace(const SpacePlace& place);
    /// Back into the plane, where its matrix has it.
    void clearSpacePlace();
    /// The perspective in which what it contains is seen; nothing: that of what contains it.
    void setPerspective(const std::optional<swf::Perspective>& perspective);
    /// Whether it, or something that contains it, has left the plane.
    [[nodiscard]] bool isInSpace() const;
    /// Whether something below it has.
    [[nodiscard]] bool holdsSpace() const;
    /// What the eye does to the parent's space, on the way to the parent's plane.
    [[nodiscard]] swf::Matrix3D perspectiveAround() const;
    /// Its own place in its parent's space.
    [[nodiscard]] swf::Matrix3D matrix3D() const;
    /// To the stage, as seen.
    [[nodiscard]] swf::Matrix3D toStageInSpace() const;
    /// As toStage(); in space the matrix that is right for what is seen at that point.
    /// Not invertible where nothing of its plane is seen.
    [[nodiscard]] swf::Matrix toStageAt(swf::Point stagePoint) const;

    // ---- geometry ----
    /// Of what it shows, in its own space. With or without strokes.
    enum class Extent : std::uint8_t { WithStrokes, WithoutStrokes };
    [[nodiscard]] virtual swf::Rect bounds(Extent extent = Extent::WithStrokes) = 0;
    /// bounds() in another space, each side rounded to the nearest twip as scripts see it.
    [[nodiscard]] swf::Rect boundsThrough(const swf::Matrix& matrix, Extent extent = Extent::WithStrokes);
    /// From this node's space to the stage's (twips).
    [[nodiscard]] swf::Matrix toStage() const;
    /// Whether a point of the stage (twips) lies on what is drawn.
    [[nodiscard]] virtual bool hitsShape(swf::Point stagePoint) = 0;

    /// What its own painting may cover, in its own space: bounds(), unless a scaling grid moves it.
    [[nodiscard]] swf::Rect reach();
    /// An outline as a scaling grid spreads it: the grid of the clip around a shape, or of the clip itself
    /// for what is drawn on it.
    struct Sliced {
        std::shared_ptr<const swf::Shape> shape;
        Node* holder;         ///< the node whose grid it is
        swf::Matrix toHolder; ///< from the shape's space to the holder's
    };
    /// Nothing unless there is a grid that counts: not when its clip is turned or skewed.
    [[nodiscard]] std::optional<Sliced> sliced();

    /// What a scaling grid slices. Null for what is scaled as a whole.
    [[nodiscard]] virtual std::shared_ptr<const swf::Shape> outline() { return nullptr; }

    /// What it contains, in depth order.
    [[nodiscard]] virtual std::span<const NodePtr> children() const { return {}; }
    /// Paints what the node itself shows; containers paint nothing (the renderer walks their children).
    virtual void draw(render::Canvas&, const swf::Matrix& /*toDevice*/, const swf::ColorTransform&) {}

    /// Marks the node's old and new place as to be drawn again.
    void invalidate();
    /// The same, and what it shows has other bounds than before.
    void contentChanged();

    /// Whether it was only moved since it was noted, and stands again where it stood: scripts place things in
    /// several steps, over and over. From now on it counts as unchanged then.
    [[nodiscard]] bool cameBack();
    /// Where it was drawn last. From now on it counts as drawn nowhere, and as unchanged.
    [[nodiscard]] render::IntRect takeChange();
    /// @param where device pixels that it may have painted
    void noteDrawn(const render::IntRect& where) { m_drawnBounds = where; }

    // ---- what depends on its kind ----
    /// Scripts know it by a name.
    [[nodiscard]] virtual bool isScriptable() const { return false; }
    /// Scripts cannot tell when a placement puts another character in its place.
    [[nodiscard]] virtual bool isExchangeable() const { return true; }
    /// It is on its list: its first turn.
    virtual void begin() {}

    // ---- pointer, keys and focus ----
    /// What the pointer works on at a point of the stage (twips): the node or something in it, or null.
    [[nodiscard]] NodePtr pointerTarget(swf::Point stagePoint);
    /// The topmost node drawn there; `except` and what it contains do not count.
    [[nodiscard]] virtual Node* topNodeAt(swf::Point stagePoint, const Node* except);
    /// Of what takes the pointer, in its own space.
    [[nodiscard]] virtual swf::Rect pointerBounds() { return bounds(); }
    /// The pointer may come and go with its button held.
    [[nodiscard]] virtual bool tracksAsMenu() const { return false; }
    [[nodiscard]] virtual Cursor cursorAt(swf::Point stagePoint);
    /// Pointer and keys come to it as events for its handlers; a text field deals with them itself.
    [[nodiscard]] virtual bool hearsInput() const { return true; }
    /// Does what the file says of the event, before any handler of a script.
    virtual void answerPointer(Event) {}
    /// Of that, what the file's actions are; a click by the keyboard has no more.
    virtual void runPointerActions(Event) {}
    /// Queues what it or something in it has for a key of the file's numbering. @returns whether anything
    virtual bool takeKeyPress(int /*keyPressCode*/) { return false; }
    /// Whether the file has handlers of keys for it, or for something in it.
    [[nodiscard]] virtual bool listensToKeys() const { return false; }
    /// Whether a script may give it the focus.
    [[nodiscard]] virtual bool canTakeFocus() { return false; }
    /// Whether the Tab key stops at it, unless a script says otherwise.
    [[nodiscard]] virtual bool isTabStop() { return false; }
    /// With the focus, it does something with keys.
    [[nodiscard]] virtual bool usesKeys() const { return false; }
    /// With the focus, Enter and the space bar click it.
    [[nodiscard]] virtual bool isClickedByKeys() const { return false; }
    virtual void focusGained() {}
    virtual void focusLost() {}
    /// A character was typed.
    virtual void input(char32_t /*character*/) {}
    virtual void command(TextCommand) {}
    /// The stage is about to be drawn.
    virtual void tick(double /*nowMs*/) {}

    // ---- focus; meaningful for clips, buttons and text fields ----
    std::optional<int> tabIndex;
    std::optional<bool> tabEnabled, focusRect;

    /// Null while scripts do not know the instance. Owned by the script engine's heap; cleared by it.
    Peer* peer = nullptr;

protected:
    Space& needSpace();
    void cacheScale();
    struct Sides {
        double width, height; ///< pixels
    };
    [[nodiscard]] bool isUpright() const;
    void fit(Sides wanted);
    void collapse();
    /// It is drawn no longer, nor is anything in it; nothing of it has the pointer or the focus.
    void noteGone();
    /// It counts no longer as one of the stage's instances.
    void unlist();
    /// A cached extent somewhere above is out of date.
    virtual void forgetBounds();

    /// What goes when it goes.
    [[nodiscard]] virtual std::vector<NodePtr> held() const;
    /// It left for good: lets go of what it contains.
    virtual void leave() {}
    /// pointerTarget(), where it is there for the pointer at all.
    virtual NodePtr ownPointerTarget(swf::Point /*stagePoint*/) { return nullptr; }
    /// What is disabled under the pointer keeps it, and hears nothing, until the pointer leaves.
    [[nodiscard]] bool answersPointer();

    // Whoever holds nodes places them.
    friend class DisplayList;
    friend class Clip;
    friend class Button;
    friend class TextField;

    Stage& m_stage;
    NodeKind m_kind;
    Node* m_parent = nullptr;
    MoviePtr m_movie;
    std::string m_name;
    int m_depth = 0;
    int m_nesting = 0; ///< how many contain it
    std::uint16_t m_characterId = 0, m_ratio = 0;
    bool m_removed = false, m_unloading = false, m_visible = true, m_cacheAsBitmap = false;
    bool m_scriptTransformed = false, m_scaleCached = false;
    std::shared_ptr<std::size_t> m_listed; ///< the stage's count of instances; null once it has left
    bool m_changed = false;                ///< listed by the stage as changed since the last drawing
    bool m_onlyMoved = false;              ///< while changed: by nothing but its matrix
    swf::Matrix m_matrixBefore;            ///< while only moved
    /// Frame (index) whose tag placed it; -1 when a script did.
    int m_placedFrame = -1;
    std::uint16_t m_placedId = 0; ///< the character that the tag placed; exchanged ones differ
    swf::BlendMode m_blend = swf::BlendMode::Normal;
    swf::Matrix m_matrix;
    double m_scaleX = 100, m_scaleY = 100, m_rotation = 0, m_skew = 0;
    swf::ColorTransform m_color;
    std::vector<swf::Filter> m_filters;
    std::optional<swf::Rgba> m_opaqueBackground;
    std::optional<swf::Rect> m_scrollRect, m_scalingGrid;
    std::optional<int> m_clipDepth;
    Node* m_mask = nullptr;
    Node* m_maskee = nullptr;
    struct SliceCache;
    std::unique_ptr<SliceCache> m_sliceCache; ///< made when first sliced
    std::unique_ptr<Space> m_space;
    render::IntRect m_drawnBounds; ///< device pixels, as last drawn; empty when not drawn
};

} // namespace flash::stage
