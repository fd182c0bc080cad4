#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/TextField.h"
#include "flash/avm2/bindings/TextFormat.h"
#include "flash/stage/TextFonts.h"

#include <algorithm>
#include <cmath>

// What text fields do with stretches of their text, and with the selection.
namespace flash::avm2
{

using Kind = NativeMember::Kind;
using stage::TextField;

namespace
{

[[noreturn]] void outOfBounds(Call& call)
{
    call.vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
}

struct Stretch {
    std::size_t begin = 0, end = 0;
};

/// All of the text, one character, or from one up to another; -1 stands for what is not said.
Stretch stretchArg(Call& call, TextField& field, std::uint32_t first)
{
    const int begin = call.has(first) ? call.vm.toInt(call.arg(first)) : -1;
    const int end = call.has(first + 1) ? call.vm.toInt(call.arg(first + 1)) : -1;
    const int size = static_cast<int>(field.length());
    if (begin < -1 || end < -1 || begin > size || end > size) outOfBounds(call);
    if (begin < 0 && end < 0) return {0, field.length()};
    if (end < 0) {
        if (begin >= size) outOfBounds(call);
        return {static_cast<std::size_t>(begin), static_cast<std::size_t>(begin) + 1};
    }
    if (end < begin) outOfBounds(call);
    return {static_cast<std::size_t>(std::max(begin, 0)), static_cast<std::size_t>(end)};
}

Value getTextFormat(Call& call)
{
    TextField& field = fieldSelf(call);
    const Stretch stretch = stretchArg(call, field, 0);
    if (field.length() == 0) return makeTextFormat(call.vm, stage::PartialTextFormat::of(field.newFormat()));
    return makeTextFormat(call.vm, field.content().common(stretch.begin, stretch.end));
}
Value setTextFormat(Call& call)
{
    refuseStyled(call);
    const Value given(objectArg(call, 0, "flash.text::TextFormat"));
    if (given.isNull()) throwNullParameter(call.vm, "format");
    const auto format = textFormatOf(call.vm, as<TextFormatObject>(given));
    TextField& field = fieldSelf(call);
    const Stretch stretch = stretchArg(call, field, 1);
    field.setFormat(stretch.begin, stretch.end, format);
    return {};
}

Value appendText(Call& call)
{
    const std::u16string text = textArg(call, 0, "newText");
    TextField& field = fieldSelf(call);
    field.replaceText(field.length(), field.length(), text);
    return {};
}
Value replaceText(Call& call)
{
    refuseStyled(call);
    const int begin = call.vm.toInt(call.arg(0)), end = call.vm.toInt(call.arg(1));
    const std::u16string text = textArg(call, 2, "newText");
    TextField& field = fieldSelf(call);
    const int size = static_cast<int>(field.length());
    if (begin < 0 || end < 0 || end < begin || begin > size) return {};
    field.replaceText(static_cast<std::size_t>(begin), static_cast<std::size_t>(std::min(end, size)), text);
    return {};
}
Value replaceSelectedText(Call& call)
{
    refuseStyled(call);
    const std::u16string text = textArg(call, 0, "value");
    TextField& field = fieldSelf(call);
    const std::size_t begin = field.selectionBegin();
    field.replaceText(begin, field.selectionEnd(), text);
    // What is selected elsewhere than where the focus is stays as it was told.
    if (field.stage().focus().node() == &field) field.select(begin + text.size(), begin + text.size());
    return {};
}

Value setSelection(Call& call)
{
    const int begin = call.vm.toInt(call.arg(0)), end = call.vm.toInt(call.arg(1));
    TextField& field = fieldSelf(call);
    const auto place = [&](int index) {
        return std::min(static_cast<std::size_t>(std::max(index, 0)), field.length());
    };
    field.select(place(begin), place(end));
    return {};
}
Value selectionBegin(Call& call) { return static_cast<double>(fieldSelf(call).selectionBegin()); }
Value selectionEnd(Call& call) { return static_cast<double>(fieldSelf(call).selectionEnd()); }
Value caretIndex(Call& call) { return static_cast<double>(fieldSelf(call).caret()); }
Value selectedText(Call& call)
{
    TextField& field = fieldSelf(call);
    const std::u16string text = field.text();
    const std::size_t begin = std::min(field.selectionBegin(), text.size());
    return call.vm.string(text.substr(begin, field.selectionEnd() - begin));
}

Value textRuns(Call& call)
{
    Vm& vm = call.vm;
    TextField& field = fieldSelf(call);
    const int begin = call.has(0) ? vm.toInt(call.arg(0)) : 0;
    const int end = call.has(1) ? vm.toInt(call.arg(1)) : 0x7FFF'FFFF;
    auto* list = static_cast<ArrayObject*>(vm.newArray());
    // Each run makes objects, which may bring a collection, but no script runs meanwhile.
    int at = 0;
    for (const auto& run : field.content().runs()) {
        const int next = at + static_cast<int>(run.length);
        if (next > begin && at < end) {
            const Value args[] = {Value(std::max(at, begin)), Value(std::min(next, end)),
                                  makeTextFormat(vm, stage::PartialTextFormat::of(run.format))};
            list->push(vm, vm.construct(Value(vm.nativeClass("flash.text::TextRun")), args));
        }
        at = next;
    }
    return Value(list);
}
Value rawText(Call& call) { return call.vm.string(fieldSelf(call).text()); }

/// Whether there is an embedded font of a name and style that the code's movie has, or one that is shared.
Value isFontCompatible(Call& call)
{
    const std::string name = toUtf8(textArg(call, 0, "fontName"));
    const std::u16string style = textArg(call, 1, "fontStyle");
    const bool isBoth = style == u"boldItalic";
    if (style != u"regular" && style != u"bold" && style != u"italic" && !isBoth)
        throwNotAccepted(call.vm, "fontStyle");
    const bool bold = isBoth || style == u"bold", italic = isBoth || style == u"italic";
    Player& player = Player::of(call.vm);
    stage::TextFonts& fonts = player.stage().textFonts();
    if (fonts.embedded(player.stage().movie(), name, bold, italic) != nullptr ||
        fonts.shared(name, bold, italic) != nullptr)
        return true;
    const auto seen = player.fontsSeenFrom(call.vm.currentDomain());
    return std::ranges::any_of(
        seen, [&](const auto& entry) { return fonts.embedded(entry.first, name, bold, italic) != nullptr; });
}

constexpr NativeMember kMethods[] = {
    {"appendText", Kind::Method, &appendText, 1, 1},
    {"getTextFormat", Kind::Method, &getTextFormat, 0, 2},
    {"setTextFormat", Kind::Method, &setTextFormat, 1, 3},
    {"replaceText", Kind::Method, &replaceText, 3, 3},
    {"replaceSelectedText", Kind::Method, &replaceSelectedText, 1, 1},
    {"setSelection", Kind::Method, &setSelection, 2, 2},
    {"selectionBeginIndex", Kind::Getter, &selectionBegin, 0, 0, nullptr, "int"},
    {"selectionEndIndex", Kind::Getter, &selectionEnd, 0, 0, nullptr, "int"},
    {"caretIndex", Kind::Getter, &caretIndex, 0, 0, nullptr, "int"},
    {"selectedText", Kind::Getter, &selectedText, 0, 0, nullptr, "String"},
    {"getTextRuns", Kind::Method, &textRuns, 0, 2},
    {"getRawText", Kind::Method, &rawText, 0, 0},
};

// ---- lines, paragraphs, places ----

constexpr double kTwips = swf::kTwipsPerPixel;
constexpr double kGutterPixels = render::kTextGutter / kTwips;

const render::LayoutLine& lineArg(Call& call, TextField& field)
{
    const int index = call.vm.toInt(call.arg(0));
    const auto& lines = field.layout().lines();
    if (index < 0 || static_cast<std::size_t>(index) >= lines.size()) outOfBounds(call);
    return lines[static_cast<std::size_t>(index)];
}
Value lineLength(Call& call)
{
    const auto& line = lineArg(call, fieldSelf(call));
    return static_cast<double>(line.end - line.begin);
}
Value lineOffset(Call& call) { return static_cast<double>(lineArg(call, fieldSelf(call)).begin); }
Value lineText(Call& call)
{
    TextField& field = fieldSelf(call);
    const auto& line = lineArg(call, field);
    std::u16string text = field.content().text().substr(line.begin, line.end - line.begin);
    std::ranges::replace(text, u'\n', u'\r');
    return call.vm.string(text);
}
double inPixels(double twips) { return std::round(twips) / kTwips; }
Value lineMetrics(Call& call)
{
    const auto& line = lineArg(call, fieldSelf(call));
    const double ascent = inPixels(line.ascent), descent = inPixels(line.descent),
                 leading = inPixels(line.leading);
    const Value args[] = {Value(inPixels(line.x) + kGutterPixels),
                          Value(inPixels(line.width)),
                          Value(inPixels(line.ascent + line.descent + line.leading)),
                          Value(ascent),
                          Value(descent),
                          Value(leading)};
    return call.vm.construct(Value(call.vm.nativeClass("flash.text::TextLineMetrics")), args);
}

/// A point of the field in its text's system, with what has been scrolled away.
swf::Point pointArg(Call& call, TextField& field)
{
    const double x = call.vm.toNumber(call.arg(0)), y = call.vm.toNumber(call.arg(1));
    const auto& lines = field.layout().lines();
    const auto first =
        static_cast<std::size_t>(std::clamp(field.scroll(), 0, static_cast<int>(lines.size()) - 1));
    return {x * kTwips - render::kTextGutter + field.hscroll(),
            y * kTwips - render::kTextGutter + lines[first].top};
}
Value charAtPoint(Call& call)
{
    TextField& field = fieldSelf(call);
    const auto found = field.layout().characterAt(pointArg(call, field));
    return found ? static_cast<double>(*found) : -1.0;
}
Value lineAtPoint(Call& call)
{
    TextField& field = fieldSelf(call);
    const swf::Point point = pointArg(call, field);
    const auto& lines = field.layout().lines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (point.y >= lines[i].top && point.y < lines[i].bottom() + lines[i].leading)
            return static_cast<double>(i);
    }
    return -1;
}
Value lineOfChar(Call& call)
{
    const int index = call.vm.toInt(call.arg(0));
    TextField& field = fieldSelf(call);
    if (index < 0 || static_cast<std::size_t>(index) >= field.length()) return -1;
    return static_cast<double>(field.layout().lineOf(static_cast<std::size_t>(index)));
}
Value charBoundaries(Call& call)
{
    const int index = call.vm.toInt(call.arg(0));
    TextField& field = fieldSelf(call);
    if (index < 0 || static_cast<std::size_t>(index) >= field.length()) return Value::null();
    const swf::Rect box = field.layout().characterRect(static_cast<std::size_t>(index));
    const Value args[] = {Value(box.xMin / kTwips + kGutterPixels), Value(box.yMin / kTwips + kGutterPixels),
                          Value(box.width() / kTwips), Value(box.height() / kTwips)};
    return call.vm.construct(Value(call.vm.nativeClass("flash.geom::Rectangle")), args);
}

bool isBreak(char16_t unit) { return unit == u'\r' || unit == u'\n'; }

/// @returns nothing outside of the text; its end is a place, too
std::optional<Stretch> paragraphArg(Call& call, TextField& field)
{
    const int index = call.vm.toInt(call.arg(0));
    const std::u16string& text = field.content().text();
    if (index < 0 || static_cast<std::size_t>(index) > text.size()) return std::nullopt;
    Stretch found{static_cast<std::size_t>(index), static_cast<std::size_t>(index)};
    while (found.begin > 0 && !isBreak(text[found.begin - 1])) --found.begin;
    while (found.end < text.size() && !isBreak(text[found.end])) ++found.end;
    // What ends it belongs to it; at the text's end the genuine player counts an end that is not there.
    if (found.end < text.size() || static_cast<std::size_t>(index) == text.size()) ++found.end;
    return found;
}
Value firstInParagraph(Call& call)
{
    const auto found = paragraphArg(call, fieldSelf(call));
    return found ? static_cast<double>(found->begin) : -1.0;
}
Value paragraphLength(Call& call)
{
    const auto found = paragraphArg(call, fieldSelf(call));
    return found ? static_cast<double>(found->end - found->begin) : -1.0;
}

constexpr NativeMember kLineMethods[] = {
    {"getLineLength", Kind::Method, &lineLength, 1, 1},
    {"getLineOffset", Kind::Method, &lineOffset, 1, 1},
    {"getLineText", Kind::Method, &lineText, 1, 1},
    {"getLineMetrics", Kind::Method, &lineMetrics, 1, 1},
    {"getCharIndexAtPoint", Kind::Method, &charAtPoint, 2, 2},
    {"getLineIndexAtPoint", Kind::Method, &lineAtPoint, 2, 2},
    {"getLineIndexOfChar", Kind::Method, &lineOfChar, 1, 1},
    {"getCharBoundaries", Kind::Method, &charBoundaries, 1, 1},
    {"getFirstCharInParagraph", Kind::Method, &firstInParagraph, 1, 1},
    {"getParagraphLength", Kind::Method, &paragraphLength, 1, 1},
    {"getImageReference", Kind::Method, &getImageReference, 1, 1},
    {"isFontCompatible", Kind::Static, &isFontCompatible, 2, 2},
};

} // namespace

std::span<const NativeMember> textFieldMethods() { return kMethods; }
std::span<const NativeMember> textFieldLineMethods() { return kLineMethods; }

} // namespace flash::avm2
