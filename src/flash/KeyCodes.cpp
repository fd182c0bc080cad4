#include "flash/KeyCodes.h"

#include <QKeyEvent>

#include <utility>

namespace flash
{

namespace
{

constexpr std::pair<int, int> kKeyCodes[] = {
    // clang-format off
    {Qt::Key_Backspace, 8},  {Qt::Key_Tab, 9},        {Qt::Key_Backtab, 9},    {Qt::Key_Clear, 12},
    {Qt::Key_Return, 13},    {Qt::Key_Enter, 13},     {Qt::Key_Shift, 16},     {Qt::Key_Control, 17},
    {Qt::Key_Alt, 18},       {Qt::Key_AltGr, 18},     {Qt::Key_Pause, 19},     {Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, 27},    {Qt::Key_Space, 32},     {Qt::Key_PageUp, 33},    {Qt::Key_PageDown, 34},
    {Qt::Key_End, 35},       {Qt::Key_Home, 36},      {Qt::Key_Left, 37},      {Qt::Key_Up, 38},
    {Qt::Key_Right, 39},     {Qt::Key_Down, 40},      {Qt::Key_Insert, 45},    {Qt::Key_Delete, 46},
    {Qt::Key_Help, 47},      {Qt::Key_NumLock, 144},  {Qt::Key_ScrollLock, 145},
    {Qt::Key_Semicolon, 186}, {Qt::Key_Colon, 186},   {Qt::Key_Equal, 187},    {Qt::Key_Plus, 187},
    {Qt::Key_Comma, 188},    {Qt::Key_Less, 188},     {Qt::Key_Minus, 189},    {Qt::Key_Underscore, 189},
    {Qt::Key_Period, 190},   {Qt::Key_Greater, 190},  {Qt::Key_Slash, 191},    {Qt::Key_Question, 191},
    {Qt::Key_QuoteLeft, 192}, {Qt::Key_AsciiTilde, 192}, {Qt::Key_BracketLeft, 219},
    {Qt::Key_BraceLeft, 219}, {Qt::Key_Backslash, 220}, {Qt::Key_Bar, 220},    {Qt::Key_BracketRight, 221},
    {Qt::Key_BraceRight, 221}, {Qt::Key_Apostrophe, 222}, {Qt::Key_QuoteDbl, 222},
    // clang-format on
};

// Shift and a digit come as the sign that the layout prints; these are the signs of the common layout.
constexpr std::pair<int, int> kShiftedDigits[] = {
    {Qt::Key_Exclam, '1'},    {Qt::Key_At, '2'},          {Qt::Key_NumberSign, '3'}, {Qt::Key_Dollar, '4'},
    {Qt::Key_Percent, '5'},   {Qt::Key_AsciiCircum, '6'}, {Qt::Key_Ampersand, '7'},  {Qt::Key_Asterisk, '8'},
    {Qt::Key_ParenLeft, '9'}, {Qt::Key_ParenRight, '0'},
};

// With the key pad's lock on, its keys have codes of their own.
int keypadCode(int key)
{
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return 96 + key - Qt::Key_0;
    switch (key) {
    case Qt::Key_Asterisk: return 106;
    case Qt::Key_Plus: return 107;
    case Qt::Key_Enter: return 13;
    case Qt::Key_Minus: return 109;
    case Qt::Key_Period:
    case Qt::Key_Comma: return 110;
    case Qt::Key_Slash: return 111;
    default: return 0;
    }
}

// Letters of other alphabets: X11's key codes follow the places of the keys, which the usual layout names.
// The rows begin at these scan codes.
int letterByPlace(quint32 scanCode)
{
    constexpr std::pair<quint32, const char*> kRows[] = {
        {24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};
    for (const auto& [first, letters] : kRows) {
        const std::string_view row = letters;
        if (scanCode >= first && scanCode < first + row.size()) return row[scanCode - first];
    }
    return 0;
}

} // namespace

int keyCodeOf(const QKeyEvent& event)
{
    const int key = event.key();
    if ((event.modifiers() & Qt::KeypadModifier) != 0) {
        if (const int code = keypadCode(key); code != 0) return code;
    }
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) return key;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F15) return 112 + key - Qt::Key_F1;
    for (const auto& [qtKey, code] : kKeyCodes) {
        if (qtKey == key) return code;
    }
    for (const auto& [qtKey, code] : kShiftedDigits) {
        if (qtKey == key) return code;
    }
    return letterByPlace(event.nativeScanCode());
}

char32_t characterOf(const QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: return 13;
    case Qt::Key_Backspace: return 8;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return 9;
    case Qt::Key_Escape: return 27;
    case Qt::Key_Delete: return 127;
    default: break;
    }
    const auto text = event.text().toUcs4();
    return text.isEmpty() ? 0 : static_cast<char32_t>(text.front());
}

std::optional<stage::TextCommand> textCommandOf(const QKeyEvent& event)
{
    using stage::TextCommand;
    static constexpr std::pair<QKeySequence::StandardKey, TextCommand> kCommands[] = {
        {QKeySequence::Copy, TextCommand::Copy},
        {QKeySequence::Cut, TextCommand::Cut},
        {QKeySequence::Paste, TextCommand::Paste},
        {QKeySequence::SelectAll, TextCommand::SelectAll},
        {QKeySequence::MoveToPreviousChar, TextCommand::MoveLeft},
        {QKeySequence::MoveToNextChar, TextCommand::MoveRight},
        {QKeySequence::MoveToPreviousLine, TextCommand::MoveUp},
        {QKeySequence::MoveToNextLine, TextCommand::MoveDown},
        {QKeySequence::MoveToPreviousWord, TextCommand::MoveLeftWord},
        {QKeySequence::MoveToNextWord, TextCommand::MoveRightWord},
        {QKeySequence::MoveToStartOfLine, TextCommand::MoveLineStart},
        {QKeySequence::MoveToEndOfLine, TextCommand::MoveLineEnd},
        {QKeySequence::MoveToPreviousPage, TextCommand::MovePageUp},
        {QKeySequence::MoveToNextPage, TextCommand::MovePageDown},
        {QKeySequence::MoveToStartOfDocument, TextCommand::MoveDocumentStart},
        {QKeySequence::MoveToEndOfDocument, TextCommand::MoveDocumentEnd},
        {QKeySequence::SelectPreviousChar, TextCommand::SelectLeft},
        {QKeySequence::SelectNextChar, TextCommand::SelectRight},
        {QKeySequence::SelectPreviousLine, TextCommand::SelectUp},
        {QKeySequence::SelectNextLine, TextCommand::SelectDown},
        {QKeySequence::SelectPreviousWord, TextCommand::SelectLeftWord},
        {QKeySequence::SelectNextWord, TextCommand::SelectRightWord},
        {QKeySequence::SelectStartOfLine, TextCommand::SelectLineStart},
        {QKeySequence::SelectEndOfLine, TextCommand::SelectLineEnd},
        {QKeySequence::SelectPreviousPage, TextCommand::SelectPageUp},
        {QKeySequence::SelectNextPage, TextCommand::SelectPageDown},
        {QKeySequence::SelectStartOfDocument, TextCommand::SelectDocumentStart},
        {QKeySequence::SelectEndOfDocument, TextCommand::SelectDocumentEnd},
        {QKeySequence::Backspace, TextCommand::Backspace},
        {QKeySequence::DeleteStartOfWord, TextCommand::BackspaceWord},
        {QKeySequence::Delete, TextCommand::Delete},
        {QKeySequence::DeleteEndOfWord, TextCommand::DeleteWord},
        {QKeySequence::InsertParagraphSeparator, TextCommand::Enter},
    };
    for (const auto& [standard, command] : kCommands) {
        if (event.matches(standard)) return command;
    }
    if (event.key() == Qt::Key_Backspace) return TextCommand::Backspace;
    return {};
}

} // namespace flash
