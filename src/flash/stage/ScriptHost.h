#pragma once

#include "flash/stage/ContextMenu.h"
#include "flash/stage/Services.h"

#include <optional>

namespace flash::stage
{

class Node;
class TextField;
class Button;
enum class MouseButton : std::uint8_t;

/// What happens to an instance, in the order of the bits that files have for clip actions. Most have a
/// handler name in script.
enum class Event : std::uint8_t {
    Load,
    EnterFrame,
    Unload,
    MouseMove,
    MouseDown,
    MouseUp,
    KeyDown,
    KeyUp,
    Data,
    Initialize,
    Press,
    Release,
    ReleaseOutside,
    RollOver,
    RollOut,
    DragOver,
    DragOut,
    KeyPress,
    Construct,
};
constexpr std::uint32_t clipEventBit(Event event) { return 1U << static_cast<unsigned>(event); }

/// The script engine as the stage sees it. The default bodies do nothing: a stage without scripts.
///
/// The stage decides when something runs and calls from its action queue only, never from inside a walk over
/// a display list; a call may change anything on the stage.
class ScriptHost
{
public:
    virtual ~ScriptHost() = default;

    /// Whether the scripts keep the timelines and the lists of all clips themselves: the stage then only
    /// draws what they have put there.
    virtual bool keepsClips() { return false; }
    /// Where a button of such a host takes the pointer, in its node's own space. Nothing where the node says
    /// it.
    virtual std::optional<swf::Rect> pointerBounds(Node&) { return {}; }
    /// The host wants such a movie's root to show a frame (index).
    virtual void showRootFrame(int /*frame*/) {}

    // What the user does is told to such a host alone; the instances under the pointer do nothing by
    // themselves. Where the pointer is, and which keys are down, is known by then.
    virtual void pointerMoved() {}
    virtual void pointerPressed(MouseButton, int /*clicks*/) {}
    virtual void pointerReleased(MouseButton) {}
    virtual void wheelTurned(int /*lines*/) {}
    virtual void pointerLeft() {}
    virtual void keyPressed(int /*keyCode*/, char32_t /*charCode*/) {}
    virtual void keyReleased(int /*keyCode*/, char32_t /*charCode*/) {}
    /// A text is typed into a field. @returns whether it goes there
    virtual bool takesText(TextField&, std::u16string_view /*text*/) { return true; }

    /// The user opens the menu of the right button. Scripts hear of it before they are asked for their items.
    /// @returns what is to be shown, in its order
    virtual std::vector<MenuItem> openMenu(MenuAt) { return {}; }
    /// One of the items of the last menu was chosen, by its place there. A menu is chosen from once.
    virtual void chooseMenuItem(std::size_t /*item*/) {}
    /// Nothing of the last menu can be chosen any more.
    virtual void closeMenu() {}

    /// Runs one compiled block with `target` as `this`. `movie` owns the block and gives its version.
    virtual void runActions(Node& /*target*/, const MoviePtr& /*movie*/, const swf::ActionBlock&) {}

    /// Runs the script-side handler of an instance (`onLoad`, `onPress`, ...) if it has one. The blocks that
    /// the file holds for the event ran before.
    virtual void dispatch(Node&, Event) {}
    /// Whether dispatch() would find a handler. Asked while the pointer moves.
    virtual bool hasHandler(Node&, Event) { return false; }
    /// Whether there is something of the handler's name, be it nothing that can be called.
    virtual bool namesHandler(Node& node, Event event) { return hasHandler(node, event); }
    /// Whether buttons and button-like clips react: their `enabled` property.
    virtual bool isEnabled(Node&) { return true; }

    /// Makes a clip with a linkage name an object of its registered class, before its construct handlers run.
    virtual void assignClass(Clip&) {}
    /// A clip with a linkage name was placed: makes the instance an object of its registered class and calls
    /// the constructor.
    virtual void constructClip(Clip&) {}
    /// Whether a class is registered for the clip's linkage name, so that construction must be queued.
    virtual bool hasRegisteredClass(Clip&) { return false; }

    // Broadcasts to the listeners of Key, Mouse, Stage and Selection.
    virtual void broadcastKey(Event /*KeyDown or KeyUp*/) {}
    /// Whether anybody would hear broadcastKey.
    virtual bool hasKeyListeners() { return false; }
    virtual void broadcastMouse(Event /*MouseDown, MouseUp or MouseMove*/) {}
    virtual void broadcastWheel(int /*lines*/, Node* /*under the pointer*/) {}
    virtual void broadcastResize() {}
    virtual void broadcastFullScreen(bool) {}
    /// Runs onKillFocus, onSetFocus and tells the listeners of Selection.
    virtual void focusChanged(Node* /*before*/, Node* /*now*/) {}

    /// A text field of the file came onto the stage.
    virtual void textFieldPlaced(TextField&) {}
    virtual void textChanged(TextField&) {}
    virtual void textScrolled(TextField&) {}
    /// The text has other pictures than are shown (see TextField::missingPicture()). Asked of hosts that keep
    /// the clips; others leave them to the stage.
    virtual void renewPictures(TextField&) {}
    /// The user clicked a link of the field. `url` may name a function of the field's timeline instead of an
    /// address: `asfunction:NAME,ARGUMENT`.
    virtual void followLink(TextField&, std::u16string_view /*url*/, std::u16string_view /*window*/) {}

    /// The value of a text field's variable, by a path as the file has it (`/a:b`, `_root.a.b`), seen from
    /// `scope`. Nothing when it is undefined.
    virtual std::optional<std::string> variable(Clip& /*scope*/, std::string_view /*path*/) { return {}; }
    /// Whether the path leads to a variable of a clip, rather than to a property of another object.
    virtual bool isClipVariable(Clip& /*scope*/, std::string_view /*path*/) { return true; }
    /// @returns false when the path's clip does not exist (yet).
    virtual bool setVariable(Clip& /*scope*/, std::string_view /*path*/, std::string_view /*value*/)
    {
        return false;
    }

    /// An instance gets a name. It need not be on the display list yet.
    virtual void nodeNamed(std::string_view /*name*/) {}
    /// A node goes off the display list for good (after its unload handlers ran); its path still holds.
    virtual void nodeRemoved(Node&) {}
    /// The root of a level or a loaded clip was replaced by another movie: script properties go.
    virtual void clipReset(Clip&) {}

    /// Another movie takes the place of the one that is open: its timers go.
    virtual void movieReplaced() {}

    /// Milliseconds until the next timer of setInterval or setTimeout; negative when there is none.
    virtual double nextTimerMs() { return -1; }
    /// The stage's clock stands at `nowMs`: run the timers that are due.
    virtual void runTimers(double /*nowMs*/) {}
    /// The end of a frame: a good moment to free objects.
    virtual void frameEnded() {}

    /// Scripts that are short each for itself take too long together: the user is asked, and they may all be
    /// ended.
    virtual void stopSlowScripts() {}

    /// Host access to variables (GetVariable, SetVariable), seen from the root.
    virtual std::optional<std::string> hostVariable(std::string_view /*path*/) { return {}; }
    virtual void setHostVariable(std::string_view /*path*/, std::string_view /*value*/) {}
};

} // namespace flash::stage
