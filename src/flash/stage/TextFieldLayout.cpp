#include "flash/render/Canvas.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"
#include "flash/stage/TextFonts.h"

#include <cmath>

// Where a field's text stands, how far it is scrolled, and how it is drawn.
namespace flash::stage
{

namespace
{

constexpr char16_t kPasswordCharacter = u'*';
constexpr swf::Rgba kSelectionGround{0, 0, 0, 255}, kIdleSelectionGround{85, 85, 85, 255},
    kSelectedText{255, 255, 255, 255};

swf::Matrix translation(swf::Point by) { return {1, 0, 0, 1, by.x, by.y}; }

/// Upright, it ends on whole pixels: the grounds of two lines meet without a seam.
void fillGround(render::Canvas& canvas, const swf::Rect& rect, const swf::Matrix& toDevice, swf::Rgba color)
{
    if (toDevice.b != 0 || toDevice.c != 0) {
        canvas.fillRect(rect, toDevice, color);
        return;
    }
    const auto whole = [](double pixels) {
        constexpr double kFar = 1e8;
        return static_cast<std::int32_t>(std::lround(std::clamp(pixels, -kFar, kFar)));
    };
    const swf::Point a = toDevice.map(rect.xMin, rect.yMin), b = toDevice.map(rect.xMax, rect.yMax);
    canvas.fillRect({whole(std::min(a.x, b.x)), whole(std::max(a.x, b.x)), whole(std::min(a.y, b.y)),
                     whole(std::max(a.y, b.y))},
                    {}, color);
}

} // namespace

/// The faces of one field: those of its movie when it embeds fonts, else the machine's.
class TextField::Fonts final : public render::FontSource
{
public:
    explicit Fonts(TextField& field) : m_field(field) {}
    render::FontFacePtr face(const render::TextStyle& style) override
    {
        TextFonts& fonts = m_field.m_stage.textFonts();
        const MoviePtr& movie = m_field.m_movie;
        if (!m_field.m_embedFonts) return fonts.device(movie, style.font, style.bold, style.italic);
        const swf::EditText& definition = m_field.m_definition;
        const swf::Character* character = movie ? movie->character(definition.fontId) : nullptr;
        const auto* own = character ? std::get_if<swf::Font>(&character->data) : nullptr;
        // A font without a name can only be meant by its number. Of those that share a name and style the
        // first one serves all fields.
        if (own && own->name.empty() && style.font.empty() && own->bold == style.bold &&
            own->italic == style.italic)
            return fonts.embedded(movie, definition.fontId);
        if (render::FontFacePtr face = fonts.embedded(movie, style.font, style.bold, style.italic))
            return face;
        if (render::FontFacePtr face = fonts.shared(style.font, style.bold, style.italic)) return face;
        // HTML need not repeat that the field's own font is a bold one.
        const bool plain = own && !style.bold && !style.italic;
        return plain && m_field.m_html && m_field.m_stage.linkage().textOf(movie, own->name) == style.font
                   ? fonts.embedded(movie, definition.fontId)
                   : nullptr;
    }

private:
    TextField& m_field;
};

void TextField::relayout()
{
    m_layoutValid = false;
    if (m_autoSize == AutoSize::None)
        invalidate();
    else
        contentChanged();
    placePictures();
}

void TextField::outdateLayout()
{
    relayout();
    if (m_content.pictures() == m_pictures) return;
    const NodePtr keep = shared_from_this();
    renewPictures();
    relayout();
}

const render::TextLayout& TextField::layout()
{
    if (m_layoutValid && m_wrapChangedFrame && *m_wrapChangedFrame != m_stage.frameCounter())
        m_layoutValid = false;
    if (m_layoutValid) return m_layout;
    m_wrapChangedFrame.reset();
    m_layoutValid = true;
    m_layout = layoutOf(m_content);
    m_shaped.reset();
    if (m_autoSize != AutoSize::None) fitToText();
    return m_layout;
}

render::TextLayout TextField::layoutOf(const TextContent& content)
{
    std::vector<render::TextRun> runs;
    for (const TextContent::Run& run : content.runs()) runs.push_back({run.length, run.format.style});
    if (runs.empty()) runs.push_back({0, m_newFormat.style});
    render::TextOptions options;
    options.width = std::max(0.0, m_bounds.width() - 2 * render::kTextGutter);
    options.wordWrap = m_wordWrap;
    options.autoSize = m_autoSize != AutoSize::None;
    if (m_password) options.password = kPasswordCharacter;
    options.floats = floats();
    Fonts fonts(*this);
    return render::TextLayout(content.text(), std::move(runs), options, fonts);
}

double TextField::textHeight(const render::TextLayout& layout)
{
    // A last line without characters does not count, and the leading below the last one only where it is the
    // only one.
    const auto& lines = layout.lines();
    if (lines.size() == 1) return layout.height() + lines.back().leading;
    const bool empty = lines.back().begin == lines.back().end;
    return (empty ? lines[lines.size() - 2] : lines.back()).bottom();
}

void TextField::fitToText()
{
    // A field that grows with its text shows all of it.
    m_scrollUnbounded = true;
    // Where one types, the line that is about to be typed is seen as well.
    const double text = isInput() ? std::max(m_layout.height(), textHeight(m_layout)) : textHeight(m_layout);
    const double height = text + 2 * render::kTextGutter;
    m_bounds.yMax = m_bounds.yMin + static_cast<std::int32_t>(std::lround(height));
    if (m_wordWrap) return;
    double right = 0;
    for (const render::LayoutLine& line : m_layout.lines()) {
        const TextFormat* format = m_content.formatAt(line.begin);
        right = std::max(right, line.x + line.width + (format ? format->style.rightMargin : 0));
    }
    const auto width = static_cast<std::int32_t>(std::lround(right + 2 * render::kTextGutter));
    const std::int32_t spare = m_bounds.width() - width;
    switch (m_autoSize) {
    case AutoSize::None: break;
    case AutoSize::Left: m_bounds.xMax = m_bounds.xMin + width; break;
    case AutoSize::Right: m_bounds.xMin = m_bounds.xMax - width; break;
    case AutoSize::Center:
        m_bounds.xMin += spare / 2;
        m_bounds.xMax = m_bounds.xMin + width;
        break;
    }
}

swf::Rect TextField::bounds(Extent)
{
    if (m_autoSize != AutoSize::None) static_cast<void>(layout());
    return m_bounds;
}

bool TextField::hitsShape(swf::Point stagePoint)
{
    return rectContains(*this, bounds(Extent::WithStrokes), stagePoint);
}

// ---- place and size ---------------------------------------------------------------------------------------

// Twips from its origin to the edges that its position is that of.
swf::Point TextField::placedEdges()
{
    const swf::Rect box = bounds();
    return {static_cast<double>(m_placedByRight ? box.xMax : box.xMin),
            static_cast<double>(m_placedByBottom ? box.yMax : box.yMin)};
}

double TextField::x() { return (matrix().tx + placedEdges().x) / swf::kTwipsPerPixel; }
double TextField::y() { return (matrix().ty + placedEdges().y) / swf::kTwipsPerPixel; }
void TextField::setX(double pixels) { Node::setX(pixels - placedEdges().x / swf::kTwipsPerPixel); }
void TextField::setY(double pixels) { Node::setY(pixels - placedEdges().y / swf::kTwipsPerPixel); }

// The size that is set is that of the box, whatever its scale.

void TextField::setWidth(double pixels)
{
    if (!(pixels >= 0)) return;
    constexpr double kWidest = 1e7;
    const double twips = std::min(pixels, kWidest) * swf::kTwipsPerPixel;
    m_bounds.xMax = m_bounds.xMin + static_cast<std::int32_t>(twips);
    m_layoutValid = false;
    contentChanged();
    placePictures();
}

void TextField::setHeight(double pixels)
{
    if (!(pixels >= 0)) return;
    constexpr double kMax = 1e7;
    const double twips = std::min(pixels, kMax) * swf::kTwipsPerPixel;
    m_bounds.yMax = m_bounds.yMin + static_cast<std::int32_t>(twips);
    m_layoutValid = false;
    contentChanged();
    placePictures();
}

// ---- scrolling --------------------------------------------------------------------------------------------

double TextField::visibleWidth() { return bounds().width() - 2 * render::kTextGutter; }
double TextField::visibleHeight() { return bounds().height() - 2 * render::kTextGutter; }

int TextField::maxScroll()
{
    const auto& lines = layout().lines();
    const double room = visibleHeight();
    // An empty last line is there to type in.
    std::size_t last = lines.size() - 1;
    if (last > 0 && !isInput() && lines[last].begin == lines[last].end) --last;
    std::size_t first = last;
    while (first > 0 && lines[last].bottom() - lines[first - 1].top <= room) --first;
    return static_cast<int>(first);
}

void TextField::boundScroll()
{
    if (!m_scrollUnbounded) return;
    m_scrollUnbounded = false;
    m_scroll = std::clamp(m_scroll, 0, maxScroll());
    m_hscroll = std::clamp(m_hscroll, 0.0, maxHscroll());
}

int TextField::scroll()
{
    boundScroll();
    return m_scroll;
}

void TextField::setScroll(int line)
{
    const int before = scroll();
    m_scroll = std::clamp(line, 0, maxScroll());
    if (m_scroll == before) return;
    invalidate();
    placePictures();
    m_stage.script().textScrolled(*this);
}

int TextField::bottomScroll()
{
    const auto& lines = layout().lines();
    const auto first = static_cast<std::size_t>(scroll());
    if (first >= lines.size()) return scroll();
    std::size_t last = first;
    while (last + 1 < lines.size() && lines[last + 1].bottom() - lines[first].top <= visibleHeight()) ++last;
    return static_cast<int>(last);
}

double TextField::maxHscroll()
{
    if (m_wordWrap) return 0;
    return std::max(0.0, layout().width() - visibleWidth());
}

double TextField::hscroll()
{
    boundScroll();
    return m_hscroll;
}

void TextField::setHscroll(double twips)
{
    const double before = hscroll();
    m_hscroll = std::clamp(twips, 0.0, maxHscroll());
    if (m_hscroll == before) return;
    invalidate();
    placePictures();
    m_stage.script().textScrolled(*this);
}

swf::Point TextField::textOrigin()
{
    const auto& lines = layout().lines();
    const swf::Rect box = bounds();
    const double top = lines[static_cast<std::size_t>(std::min(scroll(), maxScroll()))].top;
    return {box.xMin + render::kTextGutter - std::min(hscroll(), maxHscroll()),
            box.yMin + render::kTextGutter - top};
}

swf::Point TextField::toText(swf::Point stagePoint)
{
    const swf::Matrix matrix = toStageAt(stagePoint);
    const swf::Point own = matrix.isInvertible() ? matrix.inverted().map(stagePoint) : swf::Point{};
    const swf::Point origin = textOrigin();
    return {own.x - origin.x, own.y - origin.y};
}

// ---- drawing ----------------------------------------------------------------------------------------------

// The machine's own letters stand upright and opaque, or not at all, and mask nothing: whoever wants a field
// turned, flipped, faded or used as a mask embeds its fonts.
void TextField::draw(render::Canvas& canvas, const swf::Matrix& toDevice,
                     const swf::ColorTransform& parentColor)
{
    swf::ColorTransform color = parentColor;
    if (!m_embedFonts) {
        // What right angles leave of sines.
        constexpr double kNothing = 1e-6;
        const bool upright = toDevice.a > 0 && toDevice.d > 0 && std::abs(toDevice.b) < kNothing &&
                             std::abs(toDevice.c) < kNothing;
        if (!upright || canvas.buildsMask() || swf::apply(color, {0, 0, 0, 255}).a == 0) return;
        color.alphaMul = 256;
        color.alphaAdd = 0;
    }
    const swf::Rect box = bounds();
    if (m_background) canvas.fillBox(box, toDevice, swf::apply(color, m_backgroundColor));
    if (m_border) {
        // In the genuine player's pictures the border that a movie states lacks the pixel at which it ends,
        // and one that a script has put on has it.
        using Corner = render::Canvas::LastCorner;
        const Corner last = m_definition.border ? Corner::Open : Corner::Closed;
        canvas.strokeRect(box, toDevice, swf::apply(color, m_borderColor),
                          m_embedFonts ? Corner::InPart : last);
    }
    if (!m_content.isEmpty() || isFocused()) drawText(canvas, toDevice, color);
}

/// The machine's letters are shaped anew for every size that they come to, and lie as far apart as there.
const render::TextLayout& TextField::layoutFor(double pixelsPerTwip)
{
    constexpr double kTolerance = 1e-6;
    const render::TextLayout& plain = layout();
    if (std::abs(pixelsPerTwip * swf::kTwipsPerPixel - 1) < kTolerance) return plain;
    if (!m_shaped || m_shaped->pixelsPerTwip != pixelsPerTwip)
        m_shaped = Shaped{pixelsPerTwip, plain.shapedFor(pixelsPerTwip)};
    return m_shaped->layout;
}

void TextField::drawText(render::Canvas& canvas, const swf::Matrix& toDevice,
                         const swf::ColorTransform& color)
{
    const bool focused = isFocused();
    const swf::Rect box = bounds();
    std::optional<Composed> composing;
    if (focused && !m_composition.text.empty()) composing = composed();
    swf::Point origin = textOrigin();
    if (composing) origin.x -= composing->shift;
    // The machine's letters keep their proportions: stretched to the side, only their box gets wider.
    swf::Matrix textToDevice = toDevice * translation(origin);
    if (!m_embedFonts && toDevice.b == 0 && toDevice.c == 0)
        textToDevice.a = std::copysign(toDevice.d, toDevice.a);
    const render::TextLayout& text = composing      ? composing->layout
                                     : m_embedFonts ? layout()
                                                    : layoutFor(toDevice.d);
    const bool overflows = origin.x + text.width() > box.xMax || hscroll() > 0 || scroll() > 0 ||
                           origin.y + text.height() > box.yMax || origin.x < box.xMin;
    // As a mask it is as large as its text.
    const bool cut = overflows && !canvas.buildsMask();
    if (cut) {
        canvas.beginMask();
        canvas.fillBox(box, toDevice, {0, 0, 0, 255});
        canvas.endMask();
    }
    std::optional<render::TextLayout::Selection> selected;
    // Lines that were scrolled away are not drawn, however far their letters reach down.
    const auto firstLine = static_cast<std::size_t>(std::min(scroll(), maxScroll()));
    const std::size_t firstSeen = text.lines()[std::min(firstLine, text.lines().size() - 1)].begin;
    if ((focused || m_alwaysShowsSelection) && m_anchor != m_caret && !composing) {
        selected = {selectionBegin(), selectionEnd(), swf::apply(color, kSelectedText)};
        const swf::Rgba ground = focused ? kSelectionGround : kIdleSelectionGround;
        for (const swf::Rect& rect : text.rectsOf(std::max(selectionBegin(), firstSeen), selectionEnd()))
            fillGround(canvas, rect, textToDevice, swf::apply(color, ground));
    }
    text.draw(canvas, textToDevice, color, selected, firstLine);
    if (composing) underline(canvas, textToDevice, color, *composing);
    const std::size_t caretIndex = composing ? composing->caret : m_caret;
    if (focused && isInput() && m_caretShown && (composing || m_anchor == m_caret) &&
        caretIndex >= firstSeen) {
        const render::TextLayout::Caret caret = text.caret(caretIndex);
        const swf::Rect bar{static_cast<std::int32_t>(std::lround(caret.x)),
                            static_cast<std::int32_t>(std::lround(caret.x + kCaretWidth)),
                            static_cast<std::int32_t>(std::lround(caret.top)),
                            static_cast<std::int32_t>(std::lround(caret.bottom))};
        canvas.invertRect(bar, textToDevice);
    }
    if (cut) canvas.popMask();
}

} // namespace flash::stage
