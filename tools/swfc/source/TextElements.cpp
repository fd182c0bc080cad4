#include "swfc/source/MovieBuilder.h"

#include "base/TextCodes.h"

#include <algorithm>
#include <cmath>

namespace swfc::source
{
namespace
{

using output::Tag;

/// A row of glyphs with one font, size and colour.
struct Run {
    std::uint16_t fontId = 0;
    double size = 12;
    output::Rgba color;
    std::vector<std::pair<std::size_t, double>> glyphs; // index, advance in pixels
};
struct TextLine {
    std::vector<Run> runs;
    double width = 0, height = 0, ascent = 0;
};

/// Lines of an element's content. The indentation of the source goes; blanks around a <run> are its own.
std::vector<std::string> contentLines(const Element& element)
{
    const bool isRun = element.name == "run";
    std::vector<std::string> lines;
    const std::string text = isRun ? element.text : trimmed(element.text);
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string line = text.substr(start, end - start);
        lines.push_back(isRun ? line : trimmed(line));
        start = end + 1;
    }
    return lines;
}

} // namespace

void MovieBuilder::textElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Text);
    const std::string font = attributes.text("font", "");
    const double size = attributes.number("size", 12), spacing = attributes.number("spacing", 0);
    const double leading = attributes.number("leading", 0), width = attributes.number("width", 0);
    const output::Rgba color = attributes.color("color", {0, 0, 0, 255});
    const int align = attributes.choice("align", {"left", "center", "right"});
    std::vector<TextLine> lines(1);
    const auto addRun = [&](const Element& source, const std::string& fontName, double runSize,
                            output::Rgba runColor) {
        const Character* character = lookUp(source, fontName, CharacterKind::Font);
        if (character == nullptr) {
            if (fontName.empty()) error(source, "expected the attribute font in <" + source.name + ">");
            return;
        }
        const EmbeddedFont& metrics = m_fonts[character->id];
        bool first = true;
        for (const std::string& text : contentLines(source)) {
            if (!first) lines.emplace_back();
            first = false;
            TextLine& line = lines.back();
            Run run{character->id, runSize, runColor, {}};
            for (const char32_t c : base::utf16FromUtf8(text)) {
                const auto glyph = metrics.glyphs.find(c);
                if (glyph == metrics.glyphs.end()) {
                    const auto unit = static_cast<char16_t>(c);
                    error(source, "expected characters that font '" + fontName + "' embeds, found '" +
                                      base::utf8FromUtf16(std::u16string_view(&unit, 1)) + "'");
                    return;
                }
                run.glyphs.emplace_back(glyph->second.index, glyph->second.advance * runSize + spacing);
                line.width += run.glyphs.back().second;
            }
            line.ascent = std::max(line.ascent, metrics.ascent * runSize);
            line.height = std::max(line.height, (metrics.ascent + metrics.descent) * runSize);
            line.runs.push_back(std::move(run));
        }
    };
    for (const auto& child : element.children) {
        if (child->name != "run") {
            error(*child, "expected <run> in <text>, found <" + child->name + ">");
            continue;
        }
        Attributes run(*child, m_diagnostics);
        addRun(*child, run.text("font", font), run.number("size", size), run.color("color", color));
    }
    if (element.children.empty()) addRun(element, font, size, color);
    if (!id || m_diagnostics.hasErrors()) return;

    bool alpha = false;
    std::size_t glyphBits = 1, advanceBits = 1;
    output::Bounds bounds;
    double y = 0;
    output::BitWriter records;
    for (const TextLine& line : lines) {
        for (const Run& run : line.runs) {
            alpha = alpha || run.color.a != 255;
            for (const auto& [index, advance] : run.glyphs) {
                glyphBits = std::max<std::size_t>(glyphBits, static_cast<std::size_t>(output::bitsForUnsigned(
                                                                 static_cast<std::uint32_t>(index))));
                advanceBits = std::max<std::size_t>(
                    advanceBits,
                    static_cast<std::size_t>(output::bitsForSigned(output::toTwips(advance) + 1)));
            }
        }
    }
    for (const TextLine& line : lines) {
        const double left = align == 0 ? 0 : align == 1 ? (width - line.width) / 2 : width - line.width;
        double x = left;
        for (const Run& run : line.runs) {
            constexpr std::size_t kMaxGlyphs = 255;
            for (std::size_t start = 0; start < run.glyphs.size(); start += kMaxGlyphs) {
                const std::size_t count = std::min(kMaxGlyphs, run.glyphs.size() - start);
                records.u8(0x8F); // font, colour and both offsets
                records.u16(run.fontId);
                if (alpha)
                    writeRgba(records, run.color);
                else
                    writeRgb(records, run.color);
                records.u16(static_cast<std::uint16_t>(output::toTwips(x)));
                records.u16(static_cast<std::uint16_t>(output::toTwips(y + line.ascent)));
                records.u16(static_cast<std::uint16_t>(std::clamp(output::toTwips(run.size), 0, 65535)));
                records.u8(static_cast<std::uint32_t>(count));
                for (std::size_t i = start; i < start + count; ++i) {
                    const auto& [index, advance] = run.glyphs[i];
                    // From rounded pen position to rounded pen position, so that a line keeps its length.
                    const std::int32_t twips = output::toTwips(x + advance) - output::toTwips(x);
                    records.bits(static_cast<std::uint32_t>(index), static_cast<int>(glyphBits));
                    records.signedBits(twips, static_cast<int>(advanceBits));
                    x += advance;
                }
                records.align();
            }
        }
        bounds.include(output::Point{left, y});
        bounds.include(output::Point{x, y + line.height});
        y += line.height + leading;
    }
    records.u8(0);
    output::BitWriter out;
    out.u16(*id);
    writeBounds(out, bounds);
    writeMatrix(out, {});
    out.u8(static_cast<std::uint32_t>(glyphBits));
    out.u8(static_cast<std::uint32_t>(advanceBits));
    out.append(records.bytes());
    definitions().add(alpha ? Tag::DefineText2 : Tag::DefineText, out);
}

void MovieBuilder::editElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Edit);
    const double width = attributes.number("width", 100), height = attributes.number("height", 20);
    const auto font = attributes.text("font");
    const Character* character = font ? lookUp(element, *font, CharacterKind::Font) : nullptr;
    const double size = attributes.number("size", 12);
    const auto color = attributes.color("color");
    const int maxLength = attributes.integer("maxLength", 0, 0, 65535);
    const bool hasLayout = attributes.has("align") || attributes.has("leftMargin") ||
                           attributes.has("rightMargin") || attributes.has("indent") ||
                           attributes.has("leading");
    const int align = attributes.choice("align", {"left", "right", "center", "justify"});
    const bool wordWrap = attributes.flag("wordWrap"), multiline = attributes.flag("multiline"),
               password = attributes.flag("password");
    const bool input = attributes.flag("input"), autoSize = attributes.flag("autoSize"),
               border = attributes.flag("border");
    const bool selectable = attributes.flag("selectable", true), html = attributes.flag("html");
    const bool outlines = attributes.flag("embedded", character != nullptr && !m_fonts[character->id].device);
    const std::string variable = attributes.text("variable", "");
    const std::string content = html ? trimmed(element.text) : [&] {
        std::string joined;
        for (const std::string& line : contentLines(element)) joined += (joined.empty() ? "" : "\r") + line;
        return joined;
    }();
    const auto twips16 = [&](const char* name) {
        return static_cast<std::uint16_t>(output::toTwips(attributes.number(name, 0)));
    };
    const std::uint16_t left = twips16("leftMargin"), right = twips16("rightMargin"),
                        indent = twips16("indent"), leading = twips16("leading");
    if (!id) return;
    output::BitWriter out;
    out.u16(*id);
    writeBounds(out, {0, width, 0, height});
    const bool hasText = !content.empty();
    const bool flags[] = {hasText,       wordWrap,
                          multiline,     password,
                          !input,        color.has_value(),
                          maxLength > 0, character != nullptr,
                          false,         autoSize,
                          hasLayout,     !selectable,
                          border,        false,
                          html,          outlines};
    for (const bool flag : flags) out.bits(flag ? 1 : 0, 1);
    out.align();
    if (character != nullptr) {
        out.u16(character->id);
        out.u16(static_cast<std::uint16_t>(std::clamp(output::toTwips(size), 0, 65535)));
    }
    if (color) writeRgba(out, *color);
    if (maxLength > 0) out.u16(static_cast<std::uint32_t>(maxLength));
    if (hasLayout) {
        out.u8(static_cast<std::uint32_t>(align));
        out.u16(left);
        out.u16(right);
        out.u16(indent);
        out.u16(leading);
    }
    out.text(encoded(variable, element));
    if (hasText) out.text(encoded(content, element));
    definitions().add(Tag::DefineEditText, out);
}

} // namespace swfc::source
