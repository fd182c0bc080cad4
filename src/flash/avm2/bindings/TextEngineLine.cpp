#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/TextEngine.h"

#include <algorithm>
#include <cmath>

// Lines of the text engine as scripts see them.
namespace flash::avm2::textengine
{

using Kind = NativeMember::Kind;
using render::LineAtom;

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;

LineState& self(Call& call)
{
    LineState* state = lineStateOf(&displaySelf(call));
    if (state == nullptr)
        call.vm.throwError(ErrorClass::Type, 1034,
                           "Type Coercion failed: cannot convert to flash.text.engine.TextLine.");
    return *state;
}
const render::ComposedLine& line(Call& call) { return *self(call).line; }
const LineAtom& atomArg(Call& call)
{
    const std::int32_t index =
        call.vm.toInt(call.arg(0)); // a script's, which may have the line laid out anew
    const auto& atoms = line(call).atoms;
    if (index < 0 || static_cast<std::size_t>(index) >= atoms.size()) throwOutOfRange(call.vm);
    return atoms[static_cast<std::size_t>(index)];
}

// ---- measures ----

template <double render::ComposedLine::*member>
Value pixels(Call& call)
{
    return line(call).*member / kTwips;
}
Value textHeight(Call& call) { return (line(call).ascent + line(call).descent) / kTwips; }
Value totalHeight(Call& call) { return (line(call).totalAscent + line(call).totalDescent) / kTwips; }
Value specifiedWidth(Call& call) { return self(call).specifiedWidth; }
Value hasTabs(Call& call) { return line(call).hasTabs; }
Value hasGraphics(Call& call) { return line(call).hasPictures; }
Value atomCount(Call& call) { return static_cast<double>(line(call).atoms.size()); }
Value beginIndex(Call& call) { return static_cast<double>(line(call).begin); }
Value rawLength(Call& call) { return static_cast<double>(line(call).end - line(call).begin); }
Value baselinePosition(Call& call)
{
    const std::u16string name = textArg(call, 0, "baseline");
    if (!kDominantBaseline.holds(name)) throwNotAccepted(call.vm, "baseline");
    return line(call).baselines[static_cast<std::size_t>(textengine::baselineOf(name))] / kTwips;
}

// ---- its place in the block ----

Value block(Call& call) { return Value(self(call).block); }
Value nextLine(Call& call) { return Value(self(call).next); }
Value previousLine(Call& call) { return Value(self(call).previous); }
Value validity(Call& call)
{
    constexpr std::string_view kNames[] = {"valid", "possiblyInvalid", "invalid"};
    const LineState& state = self(call);
    if (state.validity == LineState::Validity::Own) return state.ownValidity;
    return nameValue(call.vm, kNames[static_cast<std::size_t>(state.validity)]);
}
Value setValidity(Call& call)
{
    using Validity = LineState::Validity;
    const std::u16string name = textArg(call, 0, "value");
    LineState& state = self(call);
    state.ownValidity = Value(call.vm.string(name));
    state.isStatic = name == u"static";
    state.validity = name == u"valid"             ? Validity::Valid
                     : name == u"possiblyInvalid" ? Validity::PossiblyInvalid
                     : name == u"invalid"         ? Validity::Invalid
                                                  : Validity::Own;
    return {};
}
Value userData(Call& call) { return self(call).userData; }
Value setUserData(Call& call)
{
    self(call).userData = call.arg(0);
    return {};
}

// ---- atoms ----

swf::Rect rectOf(const LineState& state, double left, double right, double top, double bottom)
{
    const auto twips = [](double value) { return static_cast<std::int32_t>(std::lround(value)); };
    return swf::mapBounds(state.toNode, {twips(left), twips(right), twips(top), twips(bottom)});
}
Value atomBounds(Call& call)
{
    const LineAtom& atom = atomArg(call);
    if (self(call).toNode == swf::Matrix())
        return newRectangle(call.vm, atom.x / kTwips, atom.top / kTwips, atom.width / kTwips,
                            (atom.bottom - atom.top) / kTwips);
    return newRectangle(call.vm, rectOf(self(call), atom.x, atom.x + atom.width, atom.top, atom.bottom));
}
Value atomCenter(Call& call)
{
    const LineAtom& atom = atomArg(call);
    return (atom.x + atom.width / 2) / kTwips;
}
Value atomBegin(Call& call) { return static_cast<double>(atomArg(call).begin); }
Value atomEnd(Call& call)
{
    const LineAtom& atom = atomArg(call);
    return static_cast<double>(atom.begin + atom.length);
}
Value atomBidi(Call& call) { return static_cast<int>(atomArg(call).level); }
/// On the left of what runs to the left is its end.
Value atomWordOnLeft(Call& call)
{
    const LineAtom& atom = atomArg(call);
    if (atom.level % 2 == 0) return atom.startsWord;
    const auto& atoms = line(call).atoms;
    return &atom == &atoms.back() || (&atom + 1)->startsWord;
}
Value atomGraphic(Call& call)
{
    const LineState::Part* part = self(call).partAt(atomArg(call).begin);
    return part != nullptr && part->element->kind == ElementObject::Kind::Graphic ? part->element->graphic
                                                                                  : Value::null();
}
Value atomRotation(Call& call)
{
    constexpr std::string_view kNames[] = {"rotate0", "rotate90", "rotate180", "rotate270"};
    return nameValue(call.vm, kNames[atomArg(call).quarters]);
}
Value atomAtCharacter(Call& call)
{
    const std::int32_t index = call.vm.toInt(call.arg(0));
    const auto& atoms = line(call).atoms;
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        const auto begin = static_cast<std::int64_t>(atoms[i].begin);
        if (index >= begin && index < begin + static_cast<std::int64_t>(atoms[i].length))
            return static_cast<double>(i);
    }
    return -1;
}
Value atomAtPoint(Call& call)
{
    const double x = call.vm.toNumber(call.arg(0)), y = call.vm.toNumber(call.arg(1));
    const LineState& state = self(call);
    const swf::Matrix toStage = displaySelf(call).node().toStage() * state.toNode;
    if (!toStage.isInvertible() || !std::isfinite(x) || !std::isfinite(y)) return -1;
    const swf::Point at = toStage.inverted().map({x * kTwips, y * kTwips});
    if (at.y < -state.line->totalAscent || at.y >= state.line->totalDescent) return -1;
    const auto& atoms = state.line->atoms;
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        if (at.x >= atoms[i].x && at.x < atoms[i].x + atoms[i].width) return static_cast<double>(i);
    }
    return -1;
}

// ---- parts whose events somebody else hears as well ----

enum RegionSlot : std::uint32_t { Bounds, Element, Mirror, NextRegion, PreviousRegion, Line };

template <class Visit>
void forRegions(const LineState& state, Visit&& visit)
{
    for (const LineState::Part& part : state.parts) {
        // Its own or, first, that of a group around it.
        const ElementObject* holder = part.element;
        while (holder != nullptr && holder->mirror.isNull()) holder = holder->group;
        if (holder == nullptr) continue;
        double left = 0, right = 0, top = 0, bottom = 0;
        bool isThere = false;
        for (const LineAtom& atom : state.line->atoms) {
            if (atom.begin < part.begin || atom.begin >= part.begin + part.length) continue;
            left = isThere ? std::min(left, atom.x) : atom.x;
            right = isThere ? std::max(right, atom.x + atom.width) : atom.x + atom.width;
            top = std::min(top, atom.top);
            bottom = std::max(bottom, atom.bottom);
            isThere = true;
        }
        if (isThere) visit(*part.element, *holder, rectOf(state, left, right, top, bottom));
    }
}

Value regions(Call& call)
{
    Vm& vm = call.vm;
    LineState& state = self(call);
    if (!state.regions.isNull()) return state.regions;
    ClassObject* cls = vm.nativeClass("flash.text.engine::TextLineMirrorRegion");
    auto* list = as<VectorObject>(Value(vm.instantiate(vm.vectorOf(cls->instances))));
    Object* before = nullptr;
    forRegions(state, [&](ElementObject& element, const ElementObject& holder, const swf::Rect& rect) {
        Object* region = vm.instantiate(cls);
        region->setSlot(Bounds, newRectangle(vm, rect));
        region->setSlot(Element, Value(&element));
        region->setSlot(Mirror, holder.mirror);
        region->setSlot(NextRegion, Value::null());
        region->setSlot(PreviousRegion, Value(before));
        region->setSlot(Line, call.self);
        if (before != nullptr) before->setSlot(NextRegion, Value(region));
        before = region;
        list->push(vm, Value(region));
    });
    if (before == nullptr) return Value::null();
    state.regions = Value(list);
    return state.regions;
}
Value mirrorRegion(Call& call)
{
    const Value given(objectArg(call, 0, "flash.events::EventDispatcher"));
    const Value all = regions(call);
    const auto* list = as<VectorObject>(all);
    if (list == nullptr || given.isNull()) return Value::null();
    for (const Value region : list->items) {
        if (call.vm.strictEquals(region.object()->slot(Mirror), given)) return region;
    }
    return Value::null();
}

// ---- what other display objects have, and lines have not ----

Value notForLines(Call& call)
{
    call.vm.throwError(ErrorClass::Error, 2181,
                       "The TextLine class does not implement this property or method.");
}
Value none(Call& call)
{
    displaySelf(call);
    return -1;
}
Value dump(Call& call) { return Value(call.vm.string(std::u16string_view())); }
Value refuse(Call& call)
{
    call.vm.throwError(ErrorClass::Argument, 2012,
                       std::u16string(call.vm.traitsOf(call.self)->name.view()) +
                           u"$ class cannot be instantiated.");
}

using L = render::ComposedLine;
// clang-format off
constexpr NativeMember kLine[] = {
    {"ascent", Kind::Getter, &pixels<&L::ascent>, 0, 0, nullptr, "Number"},
    {"descent", Kind::Getter, &pixels<&L::descent>, 0, 0, nullptr, "Number"},
    {"textWidth", Kind::Getter, &pixels<&L::textWidth>, 0, 0, nullptr, "Number"},
    {"unjustifiedTextWidth", Kind::Getter, &pixels<&L::naturalWidth>, 0, 0, nullptr, "Number"},
    {"textHeight", Kind::Getter, &textHeight, 0, 0, nullptr, "Number"},
    {"totalAscent", Kind::Getter, &pixels<&L::totalAscent>, 0, 0, nullptr, "Number"},
    {"totalDescent", Kind::Getter, &pixels<&L::totalDescent>, 0, 0, nullptr, "Number"},
    {"totalHeight", Kind::Getter, &totalHeight, 0, 0, nullptr, "Number"},
    {"specifiedWidth", Kind::Getter, &specifiedWidth, 0, 0, nullptr, "Number"},
    {"hasTabs", Kind::Getter, &hasTabs, 0, 0, nullptr, "Boolean"},
    {"hasGraphicElement", Kind::Getter, &hasGraphics, 0, 0, nullptr, "Boolean"},
    {"atomCount", Kind::Getter, &atomCount, 0, 0, nullptr, "int"},
    {"textBlockBeginIndex", Kind::Getter, &beginIndex, 0, 0, nullptr, "int"},
    {"rawTextLength", Kind::Getter, &rawLength, 0, 0, nullptr, "int"},
    {"textBlock", Kind::Getter, &block, 0, 0, nullptr, "flash.text.engine::TextBlock"},
    {"nextLine", Kind::Getter, &nextLine, 0, 0, nullptr, "flash.text.engine::TextLine"},
    {"previousLine", Kind::Getter, &previousLine, 0, 0, nullptr, "flash.text.engine::TextLine"},
    {"validity", Kind::Getter, &validity, 0, 0, &setValidity, "String"},
    {"userData", Kind::Getter, &userData, 0, 0, &setUserData},
    {"mirrorRegions", Kind::Getter, &regions, 0, 0, nullptr, "__AS3__.vec::Vector.<flash.text.engine::TextLineMirrorRegion>"},
    {"getMirrorRegion", Kind::Method, &mirrorRegion, 1, 1, nullptr, "flash.text.engine::TextLineMirrorRegion"},
    {"getBaselinePosition", Kind::Method, &baselinePosition, 1, 1, nullptr, "Number"},
    {"getAtomBounds", Kind::Method, &atomBounds, 1, 1, nullptr, "flash.geom::Rectangle"},
    {"getAtomCenter", Kind::Method, &atomCenter, 1, 1, nullptr, "Number"},
    {"getAtomBidiLevel", Kind::Method, &atomBidi, 1, 1, nullptr, "int"},
    {"getAtomGraphic", Kind::Method, &atomGraphic, 1, 1, nullptr, "flash.display::DisplayObject"},
    {"getAtomTextRotation", Kind::Method, &atomRotation, 1, 1, nullptr, "String"},
    {"getAtomTextBlockBeginIndex", Kind::Method, &atomBegin, 1, 1, nullptr, "int"},
    {"getAtomTextBlockEndIndex", Kind::Method, &atomEnd, 1, 1, nullptr, "int"},
    {"getAtomWordBoundaryOnLeft", Kind::Method, &atomWordOnLeft, 1, 1, nullptr, "Boolean"},
    {"getAtomIndexAtCharIndex", Kind::Method, &atomAtCharacter, 1, 1, nullptr, "int"},
    {"getAtomIndexAtPoint", Kind::Method, &atomAtPoint, 2, 2, nullptr, "int"},
    {"flushAtomData", Kind::Method, &doNothing, 0, 0, nullptr, "void"},
    {"dump", Kind::Method, &dump, 0, 0, nullptr, "String"},
    {"contextMenu", Kind::Getter, &isAlwaysNull, 0, 0, &notForLines, "flash.ui::ContextMenu"},
    {"focusRect", Kind::Getter, &isAlwaysNull, 0, 0, &notForLines, "Object"},
    {"tabChildren", Kind::Getter, &isAlwaysFalse, 0, 0, &notForLines, "Boolean"},
    {"tabEnabled", Kind::Getter, &isAlwaysFalse, 0, 0, &notForLines, "Boolean"},
    {"tabIndex", Kind::Getter, &none, 0, 0, &notForLines, "int"},
};
// clang-format on
using C = NativeConstant;
constexpr C kLimits[] = {{"MAX_LINE_WIDTH", 1000000}};
constexpr C kValidities[] = {{"INVALID", 0, "invalid"},
                             {"POSSIBLY_INVALID", 0, "possiblyInvalid"},
                             {"STATIC", 0, "static"},
                             {"VALID", 0, "valid"}};
constexpr NativeClass kClasses[] = {
    {.package = "flash.text.engine",
     .name = "TextLine",
     .base = "flash.display::DisplayObjectContainer",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &refuse,
     .minArguments = 0,
     .maxArguments = -1,
     .members = kLine,
     .constants = kLimits},
    {.package = "flash.text.engine",
     .name = "TextLineMirrorRegion",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &refuse,
     .minArguments = 0,
     .maxArguments = -1,
     .slots = "bounds:* element:* mirror:* nextRegion:* previousRegion:* textLine:*"},
    engineConstants("TextLineValidity", kValidities),
};

} // namespace

void LineState::trace(Tracer& tracer)
{
    Object::trace(tracer);
    tracer(block);
    tracer(previous);
    tracer(next);
    for (const Part& part : parts) tracer(part.element);
    tracer(ownValidity);
    tracer(userData);
    tracer(regions);
    constexpr std::size_t kBytesPerAtom = 128;
    if (line != nullptr) tracer.outside(line->atoms.size() * kBytesPerAtom);
}

const LineState::Part* LineState::partAt(std::size_t index) const
{
    const auto found = std::ranges::find_if(
        parts, [&](const Part& part) { return index >= part.begin && index < part.begin + part.length; });
    return found != parts.end() ? &*found : nullptr;
}

LineState* lineStateOf(DisplayObject* object)
{
    return object != nullptr ? as<LineState>(object->extra) : nullptr;
}

DispatcherObject* mirrorAt(DisplayObject& object, swf::Point local)
{
    const LineState* state = lineStateOf(&object);
    DispatcherObject* result = nullptr;
    if (state == nullptr) return result;
    forRegions(*state, [&](ElementObject&, const ElementObject& holder, const swf::Rect& rect) {
        const bool isIn =
            local.x >= rect.xMin && local.x < rect.xMax && local.y >= rect.yMin && local.y < rect.yMax;
        if (isIn && result == nullptr) result = dynamic_cast<DispatcherObject*>(holder.mirror.asObject());
    });
    return result;
}

std::span<const NativeClass> lineClasses() { return kClasses; }

} // namespace flash::avm2::textengine

namespace flash::avm2
{

NativeLibrary textEngineLibrary()
{
    static const auto kAll = [] {
        std::vector<NativeClass> all;
        for (const auto list :
             {textengine::formatClasses(), textengine::elementClasses(), textengine::justifierClasses(),
              textengine::blockClasses(), textengine::lineClasses()})
            all.insert(all.end(), list.begin(), list.end());
        return all;
    }();
    return {kAll, {}, textEngineSignatures()};
}

} // namespace flash::avm2
