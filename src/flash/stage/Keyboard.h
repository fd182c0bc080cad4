#pragma once

#include "flash/stage/ScriptHost.h"

#include <cstdint>
#include <set>
#include <string>

namespace flash::stage
{

class Stage;

/// What the keyboard can say to a text field besides letters.
enum class TextCommand : std::uint8_t {
    MoveLeft,
    MoveRight,
    MoveUp,
    MoveDown,
    MoveLeftWord,
    MoveRightWord,
    MoveLineStart,
    MoveLineEnd,
    MovePageUp,
    MovePageDown,
    MoveDocumentStart,
    MoveDocumentEnd,
    SelectLeft,
    SelectRight,
    SelectUp,
    SelectDown,
    SelectLeftWord,
    SelectRightWord,
    SelectLineStart,
    SelectLineEnd,
    SelectPageUp,
    SelectPageDown,
    SelectDocumentStart,
    SelectDocumentEnd,
    SelectAll,
    Copy,
    Cut,
    Paste,
    Backspace,
    BackspaceWord,
    Delete,
    DeleteWord,
    Enter,
};
/// It marks or copies, and leaves the text and its caret alone.
constexpr bool onlyReads(TextCommand command)
{
    return command >= TextCommand::SelectLeft && command <= TextCommand::Copy;
}

/// The keys of a stage: which are down, and who hears of them.
class Keyboard
{
public:
    explicit Keyboard(Stage& stage) : m_stage(stage) {}
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    // ---- what the user does ----
    /// @param keyCode the player's key codes (Key.getCode) @param charCode the character, or 0
    void press(int keyCode, char32_t charCode = 0);
    void release(int keyCode, char32_t charCode = 0);
    void type(char32_t character);
    void command(TextCommand command);
    /// What an input method is about to type is seen where it will stand; empty: it has come to an end.
    /// @param caret where in it the caret stands
    void compose(std::u16string text, std::size_t caret);
    /// The keys go to another window.
    void leave();
    /// They do so for a moment, as while a menu is open: what has the focus keeps it.
    void pause() { m_down.clear(); }

    // ---- for scripts ----
    [[nodiscard]] bool isDown(int keyCode) const { return m_down.contains(keyCode); }
    [[nodiscard]] bool isToggled(int keyCode) const { return m_toggled.contains(keyCode); }
    /// Every press of a key turns its toggle. Buttons of the mouse have key codes, too.
    void noteDown(int keyCode);
    void noteUp(int keyCode) { m_down.erase(keyCode); }
    [[nodiscard]] int lastCode() const { return m_lastCode; }
    [[nodiscard]] int lastCharacter() const { return m_lastCharacter; }
    /// A script looks at the keys by itself, without being called.
    void noteAsked() { m_asked = true; }
    /// Whether a key that goes down would make a difference to the movie, as far as can be told.
    [[nodiscard]] bool isHeard();

    /// The movie is taken down.
    void clear();

private:
    void tell(Event event);
    bool offerPress(int keyPressCode);
    void clickFocus();

    Stage& m_stage;
    std::set<int> m_down;
    std::set<int> m_toggled;
    int m_lastCode = 0, m_lastCharacter = 0;
    bool m_taken = false; ///< the last key that went down was a handler's alone
    bool m_asked = false; ///< by a script of this movie, once at least
};

} // namespace flash::stage
