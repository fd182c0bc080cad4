#include "base/Ascii.h"
#include "base/TextCodes.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <cmath>
#include <utility>

// The user at work in a field: keyboard, mouse, clipboard.
namespace flash::stage
{

namespace
{

constexpr double kBlinkMs = 500; // the caret is shown, then hidden, this long
constexpr int kWheelLines = 1;

bool isWordCharacter(char16_t c)
{
    return c == u'_' || (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') ||
           c >= 0x80;
}

/// Whether a character is in a set as TextField.restrict writes it: characters and ranges; those after a
/// caret are taken out, the next caret puts in again; a backslash makes the next one plain. A range without a
/// beginning begins with the first character there is; one without an end is only its beginning.
bool isAllowed(const std::u16string& set, char16_t character)
{
    bool allowed = set.starts_with(u'^'), including = true, range = false;
    char16_t first = 0;
    for (std::size_t i = 0; i < set.size(); ++i) {
        if (set[i] == u'^') {
            including = !including;
            first = 0;
            range = false;
            continue;
        }
        if (set[i] == u'-') {
            range = true;
            continue;
        }
        if (set[i] == u'\\' && ++i == set.size()) break;
        if (!range) first = set[i];
        if (character >= first && character <= set[i]) allowed = including;
        if (range) first = 0;
        range = false;
    }
    return allowed;
}

char16_t otherCase(char16_t c)
{
    if (c >= u'a' && c <= u'z') return static_cast<char16_t>(c - 32);
    return base::asciiLower(c);
}

} // namespace

bool TextField::isFocused() const { return m_stage.focus().node() == this; }

void TextField::setAlwaysShowsSelection(bool on)
{
    m_alwaysShowsSelection = on;
    invalidate();
}

void TextField::select(std::size_t anchor, std::size_t caret)
{
    m_anchor = std::min(anchor, m_content.size());
    m_caret = std::min(caret, m_content.size());
    m_hasSelection = isFocused();
    m_caretColumn.reset();
    m_caretShown = true;
    m_caretSinceMs = m_stage.nowMs();
    invalidate();
}

// Whoever was told of the focus first may have selected something else.
void TextField::begin()
{
    syncVariable();
    if (!m_content.pictures().empty()) outdateLayout();
    m_stage.script().textFieldPlaced(*this);
}

NodePtr TextField::ownPointerTarget(swf::Point stagePoint)
{
    for (std::size_t i = m_pictureNodes.size(); i-- > 0;)
        if (NodePtr target = m_pictureNodes[i]->pointerTarget(stagePoint)) return target;
    const bool taken = selectable || isInput() ? hitsShape(stagePoint) : linkAt(stagePoint) != nullptr;
    return taken ? shared_from_this() : nullptr;
}

Cursor TextField::cursorAt(swf::Point stagePoint)
{
    const NodePtr keep = shared_from_this(); // pictures that come or go run scripts
    const TextFormat* link = linkAt(stagePoint);
    hover(link ? link->link : 0, m_stage.pointer().isDown());
    if (linkAt(stagePoint)) return Cursor::Hand;
    return selectable || isInput() ? Cursor::Text : Cursor::Arrow;
}

void TextField::hover(unsigned link, bool pressed)
{
    pressed = pressed && link != 0;
    if (link == m_hoveredLink && pressed == m_linkIsPressed) return;
    m_hoveredLink = link;
    m_linkIsPressed = pressed;
    if (m_source.empty() || !m_styleSheet ||
        !(m_styleSheet->has(u"a:hover") || m_styleSheet->has(u"a:active")))
        return;
    readHtml();
    outdateLayout();
}

void TextField::focusGained()
{
    // Where scripts keep the clips, what was selected last is selected again.
    if (!m_hasSelection && !m_stage.script().keepsClips()) select(0, m_content.size());
}

void TextField::focusLost()
{
    m_hasSelection = false;
    m_caretShown = false;
    m_composition = {};
    invalidate();
}

void TextField::tick(double nowMs)
{
    if (!isFocused() || !isInput()) return;
    const auto phases = static_cast<long long>(std::max(0.0, nowMs - m_caretSinceMs) / kBlinkMs);
    const bool shown = phases % 2 == 0;
    if (shown == m_caretShown) return;
    m_caretShown = shown;
    invalidate();
}

// ---- changing the text ------------------------------------------------------------------------------------

bool TextField::accepts(char16_t character) const
{
    if (character == u'\r' && !m_multiline) return false;
    return !restrict || character == u'\r' || isAllowed(*restrict, character);
}

const TextFormat& TextField::typingFormat() const
{
    const std::size_t begin = selectionBegin();
    const TextFormat* before = begin > 0 ? m_content.formatAt(begin - 1) : m_content.formatAt(0);
    return before ? *before : m_newFormat;
}

void TextField::type(std::u16string_view text)
{
    if (!isInput() || text.empty() || !m_stage.script().takesText(*this, text)) return;
    std::u16string accepted;
    for (char16_t c : text) {
        if (c == u'\n') c = u'\r';
        // What is only allowed in the other case is typed in that case.
        if (!accepts(c)) c = otherCase(c);
        if (accepts(c)) accepted += c;
    }
    if (maxChars) {
        const std::size_t kept = m_content.size() - (selectionEnd() - selectionBegin());
        const auto most = static_cast<std::size_t>(std::max(*maxChars, 0));
        accepted.resize(std::min(accepted.size(), most > kept ? most - kept : 0));
    }
    if (accepted.empty()) return;
    const std::size_t begin = selectionBegin();
    const TextFormat format = typingFormat();
    m_content.replace(begin, selectionEnd(), accepted, format);
    m_anchor = m_caret = begin + accepted.size();
    userChanged();
}

void TextField::erase(std::size_t begin, std::size_t end)
{
    if (!isInput() || begin >= end) return;
    m_content.replace(begin, end, {}, m_newFormat);
    m_anchor = m_caret = begin;
    userChanged();
}

void TextField::userChanged()
{
    const NodePtr keep = shared_from_this(); // what the text had, and what is told of it, runs scripts
    outdateLayout();
    showCaret();
    publish();
    m_stage.script().textChanged(*this);
}

void TextField::showCaret()
{
    m_caretShown = true;
    m_caretSinceMs = m_stage.nowMs();
    const int line = static_cast<int>(layout().lineOf(m_caret));
    if (line < scroll()) setScroll(line);
    // Each step is told to scripts.
    while (!isRemoved() && line > bottomScroll() && scroll() < maxScroll()) setScroll(scroll() + 1);
    const double x = layout().caret(m_caret).x;
    if (x < hscroll()) setHscroll(x);
    if (x > hscroll() + visibleWidth()) setHscroll(x - visibleWidth());
    invalidate();
}

void TextField::input(char32_t character)
{
    if (character < 32 || character == 127) return;
    if (character >= 0x10000) {
        const char32_t rest = character - 0x10000;
        const char16_t pair[] = {static_cast<char16_t>(0xD800 + (rest >> 10)),
                                 static_cast<char16_t>(0xDC00 + (rest & 0x3FF))};
        type({pair, 2});
        return;
    }
    const auto unit = static_cast<char16_t>(character);
    type({&unit, 1});
}

void TextField::copySelection()
{
    if (m_password || m_anchor == m_caret) return;
    const std::u16string_view text = m_content.text();
    m_stage.services().host.setClipboardText(
        base::utf8FromUtf16(text.substr(selectionBegin(), selectionEnd() - selectionBegin())));
}

// ---- moving about -----------------------------------------------------------------------------------------

std::size_t TextField::wordStart(std::size_t index) const
{
    const std::u16string& text = m_content.text();
    while (index > 0 && !isWordCharacter(text[index - 1])) --index;
    while (index > 0 && isWordCharacter(text[index - 1])) --index;
    return index;
}

std::size_t TextField::wordEnd(std::size_t index) const
{
    const std::u16string& text = m_content.text();
    while (index < text.size() && isWordCharacter(text[index])) ++index;
    while (index < text.size() && !isWordCharacter(text[index])) ++index;
    return index;
}

std::size_t TextField::verticalTarget(int lines)
{
    const render::TextLayout& text = layout();
    const int line = static_cast<int>(text.lineOf(m_caret)) + lines;
    if (line < 0) return 0;
    if (line >= lineCount()) return m_content.size();
    const render::LayoutLine& target = text.lines()[static_cast<std::size_t>(line)];
    return text.caretAt({m_caretColumn.value_or(text.caret(m_caret).x), (target.top + target.baseline) / 2});
}

void TextField::command(TextCommand command)
{
    const std::size_t begin = selectionBegin(), end = selectionEnd();
    const bool selecting = begin != end;
    const auto lineEdge = [&](bool atEnd) {
        const std::size_t index = layout().lineOf(m_caret);
        const render::LayoutLine& line = layout().lines()[index];
        if (!atEnd) return line.begin;
        const bool last = index + 1 == layout().lines().size();
        return last ? line.end : std::max(line.begin, line.end - 1);
    };
    const auto page = [&] { return bottomScroll() - scroll() + 1; };
    // The caret does not stand within a character of two units.
    const std::u16string& units = m_content.text();
    const auto isWithinPair = [&](std::size_t index) {
        return index > 0 && index < units.size() && (units[index] & 0xFC00) == 0xDC00 &&
               (units[index - 1] & 0xFC00) == 0xD800;
    };
    const auto previous = [&] {
        const std::size_t index = m_caret > 0 ? m_caret - 1 : 0;
        return isWithinPair(index) ? index - 1 : index;
    };
    const auto next = [&] {
        const std::size_t index = std::min(m_caret + 1, units.size());
        return isWithinPair(index) ? index + 1 : index;
    };
    // Up and down keep to the column that they began in.
    const auto follow = [&](int lines, bool extends) {
        const double column = m_caretColumn.value_or(layout().caret(m_caret).x);
        const std::size_t index = verticalTarget(lines);
        select(extends ? m_anchor : index, index);
        m_caretColumn = column;
        showCaret();
    };
    const auto moveTo = [&](std::size_t index) {
        select(index, index);
        showCaret();
    };
    const auto extendTo = [&](std::size_t index) {
        select(m_anchor, index);
        showCaret();
    };
    switch (command) {
    case TextCommand::MoveLeft: moveTo(selecting ? begin : previous()); break;
    case TextCommand::MoveRight: moveTo(selecting ? end : next()); break;
    case TextCommand::MoveUp: follow(-1, false); break;
    case TextCommand::MoveDown: follow(1, false); break;
    case TextCommand::MoveLeftWord: moveTo(wordStart(m_caret)); break;
    case TextCommand::MoveRightWord: moveTo(wordEnd(m_caret)); break;
    case TextCommand::MoveLineStart: moveTo(lineEdge(false)); break;
    case TextCommand::MoveLineEnd: moveTo(lineEdge(true)); break;
    case TextCommand::MovePageUp: follow(-page(), false); break;
    case TextCommand::MovePageDown: follow(page(), false); break;
    case TextCommand::MoveDocumentStart: moveTo(0); break;
    case TextCommand::MoveDocumentEnd: moveTo(m_content.size()); break;
    case TextCommand::SelectLeft: extendTo(previous()); break;
    case TextCommand::SelectRight: extendTo(next()); break;
    case TextCommand::SelectUp: follow(-1, true); break;
    case TextCommand::SelectDown: follow(1, true); break;
    case TextCommand::SelectLeftWord: extendTo(wordStart(m_caret)); break;
    case TextCommand::SelectRightWord: extendTo(wordEnd(m_caret)); break;
    case TextCommand::SelectLineStart: extendTo(lineEdge(false)); break;
    case TextCommand::SelectLineEnd: extendTo(lineEdge(true)); break;
    case TextCommand::SelectPageUp: follow(-page(), true); break;
    case TextCommand::SelectPageDown: follow(page(), true); break;
    case TextCommand::SelectDocumentStart: extendTo(0); break;
    case TextCommand::SelectDocumentEnd: extendTo(m_content.size()); break;
    case TextCommand::SelectAll: select(0, m_content.size()); break;
    case TextCommand::Copy: copySelection(); break;
    case TextCommand::Cut:
        copySelection();
        if (!m_password) erase(begin, end);
        break;
    case TextCommand::Paste: {
        const std::u16string text = base::utf16FromUtf8(m_stage.services().host.clipboardText());
        if (!text.empty()) type(text);
        break;
    }
    case TextCommand::Backspace: selecting ? erase(begin, end) : erase(previous(), m_caret); break;
    case TextCommand::BackspaceWord:
        selecting ? erase(begin, end) : erase(wordStart(m_caret), m_caret);
        break;
    case TextCommand::Delete: selecting ? erase(begin, end) : erase(m_caret, next()); break;
    case TextCommand::DeleteWord: selecting ? erase(begin, end) : erase(m_caret, wordEnd(m_caret)); break;
    case TextCommand::Enter: type(u"\r"); break;
    }
}

// ---- the mouse --------------------------------------------------------------------------------------------

/// What a press of so many clicks selects around a place: the place, the word or the paragraph.
std::pair<std::size_t, std::size_t> TextField::unitAround(std::size_t index, int clicks) const
{
    const std::u16string& text = m_content.text();
    std::size_t begin = index, end = index;
    const auto isPart = [&](char16_t c) {
        return clicks > 2 ? c != u'\r' && c != u'\n' : isWordCharacter(c);
    };
    if (clicks < 2) return {begin, end};
    while (begin > 0 && isPart(text[begin - 1])) --begin;
    while (end < text.size() && isPart(text[end])) ++end;
    return {begin, end};
}

void TextField::press(swf::Point stagePoint, int clicks)
{
    if (!selectable) return;
    m_isDragged = true;
    m_clicks = clicks;
    m_pressIndex = layout().caretAt(toText(stagePoint));
    const auto [begin, end] = unitAround(m_pressIndex, clicks);
    select(begin, end);
}

void TextField::drag(swf::Point stagePoint)
{
    if (!selectable) return;
    const std::size_t index = layout().caretAt(toText(stagePoint));
    // What was selected by words goes on by words, with the one it began with as that is now.
    const auto [begin, end] = unitAround(index, m_clicks);
    const auto [pressBegin, pressEnd] = unitAround(std::min(m_pressIndex, m_content.size()), m_clicks);
    const bool isBack = begin < pressBegin;
    const std::size_t anchor = isBack ? pressEnd : pressBegin;
    const std::size_t caret = isBack ? begin : std::max(end, m_clicks > 1 ? pressEnd : end);
    if (m_clicks < 2 ? index == m_caret : anchor == m_anchor && caret == m_caret) return;
    select(m_clicks < 2 ? m_anchor : anchor, caret);
    showCaret();
}

void TextField::dragOn(swf::Point stagePoint)
{
    if (!m_isDragged) return;
    const swf::Matrix matrix = toStageAt(stagePoint);
    if (!matrix.isInvertible()) return;
    const swf::Point at = matrix.inverted().map(stagePoint);
    const swf::Rect box = bounds();
    if (at.x < box.xMin || at.x > box.xMax || at.y < box.yMin || at.y > box.yMax) drag(stagePoint);
}

bool TextField::wheel(int lines)
{
    if (!mouseWheelEnabled || maxScroll() == 0) return false;
    setScroll(scroll() - lines * kWheelLines);
    return true;
}

const TextFormat* TextField::linkAt(swf::Point stagePoint)
{
    if (isInput() || !hitsShape(stagePoint)) return nullptr;
    for (std::size_t i = m_pictureNodes.size(); i-- > 0;)
        if (!m_pictures[i].format.url.empty() && m_pictureNodes[i]->hitsShape(stagePoint))
            return &m_pictures[i].format;
    const std::optional<std::size_t> index = layout().characterAt(toText(stagePoint));
    const TextFormat* format = index ? m_content.formatAt(*index) : nullptr;
    return format && !format->url.empty() ? format : nullptr;
}

} // namespace flash::stage
