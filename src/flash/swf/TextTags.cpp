#include "flash/swf/Tags.h"

namespace flash::swf::tags
{
namespace
{

/// Follows the records of a static text: style and place go on from record to record.
class TextRecordReader
{
public:
    TextRecordReader(TagContext& tag, StaticText& text) : m_tag(tag), m_body(tag.body), m_text(text)
    {
        m_glyphBits = m_body.u8();
        m_advanceBits = m_body.u8();
    }

    /// Records before a damaged one are kept.
    base::Result<void> readAll()
    {
        if (m_glyphBits > 32 || m_advanceBits > 32)
            return base::fail(base::ErrorCode::Malformed, "fields of more than 32 bits", m_body.offset());
        while (!m_body.atEnd()) {
            const std::uint8_t flags = m_body.u8();
            if (flags == 0) break;
            // The oldest encoders write style and glyphs as records of their own: without the upper bit the
            // byte is the count of glyphs.
            unsigned count = flags;
            if ((flags & kIsStyle) != 0) {
                readStyle(flags);
                count = m_body.u8();
            }
            if (m_body.overrun() || !readGlyphs(count)) break;
        }
        if (m_body.overrun()) m_tag.warn("ends within its records; those before the end are used");
        return {};
    }

private:
    enum : std::uint8_t {
        kHasXOffset = 0x01,
        kHasYOffset = 0x02,
        kHasColor = 0x04,
        kHasFont = 0x08,
        kIsStyle = 0x80
    };

    void readStyle(std::uint8_t flags)
    {
        if ((flags & kHasFont) != 0) m_style.fontId = m_body.u16();
        if ((flags & kHasColor) != 0) m_style.color = m_body.color(m_tag.info.form >= 2);
        if ((flags & kHasXOffset) != 0) m_style.x = m_body.i16();
        if ((flags & kHasYOffset) != 0) m_style.y = m_body.i16();
        if ((flags & kHasFont) != 0) m_style.height = m_body.u16();
    }

    bool readGlyphs(unsigned count)
    {
        if (!m_tag.builder.definitions().take(sizeof(StaticText::Record) +
                                              count * sizeof(StaticText::GlyphEntry)))
            return false;
        StaticText::Record record = m_style;
        std::int64_t pen = m_style.x;
        for (unsigned i = 0; i < count; ++i) {
            StaticText::GlyphEntry glyph;
            glyph.index = m_body.bits(m_glyphBits);
            glyph.advance = clampCoordinate(m_body.signedBits(m_advanceBits));
            if (m_body.overrun()) break;
            pen += glyph.advance;
            record.glyphs.push_back(glyph);
        }
        m_body.alignToByte();
        m_style.x = clampCoordinate(pen);
        if (!record.glyphs.empty()) m_text.records.push_back(std::move(record));
        return true;
    }

    TagContext& m_tag;
    BodyReader& m_body;
    StaticText& m_text;
    StaticText::Record m_style; // without glyphs; x is where the next glyph goes
    unsigned m_glyphBits = 0, m_advanceBits = 0;
};

} // namespace

base::Result<void> defineText(TagContext& tag)
{
    StaticText text;
    const std::uint16_t id = tag.body.u16();
    text.bounds = tag.body.rect();
    text.matrix = tag.body.matrix();
    TextRecordReader reader(tag, text);
    CHECK_RESULT(tag.body.check());
    CHECK_RESULT(reader.readAll());
    tag.builder.define(id, std::move(text));
    return {};
}

base::Result<void> defineEditText(TagContext& tag)
{
    BodyReader& body = tag.body;
    EditText text;
    const std::uint16_t id = body.u16();
    text.bounds = body.rect();
    body.alignToByte();
    text.hasText = body.flag();
    text.wordWrap = body.flag();
    text.multiline = body.flag();
    text.password = body.flag();
    text.readOnly = body.flag();
    text.hasColor = body.flag();
    text.hasMaxLength = body.flag();
    text.hasFont = body.flag();
    const bool hasFontClass = body.flag();
    text.autoSize = body.flag();
    text.hasLayout = body.flag();
    text.selectable = !body.flag();
    text.border = body.flag();
    text.wasStatic = body.flag();
    text.html = body.flag();
    text.useOutlines = body.flag();
    if (text.hasFont) text.fontId = body.u16();
    if (hasFontClass) text.fontClass = body.string();
    if (text.hasFont || hasFontClass) text.fontHeight = body.u16();
    if (text.hasColor) text.color = body.rgba();
    if (text.hasMaxLength) text.maxLength = body.u16();
    if (text.hasLayout) {
        constexpr auto kLast = static_cast<std::uint8_t>(EditText::Align::Justify);
        const std::uint8_t align = body.u8();
        text.align = align <= kLast ? static_cast<EditText::Align>(align) : EditText::Align::Left;
        text.leftMargin = body.u16();
        text.rightMargin = body.u16();
        text.indent = body.u16();
        text.leading = body.i16();
    }
    CHECK_RESULT(body.check());
    text.variableName = body.string();
    if (text.hasText) text.initialText = body.string();
    tag.builder.define(id, std::move(text));
    return {};
}

base::Result<void> textSettings(TagContext& tag)
{
    BodyReader& body = tag.body;
    const std::uint16_t id = body.u16();
    EditText::Rendering rendering;
    rendering.advanced = body.bits(2) == 1;
    rendering.gridFit = static_cast<std::uint8_t>(body.bits(3));
    body.bits(3);
    rendering.thickness = body.f32();
    rendering.sharpness = body.f32();
    CHECK_RESULT(body.check());
    // Static texts have settings too, which matter to nobody.
    if (EditText* text = tag.builder.find<EditText>(id)) text->rendering = rendering;
    return {};
}

} // namespace flash::swf::tags
