#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

// What an input method is about to type: seen in its place, but no part of the text yet.
namespace flash::stage
{

void TextField::compose(std::u16string text, std::size_t caret)
{
    constexpr std::size_t kLongest = 1024;
    text.resize(std::min(text.size(), kLongest));
    if (!isInput() || !isFocused()) text.clear();
    if (text.empty() && m_composition.text.empty()) return;
    caret = std::min(caret, text.size());
    m_composition = {std::move(text), caret};
    m_caretShown = true;
    m_caretSinceMs = m_stage.nowMs();
    invalidate();
}

TextField::Composed TextField::composed()
{
    Composed composed;
    composed.begin = selectionBegin();
    composed.end = composed.begin + m_composition.text.size();
    composed.caret = composed.begin + m_composition.caret;
    TextContent content = m_content;
    content.replace(selectionBegin(), selectionEnd(), m_composition.text, typingFormat());
    composed.layout = layoutOf(content);
    // However far it reaches, the place where one types is seen.
    const double beyond = composed.layout.caret(composed.caret).x + kCaretWidth - hscroll() - visibleWidth();
    composed.shift = std::max(0.0, beyond);
    return composed;
}

void TextField::underline(render::Canvas& canvas, const swf::Matrix& textToDevice,
                          const swf::ColorTransform& color, const Composed& composed)
{
    constexpr std::int32_t kThickness = swf::kTwipsPerPixel;
    const swf::Rgba ink = swf::apply(color, typingFormat().style.color);
    for (swf::Rect line : composed.layout.rectsOf(composed.begin, composed.end)) {
        line.yMin = line.yMax - kThickness;
        canvas.fillRect(line, textToDevice, ink);
    }
}

swf::Rect TextField::caretOnStage()
{
    swf::Point origin = textOrigin();
    render::TextLayout::Caret caret;
    if (m_composition.text.empty()) {
        caret = layout().caret(m_caret);
    } else {
        const Composed shown = composed();
        caret = shown.layout.caret(shown.caret);
        origin.x -= shown.shift;
    }
    const auto twips = [](double value) {
        constexpr double kFar = 1e8;
        return static_cast<std::int32_t>(std::lround(std::clamp(value, -kFar, kFar)));
    };
    return swf::mapBounds(toStage(), {twips(origin.x + caret.x), twips(origin.x + caret.x + kCaretWidth),
                                      twips(origin.y + caret.top), twips(origin.y + caret.bottom)});
}

} // namespace flash::stage
