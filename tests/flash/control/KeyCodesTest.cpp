#include "flash/KeyCodes.h"

#include <QKeyEvent>

#include <gtest/gtest.h>

namespace flash
{

TEST(KeyCodes, NameKeysAsScriptsKnowThem)
{
    struct Case {
        const char* name;
        int key;
        Qt::KeyboardModifiers modifiers;
        const char* text;
        quint32 scanCode;
        int code;
        char32_t character;
    };
    const Case kCases[] = {
        {"a letter", Qt::Key_A, Qt::NoModifier, "a", 38, 65, 'a'},
        {"a Cyrillic letter, by its place", 0x0424, Qt::NoModifier, "ф", 38, 65, 0x0444},
        {"a digit", Qt::Key_7, Qt::NoModifier, "7", 16, 55, '7'},
        {"a digit with shift", Qt::Key_Ampersand, Qt::ShiftModifier, "&", 16, 55, '&'},
        {"key pad digit", Qt::Key_7, Qt::KeypadModifier, "7", 79, 103, '7'},
        {"key pad without its lock", Qt::Key_Home, Qt::KeypadModifier, "", 79, 36, 0},
        {"left arrow", Qt::Key_Left, Qt::NoModifier, "", 113, 37, 0},
        {"enter", Qt::Key_Return, Qt::NoModifier, "\r", 36, 13, 13},
        {"backspace", Qt::Key_Backspace, Qt::NoModifier, "\b", 22, 8, 8},
        {"shift and tab", Qt::Key_Backtab, Qt::ShiftModifier, "", 23, 9, 9},
        {"function key", Qt::Key_F5, Qt::NoModifier, "", 71, 116, 0},
        {"media key", Qt::Key_MediaPlay, Qt::NoModifier, "", 172, 0, 0},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const QKeyEvent event(QEvent::KeyPress, c.key, c.modifiers, c.scanCode, 0, 0,
                              QString::fromUtf8(c.text));
        EXPECT_EQ(keyCodeOf(event), c.code);
        EXPECT_EQ(characterOf(event), c.character);
    }
}

TEST(KeyCodes, EditTextAsThePlatformDoes)
{
    const QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier, "\3");
    EXPECT_EQ(textCommandOf(copy), stage::TextCommand::Copy);
    const QKeyEvent word(QEvent::KeyPress, Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(textCommandOf(word), stage::TextCommand::SelectLeftWord);
    const QKeyEvent page(QEvent::KeyPress, Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_EQ(textCommandOf(page), stage::TextCommand::SelectPageDown);
    const QKeyEvent letter(QEvent::KeyPress, Qt::Key_C, Qt::NoModifier, "c");
    EXPECT_FALSE(textCommandOf(letter));
}

} // namespace flash
