#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Events.h"
#include "flash/stage/Pointer.h"

#include <optional>

namespace flash::avm2
{

class Player;

/// What the user does, as events: finds what is meant and dispatches. Whatever a listener does, the objects
/// that are still to be told of something are kept alive, and told.
class Input
{
public:
    explicit Input(Player& player, Heap& heap)
        : m_player(player), m_over(heap), m_pressed{Root<DisplayObject>(heap), Root<DisplayObject>(heap),
                                                    Root<DisplayObject>(heap)}
    {
    }

    void moved();
    void pressed(stage::MouseButton button, int clicks);
    void released(stage::MouseButton button);
    void wheel(int lines);
    void left();
    void keyPressed(int keyCode, char32_t charCode);
    void keyReleased(int keyCode, char32_t charCode);

    /// As a script sets it; null takes it away.
    void setFocus(DisplayObject* object);
    [[nodiscard]] DisplayObject* focus();
    void focusChanged(stage::Node* before, stage::Node* now);

    /// The object that a press at a point of the stage (twips) would reach; the stage itself when nothing
    /// does.
    DisplayObject* targetAt(swf::Point point);

    /// The cursor that a script has chosen; nothing: what is under the pointer chooses it.
    void setCursor(std::optional<stage::Cursor> cursor)
    {
        m_cursor = cursor;
        chooseCursor();
    }

private:
    enum class Hit : std::uint8_t { None, Parent, Target };
    Hit pick(DisplayObject& object, swf::Point point, DisplayObject*& target, int depth);
    void fireMouse(std::string_view type, DisplayObject& target, DisplayObject* related = nullptr,
                   bool bubbles = true, int delta = 0);
    void fireKey(std::string_view type, int keyCode, char32_t charCode);
    void roll(DisplayObject* to);
    void showButton(DisplayObject* object, DisplayObject::State state);
    void chooseCursor();
    /// The Enter key or the space bar, on a button or what is to be one.
    void clickFocus();
    void focusByMouse(DisplayObject& target);
    void focusByTab(bool backwards);
    void focusByArrow(int keyCode);
    void focusByKey(DisplayObject& to, int keyCode);
    /// @returns whether nobody prevented it
    bool asksFocusChange(std::string_view type, DisplayObject* to, int keyCode);
    [[nodiscard]] bool flag(DisplayObject& object, std::string_view cls, std::string_view name);
    [[nodiscard]] bool isKind(DisplayObject& object, std::string_view cls);
    [[nodiscard]] bool isMouseFocusable(DisplayObject& object);
    [[nodiscard]] bool isTabStop(DisplayObject& object);
    void collectTabStops(DisplayObject& object, RootedList<DisplayObject*>& stops, int depth);
    [[nodiscard]] bool isDown(int keyCode);

    Player& m_player;
    Root<DisplayObject> m_over;
    Root<DisplayObject> m_pressed[3]; ///< by button
    int m_clicks = 1;
    swf::Point m_movedTo, m_movement; ///< twips; where the pointer was, and how far it has come since
    std::optional<stage::Cursor> m_cursor;
    bool m_hasLink = false;
    std::u16string m_link, m_linkTarget; ///< that was pressed
};

} // namespace flash::avm2
