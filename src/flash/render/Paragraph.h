#pragma once

#include "flash/render/Canvas.h"
#include "flash/render/FontFace.h"
#include "flash/render/LetterForms.h"

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Paragraphs that are broken into lines one by one, each as wide as whoever asks for it wants. Lengths are
// twips; in a line x counts from its beginning, and y down from the baseline that the paragraph calls zero.
namespace flash::render
{

enum class Baseline : std::uint8_t {
    Roman,
    Ascent,
    Descent,
    IdeographicTop,
    IdeographicCenter,
    IdeographicBottom
};
constexpr std::size_t kBaselines = 6;

/// A stretch of a paragraph that looks alike, or a picture that stands for one character.
struct ParagraphRun {
    enum class Breaks : std::uint8_t {
        Auto,
        Any,  ///< allowed between any two characters
        None, ///< not allowed
        All,  ///< after each character
    };
    /// Of each letter, clockwise. Auto: those that stand upright in columns, in lines that are columns.
    enum class Rotation : std::uint8_t { None, Quarter, Half, ThreeQuarters, Auto };
    enum class Letters : std::uint8_t { AsGiven, Upper, Lower, SmallCapitals, AllSmall };
    struct Picture {
        double width = 0, height = 0;
    };
    std::size_t length = 0; ///< UTF-16 units
    FontFacePtr face;       ///< null: the text takes no room
    double size = 240;      ///< to the em
    swf::Rgba color;
    bool kerning = true;
    double trackingLeft = 0, trackingRight = 0; ///< added beside each character
    double shift = 0;                           ///< down
    Baseline dominant = Baseline::Roman;
    std::optional<Baseline> alignment; ///< nothing: the dominant one
    Breaks breaks = Breaks::Auto;
    Letters letters = Letters::AsGiven;
    Rotation rotation = Rotation::None;
    Ligatures ligatures = Ligatures::Common; ///< where no tracking parts the letters
    std::optional<Picture> picture;
};

struct LineTabStop {
    enum class Alignment : std::uint8_t { Start, Center, End, Decimal };
    Alignment alignment = Alignment::Start;
    double position = 0;
    std::u16string token; ///< what Decimal aligns
};

struct Justification {
    enum class Lines : std::uint8_t { None, AllButLast, All, AllButMandatory };
    enum class Spread : std::uint8_t {
        Spaces,
        SpacesAndLetters, ///< letters where spaces would become wider than `widestSpace`
        Letters,
    };
    Lines lines = Lines::None;
    Spread spread = Spread::Spaces;
    double widestSpace = 1.5;  ///< times its own width
    double narrowestSpace = 1; ///< the same; what fits with spaces so narrow goes into the line
};

struct LineRequest {
    std::size_t begin = 0; ///< in the paragraph, UTF-16 units
    double width = 0;
    double tabOffset = 0; ///< from where tab stops count to where the line begins
    bool fitsSomething = false;
    Justification justification;
    std::span<const LineTabStop> tabStops; ///< ascending
};

/// What a line is made of and what a caret stops at: a character with what combines with it, a ligature, or
/// a picture. In the order of the text, whichever way that runs.
struct LineAtom {
    std::size_t begin = 0, length = 0; ///< in the paragraph, UTF-16 units
    std::size_t run = 0;
    double x = 0, width = 0;
    double top = 0, bottom = 0;
    bool startsWord = false;
    std::uint8_t level = 0;    ///< odd where the text runs to the left
    std::uint8_t quarters = 0; ///< that it is turned by, clockwise
};

/// A line that has been laid out. Never changed.
class ComposedLine
{
public:
    std::size_t begin = 0, end = 0; ///< in the paragraph, what breaks the line included
    std::vector<LineAtom> atoms;
    double textWidth = 0;    ///< without blanks that hang over the end
    double naturalWidth = 0; ///< the same before it was justified
    double ascent = 0, descent = 0;
    double totalAscent = 0, totalDescent = 0; ///< with pictures
    std::array<double, kBaselines> baselines{};
    bool hasTabs = false, hasPictures = false;
    bool isEmergency = false; ///< broken where nothing allows it
    bool isLast = false;

    void draw(Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) const;

private:
    friend class LineComposer;
    struct Glyph {
        std::shared_ptr<const swf::Shape> outline;
        swf::Matrix place; ///< of the outline in the line
        swf::Rgba color;
    };
    std::vector<Glyph> m_glyphs;
};

class Paragraph
{
public:
    struct Options {
        Baseline zero = Baseline::Roman;
        FontFacePtr baselineFace; ///< null: that of the largest text of each line
        double baselineSize = 240;
        std::uint8_t bidiLevel = 0; ///< odd where the paragraph as a whole runs to the left
        bool isColumn = false;      ///< lines are turned, letters that stand upright then turn back
    };
    /// @param runs together as long as the text
    Paragraph(std::u16string text, std::vector<ParagraphRun> runs, Options options);

    /// @returns null when nothing fits, or nothing is left
    [[nodiscard]] std::shared_ptr<const ComposedLine> compose(const LineRequest& request) const;
    [[nodiscard]] std::size_t length() const { return m_text.size(); }

    /// Atom and word boundaries, in UTF-16 units of the text.
    [[nodiscard]] std::size_t nextAtom(std::size_t index) const;
    [[nodiscard]] std::size_t previousAtom(std::size_t index) const;
    [[nodiscard]] std::size_t nextWord(std::size_t index) const;
    [[nodiscard]] std::size_t previousWord(std::size_t index) const;

private:
    friend class LineComposer;
    enum class Break : std::uint8_t { No, Allowed, Must };
    struct Glyph {
        const FaceGlyph* glyph = nullptr;
        double x = 0, scale = 0;
    };
    struct Atom {
        std::size_t begin = 0, length = 0, run = 0;
        std::size_t firstGlyph = 0, glyphCount = 0;
        double width = 0;
        double across = 0; ///< of a letter that lies across the line, its own width
        std::uint8_t level = 0, quarters = 0;
        bool isBlank = false, isTab = false, startsWord = false;
        Break after = Break::No;
    };
    struct Extent {
        double ascent = 0, descent = 0;
    };
    void readAtoms();
    [[nodiscard]] std::size_t endOfAtom(std::size_t at, std::size_t graphemeEnd,
                                        const ParagraphRun& run) const;
    [[nodiscard]] const LetterForm* formAt(std::size_t index) const;
    [[nodiscard]] char32_t shownAs(char32_t character, std::size_t index, const Atom& atom) const;
    void readGlyphs(Atom& atom);
    void addGlyphs(Atom& atom, double& x);
    [[nodiscard]] std::size_t atomAt(std::size_t index) const;
    [[nodiscard]] double baselineOf(const ParagraphRun& run, const Extent& extent, Baseline line) const;
    [[nodiscard]] static Extent extentOf(const FontFacePtr& face, double size);

    std::u16string m_text;
    std::vector<ParagraphRun> m_runs;
    Options m_options;
    std::vector<Extent> m_extents;      ///< of the runs
    std::vector<std::uint8_t> m_levels; ///< of the characters
    std::vector<LetterForm> m_forms;    ///< of letters that join
    std::vector<Atom> m_atoms;
    std::vector<Glyph> m_glyphs;
    char32_t m_lastCharacter = 0; ///< while glyphs are read; for kerning
};

} // namespace flash::render
