#pragma once

#include "flash/render/Canvas.h"
#include "flash/render/FontFace.h"
#include "flash/swf/Movie.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Texts of text fields as lines and positioned glyphs. Lengths are twips, in a system whose origin is the
// upper left corner of the text: for a field that is its own corner plus kTextGutter in both directions.
namespace flash::render
{

/// What a field leaves free between its border and its text, on each side.
constexpr double kTextGutter = 40;

/// How a stretch of text looks. Paragraph attributes (from `align` on) are taken from the first character of
/// each paragraph.
struct TextStyle {
    std::string font = "_serif"; ///< UTF-8
    double size = 240;           ///< twips to the em
    swf::Rgba color;
    bool bold = false, italic = false, underline = false, kerning = false;
    double letterSpacing = 0;

    swf::EditText::Align align = swf::EditText::Align::Left;
    double leftMargin = 0, rightMargin = 0;
    double indent = 0;      ///< of the first line of a paragraph; may be negative
    double blockIndent = 0; ///< of all its lines
    double leading = 0;     ///< between lines; may be negative
    bool bullet = false;
    std::vector<double> tabStops; ///< ascending; from the left margin on
    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// A stretch of text in one style.
struct TextRun {
    std::size_t length = 0; ///< UTF-16 units
    TextStyle style;
};

/// Finds the face for a style: a font of the movie or of the machine.
class FontSource
{
public:
    virtual ~FontSource() = default;
    /// @returns null when there is none: the text takes no room and is not seen
    virtual FontFacePtr face(const TextStyle& style) = 0;
};

/// Something that stands at the side of a text, whose lines flow around it. It begins with the line that the
/// character `index` is in, or, where the letters before it leave no room for it, with the next one; and
/// below what stands at that side already.
struct TextFloat {
    std::size_t index = 0;
    double width = 0, height = 0; ///< with what is left free around it
    bool onRight = false;
};

struct TextOptions {
    /// Room for lines; decides on wrapping and on where lines are aligned to.
    double width = 0;
    bool wordWrap = false;
    /// false: line breaks in the text are not followed.
    bool multiline = true;
    /// The field grows with its text: lines are aligned within the widest of them instead of within `width`.
    bool autoSize = false;
    /// Shown instead of every character.
    std::optional<char16_t> password;
    std::vector<TextFloat> floats = {}; ///< in the order of their indices
};

struct LayoutGlyph {
    std::size_t index = 0;  ///< of its character in the text, UTF-16 units
    std::size_t length = 1; ///< UTF-16 units
    std::size_t run = 0;    ///< index into the runs
    char32_t character = 0; ///< as it is shown
    double x = 0;           ///< of the origin
    double advance = 0;     ///< to the next one: justification, spacing and kerning included
    double scale = 0;       ///< face units to twips
    std::shared_ptr<const swf::Shape> outline; ///< null for what is not seen
    /// As its font shapes it for the pixels that the layout is for, in FontFace::kShapedUnit; may be null.
    std::shared_ptr<const swf::Shape> shaped = nullptr;
};

struct LayoutLine {
    std::size_t begin = 0,
                end = 0; ///< of its characters in the text; the line break or hanging space included
    std::size_t firstGlyph = 0, glyphCount = 0;
    double x = 0, width = 0; ///< of what is seen
    double top = 0, baseline = 0;
    double ascent = 0, descent = 0, leading = 0;
    bool startsParagraph = false;
    [[nodiscard]] double bottom() const { return baseline + descent; }
};

/// A text broken into lines. Empty text is one empty line. Indices are UTF-16 units of the text.
class TextLayout
{
public:
    TextLayout() = default;
    /// @param runs together as long as the text; the last one's style also holds for the end of an empty
    /// text.
    ///             What they miss has the style of the last run.
    TextLayout(std::u16string_view text, std::vector<TextRun> runs, const TextOptions& options,
               FontSource& fonts);

    /// The same lines for other pixels than those of a stage that is not scaled: letters that stand on pixels
    /// are shaped for the size that they come to there, and lie as far apart as they do at that size.
    [[nodiscard]] TextLayout shapedFor(double pixelsPerTwip) const;

    [[nodiscard]] const std::vector<LayoutLine>& lines() const { return m_lines; }
    [[nodiscard]] const std::vector<LayoutGlyph>& glyphs() const { return m_glyphs; }
    [[nodiscard]] const std::vector<TextRun>& runs() const { return m_runs; }

    /// The upper left corners of the floats.
    [[nodiscard]] const std::vector<swf::Point>& floats() const { return m_floats; }

    [[nodiscard]] double width() const { return m_width; }   ///< of the widest line
    [[nodiscard]] double height() const { return m_height; } ///< to the bottom of the last line

    [[nodiscard]] std::size_t lineOf(std::size_t index) const;
    /// The place between characters that is nearest to a point: 0 to the text's length.
    [[nodiscard]] std::size_t caretAt(swf::Point point) const;
    /// The character under a point, if any.
    [[nodiscard]] std::optional<std::size_t> characterAt(swf::Point point) const;
    /// Where the caret before a character stands.
    struct Caret {
        double x = 0, top = 0, bottom = 0;
    };
    [[nodiscard]] Caret caret(std::size_t index) const;
    /// A rectangle for each line that characters from `begin` up to `end` lie in.
    [[nodiscard]] std::vector<swf::Rect> rectsOf(std::size_t begin, std::size_t end) const;
    /// The place and size of one character; a line break has no width.
    [[nodiscard]] swf::Rect characterRect(std::size_t index) const;

    /// Draws glyphs, underlines and bullets.
    /// @param toDevice of the text's own system
    /// @param firstLine what stands above it is left out
    /// @param selection these characters are drawn in `selectedColor`; the caller has drawn the ground
    struct Selection {
        std::size_t begin = 0, end = 0;
        swf::Rgba color;
    };
    void draw(Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color = {},
              const std::optional<Selection>& selection = {}, std::size_t firstLine = 0) const;

private:
    friend class LayoutBuilder;
    struct Bullet {
        std::size_t line = 0;
        LayoutGlyph glyph;
    };
    [[nodiscard]] double xOf(const LayoutLine& line, std::size_t index) const;
    /// @param next the one behind it in its line, or null
    void shape(LayoutGlyph& glyph, const LayoutGlyph* next) const;
    [[nodiscard]] GlyphPlacement placementOf(const LayoutGlyph& glyph, const swf::Matrix& toDevice,
                                             double baseline) const;

    std::vector<TextRun> m_runs;
    std::vector<FontFacePtr> m_faces; ///< of the runs
    std::vector<LayoutLine> m_lines;
    std::vector<LayoutGlyph> m_glyphs;
    std::vector<Bullet> m_bullets;
    std::vector<swf::Point> m_floats;
    double m_width = 0, m_height = 0;
    std::size_t m_length = 0;
    double m_pixelsPerTwip = 1.0 / swf::kTwipsPerPixel; ///< where letters are shaped for pixels
};

} // namespace flash::render
