#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/TextEngine.h"

#include <algorithm>
#include <cmath>

// Paragraphs of the text engine, and how they are made into lines.
namespace flash::avm2::textengine
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;
constexpr double kMaxWidth = 1000000; // pixels
constexpr std::string_view kStopClass = "flash.text.engine::TabStop";

BlockObject& self(Call& call) { return selfAs<BlockObject>(call, "flash.text.engine.TextBlock"); }

// ---- what it is made of ----

Value content(Call& call) { return Value(self(call).content); }
Value setContent(Call& call)
{
    BlockObject& block = self(call);
    auto* given = as<ElementObject>(Value(objectArg(call, 0, "flash.text.engine::ContentElement")));
    if (given == block.content) return {};
    // One that belongs to a group or to another block is not free.
    if (given != nullptr && (given->group != nullptr || given->block != nullptr)) throwInvalid(call.vm);
    if (block.content != nullptr) block.content->block = nullptr;
    block.content = given;
    if (given != nullptr) given->block = &block;
    block.changed(0);
    return {};
}
Value tabStops(Call& call) { return self(call).tabStops; }
Value setTabStops(Call& call)
{
    Vm& vm = call.vm;
    BlockObject& block = self(call);
    ClassObject* type = vm.vectorOf(vm.nativeClass(kStopClass)->instances);
    const Value given = vm.coerce(call.arg(0), type->instances);
    block.tabStops = Value::null();
    if (const auto* list = as<VectorObject>(given)) {
        auto* copy = as<VectorObject>(Value(vm.instantiate(type)));
        copy->items = list->items;
        block.tabStops = Value(copy);
    }
    block.changed(0);
    return {};
}
/// What is set is copied: it takes another setting for changes to count.
Value justifier(Call& call)
{
    const auto* own = as<JustifierObject>(self(call).justifier);
    return own != nullptr ? cloneJustifier(call.vm, *own) : Value::null();
}
Value setJustifier(Call& call)
{
    BlockObject& block = self(call);
    auto* given = as<JustifierObject>(Value(objectArg(call, 0, "flash.text.engine::TextJustifier")));
    if (given == nullptr) throwNullParameter(call.vm, "textJustifier");
    block.justifier = cloneJustifier(call.vm, *given);
    block.changed(0);
    return {};
}
template <Value BlockObject::*member>
Value get(Call& call)
{
    return self(call).*member;
}
template <Value BlockObject::*member, const Choice& choice>
Value setName(Call& call)
{
    const Value value = choiceArg(call, choice);
    self(call).*member = value;
    self(call).changed(0);
    return {};
}
constexpr Choice kBaselineZero{"baselineZero", {}};
Value setBaselineZero(Call& call)
{
    const std::u16string name = textArg(call, 0, kBaselineZero.parameter);
    if (!kDominantBaseline.holds(name)) throwNotAccepted(call.vm, kBaselineZero.parameter);
    self(call).baselineZero = Value(call.vm.name(name).string());
    self(call).changed(0);
    return {};
}
Value bidiLevel(Call& call) { return self(call).bidiLevel; }
Value setBidiLevel(Call& call)
{
    const int level = call.vm.toInt(call.arg(0));
    if (level < 0) throwInvalid(call.vm);
    self(call).bidiLevel = level;
    self(call).changed(0);
    return {};
}
Value scaling(Call& call) { return self(call).scalesNonLinearly; }
Value setScaling(Call& call)
{
    self(call).scalesNonLinearly = call.vm.toBoolean(call.arg(0));
    self(call).changed(0);
    return {};
}
Value setBaselineFont(Call& call)
{
    auto* font = as<FontDescriptionObject>(Value(objectArg(call, 0, "flash.text.engine::FontDescription")));
    if (font != nullptr) font->isLocked = true;
    self(call).baselineFont = Value(font);
    self(call).changed(0);
    return {};
}
Value baselineSize(Call& call) { return self(call).baselineSize; }
Value setBaselineSize(Call& call)
{
    const double size = call.vm.toNumber(call.arg(0));
    if (!(size >= 0)) throwInvalid(call.vm);
    self(call).baselineSize = size;
    self(call).changed(0);
    return {};
}
Value setUserData(Call& call)
{
    self(call).userData = call.arg(0);
    return {};
}

// ---- its lines ----

Value firstLine(Call& call) { return Value(self(call).first); }
Value lastLine(Call& call) { return Value(self(call).last); }
bool isInvalid(const LineState& line) { return line.validity == LineState::Validity::Invalid; }
Value firstInvalid(Call& call)
{
    for (DisplayObject* at = self(call).first; at != nullptr; at = lineStateOf(at)->next) {
        const LineState& state = *lineStateOf(at);
        if (isInvalid(state) || state.validity == LineState::Validity::PossiblyInvalid) return Value(at);
    }
    return Value::null();
}

struct LineArguments {
    DisplayObject* previous;
    double width, offset;
    bool fitsSomething;
};
/// @param i of the first of them
LineArguments lineArguments(Call& call, std::uint32_t i, BlockObject& block)
{
    Vm& vm = call.vm;
    LineArguments result{nullptr, kMaxWidth, 0, false};
    result.previous = as<DisplayObject>(Value(objectArg(call, i, "flash.text.engine::TextLine")));
    if (call.has(i + 1)) result.width = vm.toNumber(call.arg(i + 1));
    if (call.has(i + 2)) result.offset = vm.toNumber(call.arg(i + 2));
    if (call.has(i + 3)) result.fitsSomething = vm.toBoolean(call.arg(i + 3));
    if (std::isnan(result.width)) result.width = 0;
    if (!std::isfinite(result.offset)) result.offset = 0;
    if (result.width > kMaxWidth || (result.width < 0 && !result.fitsSomething)) throwInvalid(vm);
    if (result.previous != nullptr) {
        const LineState* state = lineStateOf(result.previous);
        if (state == nullptr || state->block != &block || isInvalid(*state)) throwInvalid(vm);
    }
    return result;
}

swf::Matrix turn(std::u16string_view rotation)
{
    if (rotation == u"rotate90") return {0, 1, -1, 0, 0, 0};
    if (rotation == u"rotate180") return {-1, 0, 0, -1, 0, 0};
    if (rotation == u"rotate270") return {0, -1, 1, 0, 0, 0};
    return {};
}

/// Pictures of the text become children of their line.
void addGraphics(Vm& vm, DisplayObject& object, const LineState& state)
{
    RootedList<DisplayObject*> graphics(vm.heap());
    for (const render::LineAtom& atom : state.line->atoms) {
        const LineState::Part* part = state.partAt(atom.begin);
        if (part == nullptr || part->element->kind != ElementObject::Kind::Graphic) continue;
        auto* graphic = as<DisplayObject>(part->element->graphic);
        if (graphic == nullptr || graphic->contains(object)) continue;
        swf::Matrix matrix = graphic->node().matrix();
        const swf::Point at = state.toNode.map({atom.x, atom.top});
        matrix.tx = std::round(at.x);
        matrix.ty = std::round(at.y);
        graphic->node().setMatrixOnly(matrix);
        graphic->noteTransformed();
        graphics.push_back(graphic);
    }
    for (DisplayObject* graphic : graphics) Player::of(vm).insert(object, *graphic, object.children.size());
}

/// @param reused a line to lay out anew; null: a new one
Value makeLine(Call& call, BlockObject& block, const LineArguments& arguments, DisplayObject* reused)
{
    Vm& vm = call.vm;
    const LineState* before = lineStateOf(arguments.previous);
    const std::size_t begin = before != nullptr ? before->line->end : 0;
    // What came after is broken again.
    DisplayObject* after = before != nullptr ? before->next : block.first;
    if (after != nullptr) releaseLines(block, after, nullptr);
    if (block.content == nullptr) {
        block.result = nameValue(vm, "complete");
        return Value::null();
    }
    const render::Paragraph& paragraph = block.paragraph(vm);
    if (begin >= paragraph.length()) {
        block.result = nameValue(vm, "complete");
        return Value::null();
    }
    const auto stops = tabStopsOf(vm, block.tabStops);
    render::LineRequest request;
    request.begin = begin;
    request.width = arguments.width * kTwips;
    request.tabOffset = arguments.offset * kTwips;
    request.fitsSomething = arguments.fitsSomething;
    request.justification = justificationOf(vm, as<JustifierObject>(block.justifier));
    request.tabStops = stops;
    auto line = paragraph.compose(request);
    if (line == nullptr) {
        block.result = nameValue(vm, "insufficientWidth");
        return Value::null();
    }
    DisplayObject* object = reused;
    if (object == nullptr) {
        object = as<DisplayObject>(Value(vm.instantiate(vm.nativeClass("flash.text.engine::TextLine"))));
        object->isConstructed = true;
        object->name = Value(vm.string(Player::of(vm).nextInstanceName()));
    }
    auto* state = vm.heap().make<LineState>(vm.classes().object->instances, nullptr);
    object->extra = state;
    state->block = &block;
    state->line = line;
    state->toNode = turn(vm.text(block.lineRotation));
    state->specifiedWidth = arguments.width;
    state->previous = arguments.previous;
    std::size_t at = 0;
    block.content->forLeaves([&](ElementObject& leaf) {
        const std::size_t length = leaf.length();
        if (at < line->end && at + length > line->begin) state->parts.push_back({&leaf, at, length});
        at += length;
    });
    if (state->previous != nullptr)
        lineStateOf(state->previous)->next = object;
    else
        block.first = object;
    block.last = object;
    block.result = nameValue(vm, line->isEmergency ? "emergency" : "success");
    if (auto* node = dynamic_cast<stage::TextLine*>(&object->node())) node->setLine(line, state->toNode);
    // Scripts hear of pictures that are added, and may let go of the line.
    const Root<DisplayObject> keep(vm.heap(), object);
    addGraphics(vm, *object, *state);
    return Value(object);
}
Value createLine(Call& call)
{
    BlockObject& block = self(call);
    return makeLine(call, block, lineArguments(call, 0, block), nullptr);
}
Value recreateLine(Call& call)
{
    Vm& vm = call.vm;
    BlockObject& block = self(call);
    auto* line = as<DisplayObject>(Value(objectArg(call, 0, "flash.text.engine::TextLine")));
    if (line == nullptr) throwNullParameter(vm, "textLine");
    const LineArguments arguments = lineArguments(call, 1, block);
    if (arguments.previous == line) throwInvalid(vm);
    if (LineState* state = lineStateOf(line); state != nullptr && state->block != nullptr)
        releaseLines(*state->block, line, line);
    RootedList<DisplayObject*> children(vm.heap(), line->children.begin(), line->children.end());
    for (DisplayObject* child : children) {
        if (child->parent == line) Player::of(vm).removeChild(*line, *child);
    }
    // A script that was told of it may have changed anything.
    if (const LineState* before = lineStateOf(arguments.previous);
        before != nullptr && (before->block != &block || isInvalid(*before)))
        throwInvalid(vm);
    return makeLine(call, block, arguments, line);
}
Value release(Call& call)
{
    BlockObject& block = self(call);
    auto* from = as<DisplayObject>(Value(objectArg(call, 0, "flash.text.engine::TextLine")));
    auto* to = as<DisplayObject>(Value(objectArg(call, 1, "flash.text.engine::TextLine")));
    const auto isOurs = [&](DisplayObject* line) {
        const LineState* state = lineStateOf(line);
        return state != nullptr && state->block == &block;
    };
    if (!isOurs(from) || !isOurs(to)) throwInvalid(call.vm);
    DisplayObject* at = from;
    while (at != nullptr && at != to) at = lineStateOf(at)->next;
    if (at == nullptr) throwInvalid(call.vm);
    releaseLines(block, from, to);
    return {};
}
Value lineAtCharacter(Call& call)
{
    BlockObject& block = self(call);
    const std::int32_t index = call.vm.toInt(call.arg(0));
    for (DisplayObject* at = block.first; at != nullptr && index >= 0; at = lineStateOf(at)->next) {
        const render::ComposedLine& line = *lineStateOf(at)->line;
        const auto character = static_cast<std::size_t>(index);
        if (character >= line.begin && character < line.end) return Value(at);
    }
    return Value::null();
}

template <std::size_t (render::Paragraph::*find)(std::size_t) const, bool isForward>
Value boundary(Call& call)
{
    BlockObject& block = self(call);
    const std::int32_t index = call.vm.toInt(call.arg(0));
    const render::Paragraph& paragraph = block.paragraph(call.vm);
    const auto length = static_cast<std::int64_t>(paragraph.length());
    // What goes on begins before the end, what goes back after the beginning.
    if (index < (isForward ? 0 : 1) || index > length - (isForward ? 1 : 0)) throwOutOfRange(call.vm);
    return static_cast<double>((paragraph.*find)(static_cast<std::size_t>(index)));
}
Value dump(Call& call) { return Value(call.vm.string(std::u16string_view())); }

Value construct(Call& call);
using Block = BlockObject;
// clang-format off
constexpr NativeMember kBlock[] = {
    {"content", Kind::Getter, &content, 0, 0, &setContent, "flash.text.engine::ContentElement"},
    {"tabStops", Kind::Getter, &tabStops, 0, 0, &setTabStops, "__AS3__.vec::Vector.<flash.text.engine::TabStop>"},
    {"textJustifier", Kind::Getter, &justifier, 0, 0, &setJustifier, "flash.text.engine::TextJustifier"},
    {"lineRotation", Kind::Getter, &get<&Block::lineRotation>, 0, 0, &setName<&Block::lineRotation, kLineRotation>, "String"},
    {"baselineZero", Kind::Getter, &get<&Block::baselineZero>, 0, 0, &setBaselineZero, "String"},
    {"bidiLevel", Kind::Getter, &bidiLevel, 0, 0, &setBidiLevel, "int"},
    {"applyNonLinearFontScaling", Kind::Getter, &scaling, 0, 0, &setScaling, "Boolean"},
    {"baselineFontDescription", Kind::Getter, &get<&Block::baselineFont>, 0, 0, &setBaselineFont, "flash.text.engine::FontDescription"},
    {"baselineFontSize", Kind::Getter, &baselineSize, 0, 0, &setBaselineSize, "Number"},
    {"userData", Kind::Getter, &get<&Block::userData>, 0, 0, &setUserData},
    {"firstLine", Kind::Getter, &firstLine, 0, 0, nullptr, "flash.text.engine::TextLine"},
    {"lastLine", Kind::Getter, &lastLine, 0, 0, nullptr, "flash.text.engine::TextLine"},
    {"firstInvalidLine", Kind::Getter, &firstInvalid, 0, 0, nullptr, "flash.text.engine::TextLine"},
    {"textLineCreationResult", Kind::Getter, &get<&Block::result>, 0, 0, nullptr, "String"},
    {"createTextLine", Kind::Method, &createLine, 0, 4, nullptr, "flash.text.engine::TextLine"},
    {"recreateTextLine", Kind::Method, &recreateLine, 1, 5, nullptr, "flash.text.engine::TextLine"},
    {"releaseLines", Kind::Method, &release, 2, 2, nullptr, "void"},
    {"releaseLineCreationData", Kind::Method, &doNothing, 0, 0, nullptr, "void"},
    {"getTextLineAtCharIndex", Kind::Method, &lineAtCharacter, 1, 1, nullptr, "flash.text.engine::TextLine"},
    {"findNextAtomBoundary", Kind::Method, &boundary<&render::Paragraph::nextAtom, true>, 1, 1, nullptr, "int"},
    {"findPreviousAtomBoundary", Kind::Method, &boundary<&render::Paragraph::previousAtom, false>, 1, 1, nullptr, "int"},
    {"findNextWordBoundary", Kind::Method, &boundary<&render::Paragraph::nextWord, true>, 1, 1, nullptr, "int"},
    {"findPreviousWordBoundary", Kind::Method, &boundary<&render::Paragraph::previousWord, false>, 1, 1, nullptr, "int"},
    {"dump", Kind::Method, &dump, 0, 0, nullptr, "String"},
};
// clang-format on
constexpr std::uint32_t kConstructorArguments = 9; // the first of these, in this order

Value construct(Call& call)
{
    Vm& vm = call.vm;
    BlockObject& block = self(call);
    block.lineRotation = nameValue(vm, "rotate0");
    block.baselineZero = nameValue(vm, "roman");
    block.justifier = justifierFor(vm, u"en");
    for (std::uint32_t i = 0; i < std::min(call.count, kConstructorArguments); ++i) {
        if (call.arg(i).isNullish()) continue; // as it is
        Call set{vm, call.self, call.args + i, 1};
        kBlock[i].setter(set);
    }
    return {};
}

using C = NativeConstant;
constexpr C kResults[] = {{"COMPLETE", 0, "complete"},
                          {"EMERGENCY", 0, "emergency"},
                          {"INSUFFICIENT_WIDTH", 0, "insufficientWidth"},
                          {"SUCCESS", 0, "success"}};
constexpr NativeClass kClasses[] = {
    {.package = "flash.text.engine",
     .name = "TextBlock",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = kConstructorArguments,
     .allocate = &allocateNative<BlockObject>,
     .members = kBlock},
    engineConstants("TextLineCreationResult", kResults),
};

} // namespace

std::span<const NativeClass> blockClasses() { return kClasses; }

} // namespace flash::avm2::textengine
