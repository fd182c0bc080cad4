#include "flash/render/Bidi.h"
#include "flash/render/Paragraph.h"

#include <algorithm>
#include <cmath>

// One line of a paragraph: how much goes into it, and where that stands.
namespace flash::render
{
namespace
{

/// Where no tab stops are given, they lie so far apart.
constexpr double kTabDistance = 48 * swf::kTwipsPerPixel;
/// What fits exactly is not pushed out by the last digits of its sum.
constexpr double kSlack = 0.01;

} // namespace

class LineComposer
{
public:
    LineComposer(const Paragraph& paragraph, const LineRequest& request)
        : m_paragraph(paragraph), m_request(request)
    {
    }
    std::shared_ptr<const ComposedLine> compose();

private:
    using Atom = Paragraph::Atom;
    using Break = Paragraph::Break;
    [[nodiscard]] const Atom& atom(std::size_t i) const { return m_paragraph.m_atoms[i]; }
    bool fit(bool squeezes);
    [[nodiscard]] bool isJustified() const;
    [[nodiscard]] bool squeezesSpaces() const;
    void order();
    [[nodiscard]] double tabWidth(std::size_t tab, double x) const;
    void place();
    void justify();
    void findBaselines();
    void stand();

    const Paragraph& m_paragraph;
    const LineRequest& m_request;
    std::shared_ptr<ComposedLine> m_line = std::make_shared<ComposedLine>();
    std::size_t m_first = 0, m_last = 0; ///< atoms
    std::vector<double> m_widths;        ///< of those from m_first on
    double m_reference = 0;              ///< from the roman baseline down to the line's zero
};

double LineComposer::tabWidth(std::size_t tab, double x) const
{
    const double at = x + m_request.tabOffset;
    using Alignment = LineTabStop::Alignment;
    const auto stop = std::ranges::find_if(m_request.tabStops,
                                           [&](const LineTabStop& s) { return s.position > at + kSlack; });
    if (stop == m_request.tabStops.end())
        return (std::floor((at + kSlack) / kTabDistance) + 1) * kTabDistance - at;
    double before = 0; // of what follows, how much lies left of the stop
    if (stop->alignment != Alignment::Start) {
        const auto& atoms = m_paragraph.m_atoms;
        for (std::size_t i = tab + 1; i < atoms.size(); ++i) {
            if (atoms[i].isTab || atoms[i].after == Break::Must || before > m_request.width) break;
            if (stop->alignment == Alignment::Decimal && !stop->token.empty() &&
                m_paragraph.m_text.compare(atoms[i].begin, stop->token.size(), stop->token) == 0)
                break;
            before += atoms[i].width;
        }
        if (stop->alignment == Alignment::Center) before /= 2;
    }
    return std::max(0.0, stop->position - at - before);
}

/// @returns whether there is a line
/// @param squeezes whether spaces may become as narrow as they are allowed to
bool LineComposer::fit(bool squeezes)
{
    const auto& atoms = m_paragraph.m_atoms;
    if (atoms.empty() || m_request.begin >= m_paragraph.length()) return false;
    m_first = m_paragraph.atomAt(m_request.begin);
    m_widths.clear();
    m_line->isEmergency = false;
    double x = 0, spare = 0; // by how much spaces can be narrower
    const double narrow = squeezes ? std::clamp(m_request.justification.narrowestSpace, 0.0, 1.0) : 1;
    std::size_t lastBreak = m_first;
    for (m_last = m_first; m_last < atoms.size(); ++m_last) {
        const Atom& next = atoms[m_last];
        const double width = next.isTab ? tabWidth(m_last, x) : next.width;
        if (!next.isBlank && x + width - spare > m_request.width + kSlack) {
            if (m_last == m_first && !m_request.fitsSomething) return false;
            if (lastBreak > m_first) {
                m_last = lastBreak;
                return true;
            }
            m_line->isEmergency = true;
            if (m_last > m_first) return true;
        }
        m_widths.push_back(width);
        x += width;
        if (next.isTab) spare = 0;
        if (next.isBlank) spare += width * (1 - narrow);
        if (next.after == Break::Must) {
            ++m_last;
            return true;
        }
        if (next.after == Break::Allowed) lastBreak = m_last + 1;
    }
    return true;
}

bool LineComposer::isJustified() const
{
    const bool isLast = m_last == m_paragraph.m_atoms.size();
    const bool isMandatory = atom(m_last - 1).after == Break::Must;
    using Lines = Justification::Lines;
    const Lines lines = m_request.justification.lines;
    return lines == Lines::All || (lines == Lines::AllButLast && !isLast) ||
           (lines == Lines::AllButMandatory && !isMandatory && !isLast);
}

bool LineComposer::squeezesSpaces() const
{
    const Justification& how = m_request.justification;
    return how.lines != Justification::Lines::None && how.spread != Justification::Spread::Letters &&
           how.narrowestSpace < 1;
}

void LineComposer::place()
{
    ComposedLine& line = *m_line;
    line.begin = atom(m_first).begin;
    line.end = atom(m_last - 1).begin + atom(m_last - 1).length;
    line.isLast = m_last == m_paragraph.m_atoms.size();
    double x = 0;
    for (std::size_t i = m_first; i < m_last; ++i) {
        const Atom& from = atom(i);
        const double width = m_widths[i - m_first];
        line.atoms.push_back(
            {from.begin, from.length, from.run, x, width, 0, 0, from.startsWord, from.level, from.quarters});
        line.hasTabs = line.hasTabs || from.isTab;
        line.hasPictures = line.hasPictures ||
                           (from.run < m_paragraph.m_runs.size() && m_paragraph.m_runs[from.run].picture);
        x += width;
        if (!from.isBlank) line.naturalWidth = x;
    }
    // Blanks count where nothing else is there.
    line.textWidth = line.naturalWidth;
}

void LineComposer::justify()
{
    ComposedLine& line = *m_line;
    const Justification& how = m_request.justification;
    const double spare = m_request.width - line.naturalWidth;
    if (!isJustified() || spare == 0 || (spare < 0 && !squeezesSpaces())) return;
    std::size_t visible = line.atoms.size();
    while (visible > 0 && atom(m_first + visible - 1).isBlank) --visible;
    if (visible < 2) return;
    // Nothing moves what a tab has put in its place.
    std::size_t from = visible;
    while (from > 0 && !atom(m_first + from - 1).isTab) --from;
    double blanks = 0;
    std::size_t count = 0;
    for (std::size_t i = from; i < visible; ++i) {
        if (!atom(m_first + i).isBlank) continue;
        ++count;
        blanks += line.atoms[i].width;
    }
    using Spread = Justification::Spread;
    double bySpaces = count == 0 || how.spread == Spread::Letters ? 0 : spare;
    if (how.spread == Spread::SpacesAndLetters && count > 0 && spare > 0)
        bySpaces = std::min(spare, std::max(0.0, blanks * (how.widestSpace - 1)));
    if ((how.spread == Spread::Spaces || spare < 0) && count == 0) return;
    const std::size_t gaps = visible - from - 1;
    const double perGap = gaps > 0 ? (spare - bySpaces) / static_cast<double>(gaps) : 0;
    const double perSpace = count > 0 ? bySpaces / static_cast<double>(count) : 0;
    double shift = 0;
    for (std::size_t i = from; i < line.atoms.size(); ++i) {
        line.atoms[i].x += shift;
        double more = i + 1 < visible ? perGap : 0;
        if (i < visible && atom(m_first + i).isBlank) more += perSpace;
        line.atoms[i].width += more;
        shift += more;
    }
    line.textWidth = m_request.width;
}

/// Has the parts stand in the order they are seen in; what hangs over the end stands beside the line.
void LineComposer::order()
{
    std::vector<LineAtom>& atoms = m_line->atoms;
    const std::uint8_t base = m_paragraph.m_options.bidiLevel;
    const bool runsBack = base % 2 != 0;
    const auto isForward = [](const LineAtom& atom) { return atom.level == 0; };
    if (!runsBack && std::ranges::all_of(atoms, isForward)) return;
    double hanging = 0;
    for (std::size_t i = atoms.size(); i > 0 && atom(m_first + i - 1).isBlank; --i) {
        atoms[i - 1].level = base;
        hanging += atoms[i - 1].width;
    }
    std::vector<std::uint8_t> levels;
    for (const LineAtom& at : atoms) levels.push_back(at.level);
    double x = runsBack ? -hanging : 0;
    for (const std::size_t index : visualOrder(levels)) {
        atoms[index].x = x;
        x += atoms[index].width;
    }
}

void LineComposer::findBaselines()
{
    // The largest text sets them; a picture does where there is no text.
    const ParagraphRun* largest = nullptr;
    const Paragraph::Extent* extent = nullptr;
    for (const LineAtom& at : m_line->atoms) {
        if (at.run >= m_paragraph.m_runs.size()) continue;
        const ParagraphRun& run = m_paragraph.m_runs[at.run];
        const bool isBetter = largest == nullptr || (largest->picture && !run.picture) ||
                              (!run.picture && run.size > largest->size);
        if (!isBetter) continue;
        largest = &run;
        extent = &m_paragraph.m_extents[at.run];
    }
    ParagraphRun reference;
    Paragraph::Extent own;
    const Paragraph::Options& options = m_paragraph.m_options;
    if (options.baselineFace != nullptr) {
        reference.size = options.baselineSize;
        own = Paragraph::extentOf(options.baselineFace, options.baselineSize);
    } else if (largest != nullptr) {
        reference = *largest;
        own = *extent;
    }
    m_reference = m_paragraph.baselineOf(reference, own, options.zero);
    for (std::size_t i = 0; i < kBaselines; ++i)
        m_line->baselines[i] = m_paragraph.baselineOf(reference, own, static_cast<Baseline>(i)) - m_reference;
}

void LineComposer::stand()
{
    ComposedLine& line = *m_line;
    for (std::size_t i = 0; i < line.atoms.size(); ++i) {
        LineAtom& at = line.atoms[i];
        if (at.run >= m_paragraph.m_runs.size()) continue;
        const ParagraphRun& run = m_paragraph.m_runs[at.run];
        const Paragraph::Extent& extent = m_paragraph.m_extents[at.run];
        const Baseline by = run.alignment.value_or(run.dominant);
        const double roman = line.baselines[static_cast<std::size_t>(by)] -
                             m_paragraph.baselineOf(run, extent, by) + run.shift;
        const Atom& from = atom(m_first + i);
        const double centre = roman + m_paragraph.baselineOf(run, extent, Baseline::IdeographicCenter);
        const bool liesAcross = at.quarters % 2 != 0;
        at.top = liesAcross ? centre - from.across / 2 : roman - extent.ascent;
        at.bottom = liesAcross ? centre + from.across / 2 : roman + extent.descent;
        line.totalAscent = std::max(line.totalAscent, -at.top);
        line.totalDescent = std::max(line.totalDescent, at.bottom);
        if (!run.picture) {
            line.ascent = std::max(line.ascent, -at.top);
            line.descent = std::max(line.descent, at.bottom);
        }
        // Letters turn about the middle of their place.
        swf::Matrix turned{1, 0, 0, 1, at.x, roman};
        if (at.quarters != 0) {
            constexpr swf::Matrix kTurns[] = {
                {}, {0, 1, -1, 0, 0, 0}, {-1, 0, 0, -1, 0, 0}, {0, -1, 1, 0, 0, 0}};
            turned = swf::Matrix{1, 0, 0, 1, at.x + from.width / 2, centre} * kTurns[at.quarters] *
                     swf::Matrix{1, 0, 0, 1, -(liesAcross ? from.across : from.width) / 2, roman - centre};
        }
        for (std::size_t g = from.firstGlyph; g < from.firstGlyph + from.glyphCount; ++g) {
            const Paragraph::Glyph& glyph = m_paragraph.m_glyphs[g];
            if (glyph.glyph->outline != nullptr)
                line.m_glyphs.push_back({glyph.glyph->outline,
                                         turned * swf::Matrix{glyph.scale, 0, 0, glyph.scale, glyph.x, 0},
                                         run.color});
        }
    }
}

std::shared_ptr<const ComposedLine> LineComposer::compose()
{
    const bool squeezes = squeezesSpaces();
    if (!fit(squeezes)) return nullptr;
    // What is not justified after all has its spaces as they are.
    if (squeezes && !isJustified() && !fit(false)) return nullptr;
    place();
    justify();
    order();
    findBaselines();
    stand();
    return m_line;
}

std::shared_ptr<const ComposedLine> Paragraph::compose(const LineRequest& request) const
{
    return LineComposer(*this, request).compose();
}

void ComposedLine::draw(Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color) const
{
    std::vector<GlyphPlacement> batch;
    for (std::size_t i = 0; i < m_glyphs.size();) {
        const swf::Rgba ink = m_glyphs[i].color;
        batch.clear();
        for (; i < m_glyphs.size() && m_glyphs[i].color == ink; ++i) {
            const Glyph& glyph = m_glyphs[i];
            batch.push_back({glyph.outline, toDevice * glyph.place});
        }
        canvas.drawGlyphs(batch, apply(color, ink));
    }
}

} // namespace flash::render
