#include "flash/render/LayoutBuilder.h"

#include "flash/guard/Guard.h"

#include <algorithm>
#include <cmath>

namespace flash::render
{
namespace
{

using Align = swf::EditText::Align;

// Where the bullet of a list item stands, and its text, beyond the left margin.
constexpr double kBulletX = 18 * swf::kTwipsPerPixel;
constexpr double kBulletTextX = 36 * swf::kTwipsPerPixel;
constexpr char32_t kBulletCharacter = 0x2022;
// Where no tab stops are given they lie so far apart, times the height of the letters.
constexpr double kTabDistance = 1.979;
// Lines with less room than that beside floats stand below them.
constexpr double kLeastRoom = 20 * swf::kTwipsPerPixel;

bool isLineBreak(char16_t c) { return c == u'\r' || c == u'\n'; }
bool isSpace(char32_t c) { return c == U' ' || c == U'\t'; }

// Between ideographs a line may break anywhere.
bool isIdeographic(char32_t c) { return (c >= 0x2E80 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF); }

bool isHighSurrogate(char16_t c) { return c >= 0xD800 && c < 0xDC00; }
bool isLowSurrogate(char16_t c) { return c >= 0xDC00 && c < 0xE000; }

} // namespace

LayoutBuilder::LayoutBuilder(TextLayout& layout, std::u16string_view text, const TextOptions& options,
                             FontSource& fonts)
    : m_layout(layout), m_text(text), m_options(options), m_fonts(fonts)
{
}

std::size_t LayoutBuilder::runAt(std::size_t index) const
{
    const auto found = std::ranges::upper_bound(m_runEnds, index);
    return std::min(static_cast<std::size_t>(found - m_runEnds.begin()), m_runEnds.size() - 1);
}

void LayoutBuilder::loadFonts()
{
    if (m_layout.m_runs.empty()) m_layout.m_runs.push_back({m_text.size(), {}});
    std::size_t end = 0;
    for (const TextRun& run : m_layout.m_runs) {
        end += run.length;
        m_runEnds.push_back(end);
        Font font;
        font.face = m_fonts.face(run.style);
        if (font.face != nullptr) {
            const FontFace::Metrics metrics = font.face->metrics();
            font.scale = metrics.unitsPerEm > 0 ? run.style.size / metrics.unitsPerEm : 0;
            font.ascent = std::trunc(metrics.ascent * font.scale);
            font.descent = std::trunc(metrics.descent * font.scale);
            if (font.face->standsOnPixels())
                font.wholePixels = wholePixels(run.style.size / swf::kTwipsPerPixel).value_or(0);
            font.tabDistance = std::round(kTabDistance * (metrics.ascent + metrics.descent) * font.scale);
        }
        m_layout.m_faces.push_back(font.face);
        m_runFonts.push_back(std::move(font));
    }
}

void LayoutBuilder::build()
{
    loadFonts();
    std::size_t begin = 0;
    for (;;) {
        std::size_t end = begin;
        while (end < m_text.size() && !(m_options.multiline && isLineBreak(m_text[end]))) ++end;
        const bool hasBreak = end < m_text.size();
        constexpr std::size_t kCharactersPerStep = 4;
        guard::check(static_cast<std::uint32_t>(1 + (end - begin) / kCharactersPerStep));
        paragraph(begin, end, hasBreak);
        if (!hasBreak) break;
        begin = end + 1;
    }
    placeFloats(m_text.size(), 0);
    alignLines();
}

void LayoutBuilder::readCells(std::size_t begin, std::size_t end)
{
    m_cells.clear();
    for (std::size_t i = begin; i < end;) {
        Cell cell;
        cell.index = i;
        cell.character = m_text[i];
        if (isHighSurrogate(m_text[i]) && i + 1 < end && isLowSurrogate(m_text[i + 1])) {
            cell.length = 2;
            cell.character =
                0x10000 + ((char32_t{m_text[i]} - 0xD800) << 10) + (char32_t{m_text[i + 1]} - 0xDC00);
        }
        i += cell.length;
        cell.run = runAt(cell.index);
        if (m_options.password) cell.character = *m_options.password;
        const Font& font = m_runFonts[cell.run];
        const TextStyle& style = m_layout.m_runs[cell.run].style;
        // Line breaks in a field of one line are not seen.
        const bool invisible = cell.character < 0x20 && cell.character != U'\t';
        if (font.face != nullptr && !invisible && cell.character != U'\t') {
            cell.glyph = font.face->glyph(cell.character);
            if (font.wholePixels > 0) cell.shaped = font.face->shapedAt(cell.character, font.wholePixels);
            if (cell.glyph != nullptr) cell.advance = advanceOf(cell, font, style.letterSpacing);
            if (style.kerning && !m_cells.empty() && m_cells.back().run == cell.run)
                m_cells.back().advance +=
                    std::floor(font.face->kerning(m_cells.back().character, cell.character) * font.scale);
        }
        m_cells.push_back(cell);
    }
}

/// Letters stand on whole twips, as they did where the movie was made; the machine's own on whole pixels.
double LayoutBuilder::advanceOf(const Cell& cell, const Font& font, double spacing)
{
    constexpr double kShapedUnit = swf::kTwipsPerPixel * FontFace::kShapedUnit;
    const double own =
        cell.shaped != nullptr ? cell.shaped->advance * kShapedUnit : cell.glyph->advance * font.scale;
    if (!font.face->standsOnPixels()) return std::trunc(own) + spacing;
    return pixelAdvance(own / swf::kTwipsPerPixel, spacing / swf::kTwipsPerPixel) * swf::kTwipsPerPixel;
}

double LayoutBuilder::tabAdvance(std::size_t run, double x) const
{
    const TextStyle& style = m_layout.m_runs[run].style;
    for (const double stop : style.tabStops)
        if (stop > x + 1) return stop - x;
    // Beyond the last stop tabs take no room.
    if (!style.tabStops.empty()) return 0;
    const Font& font = m_runFonts[run];
    return font.tabDistance > 0 ? (std::floor(x / font.tabDistance) + 1) * font.tabDistance - x : 0;
}

// Gives tabs their width, and tells how many cells from `first` on go into a line: at least one, spaces at
// its end not counted.
// @param start where the line starts, from the left margin on; tab stops count from there
std::size_t LayoutBuilder::fitCells(std::size_t first, double start, double room)
{
    double x = 0;
    std::size_t lastBreak = first;
    for (std::size_t i = first; i < m_cells.size(); ++i) {
        Cell& cell = m_cells[i];
        if (cell.character == U'\t') cell.advance = tabAdvance(cell.run, start + x);
        const bool space = isSpace(cell.character);
        const bool before = i > first && isIdeographic(cell.character);
        if (before) lastBreak = i;
        // Rounding of advances must not push out what fits exactly.
        constexpr double kSlack = 0.5;
        if (m_options.wordWrap && !space && i > first && x + cell.advance > room + kSlack)
            return lastBreak > first ? lastBreak : i;
        x += cell.advance;
        // A tab holds what is beside it together.
        if (cell.character == U' ' || cell.character == U'-' || isIdeographic(cell.character))
            lastBreak = i + 1;
    }
    return m_cells.size();
}

double LayoutBuilder::nextTop() const
{
    const auto& lines = m_layout.m_lines;
    return std::max(m_leastTop, lines.empty() ? 0 : lines.back().bottom() + lines.back().leading);
}

void LayoutBuilder::placeFloat(double rightMargin)
{
    const TextFloat& next = m_options.floats[m_layout.m_floats.size()];
    double top = nextTop();
    for (const PlacedFloat& other : m_standing)
        if (other.onRight == next.onRight) top = std::max(top, other.bottom);
    const double left = next.onRight ? std::max(0.0, m_options.width - rightMargin - next.width) : 0;
    m_layout.m_floats.push_back({left, top});
    m_standing.push_back({top, top + next.height, next.width, next.onRight});
}

void LayoutBuilder::placeFloats(std::size_t index, double rightMargin)
{
    while (m_layout.m_floats.size() < m_options.floats.size() &&
           m_options.floats[m_layout.m_floats.size()].index <= index)
        placeFloat(rightMargin);
}

bool LayoutBuilder::placeFloatAmid(std::size_t first, std::size_t last, std::size_t end, double room,
                                   double rightMargin)
{
    if (m_layout.m_floats.size() == m_options.floats.size()) return false;
    const TextFloat& next = m_options.floats[m_layout.m_floats.size()];
    if (next.index > end) return false;
    double x = 0, before = 0;
    for (std::size_t i = first; i < last && m_cells[i].index < next.index; ++i) {
        x += m_cells[i].advance;
        if (!isSpace(m_cells[i].character)) before = x;
    }
    if (m_options.wordWrap && next.width + std::max(before, kLeastRoom) > room) return false;
    placeFloat(rightMargin);
    return true;
}

LayoutBuilder::Sides LayoutBuilder::besideFloats(double room)
{
    for (;;) {
        const double top = nextTop();
        std::erase_if(m_standing, [&](const PlacedFloat& f) { return f.bottom <= top; });
        Sides sides;
        double bottom = 0;
        for (const PlacedFloat& standing : m_standing) {
            if (standing.top > top) continue;
            double& side = standing.onRight ? sides.right : sides.left;
            side = std::max(side, standing.width);
            if (bottom == 0 || standing.bottom < bottom) bottom = standing.bottom;
        }
        if (bottom == 0 || !m_options.wordWrap || room - sides.left - sides.right >= kLeastRoom) return sides;
        m_leastTop = bottom;
    }
}

void LayoutBuilder::paragraph(std::size_t begin, std::size_t end, bool hasBreak)
{
    const TextStyle style = m_layout.m_runs[runAt(begin)].style;
    readCells(begin, end);
    const double margin = style.leftMargin + style.blockIndent + (style.bullet ? kBulletTextX : 0);
    std::size_t first = 0;
    bool isFirst = true;
    do {
        const double indent = isFirst ? style.indent : 0;
        placeFloats(first < m_cells.size() ? m_cells[first].index : end, style.rightMargin);
        const double whole = m_options.width - margin - indent - style.rightMargin;
        Sides beside = besideFloats(whole);
        std::size_t last = 0;
        for (;;) {
            guard::check(); // the line is fitted anew for every picture in it
            const double room = whole - beside.left - beside.right;
            last = fitCells(first, style.blockIndent + indent, room);
            const std::size_t lastIndex = last < m_cells.size() ? m_cells[last].index - 1 : end;
            if (!placeFloatAmid(first, last, lastIndex, room, style.rightMargin)) break;
            beside = besideFloats(whole);
        }
        const bool isLast = last == m_cells.size();
        const std::size_t lineBegin = first < m_cells.size() ? m_cells[first].index : end;
        const std::size_t lineEnd = isLast ? end + (hasBreak ? 1 : 0) : m_cells[last].index;
        addLine(first, last, style, isFirst, isLast, lineBegin, lineEnd);
        m_layout.m_lines.back().x = margin + indent + beside.left;
        m_alignments.back().right += beside.right;
        if (isFirst && style.bullet)
            addBullet(runAt(begin), beside.left + style.leftMargin + style.blockIndent + kBulletX);
        isFirst = false;
        first = last;
    } while (first < m_cells.size());
}

// @param first,last cells
// @param begin,end  characters, with what breaks the line
void LayoutBuilder::addLine(std::size_t first, std::size_t last, const TextStyle& style, bool isFirst,
                            bool isLast, std::size_t begin, std::size_t end)
{
    LayoutLine line;
    line.begin = begin;
    line.end = end;
    line.startsParagraph = isFirst;
    line.firstGlyph = m_layout.m_glyphs.size();
    line.glyphCount = last - first;
    line.leading = style.leading;
    const auto grow = [&](std::size_t run) {
        line.ascent = std::max(line.ascent, m_runFonts[run].ascent);
        line.descent = std::max(line.descent, m_runFonts[run].descent);
    };
    if (first == last) grow(runAt(begin));
    double x = 0;
    for (std::size_t i = first; i < last; ++i) {
        const Cell& cell = m_cells[i];
        grow(cell.run);
        LayoutGlyph glyph;
        glyph.index = cell.index;
        glyph.length = cell.length;
        glyph.run = cell.run;
        glyph.character = cell.character;
        glyph.x = x;
        glyph.advance = cell.advance;
        glyph.scale = m_runFonts[cell.run].scale;
        if (cell.glyph != nullptr) glyph.outline = cell.glyph->outline;
        if (cell.shaped != nullptr) glyph.shaped = cell.shaped->outline;
        m_layout.m_glyphs.push_back(std::move(glyph));
        x += cell.advance;
        // Spaces that hang over the end of a wrapped line take no room, but count in the text's own width.
        if (isLast || !isSpace(cell.character)) line.width = x;
    }
    m_layout.m_width = std::max(m_layout.m_width, x);
    line.top = nextTop();
    line.baseline = line.top + line.ascent;
    m_layout.m_lines.push_back(line);
    m_alignments.push_back({style.align, style.rightMargin, !isLast});
}

void LayoutBuilder::addBullet(std::size_t run, double x)
{
    const Font& font = m_runFonts[run];
    const FaceGlyph* face = font.face == nullptr ? nullptr : font.face->glyph(kBulletCharacter);
    if (face == nullptr) return;
    LayoutGlyph glyph;
    glyph.run = run;
    glyph.x = x;
    glyph.scale = font.scale;
    glyph.outline = face->outline;
    m_layout.m_bullets.push_back({m_layout.m_lines.size() - 1, std::move(glyph)});
}

void LayoutBuilder::alignLines()
{
    double widest = 0;
    for (std::size_t i = 0; i < m_layout.m_lines.size(); ++i) {
        const LayoutLine& line = m_layout.m_lines[i];
        widest = std::max(widest, line.x + line.width + m_alignments[i].right);
        m_layout.m_width = std::max(m_layout.m_width, line.width);
        m_layout.m_height = line.bottom();
    }
    const double room = m_options.autoSize && !m_options.wordWrap ? widest : m_options.width;
    for (std::size_t i = 0; i < m_layout.m_lines.size(); ++i) {
        LayoutLine& line = m_layout.m_lines[i];
        const Alignment& alignment = m_alignments[i];
        const double spare = std::max(room - line.x - line.width - alignment.right, 0.0);
        const auto glyphs = std::span(m_layout.m_glyphs).subspan(line.firstGlyph, line.glyphCount);
        switch (alignment.align) {
        case Align::Left: break;
        case Align::Right: {
            // As recorded, letters that stand on pixels leave one free.
            const auto face = glyphs.empty() ? nullptr : m_runFonts[glyphs.front().run].face;
            const bool onPixels = face != nullptr && face->standsOnPixels();
            line.x += onPixels ? std::max(spare - swf::kTwipsPerPixel, 0.0) : spare;
            break;
        }
        case Align::Center: line.x += spare / 2; break;
        case Align::Justify: {
            if (!alignment.justifiable) break;
            const auto stretches = [&](const LayoutGlyph& glyph) {
                return m_text[glyph.index] == u' ' && glyph.x < line.width;
            };
            const auto count = std::ranges::count_if(glyphs, stretches);
            if (count == 0) break;
            double shift = 0;
            for (LayoutGlyph& glyph : glyphs) {
                const bool stretch = stretches(glyph);
                glyph.x += shift;
                if (!stretch) continue;
                glyph.advance += spare / static_cast<double>(count);
                shift += spare / static_cast<double>(count);
            }
            line.width += spare;
            break;
        }
        }
        for (LayoutGlyph& glyph : glyphs) glyph.x += line.x;
    }
}

} // namespace flash::render
