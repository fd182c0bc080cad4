#include "flash/stage/TextHtml.h"

#include "base/TextCodes.h"

#include <cmath>
#include <cstdio>

namespace flash::stage
{

namespace
{

constexpr std::u16string_view kAlignNames[] = {u"LEFT", u"RIGHT", u"CENTER", u"JUSTIFY"};

std::u16string number(double value)
{
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.10g", value);
    return base::utf16FromUtf8(digits);
}
std::u16string pixels(double twips) { return number(std::round(twips / swf::kTwipsPerPixel)); }

std::u16string colorText(swf::Rgba color)
{
    char digits[8];
    std::snprintf(digits, sizeof digits, "#%02X%02X%02X", color.r, color.g, color.b);
    return base::utf16FromUtf8(digits);
}

std::u16string escaped(std::u16string_view text)
{
    std::u16string result;
    for (const char16_t c : text) {
        switch (c) {
        case u'<': result += u"&lt;"; break;
        case u'>': result += u"&gt;"; break;
        case u'&': result += u"&amp;"; break;
        case u'"': result += u"&quot;"; break;
        case u'\'': result += u"&apos;"; break;
        default: result += c;
        }
    }
    return result;
}

bool sameFont(const render::TextStyle& a, const render::TextStyle& b)
{
    return a.font == b.font && a.size == b.size && a.color == b.color && a.letterSpacing == b.letterSpacing &&
           a.kerning == b.kerning;
}

class Writer
{
public:
    explicit Writer(const TextContent& content) : m_content(content) {}

    std::u16string run()
    {
        std::size_t at = 0;
        for (const TextContent::Run& run : m_content.runs()) {
            const std::size_t runEnd = at + run.length;
            while (at < runEnd) {
                if (!m_inParagraph) beginParagraph(run.format);
                follow(run.format);
                const std::u16string_view upToRunEnd =
                    std::u16string_view(m_content.text()).substr(0, runEnd);
                const std::size_t lineEnd = std::min(upToRunEnd.find_first_of(u"\r\n", at), runEnd);
                put(at, lineEnd);
                at = lineEnd;
                if (at == runEnd) break;
                endParagraph();
                ++at;
            }
        }
        if (m_nextPicture < m_content.pictures().size()) {
            if (!m_inParagraph) beginParagraph(m_content.pictures()[m_nextPicture].format);
            put(at, at);
        }
        if (m_inParagraph) endParagraph();
        return std::move(m_html);
    }

private:
    // Characters of one line and one format, with the pictures that stand before, between and behind them.
    void put(std::size_t begin, std::size_t end)
    {
        const std::u16string_view text = m_content.text();
        const std::vector<TextPicture>& pictures = m_content.pictures();
        for (; m_nextPicture < pictures.size() && pictures[m_nextPicture].index <= end; ++m_nextPicture) {
            const std::size_t index = std::max(pictures[m_nextPicture].index, begin);
            m_html += escaped(text.substr(begin, index - begin));
            begin = index;
            put(pictures[m_nextPicture]);
        }
        m_html += escaped(text.substr(begin, end - begin));
    }
    void put(const TextPicture& picture)
    {
        m_html += u"<IMG";
        attribute(u"SRC", escaped(picture.source));
        if (picture.width) attribute(u"WIDTH", pixels(*picture.width));
        if (picture.height) attribute(u"HEIGHT", pixels(*picture.height));
        if (!picture.id.empty()) attribute(u"ID", escaped(picture.id));
        if (picture.onRight) attribute(u"ALIGN", u"right");
        if (picture.horizontalSpace != TextPicture::kUsualSpace)
            attribute(u"HSPACE", pixels(picture.horizontalSpace));
        if (picture.verticalSpace != TextPicture::kUsualSpace)
            attribute(u"VSPACE", pixels(picture.verticalSpace));
        m_html += u'>';
    }
    void attribute(std::u16string_view name, const std::u16string& value)
    {
        m_html += u' ';
        m_html += name;
        m_html += u"=\"";
        m_html += value;
        m_html += u'"';
    }

    void beginParagraph(const TextFormat& format)
    {
        const render::TextStyle& style = format.style;
        m_inParagraph = true;
        m_textFormat = style.leftMargin != 0 || style.rightMargin != 0 || style.indent != 0 ||
                       style.blockIndent != 0 || style.leading != 0 || !style.tabStops.empty();
        if (m_textFormat) {
            m_html += u"<TEXTFORMAT";
            if (style.leftMargin != 0) attribute(u"LEFTMARGIN", pixels(style.leftMargin));
            if (style.rightMargin != 0) attribute(u"RIGHTMARGIN", pixels(style.rightMargin));
            if (style.indent != 0) attribute(u"INDENT", pixels(style.indent));
            if (style.leading != 0) attribute(u"LEADING", pixels(style.leading));
            if (style.blockIndent != 0) attribute(u"BLOCKINDENT", pixels(style.blockIndent));
            if (!style.tabStops.empty()) {
                std::u16string stops;
                for (const double stop : style.tabStops) {
                    if (!stops.empty()) stops += u',';
                    stops += pixels(stop);
                }
                attribute(u"TABSTOPS", stops);
            }
            m_html += u'>';
        }
        m_bullet = style.bullet;
        if (m_bullet) {
            m_html += u"<LI>";
        } else {
            m_html += u"<P";
            attribute(u"ALIGN", std::u16string(kAlignNames[static_cast<std::size_t>(style.align)]));
            m_html += u'>';
        }
        openFont(style);
    }

    void endParagraph()
    {
        closeInner();
        while (!m_fonts.empty()) closeFont();
        m_html += m_bullet ? u"</LI>" : u"</P>";
        if (m_textFormat) m_html += u"</TEXTFORMAT>";
        m_inParagraph = false;
    }

    void openFont(const render::TextStyle& style)
    {
        const render::TextStyle* outer = m_fonts.empty() ? nullptr : &m_fonts.back();
        m_html += u"<FONT";
        if (!outer || outer->font != style.font) attribute(u"FACE", escaped(base::utf16FromUtf8(style.font)));
        if (!outer || outer->size != style.size) attribute(u"SIZE", pixels(style.size));
        if (!outer || outer->color != style.color) attribute(u"COLOR", colorText(style.color));
        if (!outer || outer->letterSpacing != style.letterSpacing)
            attribute(u"LETTERSPACING", number(style.letterSpacing / swf::kTwipsPerPixel));
        if (!outer || outer->kerning != style.kerning) attribute(u"KERNING", style.kerning ? u"1" : u"0");
        m_html += u'>';
        m_fonts.push_back(style);
    }
    void closeFont()
    {
        m_html += u"</FONT>";
        m_fonts.pop_back();
    }

    // Brings the open tags from those of the previous character to those of `format`. Fonts nest: one that
    // is open further out is returned to, any other is opened within.
    void follow(const TextFormat& format)
    {
        const bool fontStays = sameFont(m_fonts.back(), format.style);
        if (fontStays && m_inner && sameInner(*m_inner, format)) return;
        closeInner();
        if (!fontStays) {
            std::size_t outer = m_fonts.size();
            while (outer > 0 && !sameFont(m_fonts[outer - 1], format.style)) --outer;
            if (outer == 0)
                openFont(format.style);
            else
                while (m_fonts.size() > outer) closeFont();
        }
        openInner(format);
    }

    static bool sameInner(const TextFormat& a, const TextFormat& b)
    {
        return a.url == b.url && a.target == b.target && a.style.bold == b.style.bold &&
               a.style.italic == b.style.italic && a.style.underline == b.style.underline;
    }
    void openInner(const TextFormat& format)
    {
        if (!format.url.empty()) {
            m_html += u"<A";
            attribute(u"HREF", escaped(format.url));
            attribute(u"TARGET", escaped(format.target));
            m_html += u'>';
        }
        if (format.style.bold) m_html += u"<B>";
        if (format.style.italic) m_html += u"<I>";
        if (format.style.underline) m_html += u"<U>";
        m_inner = format;
    }
    void closeInner()
    {
        if (!m_inner) return;
        if (m_inner->style.underline) m_html += u"</U>";
        if (m_inner->style.italic) m_html += u"</I>";
        if (m_inner->style.bold) m_html += u"</B>";
        if (!m_inner->url.empty()) m_html += u"</A>";
        m_inner.reset();
    }

    const TextContent& m_content;
    std::size_t m_nextPicture = 0;
    std::u16string m_html;
    std::vector<render::TextStyle> m_fonts; ///< open ones, outermost first
    std::optional<TextFormat> m_inner;      ///< whose link, bold, italic and underline are open
    bool m_inParagraph = false, m_textFormat = false, m_bullet = false;
};

} // namespace

std::u16string htmlFromContent(const TextContent& content) { return Writer(content).run(); }

} // namespace flash::stage
