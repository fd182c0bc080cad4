#include "swfc/source/MovieBuilder.h"

#include "base/TextCodes.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

namespace swfc::source
{
namespace
{

using output::PathContour;
using output::Point;
using output::Tag;

struct Range {
    char32_t first, last;
};
struct NamedSet {
    std::string_view name;
    std::vector<Range> ranges;
};

const std::vector<NamedSet>& namedSets()
{
    static const std::vector<NamedSet> kSets = {
        {"latin", {{0x20, 0x7E}}},
        {"digits", {{0x20, 0x20}, {0x2B, 0x3A}, {0x25, 0x25}}},
        {"cyrillic",
         {{0x410, 0x44F},
          {0x401, 0x401},
          {0x451, 0x451},
          {0xAB, 0xAB},
          {0xBB, 0xBB},
          {0x2013, 0x2014},
          {0x2116, 0x2116},
          {0x2026, 0x2026},
          {0xA0, 0xA0},
          {0xB0, 0xB0},
          {0xB7, 0xB7},
          {0xA9, 0xA9},
          {0xD7, 0xD7}}},
    };
    return kSets;
}

/// A FreeType face over bytes in memory.
class Face
{
public:
    explicit Face(const std::vector<std::uint8_t>& bytes)
    {
        if (FT_Init_FreeType(&m_library) != 0) return;
        if (FT_New_Memory_Face(m_library, bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &m_face) != 0)
            m_face = nullptr;
    }
    ~Face()
    {
        if (m_face != nullptr) FT_Done_Face(m_face);
        if (m_library != nullptr) FT_Done_FreeType(m_library);
    }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;
    [[nodiscard]] bool isUsable() const
    {
        return m_face != nullptr && FT_IS_SCALABLE(m_face) && m_face->units_per_EM > 0;
    }
    [[nodiscard]] FT_Face get() const { return m_face; }

private:
    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
};

/// Collects an outline; y grows downwards in movies.
struct OutlineSink {
    output::PathData path;
    double scale = 1;
    Point current;
    [[nodiscard]] Point point(const FT_Vector* v) const
    {
        return {static_cast<double>(v->x) * scale, -static_cast<double>(v->y) * scale};
    }
    void add(const output::PathSegment& segment)
    {
        path.back().segments.push_back(segment);
        current = segment.anchor;
    }
};

output::PathData outlineOf(FT_Face face, double scale)
{
    OutlineSink sink;
    sink.scale = scale;
    FT_Outline_Funcs functions{};
    functions.move_to = [](const FT_Vector* to, void* user) {
        auto& out = *static_cast<OutlineSink*>(user);
        out.current = out.point(to);
        out.path.push_back({out.current, {}, true});
        return 0;
    };
    functions.line_to = [](const FT_Vector* to, void* user) {
        auto& out = *static_cast<OutlineSink*>(user);
        out.add({false, {}, {}, out.point(to)});
        return 0;
    };
    functions.conic_to = [](const FT_Vector* control, const FT_Vector* to, void* user) {
        auto& out = *static_cast<OutlineSink*>(user);
        const Point c = out.point(control), end = out.point(to), start = out.current;
        const auto toward = [&](Point p) {
            return Point{p.x + (c.x - p.x) * 2 / 3, p.y + (c.y - p.y) * 2 / 3};
        };
        out.add({true, toward(start), toward(end), end});
        return 0;
    };
    functions.cubic_to = [](const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* user) {
        auto& out = *static_cast<OutlineSink*>(user);
        out.add({true, out.point(c1), out.point(c2), out.point(to)});
        return 0;
    };
    FT_Outline_Decompose(&face->glyph->outline, &functions, &sink);
    return std::move(sink.path);
}

std::optional<char32_t> hexCode(std::string_view text)
{
    if (text.starts_with("U+")) text.remove_prefix(2);
    std::uint32_t value = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || value > 0xFFFF) return {};
    return value;
}

/// The characters that sets, ranges and chars ask for.
std::set<char32_t> wantedCharacters(Attributes& attributes)
{
    std::set<char32_t> wanted;
    const auto addRange = [&](Range range) {
        for (char32_t c = range.first; c <= range.last; ++c) wanted.insert(c);
    };
    const auto words = [](const std::string& text) {
        std::vector<std::string> found;
        std::size_t at = 0;
        while ((at = text.find_first_not_of(" ,", at)) != std::string::npos) {
            const std::size_t end = std::min(text.find_first_of(" ,", at), text.size());
            found.push_back(text.substr(at, end - at));
            at = end;
        }
        return found;
    };
    for (const std::string& word : words(attributes.text("sets", ""))) {
        const auto& sets = namedSets();
        const auto found =
            std::find_if(sets.begin(), sets.end(), [&](const NamedSet& set) { return set.name == word; });
        if (found == sets.end())
            attributes.error("expected latin, cyrillic or digits in sets, found '" + word + "'");
        else
            for (const Range& range : found->ranges) addRange(range);
    }
    for (const std::string& word : words(attributes.text("ranges", ""))) {
        const std::size_t dash = word.find('-');
        const auto first = hexCode(std::string_view(word).substr(0, dash));
        const auto last =
            dash == std::string::npos ? first : hexCode(std::string_view(word).substr(dash + 1));
        if (!first || !last || *last < *first)
            attributes.error("expected ranges such as 0410-044F, found '" + word + "'");
        else
            addRange({*first, *last});
    }
    for (const char16_t c : base::utf16FromUtf8(attributes.text("chars", ""))) wanted.insert(c);
    return wanted;
}

} // namespace

void MovieBuilder::fontElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Font);
    const auto device = attributes.text("device");
    const bool bold = attributes.flag("bold"), italic = attributes.flag("italic"),
               kerning = attributes.flag("kerning");
    EmbeddedFont metrics;
    metrics.id = id.value_or(0);
    metrics.device = device.has_value();
    std::string name = attributes.text("name", device.value_or(""));
    std::set<char32_t> wanted = wantedCharacters(attributes);
    std::vector<std::uint8_t> bytes;
    if (!device) {
        const std::string file = attributes.required("file");
        if (file.empty()) return;
        auto content = m_files.read(besideFile(m_paths.back(), file));
        if (!content) content = m_files.readFont(file);
        if (!content) {
            error(element,
                  "expected a font file '" + file + "' beside the source or among the system's fonts");
            return;
        }
        bytes = std::move(*content);
    }
    const Face face(bytes);
    if (!device && !face.isUsable()) {
        error(element, "expected a font file with outlines");
        return;
    }
    const bool large = m_version >= 8; // outlines twenty times as fine
    const bool wide = m_version >= 6;
    const double em = large ? 20480 : 1024;
    const double scale = device ? 1 : em / face.get()->units_per_EM;
    struct Glyph {
        char32_t character = 0;
        std::uint32_t code = 0; // the character, or its place in the ANSI code page
        FT_UInt index = 0;
        double advance = 0;
        std::vector<std::uint8_t> shape;
        output::Bounds bounds;
    };
    std::vector<Glyph> glyphs;
    for (const char32_t c : wanted) {
        if (device) break;
        const FT_UInt index = FT_Get_Char_Index(face.get(), c);
        if (index == 0 || FT_Load_Glyph(face.get(), index, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING) != 0) {
            const auto unit = static_cast<char16_t>(c);
            error(element, "expected characters that the font has, found '" +
                               base::utf8FromUtf16(std::u16string_view(&unit, 1)) + "'");
            continue;
        }
        Glyph glyph;
        glyph.character = glyph.code = c;
        if (!wide) {
            const auto unit = static_cast<char16_t>(c);
            glyph.code = static_cast<std::uint8_t>(
                base::ansiFromUtf16(std::u16string_view(&unit, 1), '\0').c_str()[0]);
        }
        glyph.index = index;
        glyph.advance = static_cast<double>(face.get()->glyph->metrics.horiAdvance) * scale;
        const output::Outline outline =
            output::toOutline(outlineOf(face.get(), scale / output::kTwipsPerPixel));
        output::BitWriter shape;
        output::writeGlyph(shape, outline);
        glyph.shape = shape.bytes();
        glyph.bounds = output::boundsOf(outline);
        glyphs.push_back(std::move(glyph));
    }
    // Readers look glyphs up by halving, so codes ascend.
    std::sort(glyphs.begin(), glyphs.end(), [](const Glyph& a, const Glyph& b) { return a.code < b.code; });
    for (std::size_t i = 0; i < glyphs.size(); ++i)
        metrics.glyphs[glyphs[i].character] = {i, glyphs[i].advance / em};
    if (!device) {
        metrics.ascent = static_cast<double>(face.get()->ascender) / face.get()->units_per_EM;
        metrics.descent = -static_cast<double>(face.get()->descender) / face.get()->units_per_EM;
        if (name.empty() && face.get()->family_name != nullptr) name = face.get()->family_name;
        if (glyphs.empty()) error(element, "expected at least one character in sets, ranges or chars");
    }
    if (!id) return;
    output::BitWriter out;
    out.u16(*id);
    out.u8((glyphs.empty() ? 0U : 0x80U) | (wide ? 0U : 0x10U) | 0x08U | (wide ? 0x04U : 0U) |
           (italic ? 2U : 0U) | (bold ? 1U : 0U));
    out.u8(1); // the language: latin, which stands for all that is written in letters
    std::string stored = encoded(name, element);
    if (stored.size() > 254) stored.resize(254);
    out.u8(static_cast<std::uint32_t>(stored.size()));
    out.append({reinterpret_cast<const std::uint8_t*>(stored.data()), stored.size()});
    out.u16(static_cast<std::uint32_t>(glyphs.size()));
    if (!glyphs.empty()) {
        std::uint32_t offset = static_cast<std::uint32_t>(glyphs.size() + 1) * 4;
        for (const Glyph& glyph : glyphs) {
            out.u32(offset);
            offset += static_cast<std::uint32_t>(glyph.shape.size());
        }
        out.u32(offset);
        for (const Glyph& glyph : glyphs) out.append(glyph.shape);
        for (const Glyph& glyph : glyphs) wide ? out.u16(glyph.code) : out.u8(glyph.code);
        const auto metric = [&](double value) {
            out.u16(static_cast<std::uint16_t>(std::lround(std::clamp(value, -32768.0, 65535.0))));
        };
        metric(metrics.ascent * em);
        metric(metrics.descent * em);
        metric(0);
        for (const Glyph& glyph : glyphs) metric(glyph.advance);
        for (const Glyph& glyph : glyphs) writeBounds(out, glyph.bounds);
        struct Pair {
            std::uint32_t left, right;
            long adjustment;
        };
        std::vector<Pair> pairs;
        for (const Glyph& left : glyphs) {
            if (!kerning) break;
            for (const Glyph& right : glyphs) {
                FT_Vector delta{};
                if (FT_Get_Kerning(face.get(), left.index, right.index, FT_KERNING_UNSCALED, &delta) != 0 ||
                    delta.x == 0)
                    continue;
                if (pairs.size() < 65535)
                    pairs.push_back(
                        {left.code, right.code, std::lround(static_cast<double>(delta.x) * scale)});
            }
        }
        out.u16(static_cast<std::uint32_t>(pairs.size()));
        for (const Pair& pair : pairs) {
            wide ? out.u16(pair.left) : out.u8(pair.left);
            wide ? out.u16(pair.right) : out.u8(pair.right);
            out.u16(static_cast<std::uint16_t>(std::clamp(pair.adjustment, -32768L, 32767L)));
        }
    } else {
        out.u32(4); // where the code table would start
    }
    m_fonts[*id] = metrics;
    definitions().add(large ? Tag::DefineFont3 : Tag::DefineFont2, out);
}

} // namespace swfc::source
