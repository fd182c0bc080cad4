#include "flash/render/Paragraph.h"

#include "flash/guard/Guard.h"
#include "flash/render/Bidi.h"

#include <QChar>
#include <QString>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace flash::render
{
namespace
{

// Of an ideographic em, what stands above and below the roman baseline.
constexpr double kIdeographicTop = 0.88, kIdeographicBottom = 0.12;
// Small capitals, times the size.
constexpr double kSmallScale = 0.75;

bool isBlankCharacter(char32_t c) { return c == U' ' || c == 0x1680 || (c >= 0x2000 && c <= 0x200B); }
bool isBreakCharacter(char32_t c)
{
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

} // namespace

Paragraph::Extent Paragraph::extentOf(const FontFacePtr& face, double size)
{
    if (face == nullptr) return {};
    const FontFace::Metrics metrics = face->metrics();
    if (metrics.unitsPerEm <= 0) return {};
    return {metrics.ascent * size / metrics.unitsPerEm, metrics.descent * size / metrics.unitsPerEm};
}

/// How far below the roman baseline a line of its own lies.
double Paragraph::baselineOf(const ParagraphRun& run, const Extent& extent, Baseline line) const
{
    const double em = run.picture ? 0 : run.size;
    switch (line) {
    case Baseline::Roman: return 0;
    case Baseline::Ascent: return -extent.ascent;
    case Baseline::Descent: return extent.descent;
    // A picture stands on the lower lines and hangs from the upper ones.
    case Baseline::IdeographicTop: return run.picture ? -extent.ascent : -kIdeographicTop * em;
    case Baseline::IdeographicCenter:
        return run.picture ? -extent.ascent / 2 : (kIdeographicBottom - kIdeographicTop) / 2 * em;
    case Baseline::IdeographicBottom: return kIdeographicBottom * em;
    }
    return 0;
}

Paragraph::Paragraph(std::u16string text, std::vector<ParagraphRun> runs, Options options)
    : m_text(std::move(text)), m_runs(std::move(runs)), m_options(std::move(options))
{
    for (const ParagraphRun& run : m_runs)
        m_extents.push_back(run.picture ? Extent{run.picture->height, 0} : extentOf(run.face, run.size));
    m_levels = bidiLevels(m_text, m_options.bidiLevel);
    if (hasJoiningLetters(m_text)) m_forms = joinedForms(m_text);
    readAtoms();
}

void Paragraph::readAtoms()
{
    constexpr std::size_t kCharactersPerStep = 4;
    guard::check(static_cast<std::uint32_t>(1 + m_text.size() / kCharactersPerStep));
    const QString text = QString::fromUtf16(m_text.data(), static_cast<qsizetype>(m_text.size()));
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
    QTextBoundaryFinder words(QTextBoundaryFinder::Word, text);
    QTextBoundaryFinder lines(QTextBoundaryFinder::Line, text);
    std::size_t runEnd = m_runs.empty() ? m_text.size() : m_runs.front().length, run = 0;
    for (std::size_t at = 0; at < m_text.size();) {
        while (at >= runEnd && run + 1 < m_runs.size()) runEnd += m_runs[++run].length;
        letters.setPosition(static_cast<qsizetype>(at));
        const auto next = letters.toNextBoundary();
        std::size_t end = next < 0 ? m_text.size() : static_cast<std::size_t>(next);
        if (run < m_runs.size()) end = endOfAtom(at, end, m_runs[run]);
        if (runEnd > at) end = std::min(end, runEnd);
        Atom atom;
        atom.level = m_levels[at];
        atom.begin = at;
        atom.length = end - at;
        atom.run = run;
        words.setPosition(static_cast<qsizetype>(at));
        atom.startsWord = words.isAtBoundary();
        const char16_t first = m_text[at];
        atom.isTab = first == u'\t';
        atom.isBlank = isBlankCharacter(first) || isBreakCharacter(first);
        lines.setPosition(static_cast<qsizetype>(end));
        const bool isPicture = run < m_runs.size() && m_runs[run].picture.has_value();
        if (isBreakCharacter(first))
            atom.after = Break::Must;
        else if (isPicture || lines.isAtBoundary())
            atom.after = Break::Allowed;
        if (run < m_runs.size() && atom.after != Break::Must) {
            switch (m_runs[run].breaks) {
            case ParagraphRun::Breaks::Auto: break;
            case ParagraphRun::Breaks::Any: atom.after = Break::Allowed; break;
            case ParagraphRun::Breaks::None: atom.after = Break::No; break;
            case ParagraphRun::Breaks::All: atom.after = Break::Must; break;
            }
        }
        readGlyphs(atom);
        m_atoms.push_back(atom);
        at = end;
    }
}

const LetterForm* Paragraph::formAt(std::size_t index) const
{
    const auto found = std::ranges::lower_bound(m_forms, index, {}, &LetterForm::at);
    return found != m_forms.end() && found->at == index ? &*found : nullptr;
}

/// Letters that are drawn as one are one atom.
std::size_t Paragraph::endOfAtom(std::size_t at, std::size_t graphemeEnd, const ParagraphRun& run) const
{
    if (run.face == nullptr || run.picture) return graphemeEnd;
    if (const LetterForm* form = formAt(at); form != nullptr && form->length > 1)
        return std::max(graphemeEnd, at + form->length);
    const bool mayJoin = run.trackingLeft == 0 && run.trackingRight == 0 &&
                         run.letters == ParagraphRun::Letters::AsGiven && m_levels[at] % 2 == 0 &&
                         run.rotation != ParagraphRun::Rotation::Quarter &&
                         run.rotation != ParagraphRun::Rotation::ThreeQuarters;
    if (!mayJoin || graphemeEnd != at + 1) return graphemeEnd;
    const LetterForm ligature = ligatureAt(std::u16string_view(m_text).substr(at), run.ligatures);
    return ligature.length > 0 && run.face->hasOwn(ligature.form) ? at + ligature.length : graphemeEnd;
}

/// The character whose glyph stands for one of the text.
char32_t Paragraph::shownAs(char32_t character, std::size_t index, const Atom& atom) const
{
    const FontFace& face = *m_runs[atom.run].face;
    if (const LetterForm* form = formAt(index);
        form != nullptr && atom.begin + atom.length >= index + form->length)
        return form->length > 1 || face.hasOwn(form->form) || !face.hasOwn(character) ? form->form
                                                                                      : character;
    if (atom.level % 2 != 0) character = QChar::mirroredChar(character);
    if (m_options.isColumn && atom.quarters != 0) {
        const char32_t column = columnForm(character);
        if (face.hasOwn(column)) return column;
    }
    return character;
}

void Paragraph::readGlyphs(Atom& atom)
{
    atom.firstGlyph = m_glyphs.size();
    if (atom.run >= m_runs.size()) return;
    const ParagraphRun& run = m_runs[atom.run];
    if (run.picture) {
        atom.width = run.picture->width;
        m_lastCharacter = 0;
        return;
    }
    if (run.face == nullptr || atom.isTab || isBreakCharacter(m_text[atom.begin])) return;
    using Rotation = ParagraphRun::Rotation;
    if (run.rotation != Rotation::Auto)
        atom.quarters = static_cast<std::uint8_t>(run.rotation);
    else if (m_options.isColumn && standsInColumns(m_text[atom.begin]))
        atom.quarters = static_cast<std::uint8_t>(Rotation::ThreeQuarters);
    const bool liesAcross = atom.quarters % 2 != 0;
    double x = liesAcross ? 0 : run.trackingLeft;
    addGlyphs(atom, x);
    atom.glyphCount = m_glyphs.size() - atom.firstGlyph;
    atom.across = x;
    // Fonts seldom say how high the place of a letter is in columns: an em.
    atom.width = liesAcross ? run.trackingLeft + run.size + run.trackingRight : x + run.trackingRight;
}

void Paragraph::addGlyphs(Atom& atom, double& x)
{
    const ParagraphRun& run = m_runs[atom.run];
    const double unitsPerEm = run.face->metrics().unitsPerEm;
    if (unitsPerEm <= 0) return;
    const LetterForm ligature = ligatureAt(std::u16string_view(m_text).substr(atom.begin), run.ligatures);
    const bool isLigature = ligature.length > 1 && ligature.length == atom.length;
    for (std::size_t i = 0; i < atom.length; ++i) {
        const std::size_t index = atom.begin + i;
        char32_t character = m_text[index];
        const bool isFirst = i == 0;
        if (QChar::isHighSurrogate(character) && i + 1 < atom.length) {
            ++i;
            character = QChar::surrogateToUcs4(static_cast<char16_t>(character), m_text[atom.begin + i]);
        }
        double scale = run.size / unitsPerEm;
        const char32_t upper = QChar::toUpper(character);
        using Letters = ParagraphRun::Letters;
        if (run.letters == Letters::AllSmall || (run.letters == Letters::SmallCapitals && upper != character))
            scale *= kSmallScale;
        if (run.letters == Letters::Lower)
            character = QChar::toLower(character);
        else if (run.letters != Letters::AsGiven)
            character = upper;
        if (isLigature) {
            character = ligature.form;
            i += ligature.length - 1;
        } else if (const LetterForm* form = formAt(index); form != nullptr && form->length > 1) {
            character = form->form;
            i += form->length - 1;
        } else {
            character = shownAs(character, index, atom);
        }
        const FaceGlyph* glyph = run.face->glyph(character);
        if (glyph == nullptr) continue;
        // Letters that belong together move together; the pair's distance belongs to the atom before.
        const bool isBeside = isFirst && !m_atoms.empty() && m_lastCharacter != 0 &&
                              m_atoms.back().run == atom.run && atom.level % 2 == 0 &&
                              m_atoms.back().level == atom.level && atom.quarters == 0 &&
                              m_atoms.back().quarters == 0;
        if (run.kerning && isBeside)
            m_atoms.back().width += run.face->kerning(m_lastCharacter, character) * scale;
        m_glyphs.push_back({glyph, x, scale});
        x += glyph->advance * scale;
        m_lastCharacter = character;
    }
}

std::size_t Paragraph::atomAt(std::size_t index) const
{
    const auto after = std::ranges::upper_bound(m_atoms, index, {}, &Atom::begin);
    return after == m_atoms.begin() ? 0 : static_cast<std::size_t>(after - m_atoms.begin()) - 1;
}

std::size_t Paragraph::nextAtom(std::size_t index) const
{
    if (m_atoms.empty()) return 0;
    const Atom& atom = m_atoms[atomAt(index)];
    return atom.begin + atom.length;
}

std::size_t Paragraph::previousAtom(std::size_t index) const
{
    if (m_atoms.empty() || index == 0) return 0;
    return m_atoms[atomAt(index - 1)].begin;
}

std::size_t Paragraph::nextWord(std::size_t index) const
{
    for (std::size_t i = atomAt(index) + 1; i < m_atoms.size(); ++i) {
        if (m_atoms[i].startsWord) return m_atoms[i].begin;
    }
    return m_text.size();
}

std::size_t Paragraph::previousWord(std::size_t index) const
{
    if (m_atoms.empty() || index == 0) return 0;
    std::size_t at = atomAt(index - 1);
    while (at > 0 && !m_atoms[at].startsWord) --at;
    return m_atoms[at].begin;
}

} // namespace flash::render
