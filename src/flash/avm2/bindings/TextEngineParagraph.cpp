#include "flash/avm2/bindings/TextEngine.h"

#include <algorithm>

// What paragraphs of the text engine keep, and which of their lines still show them.
namespace flash::avm2::textengine
{

namespace
{
constexpr double kTwips = swf::kTwipsPerPixel;
} // namespace

void BlockObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    for (const Value value :
         {tabStops, justifier, lineRotation, baselineZero, baselineFont, userData, result})
        tracer(value);
    tracer(content);
    tracer(first);
    tracer(last);
    constexpr std::size_t kBytesPerCharacter = 128;
    if (m_paragraph != nullptr) tracer.outside(m_paragraph->length() * kBytesPerCharacter);
}

const render::Paragraph& BlockObject::paragraph(Vm& vm)
{
    if (m_paragraph != nullptr) return *m_paragraph;
    std::u16string text;
    std::vector<render::ParagraphRun> runs;
    if (content != nullptr) {
        content->appendText(text);
        content->forLeaves([&](ElementObject& leaf) {
            if (leaf.length() == 0) return;
            render::ParagraphRun run = runOf(vm, as<ElementFormatObject>(leaf.format));
            run.length = leaf.length();
            if (leaf.kind == ElementObject::Kind::Graphic)
                run.picture = render::ParagraphRun::Picture{leaf.width * kTwips, leaf.height * kTwips};
            runs.push_back(std::move(run));
        });
    }
    render::Paragraph::Options options;
    options.zero = textengine::baselineOf(vm.text(baselineZero));
    options.baselineSize = baselineSize * kTwips;
    constexpr int kDeepest = 125;
    options.bidiLevel = static_cast<std::uint8_t>(std::min(bidiLevel, kDeepest));
    options.isColumn = vm.text(lineRotation) == u"rotate90";
    if (auto* font = as<FontDescriptionObject>(baselineFont)) options.baselineFace = faceOf(vm, font);
    m_paragraph = std::make_unique<render::Paragraph>(std::move(text), std::move(runs), std::move(options));
    return *m_paragraph;
}

/// Lines that show what has changed are wrong; the one before may be, as more could fit into it now.
void BlockObject::changed(std::size_t from)
{
    m_paragraph.reset();
    using Validity = LineState::Validity;
    for (DisplayObject* at = last; at != nullptr; at = lineStateOf(at)->previous) {
        LineState& state = *lineStateOf(at);
        if (state.isStatic) continue;
        if (state.line->end <= from) {
            if (state.validity != Validity::Invalid) state.validity = Validity::PossiblyInvalid;
            break;
        }
        state.validity = Validity::Invalid;
    }
}

void releaseLines(BlockObject& block, DisplayObject* from, DisplayObject* to)
{
    DisplayObject* before = lineStateOf(from)->previous;
    DisplayObject* at = from;
    while (at != nullptr) {
        LineState& state = *lineStateOf(at);
        DisplayObject* next = state.next;
        state.block = nullptr;
        state.previous = state.next = nullptr;
        state.validity = LineState::Validity::Invalid;
        const bool isLast = at == to;
        at = next;
        if (isLast) break;
    }
    (before != nullptr ? lineStateOf(before)->next : block.first) = at;
    (at != nullptr ? lineStateOf(at)->previous : block.last) = before;
}

} // namespace flash::avm2::textengine
