#include "flash/swf/ShapeRecords.h"
#include "flash/swf/Tags.h"

#include <algorithm>

namespace flash::swf::tags
{
namespace
{

// Roughly what one glyph takes beside its edges.
constexpr std::uint64_t kGlyphBytes = sizeof(Font::Glyph) + sizeof(Shape) + sizeof(ShapeLayer) + 64;

std::string readCountedName(BodyReader& body)
{
    const std::uint8_t length = body.u8();
    const base::Bytes bytes = body.bytes(length);
    // Some encoders count the closing NUL byte.
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), std::uint8_t{0})};
}

std::shared_ptr<const Shape> readGlyph(BodyReader body, Budget& budget)
{
    auto outline = std::make_shared<Shape>();
    ShapeLayer& layer = outline->layers.emplace_back();
    layer.fills.resize(1);
    layer.nonZeroWinding = true;                             // contours of one glyph may overlap
    (void)readShapeRecords(body, nullptr, *outline, budget); // fails for styles only, and there are none
    bool anyFill = false;
    for (EdgeRun& run : layer.runs) {
        run.fill0 = std::min<std::uint16_t>(run.fill0, 1);
        run.fill1 = std::min<std::uint16_t>(run.fill1, 1);
        run.line = 0;
        anyFill = anyFill || run.fill0 != 0 || run.fill1 != 0;
    }
    // Outlines that name no fill at all are filled all the same.
    if (!anyFill)
        for (EdgeRun& run : layer.runs) run.fill1 = 1;
    outline->bounds = outline->edgeBounds = edgeBounds(*outline);
    return outline;
}

/// Reads the glyphs that a table of offsets names; offsets count from `base`, a position in the body.
void readGlyphs(TagContext& tag, const std::vector<std::uint32_t>& offsets, std::size_t base, Font& font)
{
    Budget& budget = tag.builder.definitions();
    std::size_t missing = 0;
    for (const std::uint32_t offset : offsets) {
        if (!budget.take(kGlyphBytes)) return;
        BodyReader body = tag.body;
        body.seek(base + offset);
        if (body.atEnd()) ++missing;
        Font::Glyph& glyph = font.glyphs.emplace_back();
        glyph.outline = readGlyph(body, budget);
        glyph.bounds = glyph.outline->bounds;
    }
    if (missing > 0) tag.warn(std::to_string(missing) + " glyphs lie past the end of the tag");
}

void indexCodes(Font& font)
{
    font.glyphByCode.clear();
    for (std::size_t i = 0; i < font.glyphs.size(); ++i)
        font.glyphByCode.emplace(font.glyphs[i].code, static_cast<std::uint16_t>(i)); // the first one wins
}

// A table that ends early leaves the glyphs behind its end without a code.
void readCodes(BodyReader& body, Font& font)
{
    for (Font::Glyph& glyph : font.glyphs) {
        const std::uint16_t code = font.wideCodes ? body.u16() : body.u8();
        if (body.overrun()) break;
        glyph.code = code;
    }
    indexCodes(font);
}

void readLayout(TagContext& tag, Font& font)
{
    BodyReader& body = tag.body;
    font.ascent = body.u16();
    font.descent = body.u16();
    font.leading = body.i16();
    for (Font::Glyph& glyph : font.glyphs) glyph.advance = body.i16();
    if (body.overrun()) {
        tag.warn("ends within its layout");
        return;
    }
    font.hasLayout = true;
    for (Font::Glyph& glyph : font.glyphs) {
        const Rect stated = body.rect();
        // Most encoders write empty rectangles, so those of the outlines serve instead.
        if (!body.overrun() && stated.width() > 0 && stated.height() > 0) glyph.bounds = stated;
    }
    body.alignToByte();
    if (body.atEnd()) return;
    const unsigned count = body.u16();
    for (unsigned i = 0; i < count; ++i) {
        Font::Kerning pair;
        pair.left = font.wideCodes ? body.u16() : body.u8();
        pair.right = font.wideCodes ? body.u16() : body.u8();
        pair.adjustment = body.i16();
        if (body.overrun()) {
            tag.warn("ends within its kerning; the pairs before its end are used");
            break;
        }
        font.kerning.push_back(pair);
    }
    std::stable_sort(font.kerning.begin(), font.kerning.end(),
                     [](const Font::Kerning& a, const Font::Kerning& b) {
                         return std::pair(a.left, a.right) < std::pair(b.left, b.right);
                     });
}

tl::unexpected<base::Error> noFont(std::uint16_t id)
{
    return base::fail(base::ErrorCode::NotFound, "there is no font " + std::to_string(id));
}

} // namespace

base::Result<void> defineFont(TagContext& tag)
{
    Font font;
    const std::uint16_t id = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    const std::size_t base = tag.body.position();
    if (!tag.body.atEnd()) {
        // There is no count: the first offset tells where the table of offsets ends.
        std::vector<std::uint32_t> offsets{tag.body.u16()};
        const std::size_t count = offsets[0] / 2;
        CHECK_RESULT(tag.body.check());
        while (offsets.size() < count && tag.body.remaining() >= 2) offsets.push_back(tag.body.u16());
        if (count == 0) offsets.clear();
        readGlyphs(tag, offsets, base, font);
    }
    tag.builder.define(id, std::move(font));
    return {};
}

base::Result<void> defineFont2(TagContext& tag)
{
    constexpr int kFineUnitsPerEm = 20480;
    BodyReader& body = tag.body;
    Font font;
    const std::uint16_t id = body.u16();
    const bool hasLayout = body.flag();
    font.shiftJis = body.flag();
    font.smallText = body.flag();
    font.ansi = body.flag();
    const bool wideOffsets = body.flag();
    font.wideCodes = body.flag();
    font.italic = body.flag();
    font.bold = body.flag();
    if (tag.info.form >= 3) font.unitsPerEm = kFineUnitsPerEm;
    body.u8(); // language, of use for breaking lines only
    font.name = readCountedName(body);
    CHECK_RESULT(body.check());
    const unsigned count = body.u16();
    const std::size_t base = body.position();
    const std::size_t offsetBytes = wideOffsets ? 4 : 2;
    if (body.overrun() || count == 0) { // a font of the system, by name only
        tag.builder.define(id, std::move(font));
        return {};
    }
    if (count * offsetBytes > body.remaining())
        return base::fail(base::ErrorCode::Truncated, "announces " + std::to_string(count) + " glyphs, has " +
                                                          std::to_string(body.remaining()) + " bytes left");
    const auto offset = [&] { return wideOffsets ? body.u32() : std::uint32_t{body.u16()}; };
    std::vector<std::uint32_t> offsets;
    for (unsigned i = 0; i < count; ++i) offsets.push_back(offset());
    const std::uint32_t codesOffset = offset();
    CHECK_RESULT(body.check());
    readGlyphs(tag, offsets, base, font);
    body.seek(base + codesOffset);
    if (body.atEnd()) {
        tag.warn("its character codes lie past the end of the tag");
    } else {
        readCodes(body, font);
        if (hasLayout) readLayout(tag, font);
    }
    tag.builder.define(id, std::move(font));
    return {};
}

base::Result<void> defineFontInfo(TagContext& tag)
{
    BodyReader& body = tag.body;
    const std::uint16_t id = body.u16();
    std::string name = readCountedName(body);
    body.bits(2);
    const bool smallText = body.flag();
    const bool shiftJis = body.flag();
    const bool ansi = body.flag();
    const bool italic = body.flag();
    const bool bold = body.flag();
    const bool wideCodes = body.flag();
    if (tag.info.form >= 2) body.u8(); // language
    CHECK_RESULT(body.check());
    Font* font = tag.builder.find<Font>(id);
    if (!font) return noFont(id);
    font->name = std::move(name);
    font->smallText = smallText;
    font->shiftJis = shiftJis;
    font->ansi = ansi;
    font->italic = italic;
    font->bold = bold;
    font->wideCodes = wideCodes || tag.info.form >= 2;
    readCodes(body, *font);
    return {};
}

base::Result<void> defineFontName(TagContext& tag)
{
    const std::uint16_t id = tag.body.u16();
    std::string name = tag.body.string(); // the copyright notice that follows is of no use
    CHECK_RESULT(tag.body.check());
    Font* font = tag.builder.find<Font>(id);
    if (!font) return noFont(id);
    if (font->name.empty()) font->name = std::move(name);
    return {};
}

} // namespace flash::swf::tags
