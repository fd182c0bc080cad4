#pragma once

#include "flash/stage/Clip.h"
#include "flash/stage/ContextMenu.h"
#include "flash/stage/TextFormat.h"

#include <memory>
#include <optional>

namespace flash::swf
{
struct Button;
}

namespace flash::stage
{

class TextField;

enum class MouseButton : std::uint8_t { Left, Middle, Right };
enum class Cursor : std::uint8_t { Arrow, Hand, Text, Hidden };

/// The mouse on a stage: what it is over, what it has pressed, what it drags. Positions from outside are
/// device pixels of the view.
class Pointer
{
public:
    explicit Pointer(Stage& stage) : m_stage(stage) {}
    Pointer(const Pointer&) = delete;
    Pointer& operator=(const Pointer&) = delete;

    // ---- what the user does ----
    void move(double x, double y);
    void press(double x, double y, MouseButton button = MouseButton::Left, int clicks = 1);
    void release(double x, double y, MouseButton button = MouseButton::Left);
    void wheel(int lines);
    void leave();
    // The menu of what is at a point, or of what has the focus: @returns the movie's part of it
    std::vector<MenuItem> openMenu(double x, double y);
    std::vector<MenuItem> openFocusMenu() { return openMenu(MenuAt::Focus); }
    /// One of the last menu's, by its place.
    void chooseMenuItem(std::size_t item);

    [[nodiscard]] swf::Point position() const { return m_position; } ///< stage twips
    [[nodiscard]] bool isInside() const { return m_isInside; }
    [[nodiscard]] bool isDown() const { return m_isDown; } ///< the left button
    [[nodiscard]] Cursor cursor() const { return m_cursor; }
    /// For hosts that look after the pointer themselves.
    void setCursor(Cursor cursor) { m_cursor = m_visible ? cursor : Cursor::Hidden; }
    void setVisible(bool visible);
    [[nodiscard]] bool isVisible() const { return m_visible; }
    /// Looks what is under the pointer after a frame, which may have moved anything.
    void frameEnded();

    /// What it is over, or what has the focus and is told as if it were.
    [[nodiscard]] const Node* over() const { return m_over.get(); }
    // What has the focus looks and is told as if the pointer were on it, whatever the pointer was on before.
    void rollOverFocus(const NodePtr& node);
    void rollOutOfFocus();

    /// The topmost node that is drawn at a point of the stage, for _droptarget and hit testing.
    [[nodiscard]] Node* topNodeAt(swf::Point stagePoint, const Node* except = nullptr);

    // ---- dragging by script ----
    struct DragLimits {
        double left = 0, top = 0, right = 0, bottom = 0; ///< pixels in the parent's space
    };
    void startDrag(Clip& clip, bool lockCenter, std::optional<DragLimits> limits);
    void stopDrag();
    [[nodiscard]] Clip* dragged() const { return m_dragged.get(); }
    [[nodiscard]] Clip* dropTarget() const { return m_dropTarget; }
    /// What was dragged last, and what it was over; only to be compared with what lives.
    [[nodiscard]] const Clip* lastDragged() const { return m_lastDragged; }
    [[nodiscard]] const Node* dropNode() const { return m_dropNode; }

    /// A node leaves the stage.
    void forget(const Node& node);
    /// All nodes leave the stage.
    void forgetAll();

private:
    std::vector<MenuItem> openMenu(MenuAt at);
    NodePtr targetAt(swf::Point stagePoint);
    void update();
    void noteOver(const NodePtr& target);
    void updateCursor();
    /// Lets the node answer, then its scripts.
    void tell(Node& node, Event event);
    /// What a press of the left button does to a field.
    void pressField(TextField& field, int clicks);
    void followPressedLink(TextField& field);
    /// The field that has the focus, in which a pressed pointer marks text.
    TextField* markedField();
    void moveDragged();
    /// A button went from under the pointer; its like may follow before the pointer looks again.
    void noteLost(const Node& node);
    void adoptLike(const NodePtr& target);

    Stage& m_stage;
    Cursor m_cursor = Cursor::Arrow;
    bool m_visible = true, m_isInside = false, m_isDown = false;
    swf::Point m_position;
    NodePtr m_over, m_pressed;
    bool m_overByFocus = false; ///< m_over has the focus; the pointer has not moved since
    struct Lost {
        const swf::Button* definition = nullptr;
        int depth = 0;
        bool over = false, pressed = false;
    };
    std::optional<Lost> m_lost;
    std::optional<TextFormat> m_pressedLink; ///< of the field m_pressed
    bool m_pressedOutside = false;           ///< it left m_pressed with the button held
    std::shared_ptr<Clip> m_dragged;
    std::optional<DragLimits> m_dragLimits;
    swf::Point m_dragOffset; ///< twips, parent space
    Clip* m_dropTarget = nullptr;
    const Node* m_dropNode = nullptr; ///< forgotten when it leaves
    const Clip* m_lastDragged = nullptr;
};

} // namespace flash::stage
