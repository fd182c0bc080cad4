#pragma once

#include "flash/render/TextLayout.h"

#include <limits>

namespace flash::render
{

/// The size in pixels for which letters are shaped; none for one of parts of pixels, or so large that they no
/// longer matter.
std::optional<int> wholePixels(double size);
/// How far apart letters lie that stand on whole pixels, of which no spacing takes all of their room. In
/// pixels.
double pixelAdvance(double own, double spacing);

/// Breaks a text into lines. Used once for each layout.
class LayoutBuilder
{
public:
    LayoutBuilder(TextLayout& layout, std::u16string_view text, const TextOptions& options,
                  FontSource& fonts);
    void build();

private:
    // One run with what its style comes to.
    struct Font {
        FontFacePtr face;
        double scale = 0; ///< face units to twips
        double ascent = 0, descent = 0;
        int wholePixels = 0;    ///< its size, where letters are shaped for pixels
        double tabDistance = 0; ///< where no tab stops are given
    };
    // One character of the text, before it has found its line.
    struct Cell {
        std::size_t index = 0, length = 1;
        std::size_t run = 0;
        char32_t character = 0;
        const FaceGlyph* glyph = nullptr;
        const FaceGlyph* shaped = nullptr; ///< for the pixels of its size
        double advance = 0;
    };

    void loadFonts();
    void paragraph(std::size_t begin, std::size_t end, bool hasBreak);
    void readCells(std::size_t begin, std::size_t end);
    std::size_t fitCells(std::size_t first, double start, double room);
    void addLine(std::size_t first, std::size_t last, const TextStyle& style, bool isFirst, bool isLast,
                 std::size_t begin, std::size_t end);
    void addBullet(std::size_t run, double x);
    /// Places the floats that begin at or before a character, at the line that comes next.
    void placeFloats(std::size_t index, double rightMargin);
    /// Places the first of those left beside the line that comes next, if it begins amid that line and the
    /// letters before it, or a letter or two, have room there as well. @returns whether it did
    /// @param first,last cells of the line. @param end of the line's characters, which it may begin behind
    bool placeFloatAmid(std::size_t first, std::size_t last, std::size_t end, double room,
                        double rightMargin);
    void placeFloat(double rightMargin);
    /// What the floats take away from the next line, on each side; moves it below them when they leave less
    /// than a letter or two of `room`.
    struct Sides {
        double left = 0, right = 0;
    };
    Sides besideFloats(double room);
    [[nodiscard]] double nextTop() const;
    [[nodiscard]] static double advanceOf(const Cell& cell, const Font& font, double spacing);
    [[nodiscard]] double tabAdvance(std::size_t run, double x) const;
    void alignLines();
    [[nodiscard]] std::size_t runAt(std::size_t index) const;

    TextLayout& m_layout;
    std::u16string_view m_text;
    const TextOptions& m_options;
    FontSource& m_fonts;
    std::vector<Font> m_runFonts;
    std::vector<std::size_t> m_runEnds;
    std::vector<Cell> m_cells; ///< of the paragraph at hand
    // What aligning needs to know of each line.
    struct Alignment {
        swf::EditText::Align align = swf::EditText::Align::Left;
        double right = 0; ///< margin
        bool justifiable = false;
    };
    std::vector<Alignment> m_alignments;

    struct PlacedFloat {
        double top = 0, bottom = 0, width = 0;
        bool onRight = false;
    };
    std::vector<PlacedFloat> m_standing; ///< floats that reach further down than the lines so far
    double m_leastTop = std::numeric_limits<double>::lowest(); ///< the next line stands no higher
};

} // namespace flash::render
