#include "flash/stage/Keyboard.h"

#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <algorithm>

namespace flash::stage
{

namespace
{

// The key numbers that button conditions use for keys that type nothing.
struct SpecialKey {
    int keyCode;
    int pressCode;
};
constexpr SpecialKey kSpecialKeys[] = {
    {37, 1},  {39, 2},  {36, 3},  {35, 4},  {45, 5},  {46, 6}, {8, 8},
    {13, 13}, {38, 14}, {40, 15}, {33, 16}, {34, 17}, {9, 18}, {27, 19},
};

int pressCodeOf(int keyCode, char32_t charCode)
{
    for (const SpecialKey& key : kSpecialKeys)
        if (key.keyCode == keyCode) return key.pressCode;
    return charCode >= 32 && charCode < 127 ? static_cast<int>(charCode) : 0;
}

} // namespace

bool Keyboard::offerPress(int keyPressCode)
{
    if (keyPressCode == 0) return false;
    // The first that wants the key has it alone.
    const auto& levels = m_stage.displayList().levels();
    return std::any_of(levels.begin(), levels.end(),
                       [&](const auto& level) { return level.second->takeKeyPress(keyPressCode); });
}

bool Keyboard::isHeard()
{
    if (m_asked || m_stage.script().keepsClips() || m_stage.script().hasKeyListeners()) return true;
    if (Node* focus = m_stage.focus().node(); focus && focus->usesKeys()) return true;
    const auto& levels = m_stage.displayList().levels();
    return std::any_of(levels.begin(), levels.end(),
                       [](const auto& level) { return level.second->listensToKeys(); });
}

// The file's handlers hear of every key, a script's onKeyDown and onKeyUp only while the instance has the
// focus, and not once the mouse has taken over.
void Keyboard::tell(Event event)
{
    const auto& clips = m_stage.displayList().clips();
    for (std::size_t i = clips.size(); i-- > 0;)
        if (!clips[i]->isRemoved() && clips[i]->hasClipEvent(event))
            m_stage.queue().addEvent(*clips[i], event);
    Node* focus = m_stage.focus().node();
    if (focus && m_stage.focus().isShown() && focus->hearsInput() &&
        m_stage.script().hasHandler(*focus, event)) {
        const Clip* clip = asClip(focus);
        if (!clip || !clip->hasClipEvent(event)) m_stage.queue().addEvent(*focus, event);
    }
    m_stage.queue().run();
    m_stage.script().broadcastKey(event);
    m_stage.queue().run();
}

void Keyboard::noteDown(int keyCode)
{
    // Held down it repeats, and is not pressed again.
    if (!m_down.insert(keyCode).second) return;
    if (!m_toggled.erase(keyCode)) m_toggled.insert(keyCode);
}

void Keyboard::press(int keyCode, char32_t charCode)
{
    const Stage::InputScope scope(m_stage);
    m_lastCode = keyCode;
    m_lastCharacter = static_cast<int>(charCode);
    noteDown(keyCode);
    if (m_stage.script().keepsClips()) {
        m_taken = false;
        m_stage.script().keyPressed(keyCode, charCode);
        m_stage.queue().run();
        return;
    }
    tell(Event::KeyDown);
    constexpr int kTab = 9, kEnter = 13, kShift = 16, kSpace = 32;
    // Whoever waits for the key takes it from the field that is typed into, and from what has the focus.
    m_taken = offerPress(pressCodeOf(keyCode, charCode));
    m_stage.queue().run();
    if (!m_taken && keyCode == kTab) m_stage.focus().next(isDown(kShift));
    if (!m_taken && (keyCode == kEnter || keyCode == kSpace)) clickFocus();
    m_stage.queue().run();
}

// The keyboard's click: down and up at once.
void Keyboard::clickFocus()
{
    if (!m_stage.focus().node() || !m_stage.focus().isFramed()) return;
    const NodePtr focus = m_stage.focus().node()->shared_from_this();
    if (!focus->isClickedByKeys()) return;
    for (const Event event : {Event::Press, Event::Release}) {
        focus->runPointerActions(event);
        m_stage.queue().addEvent(*focus, event);
    }
}

void Keyboard::release(int keyCode, char32_t charCode)
{
    const Stage::InputScope scope(m_stage);
    m_lastCode = keyCode;
    m_lastCharacter = static_cast<int>(charCode);
    noteUp(keyCode);
    if (m_stage.script().keepsClips()) {
        m_stage.script().keyReleased(keyCode, charCode);
        m_stage.queue().run();
        return;
    }
    tell(Event::KeyUp);
}

void Keyboard::type(char32_t character)
{
    const Stage::InputScope scope(m_stage);
    if (m_stage.focus().node() == nullptr || m_taken) return;
    // Scripts that hear of it may take it away.
    const NodePtr focus = m_stage.focus().node()->shared_from_this();
    focus->input(character);
    m_stage.queue().run();
}

void Keyboard::command(TextCommand command)
{
    const Stage::InputScope scope(m_stage);
    if (m_stage.focus().node() == nullptr) return;
    const NodePtr focus = m_stage.focus().node()->shared_from_this();
    focus->command(command);
    m_stage.queue().run();
}

void Keyboard::compose(std::u16string text, std::size_t caret)
{
    const Stage::InputScope scope(m_stage);
    Node* focus = m_stage.focus().node();
    if (focus && focus->kind() == NodeKind::TextField)
        static_cast<TextField*>(focus)->compose(std::move(text), caret);
}

void Keyboard::leave()
{
    m_down.clear();
    m_stage.focus().set(nullptr);
}

void Keyboard::clear()
{
    m_down.clear();
    m_asked = false;
}

} // namespace flash::stage
