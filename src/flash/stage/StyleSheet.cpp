#include "flash/stage/StyleSheet.h"

#include "base/Ascii.h"
#include "base/TextCodes.h"
#include "flash/stage/TextHtml.h"

#include <algorithm>

namespace flash::stage
{

namespace
{

bool isSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }

/// "font-size" becomes "fontSize": each hyphen goes and what follows it is put in upper case.
std::u16string camelCase(std::u16string_view name)
{
    std::u16string result;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] != u'-' || i + 1 == name.size()) {
            result += name[i];
            continue;
        }
        const char16_t next = name[++i];
        result += next >= u'a' && next <= u'z' ? static_cast<char16_t>(next - 32) : next;
    }
    return result;
}

class CssReader
{
public:
    CssReader(std::u16string_view css, int version) : m_css(css), m_version(version) {}

    std::optional<std::vector<StyleSheet::Rule>> read()
    {
        std::vector<StyleSheet::Rule> rules;
        for (;;) {
            skipSpace();
            if (atEnd()) return rules;
            std::vector<std::u16string> selectors;
            StyleProperties properties;
            if (!readSelectors(selectors) || !readProperties(properties)) return {};
            for (std::u16string& selector : selectors) rules.push_back({std::move(selector), properties});
        }
    }

private:
    [[nodiscard]] bool atEnd() const { return m_at >= m_css.size(); }
    [[nodiscard]] char16_t peek() const { return m_css[m_at]; }

    void skipSpace()
    {
        while (!atEnd()) {
            if (isSpace(peek())) {
                ++m_at;
            } else if (m_css.substr(m_at).starts_with(u"/*")) {
                const std::size_t end = m_css.find(u"*/", m_at + 2);
                m_at = end == std::u16string_view::npos ? m_css.size() : end + 2;
            } else {
                return;
            }
        }
    }

    bool readSelectors(std::vector<std::u16string>& selectors)
    {
        bool expectsName = true;
        for (;;) {
            skipSpace();
            if (atEnd()) return false;
            if (peek() == u'{') {
                ++m_at;
                if (selectors.empty() && m_version >= StyleSheet::kActionScript3) selectors.emplace_back();
                return true;
            }
            if (peek() == u',') {
                ++m_at;
                expectsName = true;
                continue;
            }
            if (!expectsName) return false;
            const std::size_t begin = m_at;
            while (!atEnd() && !isSpace(peek()) && peek() != u',' && peek() != u'{') ++m_at;
            selectors.emplace_back(m_css.substr(begin, m_at - begin));
            expectsName = false;
        }
    }

    bool readProperties(StyleProperties& properties)
    {
        const std::size_t start = m_at;
        for (;;) {
            skipSpace();
            if (atEnd()) return true;
            if (peek() == u'}') {
                const bool blank = properties.empty() && m_at > start;
                ++m_at;
                return !blank || m_version >= 8;
            }
            // A name goes as far as its colon, whatever is in it; only within it there is no white space.
            const std::size_t begin = m_at;
            while (!atEnd() && !isSpace(peek()) && peek() != u':') ++m_at;
            while (!atEnd() && isSpace(peek())) ++m_at;
            if (atEnd() || peek() != u':') return false;
            const std::u16string name = camelCase(m_css.substr(begin, m_at - begin));
            ++m_at;
            skipSpace();
            const std::size_t valueBegin = m_at;
            while (!atEnd() && peek() != u';' && peek() != u'}') ++m_at;
            if (atEnd()) return false;
            std::u16string value(m_css.substr(valueBegin, m_at - valueBegin));
            if (peek() == u';') ++m_at;
            if (name.empty() && m_version < StyleSheet::kActionScript3) continue;
            const auto same = [&](const auto& property) { return property.first == name; };
            const auto known = std::find_if(properties.begin(), properties.end(), same);
            if (known != properties.end())
                known->second = std::move(value);
            else
                properties.emplace_back(name, std::move(value));
        }
    }

    std::u16string_view m_css;
    std::size_t m_at = 0;
    int m_version;
};

std::u16string_view trimmed(std::u16string_view text)
{
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::optional<swf::Rgba> cssColor(std::u16string_view text)
{
    if (text.size() != 7 || text[0] != u'#') return {};
    std::uint32_t value = 0;
    for (const char16_t unit : text.substr(1)) {
        const int digit = base::hexDigit(unit);
        if (digit < 0) return {};
        value = value << 4 | static_cast<std::uint32_t>(digit);
    }
    return swf::Rgba{static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
                     static_cast<std::uint8_t>(value), 255};
}

} // namespace

std::optional<std::vector<StyleSheet::Rule>> StyleSheet::parse(std::u16string_view css, int version)
{
    return CssReader(css, version).read();
}

std::string StyleSheet::fontNames(std::u16string_view families)
{
    std::string names;
    while (!families.empty()) {
        const std::size_t end = std::min(families.find(u','), families.size());
        // Blanks before a name do not count, those after it do.
        std::u16string_view written = families.substr(0, end);
        while (!written.empty() &&
               (written.front() == u' ' || (written.front() >= u'\t' && written.front() <= u'\r')))
            written.remove_prefix(1);
        std::u16string name(written);
        const std::u16string folded = base::asciiLowered(written);
        families.remove_prefix(std::min(end + 1, families.size()));
        if (folded == u"mono") name = u"_typewriter";
        if (folded == u"sans-serif") name = u"_sans";
        if (folded == u"serif") name = u"_serif";
        if (name.empty()) continue;
        if (!names.empty()) names += ',';
        names += base::utf8FromUtf16(name);
    }
    return names;
}

void StyleSheet::apply(const StyleProperties& properties, TextFormat& format, bool& shown)
{
    render::TextStyle& style = format.style;
    for (const auto& [name, written] : properties) {
        const std::u16string_view value = trimmed(written);
        const auto length = [&](double& twips) {
            if (const std::optional<int> number = leadingInteger(value))
                twips = *number * swf::kTwipsPerPixel;
        };
        using Align = swf::EditText::Align;
        if (name == u"color") {
            if (const std::optional<swf::Rgba> color = cssColor(value)) style.color = *color;
        } else if (name == u"display") {
            shown = value != u"none";
        } else if (name == u"fontFamily") {
            style.font = fontNames(value);
        } else if (name == u"fontSize") {
            if (const std::optional<int> number = leadingInteger(value); number && *number > 0)
                style.size = *number * swf::kTwipsPerPixel;
        } else if (name == u"fontStyle") {
            style.italic = value == u"italic";
        } else if (name == u"fontWeight") {
            style.bold = value == u"bold";
        } else if (name == u"textDecoration") {
            style.underline = value == u"underline";
        } else if (name == u"textAlign") {
            if (value == u"left") style.align = Align::Left;
            if (value == u"right") style.align = Align::Right;
            if (value == u"center") style.align = Align::Center;
            if (value == u"justify") style.align = Align::Justify;
        } else if (name == u"textIndent") {
            length(style.indent);
        } else if (name == u"marginLeft") {
            length(style.leftMargin);
        } else if (name == u"marginRight") {
            length(style.rightMargin);
        } else if (name == u"leading") {
            length(style.leading);
        } else if (name == u"letterSpacing") {
            length(style.letterSpacing);
        } else if (name == u"kerning") {
            style.kerning = value == u"true";
        }
    }
}

void StyleSheet::set(std::u16string_view selector, StyleProperties properties)
{
    m_styles[base::asciiLowered(selector)] = std::move(properties);
}

void StyleSheet::applyTo(std::u16string_view selector, TextFormat& format, bool& shown) const
{
    const auto found = m_styles.find(selector);
    if (found != m_styles.end()) apply(found->second, format, shown);
}

} // namespace flash::stage
