#include "flash/stage/TextField.h"

#include "base/TextCodes.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextFonts.h"
#include "flash/stage/TextHtml.h"

#include <utility>

namespace flash::stage
{

namespace
{

// What a text looks like that nobody formatted.
constexpr const char* kDefaultFont = "Times New Roman";

std::u16string withCarriageReturns(std::u16string text)
{
    std::replace(text.begin(), text.end(), u'\n', u'\r');
    return text;
}

TextFormat formatOf(Stage& stage, const MoviePtr& movie, const swf::EditText& definition)
{
    TextFormat format;
    render::TextStyle& style = format.style;
    style.font = kDefaultFont;
    style.color = definition.hasColor ? definition.color : swf::Rgba{0, 0, 0, 255};
    if (definition.hasFont || !definition.fontClass.empty()) {
        style.size = definition.fontHeight;
        const swf::Character* character = movie ? movie->character(definition.fontId) : nullptr;
        if (const auto* font = character ? std::get_if<swf::Font>(&character->data) : nullptr) {
            style.font = stage.linkage().textOf(movie, font->name);
            // HTML says so itself.
            style.bold = font->bold && !definition.html;
            style.italic = font->italic && !definition.html;
        }
    }
    if (definition.hasLayout) {
        style.align = definition.align;
        style.leftMargin = definition.leftMargin;
        style.rightMargin = definition.rightMargin;
        style.indent = definition.indent;
        style.leading = definition.leading;
    }
    return format;
}

} // namespace

TextField::TextField(Stage& stage, MoviePtr movie, const swf::EditText& definition)
    : Node(stage, NodeKind::TextField), m_definition(definition)
{
    m_movie = std::move(movie);
    readOnly = definition.readOnly;
    selectable = definition.selectable;
    if (definition.hasMaxLength && definition.maxLength > 0) maxChars = definition.maxLength;
    m_password = definition.password;
    m_multiline = definition.multiline;
    m_wordWrap = definition.wordWrap;
    m_embedFonts = definition.useOutlines;
    m_html = definition.html;
    m_border = m_background = definition.border;
    m_autoSize = definition.autoSize ? AutoSize::Left : AutoSize::None;
    m_bounds = definition.bounds;
    m_newFormat = m_firstFormat = formatOf(m_stage, m_movie, definition);
    rendering.advanced = definition.rendering.advanced;
    rendering.gridFit = static_cast<Rendering::GridFit>(std::min<int>(definition.rendering.gridFit, 2));
    rendering.thickness = definition.rendering.thickness;
    rendering.sharpness = definition.rendering.sharpness;
    m_variable = m_stage.linkage().textOf(m_movie, definition.variableName);
    if (!definition.hasText) return;
    std::u16string text = base::utf16FromUtf8(m_stage.linkage().textOf(m_movie, definition.initialText));
    if (m_html) {
        m_source = std::move(text);
        readHtml();
    } else {
        m_content.append(withCarriageReturns(std::move(text)), m_newFormat);
    }
}

NodePtr TextField::makeDynamic(Stage& stage, const MoviePtr& movie, const swf::Rect& boundsTwips)
{
    swf::EditText definition;
    definition.bounds = {
        std::min(boundsTwips.xMin, boundsTwips.xMax), std::max(boundsTwips.xMin, boundsTwips.xMax),
        std::min(boundsTwips.yMin, boundsTwips.yMax), std::max(boundsTwips.yMin, boundsTwips.yMax)};
    definition.readOnly = true;
    definition.selectable = true;
    auto field = std::make_shared<TextField>(stage, movie, definition);
    field->m_placedByRight = boundsTwips.xMax < boundsTwips.xMin;
    field->m_placedByBottom = boundsTwips.yMax < boundsTwips.yMin;
    return field;
}

// ---- the text ---------------------------------------------------------------------------------------------

void TextField::assign(TextContent content)
{
    // Clocks and scores are set in every frame, most often to what they show. A layout that holds is of the
    // field as it is, unless a font may have come since.
    const bool fontsMayHaveCome = m_embedFonts && m_stage.textFonts().hasShared();
    const bool isShown = !fontsMayHaveCome && m_layoutValid && !m_wrapChangedFrame && !m_html &&
                         m_autoSize == AutoSize::None && content == m_content;
    if (isShown) {
        m_scrollUnbounded = true;
        publish();
        return;
    }
    m_content = std::move(content);
    textChanged();
}

void TextField::textChanged()
{
    const NodePtr keep = shared_from_this(); // pictures that come or go run scripts
    m_anchor = std::min(m_anchor, m_content.size());
    m_caret = std::min(m_caret, m_content.size());
    m_scrollUnbounded = true;
    outdateLayout();
    publish();
}

std::u16string TextField::text() const
{
    std::u16string text = m_content.text();
    std::erase(text, u'\n');
    return text;
}

void TextField::setText(std::u16string text)
{
    text = withCarriageReturns(std::move(text));
    m_source.clear();
    TextContent content;
    content.append(text, m_newFormat);
    assign(std::move(content));
}

std::u16string TextField::html() const
{
    if (m_styleSheet) return m_source;
    if (!m_html) return text();
    return htmlFromContent(m_content);
}

void TextField::setHtml(std::u16string html)
{
    if (!m_html) {
        setText(std::move(html));
        return;
    }
    m_source = std::move(html);
    readHtml();
    textChanged();
}

void TextField::readHtml()
{
    HtmlOptions options;
    options.multiline = m_multiline;
    options.condenseWhite = m_condenseWhite;
    options.version = m_movie ? m_movie->header.version : 8;
    options.styles = m_styleSheet.get();
    options.hoveredLink = m_hoveredLink;
    options.linkIsPressed = m_linkIsPressed;
    // Up to version 7 HTML knows nothing of formats that scripts set for new text.
    const TextFormat& base = options.version < 8 ? m_firstFormat : m_newFormat;
    m_content = contentFromHtml(m_source, base, options, &m_newFormat);
}

void TextField::setStyleSheet(std::shared_ptr<const StyleSheet> sheet)
{
    m_styleSheet = std::move(sheet);
    if (m_source.empty()) return;
    readHtml();
    textChanged();
}

void TextField::replaceText(std::size_t begin, std::size_t end, std::u16string_view text)
{
    // The new text looks like what comes after it, and text set later like the first character. What is put
    // before all the rest looks as if it was set.
    const TextFormat* after = end > 0 && end < m_content.size() ? m_content.formatAt(end) : nullptr;
    const TextFormat format = after ? *after : m_newFormat;
    std::u16string inserted(text);
    for (char16_t& c : inserted)
        if (c == u'\n' || c == u'\r') c = c == u'\n' ? u'\r' : u'\n';
    m_content.replace(begin, end, inserted, format);
    if (const TextFormat* first = m_content.formatAt(0)) m_newFormat = *first;
    textChanged();
}

void TextField::setFormat(std::size_t begin, std::size_t end, const PartialTextFormat& format)
{
    m_content.apply(begin, end, format);
    outdateLayout();
}

void TextField::setNewFormat(const PartialTextFormat& format)
{
    format.applyTo(m_newFormat);
    if (m_content.isEmpty()) outdateLayout();
}

// ---- the variable -----------------------------------------------------------------------------------------

void TextField::setVariable(std::string path)
{
    m_variable = std::move(path);
    m_lastValue.reset();
    m_variableIsFresh = true;
    syncVariable();
}

void TextField::syncVariable()
{
    Clip* scope = parentClip();
    if (m_variable.empty() || !scope || isRemoved()) return;
    if (!m_bound) {
        m_bound = true;
        m_stage.displayList().noteBound(*this);
    }
    const std::optional<std::string> value = m_stage.script().variable(*scope, m_variable);
    const bool fresh = std::exchange(m_variableIsFresh, false);
    if (!value) {
        // A variable that does not exist gets the text that the field began with.
        if (fresh && m_definition.hasText) {
            std::string initial = m_stage.linkage().textOf(m_movie, m_definition.initialText);
            m_variableIsFresh = !m_stage.script().setVariable(*scope, m_variable, initial);
        }
        return;
    }
    if (value == m_lastValue) return;
    // Only clips tell of changes to their variables.
    if (!fresh && !m_stage.script().isClipVariable(*scope, m_variable)) return;
    m_lastValue = value;
    std::u16string text = base::utf16FromUtf8(*value);
    if (m_html) {
        m_source = std::move(text);
        readHtml();
    } else {
        m_content.clear();
        m_content.append(withCarriageReturns(std::move(text)), m_newFormat);
    }
    m_anchor = std::min(m_anchor, m_content.size());
    m_caret = std::min(m_caret, m_content.size());
    m_scrollUnbounded = true;
    outdateLayout();
}

void TextField::publish()
{
    Clip* scope = parentClip();
    if (m_variable.empty() || !scope || isRemoved()) return;
    std::string value = base::utf8FromUtf16(m_html ? html() : text());
    if (m_stage.script().setVariable(*scope, m_variable, value)) m_lastValue = std::move(value);
}

// ---- look -------------------------------------------------------------------------------------------------

void TextField::setBorder(bool on)
{
    m_border = on;
    invalidate();
}
void TextField::setBorderColor(swf::Rgba color)
{
    m_borderColor = color;
    invalidate();
}
void TextField::setBackground(bool on)
{
    m_background = on;
    invalidate();
}
void TextField::setBackgroundColor(swf::Rgba color)
{
    m_backgroundColor = color;
    invalidate();
}
void TextField::setMultiline(bool on)
{
    m_multiline = on;
    outdateLayout();
}
void TextField::setWraps(bool on)
{
    if (m_wordWrap == on) return;
    m_wordWrap = on;
    if (m_autoSize == AutoSize::None && m_layoutValid) {
        m_wrapChangedFrame = m_stage.frameCounter();
        invalidate();
    } else {
        outdateLayout();
    }
}
void TextField::setPassword(bool on)
{
    m_password = on;
    outdateLayout();
}
void TextField::setEmbedsFonts(bool on)
{
    m_embedFonts = on;
    outdateLayout();
}
void TextField::setAutoSize(AutoSize mode)
{
    m_autoSize = mode;
    outdateLayout();
}

} // namespace flash::stage
