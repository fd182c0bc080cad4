#include "flash/render/FontFace.h"

#include <algorithm>
#include <vector>

namespace flash::render
{
namespace
{

class EmbeddedFace final : public FontFace
{
public:
    explicit EmbeddedFace(std::shared_ptr<const swf::Font> font) : m_font(std::move(font))
    {
        m_glyphs.reserve(m_font->glyphs.size());
        for (const swf::Font::Glyph& glyph : m_font->glyphs) {
            double advance = glyph.advance;
            // Fonts for static texts only come without advances; the next best is how wide a glyph is.
            if (!m_font->hasLayout && glyph.outline != nullptr)
                advance = std::max(glyph.outline->edgeBounds.xMax, 0) + 0.05 * m_font->unitsPerEm;
            m_glyphs.push_back({glyph.outline, advance});
        }
    }
    [[nodiscard]] Metrics metrics() const override
    {
        const double em = m_font->unitsPerEm;
        if (m_font->hasLayout && m_font->ascent + m_font->descent > 0)
            return {em, m_font->ascent, m_font->descent, m_font->leading};
        return {em, 0.905 * em, 0.212 * em, 0}; // of a usual text font
    }
    [[nodiscard]] const FaceGlyph* glyph(char32_t character) const override
    {
        if (character > 0xFFFF) return nullptr;
        const auto found = m_font->glyphByCode.find(static_cast<std::uint16_t>(character));
        if (found == m_font->glyphByCode.end() || found->second >= m_glyphs.size()) return nullptr;
        return &m_glyphs[found->second];
    }
    [[nodiscard]] double kerning(char32_t left, char32_t right) const override
    {
        const auto key = [](const swf::Font::Kerning& k) { return std::pair(k.left, k.right); };
        const std::pair wanted(static_cast<std::uint16_t>(left), static_cast<std::uint16_t>(right));
        if (left > 0xFFFF || right > 0xFFFF) return 0;
        const auto found = std::ranges::lower_bound(m_font->kerning, wanted, {}, key);
        return found != m_font->kerning.end() && key(*found) == wanted ? found->adjustment : 0;
    }

private:
    std::shared_ptr<const swf::Font> m_font;
    std::vector<FaceGlyph> m_glyphs;
};

} // namespace

FontFacePtr makeEmbeddedFace(std::shared_ptr<const swf::Font> font)
{
    if (font == nullptr) return nullptr;
    return std::make_shared<EmbeddedFace>(std::move(font));
}

} // namespace flash::render
