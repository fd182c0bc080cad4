#include "flash/render/TextLayout.h"

#include "flash/render/LayoutBuilder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flash::render
{
namespace
{

std::int32_t toTwips(double value)
{
    return static_cast<std::int32_t>(std::lround(std::clamp(value, -1e9, 1e9)));
}

swf::Rect rect(double left, double top, double right, double bottom)
{
    return {toTwips(left), toTwips(right), toTwips(top), toTwips(bottom)};
}

swf::Matrix glyphMatrix(const swf::Matrix& toDevice, const LayoutGlyph& glyph, double baseline)
{
    return toDevice * swf::Matrix{glyph.scale, 0, 0, glyph.scale, glyph.x, baseline};
}

} // namespace

std::optional<int> wholePixels(double size)
{
    constexpr double kMost = 100; // so large that pixels no longer matter
    constexpr double kTolerance = 1e-6;
    const double whole = std::round(size);
    if (std::abs(size - whole) > kTolerance || whole < 1 || whole > kMost) return {};
    return static_cast<int>(whole);
}

double pixelAdvance(double own, double spacing)
{
    const double whole = std::floor(own + 0.5);
    return whole + spacing > 0 ? whole + spacing : whole;
}

TextLayout::TextLayout(std::u16string_view text, std::vector<TextRun> runs, const TextOptions& options,
                       FontSource& fonts)
    : m_runs(std::move(runs)), m_length(text.size())
{
    LayoutBuilder(*this, text, options, fonts).build();
}

/// Where pixels are those that letters are shaped for, these stand on them.
GlyphPlacement TextLayout::placementOf(const LayoutGlyph& glyph, const swf::Matrix& toDevice,
                                       double baseline) const
{
    constexpr double kTolerance = 1e-6, kUnit = FontFace::kShapedUnit;
    const auto fits = [this](double value) { return std::abs(value / m_pixelsPerTwip - 1) < kTolerance; };
    const bool isPlain = toDevice.b == 0 && toDevice.c == 0 && fits(toDevice.a) && fits(toDevice.d);
    if (glyph.shaped == nullptr || !isPlain) return {glyph.outline, glyphMatrix(toDevice, glyph, baseline)};
    const swf::Point at = toDevice.map(glyph.x, baseline);
    return {glyph.shaped, {kUnit, 0, 0, kUnit, std::round(at.x), std::round(at.y)}};
}

TextLayout TextLayout::shapedFor(double pixelsPerTwip) const
{
    TextLayout fitted = *this;
    fitted.m_pixelsPerTwip = pixelsPerTwip;
    for (LayoutLine& line : fitted.m_lines) {
        const auto glyphs = std::span(fitted.m_glyphs).subspan(line.firstGlyph, line.glyphCount);
        if (glyphs.empty()) continue;
        const auto align = m_runs[glyphs.front().run].style.align;
        double x = glyphs.front().x;
        for (std::size_t i = 0; i < glyphs.size(); ++i) {
            LayoutGlyph& glyph = glyphs[i];
            const double end = glyph.x + glyph.advance;
            fitted.shape(glyph, i + 1 < glyphs.size() ? &glyphs[i + 1] : nullptr);
            if (align == swf::EditText::Align::Justify)
                glyph.advance = end - glyph.x; // its words stand where they fill the line
            else
                glyph.x = x;
            // What comes after a tab stays in its column.
            if (glyph.character == U'\t') glyph.advance = std::max(end - glyph.x, 0.0);
            x = glyph.x + glyph.advance;
        }
        const LayoutGlyph& last = m_glyphs[line.firstGlyph + line.glyphCount - 1];
        const double grown = x - (last.x + last.advance);
        line.width += grown;
        fitted.m_width = std::max(fitted.m_width, m_width + grown);
        if (align == swf::EditText::Align::Left || align == swf::EditText::Align::Justify) continue;
        const double shift = align == swf::EditText::Align::Right ? -grown : -grown / 2;
        line.x += shift;
        for (LayoutGlyph& glyph : glyphs) glyph.x += shift;
    }
    return fitted;
}

void TextLayout::shape(LayoutGlyph& glyph, const LayoutGlyph* next) const
{
    const TextStyle& style = m_runs[glyph.run].style;
    const FontFacePtr& face = m_faces[glyph.run];
    if (face == nullptr || !face->standsOnPixels()) return;
    const std::optional<int> size = wholePixels(style.size * m_pixelsPerTwip);
    const FaceGlyph* shaped = size ? face->shapedAt(glyph.character, *size) : nullptr;
    glyph.shaped = shaped != nullptr ? shaped->outline : nullptr;
    if (shaped == nullptr) return;
    const double pixels =
        pixelAdvance(shaped->advance * FontFace::kShapedUnit, style.letterSpacing * m_pixelsPerTwip);
    glyph.advance = pixels / m_pixelsPerTwip;
    if (style.kerning && next != nullptr && next->run == glyph.run)
        glyph.advance += std::floor(face->kerning(glyph.character, next->character) * glyph.scale);
}

std::size_t TextLayout::lineOf(std::size_t index) const
{
    if (m_lines.empty()) return 0;
    const auto after = std::ranges::upper_bound(m_lines, index, {}, &LayoutLine::begin);
    return after == m_lines.begin() ? 0 : static_cast<std::size_t>(after - m_lines.begin()) - 1;
}

double TextLayout::xOf(const LayoutLine& line, std::size_t index) const
{
    double x = line.x;
    for (std::size_t i = line.firstGlyph; i < line.firstGlyph + line.glyphCount; ++i) {
        if (m_glyphs[i].index >= index) break;
        x = m_glyphs[i].x + m_glyphs[i].advance;
    }
    return x;
}

std::size_t TextLayout::caretAt(swf::Point point) const
{
    if (m_lines.empty()) return 0;
    auto line = std::ranges::find_if(m_lines, [&](const LayoutLine& l) { return point.y < l.bottom(); });
    if (line == m_lines.end()) --line;
    std::size_t index = line->begin;
    for (std::size_t i = line->firstGlyph; i < line->firstGlyph + line->glyphCount; ++i) {
        const LayoutGlyph& glyph = m_glyphs[i];
        if (point.x < glyph.x + glyph.advance / 2) return glyph.index;
        index = glyph.index + glyph.length;
    }
    return index;
}

std::optional<std::size_t> TextLayout::characterAt(swf::Point point) const
{
    for (const LayoutLine& line : m_lines) {
        if (point.y < line.top || point.y >= line.bottom()) continue;
        for (std::size_t i = line.firstGlyph; i < line.firstGlyph + line.glyphCount; ++i)
            if (point.x >= m_glyphs[i].x && point.x < m_glyphs[i].x + m_glyphs[i].advance)
                return m_glyphs[i].index;
    }
    return {};
}

TextLayout::Caret TextLayout::caret(std::size_t index) const
{
    if (m_lines.empty()) return {};
    const LayoutLine& line = m_lines[lineOf(index)];
    return {xOf(line, index), line.top, line.bottom()};
}

std::vector<swf::Rect> TextLayout::rectsOf(std::size_t begin, std::size_t end) const
{
    std::vector<swf::Rect> rects;
    for (const LayoutLine& line : m_lines) {
        if (line.begin >= end || line.end <= begin) continue;
        const double left = xOf(line, begin), right = xOf(line, end);
        if (right > left) rects.push_back(rect(left, line.top, right, line.bottom()));
    }
    return rects;
}

swf::Rect TextLayout::characterRect(std::size_t index) const
{
    for (const LayoutLine& line : m_lines)
        for (std::size_t i = line.firstGlyph; i < line.firstGlyph + line.glyphCount; ++i) {
            const LayoutGlyph& glyph = m_glyphs[i];
            if (index >= glyph.index && index < glyph.index + glyph.length)
                return rect(glyph.x, line.top, glyph.x + glyph.advance, line.bottom());
        }
    // What ends a line stands at its end.
    if (index >= m_length) return {};
    const Caret end = caret(index);
    return rect(end.x, end.top, end.x, end.bottom);
}

void TextLayout::draw(Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color,
                      const std::optional<Selection>& selection, std::size_t firstLine) const
{
    const auto colorOf = [&](const LayoutGlyph& glyph) {
        const bool selected = selection && glyph.index >= selection->begin && glyph.index < selection->end;
        return apply(color, selected ? selection->color : m_runs[glyph.run].style.color);
    };
    std::vector<GlyphPlacement> batch;
    for (std::size_t l = firstLine; l < m_lines.size(); ++l) {
        const LayoutLine& line = m_lines[l];
        // Glyphs may reach beyond their line by about its height.
        const double margin = line.bottom() - line.top;
        const swf::Rect extent =
            rect(line.x - margin, line.top - margin, line.x + line.width + margin, line.bottom() + margin);
        if (!deviceBounds(unite(extent, rect(0, line.top, line.x, line.bottom())), toDevice)
                 .intersects(canvas.clip()))
            continue;
        for (const Bullet& bullet : m_bullets)
            if (bullet.line == l) {
                const GlyphPlacement placement{bullet.glyph.outline,
                                               glyphMatrix(toDevice, bullet.glyph, line.baseline)};
                canvas.drawGlyphs({&placement, 1}, apply(color, m_runs[bullet.glyph.run].style.color));
            }
        const auto glyphs = std::span(m_glyphs).subspan(line.firstGlyph, line.glyphCount);
        for (std::size_t i = 0; i < glyphs.size();) {
            const swf::Rgba ink = colorOf(glyphs[i]);
            const std::size_t first = i, run = glyphs[i].run;
            batch.clear();
            for (; i < glyphs.size() && glyphs[i].run == run && colorOf(glyphs[i]) == ink; ++i)
                if (glyphs[i].outline != nullptr)
                    batch.push_back(placementOf(glyphs[i], toDevice, line.baseline));
            canvas.drawGlyphs(batch, ink);
            const TextStyle& style = m_runs[run].style;
            if (!style.underline) continue;
            const double under = line.baseline + style.size * 0.08,
                         thickness = std::max(style.size * 0.05, 10.0);
            canvas.fillRect(
                rect(glyphs[first].x, under, glyphs[i - 1].x + glyphs[i - 1].advance, under + thickness),
                toDevice, ink);
        }
    }
}

} // namespace flash::render
