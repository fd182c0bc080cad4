#include "base/Ascii.h"
#include "base/TextCodes.h"
#include "flash/guard/Guard.h"
#include "flash/stage/StyleSheet.h"
#include "flash/stage/TextHtml.h"
#include "flash/stage/TextHtmlTag.h"

#include <algorithm>
#include <vector>

namespace flash::stage
{

namespace
{

using html::isSpace;
using html::Tag;

constexpr double kMinSize = 1, kMaxSize = 127; // pixels

std::optional<swf::Rgba> hexColor(std::u16string_view text)
{
    if (!text.empty() && text[0] == u'#') text.remove_prefix(1);
    std::uint32_t value = 0;
    if (text.empty()) return {};
    for (const char16_t unit : text) {
        const int digit = base::hexDigit(unit);
        if (digit < 0) return {};
        value = value << 4 | static_cast<std::uint32_t>(digit);
    }
    return swf::Rgba{static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
                     static_cast<std::uint8_t>(value), 255};
}

class Parser
{
public:
    Parser(std::u16string_view html, const TextFormat& base, const HtmlOptions& options)
        : m_rest(html), m_options(options)
    {
        m_open.push_back({u"", base, true});
        m_afterSpace = options.version >= 8;
    }

    TextContent run()
    {
        while (!m_rest.empty()) {
            guard::check();
            if (m_rest[0] == u'<') {
                if (!markup()) break;
            } else {
                characters();
            }
        }
        return std::move(m_content);
    }

    /// Fonts that were not closed go on beyond the end, and nothing else.
    [[nodiscard]] TextFormat formatBeyond() const
    {
        TextFormat beyond = m_open.front().format;
        takeFont(beyond.style, format().style);
        return beyond;
    }

private:
    [[nodiscard]] const TextFormat& format() const { return m_open.back().format; }
    static void takeFont(render::TextStyle& style, const render::TextStyle& from)
    {
        style.font = from.font;
        style.size = from.size;
        style.color = from.color;
        style.letterSpacing = from.letterSpacing;
        style.kerning = from.kerning;
    }

    struct Element {
        std::u16string name;
        TextFormat format;
        bool shown = true; ///< no style says `display: none`
    };

    void characters()
    {
        const std::size_t end = std::min(m_rest.find(u'<'), m_rest.size());
        std::u16string_view raw = m_rest.substr(0, end);
        m_rest.remove_prefix(end);
        // Up to version 7 white space between tags is not there at all, and each stretch between two tags is
        // condensed for itself.
        if (m_options.version < 8) {
            if (std::all_of(raw.begin(), raw.end(), isSpace)) return;
            m_afterSpace = false;
        }
        std::u16string text;
        for (std::size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] == u'&') {
                const std::size_t semicolon = html::endOfEntity(raw, i);
                const std::optional<char16_t> decoded =
                    semicolon == std::u16string_view::npos
                        ? std::nullopt
                        : html::entity(raw.substr(i + 1, semicolon - i - 1));
                if (decoded) {
                    put(text, *decoded);
                    i = semicolon;
                    continue;
                }
            }
            if (m_options.condenseWhite && isSpace(raw[i])) {
                condense(text);
                continue;
            }
            put(text, raw[i] == u'\n' ? u'\r' : raw[i] == u'\r' ? u'\n' : raw[i]);
        }
        flush(text);
    }

    void put(std::u16string& text, char16_t c)
    {
        text += c;
        m_afterSpace = false;
    }
    void condense(std::u16string& text)
    {
        if (m_afterSpace) return;
        m_afterSpace = true;
        text += u' ';
    }
    void flush(std::u16string& text)
    {
        if (m_open.back().shown) m_content.append(text, format());
        text.clear();
    }

    /// @returns false when the rest holds no whole tag
    bool markup()
    {
        if (m_rest.starts_with(u"<!--")) {
            const std::size_t end = m_rest.find(u"-->", 4);
            if (end == std::u16string_view::npos) return false;
            m_rest.remove_prefix(end + 3);
            return true;
        }
        const std::optional<Tag> found = html::takeTag(m_rest);
        if (!found) return false;
        const Tag& tag = *found;
        if (tag.closes)
            close(tag.name);
        else
            open(tag);
        return true;
    }

    void lineBreak(const TextFormat& format)
    {
        if (!(m_options.multiline || m_options.version < 7) || !m_open.back().shown) return;
        m_content.append(u"\r", format);
        m_afterSpace = m_options.condenseWhite && m_options.version >= 8;
    }

    void open(const Tag& tag)
    {
        if (tag.name == u"br" || tag.name == u"sbr") {
            lineBreak(format());
            return;
        }
        if (tag.name == u"tab") {
            std::u16string text = u"\t";
            m_afterSpace = true;
            flush(text);
            return;
        }
        if (tag.name == u"img" && m_options.version >= 7) {
            picture(tag);
            return;
        }
        Element element{tag.name, format(), m_open.back().shown};
        if (tag.name == u"li") {
            const std::u16string& text = m_content.text();
            if (!text.empty() && text.back() != u'\r' && text.back() != u'\n') lineBreak(format());
        }
        applyTag(tag, element);
        if (!tag.empty) m_open.push_back(std::move(element));
    }

    void picture(const Tag& tag)
    {
        const std::u16string* source = tag.find(u"src");
        if (!source || source->empty() || !m_open.back().shown) return;
        TextPicture picture;
        picture.source = *source;
        picture.format = format();
        if (const std::u16string* id = tag.find(u"id")) picture.id = *id;
        if (const std::u16string* align = tag.find(u"align"))
            picture.onRight = base::asciiLowered(*align) == u"right";
        const auto length = [&](std::u16string_view name) -> std::optional<double> {
            const std::u16string* value = tag.find(name);
            const std::optional<int> number = value ? leadingInteger(*value) : std::nullopt;
            constexpr int kLongest = 16384;
            if (!number) return {};
            return std::clamp(*number, 0, kLongest) * double{swf::kTwipsPerPixel};
        };
        picture.width = length(u"width");
        picture.height = length(u"height");
        picture.horizontalSpace = length(u"hspace").value_or(TextPicture::kUsualSpace);
        picture.verticalSpace = length(u"vspace").value_or(TextPicture::kUsualSpace);
        m_content.append(std::move(picture));
    }

    void applyTag(const Tag& tag, Element& element)
    {
        TextFormat& format = element.format;
        render::TextStyle& style = format.style;
        if (const StyleSheet* sheet = m_options.styles) {
            sheet->applyTo(tag.name, element.format, element.shown);
            if (const std::u16string* name = tag.find(u"class"))
                sheet->applyTo(u"." + base::asciiLowered(*name), element.format, element.shown);
            if (tag.name == u"a") linkStyles(*sheet, element);
        }
        if (tag.name == u"b") {
            style.bold = true;
        } else if (tag.name == u"i") {
            style.italic = true;
        } else if (tag.name == u"u") {
            style.underline = true;
        } else if (tag.name == u"li") {
            style.bullet = true;
        } else if (tag.name == u"p") {
            if (const std::u16string* align = tag.find(u"align")) {
                const std::u16string value = base::asciiLowered(*align);
                using Align = swf::EditText::Align;
                if (value == u"left") style.align = Align::Left;
                if (value == u"right") style.align = Align::Right;
                if (value == u"center") style.align = Align::Center;
                if (value == u"justify") style.align = Align::Justify;
            }
        } else if (tag.name == u"a") {
            if (const std::u16string* href = tag.find(u"href")) format.url = *href;
            if (const std::u16string* target = tag.find(u"target")) format.target = *target;
        } else if (tag.name == u"font") {
            font(tag, style, m_options.version);
        } else if (tag.name == u"textformat") {
            textFormat(tag, style);
        }
    }

    void linkStyles(const StyleSheet& sheet, Element& element)
    {
        element.format.link = ++m_links;
        sheet.applyTo(u"a:link", element.format, element.shown);
        if (m_links != m_options.hoveredLink) return;
        sheet.applyTo(u"a:hover", element.format, element.shown);
        if (m_options.linkIsPressed) sheet.applyTo(u"a:active", element.format, element.shown);
    }

    static void font(const Tag& tag, render::TextStyle& style, int version)
    {
        if (const std::u16string* face = tag.find(u"face")) style.font = base::utf8FromUtf16(*face);
        if (const std::u16string* size = tag.find(u"size")) {
            if (const std::optional<int> number = leadingInteger(*size)) {
                const bool relative = (*size)[0] == u'+' || (*size)[0] == u'-';
                const double pixels = *number + (relative ? style.size / swf::kTwipsPerPixel : 0);
                style.size = std::clamp(pixels, kMinSize, kMaxSize) * swf::kTwipsPerPixel;
            }
        }
        if (const std::u16string* color = tag.find(u"color"))
            if (const std::optional<swf::Rgba> value = hexColor(*color)) style.color = *value;
        if (version < 8) return;
        if (const std::u16string* spacing = tag.find(u"letterspacing"))
            if (const std::optional<int> number = leadingInteger(*spacing))
                style.letterSpacing = *number * swf::kTwipsPerPixel;
        if (const std::u16string* kerning = tag.find(u"kerning")) style.kerning = *kerning == u"1";
    }

    static void textFormat(const Tag& tag, render::TextStyle& style)
    {
        const auto length = [&](std::u16string_view name, double& twips, bool negative = false) {
            const std::u16string* value = tag.find(name);
            if (!value) return;
            if (const std::optional<int> number = leadingInteger(*value))
                twips = (negative ? *number : std::max(*number, 0)) * swf::kTwipsPerPixel;
        };
        length(u"leftmargin", style.leftMargin);
        length(u"rightmargin", style.rightMargin);
        length(u"indent", style.indent, true);
        length(u"blockindent", style.blockIndent);
        length(u"leading", style.leading, true);
        if (const std::u16string* stops = tag.find(u"tabstops")) {
            style.tabStops.clear();
            std::u16string_view rest = *stops;
            while (!rest.empty()) {
                const std::size_t end = std::min(rest.find(u','), rest.size());
                std::u16string_view stop = rest.substr(0, end);
                // Authors also write them as scripts do: [60, 120].
                while (!stop.empty() && (isSpace(stop[0]) || stop[0] == u'[')) stop.remove_prefix(1);
                if (const std::optional<int> number = leadingInteger(stop))
                    style.tabStops.push_back(*number * swf::kTwipsPerPixel);
                rest.remove_prefix(std::min(end + 1, rest.size()));
            }
        }
    }

    // Only the innermost element can be closed, and paragraphs, which end what was opened in them; other
    // closing tags mean nothing.
    void close(const std::u16string& name)
    {
        if (name == u"p") {
            closeParagraph();
            return;
        }
        if (m_open.size() < 2 || m_open.back().name != name) return;
        if (name == u"li") lineBreak(format());
        if (name == u"font") m_closedFont = format().style;
        m_open.pop_back();
    }

    // Paragraphs within paragraphs all end with the first end tag. List items and text formats stay open.
    void closeParagraph()
    {
        const auto first = std::ranges::find(m_open, u"p", &Element::name);
        if (first == m_open.end()) return;
        lineBreak(endOfParagraph());
        std::vector<Element> ended(std::make_move_iterator(first), std::make_move_iterator(m_open.end()));
        m_open.erase(first, m_open.end());
        for (Element& element : ended) {
            if (element.name != u"li" && element.name != u"textformat") continue;
            TextFormat open = format();
            takeParagraph(open.style, element.format.style);
            open.style.align = format().style.align;
            element.format = std::move(open);
            m_open.push_back(std::move(element));
        }
    }

    static void takeParagraph(render::TextStyle& style, const render::TextStyle& from)
    {
        style.align = from.align;
        style.leftMargin = from.leftMargin;
        style.rightMargin = from.rightMargin;
        style.indent = from.indent;
        style.blockIndent = from.blockIndent;
        style.leading = from.leading;
        style.bullet = from.bullet;
        style.tabStops = from.tabStops;
    }

    // The break after a paragraph has the paragraph's attributes. Its letters, though, are those of the font
    // element that was closed last, wherever that was; scripts can see it in the HTML they read back.
    [[nodiscard]] TextFormat endOfParagraph() const
    {
        TextFormat end = m_open.front().format;
        const render::TextStyle letters = m_closedFont ? *m_closedFont : end.style;
        render::TextStyle style = end.style;
        takeParagraph(style, format().style);
        takeFont(style, letters);
        end.style = std::move(style);
        return end;
    }

    std::u16string_view m_rest;
    const HtmlOptions& m_options;
    TextContent m_content;
    std::vector<Element> m_open;
    std::optional<render::TextStyle> m_closedFont; ///< of the font element that was closed last
    unsigned m_links = 0;
    bool m_afterSpace = true; ///< when white space is condensed: a further space is dropped
};

} // namespace

std::optional<int> leadingInteger(std::u16string_view text)
{
    bool negative = false;
    if (!text.empty() && (text[0] == u'+' || text[0] == u'-')) {
        negative = text[0] == u'-';
        text.remove_prefix(1);
    }
    std::int64_t number = 0;
    bool any = false;
    for (const char16_t c : text) {
        if (c < u'0' || c > u'9') break;
        number = std::min<std::int64_t>(number * 10 + (c - u'0'), 1'000'000'000);
        any = true;
    }
    if (!any) return {};
    return static_cast<int>(negative ? -number : number);
}

TextContent contentFromHtml(std::u16string_view html, const TextFormat& base, const HtmlOptions& options,
                            TextFormat* last)
{
    Parser parser(html, base, options);
    TextContent content = parser.run();
    if (last) *last = parser.formatBeyond();
    return content;
}

} // namespace flash::stage
