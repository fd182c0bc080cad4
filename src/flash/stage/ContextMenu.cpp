#include "flash/stage/ContextMenu.h"

#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <QString>

#include <algorithm>

namespace flash::stage
{

namespace
{

// Captions as they are compared: without regard to case, punctuation and spaces.
constexpr std::u16string_view kTaken[] = {u"save",      u"zoomin",  u"zoomout",
                                          u"100",       u"showall", u"quality",
                                          u"play",      u"loop",    u"rewind",
                                          u"forward",   u"back",    u"movienotloaded",
                                          u"about",     u"print",   u"showredrawregions",
                                          u"debugger",  u"undo",    u"cut",
                                          u"copy",      u"paste",   u"delete",
                                          u"selectall", u"open",    u"openinnewwindow",
                                          u"copylink"};
// These may not even be a part of a caption.
constexpr std::u16string_view kNowhere[] = {u"macromedia", u"flashplayer", u"settings"};

QString cleaned(std::u16string_view caption)
{
    QString text;
    for (const QChar unit : QStringView(caption)) {
        // Control characters, and those that turn the direction of what follows, beyond the caption's end.
        const bool turns = unit.category() == QChar::Other_Format ||
                           unit.category() == QChar::Other_Control || unit == QChar::LineSeparator ||
                           unit == QChar::ParagraphSeparator;
        if (!turns) text += unit;
    }
    return text.trimmed();
}

std::u16string compared(const QString& caption)
{
    QString text;
    for (const QChar unit : caption)
        if (unit.isLetterOrNumber() || unit.isSurrogate()) text += unit;
    return (text.isEmpty() ? caption : text.toCaseFolded()).toStdU16String();
}

} // namespace

bool MenuItems::add(std::u16string_view caption, bool separatorBefore, bool enabled, bool visible)
{
    // A longer one is none, however much of it is spaces.
    if (caption.size() > kLongestCaption) return false;
    const QString text = cleaned(caption);
    if (text.isEmpty()) return false;
    std::u16string known = compared(text);
    const bool isNowhere = std::ranges::any_of(
        kNowhere, [&](std::u16string_view word) { return known.find(word) != std::u16string::npos; });
    if (isNowhere || std::ranges::find(kTaken, known) != std::end(kTaken) ||
        std::ranges::find(m_known, known) != m_known.end())
        return false;
    m_known.push_back(std::move(known));
    if (!visible || m_own == kMost) return false;
    ++m_own;
    m_shown.push_back({MenuItem::Kind::Own, text.toStdString(), separatorBefore, enabled});
    return true;
}

void MenuItems::add(MenuItem::Kind kind, bool enabled)
{
    const bool isFirst = m_shown.empty() || m_shown.back().kind == MenuItem::Kind::Own;
    m_shown.push_back({kind, {}, isFirst, enabled});
}

void addTextItems(MenuItems& items, TextField& field)
{
    if (!field.isInput() && !field.selectable) return;
    const bool selects = field.hasSelection() && field.selectionBegin() != field.selectionEnd();
    const bool copies = selects && !field.isPassword();
    items.add(MenuItem::Kind::Cut, copies && field.isInput());
    items.add(MenuItem::Kind::Copy, copies);
    items.add(MenuItem::Kind::Paste, field.isInput());
    items.add(MenuItem::Kind::Clear, selects && field.isInput());
    items.add(MenuItem::Kind::SelectAll, field.length() > 0);
}

void doTextItem(Stage& stage, TextField& field, MenuItem::Kind kind)
{
    const NodePtr keep = field.shared_from_this();
    if (stage.focus().node() != &field) stage.focus().set(&field);
    // Scripts that heard of it may have moved it on, or taken the field away.
    if (stage.focus().node() != &field || field.isRemoved()) return;
    switch (kind) {
    case MenuItem::Kind::Own:
    case MenuItem::Kind::OpenLink:
    case MenuItem::Kind::CopyLink: break;
    case MenuItem::Kind::Cut: field.command(TextCommand::Cut); break;
    case MenuItem::Kind::Copy: field.command(TextCommand::Copy); break;
    case MenuItem::Kind::Paste: field.command(TextCommand::Paste); break;
    case MenuItem::Kind::Clear: field.command(TextCommand::Delete); break;
    case MenuItem::Kind::SelectAll: field.command(TextCommand::SelectAll); break;
    }
}

} // namespace flash::stage
