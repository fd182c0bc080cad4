#include "flash/render/FontFace.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
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

std::shared_ptr<const swf::Shape> scaled(const swf::Shape& shape, double scale)
{
    const auto move = [&](std::int32_t& value) {
        value = static_cast<std::int32_t>(std::lround(value * scale));
    };
    auto result = std::make_shared<swf::Shape>(shape);
    for (swf::Rect* rect : {&result->bounds, &result->edgeBounds})
        for (std::int32_t* side : {&rect->xMin, &rect->xMax, &rect->yMin, &rect->yMax}) move(*side);
    for (swf::ShapeLayer& layer : result->layers)
        for (swf::EdgeRun& run : layer.runs) {
            move(run.startX);
            move(run.startY);
            for (swf::Edge& edge : run.edges)
                for (std::int32_t* value : {&edge.controlX, &edge.controlY, &edge.anchorX, &edge.anchorY})
                    move(*value);
        }
    return result;
}

class CompletedFace final : public FontFace
{
public:
    CompletedFace(FontFacePtr first, FontFacePtr second)
        : m_first(std::move(first)), m_second(std::move(second)),
          m_scale(m_first->metrics().unitsPerEm / m_second->metrics().unitsPerEm)
    {
    }
    [[nodiscard]] Metrics metrics() const override { return m_first->metrics(); }
    [[nodiscard]] Extras extras() const override { return m_first->extras(); }
    [[nodiscard]] const FaceGlyph* glyph(char32_t character) const override
    {
        if (const FaceGlyph* own = m_first->glyph(character)) return own;
        const auto known = m_glyphs.find(character);
        if (known != m_glyphs.end()) return &known->second;
        const FaceGlyph* other = m_second->glyph(character);
        if (other == nullptr) return nullptr;
        FaceGlyph made{other->outline ? scaled(*other->outline, m_scale) : nullptr, other->advance * m_scale};
        return &m_glyphs.emplace(character, std::move(made)).first->second;
    }
    [[nodiscard]] double kerning(char32_t left, char32_t right) const override
    {
        return m_first->kerning(left, right);
    }
    [[nodiscard]] const FaceGlyph* shapedAt(char32_t character, int pixels) const override
    {
        return m_first->glyph(character) != nullptr ? nullptr : m_second->shapedAt(character, pixels);
    }
    [[nodiscard]] bool standsOnPixels() const override { return m_second->standsOnPixels(); }
    [[nodiscard]] bool hasOwn(char32_t character) const override { return m_first->hasOwn(character); }

private:
    FontFacePtr m_first, m_second;
    double m_scale;
    mutable std::unordered_map<char32_t, FaceGlyph> m_glyphs; ///< those of the second, filled on demand
};

} // namespace

FontFace::Extras FontFace::extras() const
{
    const double em = metrics().unitsPerEm;
    return {.underline = 0.1 * em,
            .underlineThickness = 0.05 * em,
            .strike = -0.3 * em,
            .strikeThickness = 0.05 * em,
            .subscript = 0.2 * em,
            .subscriptScale = 0.7,
            .superscript = -0.35 * em,
            .superscriptScale = 0.7};
}

FontFacePtr completedBy(FontFacePtr first, FontFacePtr second)
{
    if (first == nullptr || second == nullptr) return first != nullptr ? first : second;
    if (!(second->metrics().unitsPerEm > 0)) return first;
    return std::make_shared<CompletedFace>(std::move(first), std::move(second));
}

FontFacePtr makeEmbeddedFace(std::shared_ptr<const swf::Font> font)
{
    if (font == nullptr) return nullptr;
    return std::make_shared<EmbeddedFace>(std::move(font));
}

} // namespace flash::render
