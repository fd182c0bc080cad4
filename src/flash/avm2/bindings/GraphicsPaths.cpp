#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Shaders.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>
#include <array>
#include <cmath>

// Drawings as data: paths, records of IGraphicsData.
namespace flash::avm2
{

void invalidGraphicsArgument(Vm& vm)
{
    vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
}

using Kind = NativeMember::Kind;

namespace
{

/// A variable of a record that takes a few words. Its slot has the name behind an "@", which no script
/// reaches.
struct Choice {
    std::string_view name;
    std::array<std::u16string_view, 4> accepted;
    [[nodiscard]] bool holds(Vm& vm, Value value) const
    {
        if (value.isNullish()) return false;
        const std::u16string_view text = vm.text(value);
        return !text.empty() && std::ranges::find(accepted, text) != accepted.end();
    }
};
constexpr Choice kWindings = {"winding", {u"evenOdd", u"nonZero"}},
                 kCullings = {"culling", {u"none", u"positive", u"negative"}},
                 kGradientTypes = {"type", {u"linear", u"radial"}},
                 kSpreads = {"spreadMethod", {u"pad", u"reflect", u"repeat"}},
                 kInterpolations = {"interpolationMethod", {u"rgb", u"linearRGB"}},
                 kScaleModes = {"scaleMode", {u"normal", u"none", u"vertical", u"horizontal"}},
                 kCaps = {"caps", {u"none", u"round", u"square"}},
                 kJoints = {"joints", {u"bevel", u"miter", u"round"}};

void check(Vm& vm, const Choice& choice, Value value)
{
    if (!choice.holds(vm, value)) throwNotAccepted(vm, choice.name);
}

void addPath(Vm& vm, GraphicsObject& graphics, Value commandList, Value dataList)
{
    const auto commands = numbersOf(vm, commandList), data = numbersOf(vm, dataList);
    if (!commands.empty() && data.size() % 2 != 0) invalidGraphicsArgument(vm);
    stage::Drawing& pen = graphics.drawing();
    std::size_t at = 0;
    const auto left = [&](std::size_t wanted) { return at + wanted <= data.size(); };
    const auto point = [&] {
        const swf::Point p{penTwips(data[at]), penTwips(data[at + 1])};
        at += 2;
        return p;
    };
    for (const double command : commands) {
        vm.check();
        switch (vm.toInt(Value(command))) {
        case 4: // with two numbers that do not count
        case 1:
            if (command == 4) at += 2;
            if (!left(2)) return graphics.changed();
            pen.moveTo(point());
            break;
        case 5:
        case 2:
            if (command == 5) at += 2;
            if (!left(2)) return graphics.changed();
            pen.lineTo(point());
            break;
        case 3: {
            if (!left(4)) return graphics.changed();
            const swf::Point control = point();
            pen.curveTo(control, point());
            break;
        }
        case 6: {
            if (!left(6)) return graphics.changed();
            const swf::Point first = point(), second = point();
            cubicTo(pen, first, second, point());
            break;
        }
        case 0: break;
        // One that there is not ends the path.
        default: return graphics.changed();
        }
    }
    graphics.changed();
}

/// @param winding of this path only
void path(Vm& vm, GraphicsObject& graphics, Value commandList, Value dataList, Value winding)
{
    using Winding = stage::Drawing::Winding;
    struct Restore {
        stage::Drawing& drawing;
        ~Restore() { drawing.setWinding(Winding::EvenOdd); }
    } const restore{graphics.drawing()};
    const bool nonZero = !winding.isNullish() && vm.text(winding) == u"nonZero";
    restore.drawing.setWinding(nonZero ? Winding::NonZero : Winding::EvenOdd);
    addPath(vm, graphics, commandList, dataList);
}

Value slot(Object& object, std::uint32_t index)
{
    return index < object.slotCount() ? object.slot(index) : Value::null();
}
std::u16string wordOf(Vm& vm, Value value)
{
    return value.isNullish() ? std::u16string() : std::u16string(vm.text(value));
}

std::optional<swf::FillStyle> fillOf(Vm& vm, Object& record)
{
    const std::u16string_view name = record.traits()->name.view();
    if (name == u"GraphicsSolidFill")
        return solidFill(vm.toUint(slot(record, 0)), vm.toNumber(slot(record, 1)));
    if (name == u"GraphicsGradientFill")
        return gradientOf(vm, wordOf(vm, slot(record, 0)), slot(record, 1), slot(record, 2), slot(record, 3),
                          slot(record, 4), wordOf(vm, slot(record, 5)), wordOf(vm, slot(record, 6)),
                          vm.toNumber(slot(record, 7)));
    if (name == u"GraphicsBitmapFill" && as<BitmapDataObject>(slot(record, 0)) != nullptr)
        return bitmapFillOf(vm, slot(record, 0), slot(record, 1), vm.toBoolean(slot(record, 2)),
                            vm.toBoolean(slot(record, 3)));
    if (name == u"GraphicsShaderFill") return shaderFillOf(vm, slot(record, 0), slot(record, 1));
    return {};
}

void drawRecord(Vm& vm, GraphicsObject& graphics, Object& record)
{
    const std::u16string_view name = record.traits()->name.view();
    if (name == u"GraphicsPath") {
        return path(vm, graphics, slot(record, 0), slot(record, 1), slot(record, 2));
    }
    if (name == u"GraphicsTrianglePath")
        return addTriangles(vm, graphics, slot(record, 0), slot(record, 1), slot(record, 2),
                            wordOf(vm, slot(record, 3)));
    if (name != u"GraphicsStroke") return openFill(graphics, fillOf(vm, record));
    auto line =
        lineOf(vm.toNumber(slot(record, 0)), 0, 1, vm.toBoolean(slot(record, 1)), wordOf(vm, slot(record, 2)),
               wordOf(vm, slot(record, 3)), wordOf(vm, slot(record, 4)), vm.toNumber(slot(record, 5)));
    if (Object* inner = slot(record, 6).asObject(); inner != nullptr && line) {
        const auto fill = fillOf(vm, *inner);
        if (fill && fill->kind == swf::FillStyle::Kind::Solid)
            line->color = fill->color;
        else
            line->fill = fill;
    }
    graphics.drawing().lineStyle(line);
}

std::uint32_t choiceSlot(Call& call, const Choice& choice)
{
    const Name hidden = call.vm.name("@" + std::string(choice.name));
    const Binding* binding = call.vm.traitsOf(call.self)->find(hidden, call.vm.publicNs());
    if (binding == nullptr) throwNotAccepted(call.vm, choice.name);
    return static_cast<std::uint32_t>(binding->id);
}
template <const Choice& choice>
Value chosen(Call& call)
{
    return call.self.object()->slot(choiceSlot(call, choice));
}
template <const Choice& choice>
Value choose(Call& call)
{
    check(call.vm, choice, call.arg(0));
    call.vm.setSlotTyped(*call.self.object(), choiceSlot(call, choice), call.arg(0));
    return {};
}
template <const Choice& choice>
constexpr NativeMember choiceMember()
{
    return {choice.name, NativeMember::Kind::Getter, &chosen<choice>, 0, 0, &choose<choice>, "String"};
}

/// A constructor whose arguments at some places are choices.
template <const Choice&... choices>
Value constructRecord(Call& call)
{
    const auto checkOne = [&](const Choice& choice) {
        const std::uint32_t at = choiceSlot(call, choice);
        if (at < call.count) check(call.vm, choice, call.args[at]);
    };
    (checkOne(choices), ...);
    return assignSlots(call);
}

/// Paths grow by members of their own: a command and its numbers.
template <int command, int numbers>
Value extend(Call& call)
{
    Object& self = *call.self.object();
    Vm& vm = call.vm;
    for (std::uint32_t i = 0; i < 2; ++i) {
        if (!self.slot(i).isNullish()) continue;
        Traits* element = (i == 0 ? vm.classes().integer : vm.classes().number)->instances;
        self.setSlot(i, vm.construct(Value(vm.vectorOf(element)), {}));
    }
    vm.callPublic(self.slot(0), "push", {Value(command)});
    for (int i = 0; i < numbers; ++i)
        vm.callPublic(self.slot(1), "push", {Value(vm.toNumber(call.arg(static_cast<std::uint32_t>(i))))});
    return {};
}

/// With two numbers that say nothing before those of the place.
template <int command>
Value extendWide(Call& call)
{
    const std::array<Value, 4> numbers{Value(0), Value(0), call.arg(0), call.arg(1)};
    Call wide{call.vm, call.self, numbers.data(), 4};
    return extend<command, 4>(wide);
}

constexpr NativeMember kPath[] = {
    {"moveTo", Kind::Method, &extend<1, 2>, 2, 2},
    {"lineTo", Kind::Method, &extend<2, 2>, 2, 2},
    {"curveTo", Kind::Method, &extend<3, 4>, 4, 4},
    {"cubicCurveTo", Kind::Method, &extend<6, 6>, 6, 6},
    {"wideMoveTo", Kind::Method, &extendWide<4>, 2, 2},
    {"wideLineTo", Kind::Method, &extendWide<5>, 2, 2},
    choiceMember<kWindings>(),
};
constexpr NativeMember kTriangles[] = {choiceMember<kCullings>()};
constexpr NativeMember kGradient[] = {choiceMember<kGradientTypes>(), choiceMember<kSpreads>(),
                                      choiceMember<kInterpolations>()};
constexpr NativeMember kLine[] = {choiceMember<kScaleModes>(), choiceMember<kCaps>(),
                                  choiceMember<kJoints>()};

constexpr NativeClass record(std::string_view name, std::string_view interfaces, std::string_view slots,
                             NativeFunction constructor = &assignSlots,
                             std::span<const NativeMember> members = {})
{
    return {.package = "flash.display",
            .name = name,
            .base = {},
            .flags = NativeClass::Final,
            .constructor = constructor,
            .minArguments = 0,
            .maxArguments = -1,
            .members = members,
            .interfaces = interfaces,
            .slots = slots};
}
constexpr NativeClass interface(std::string_view name)
{
    return {.package = "flash.display", .name = name, .base = {}, .flags = NativeClass::Interface};
}
constexpr NativeConstant kCommands[] = {{"NO_OP", 0},         {"MOVE_TO", 1},      {"LINE_TO", 2},
                                        {"CURVE_TO", 3},      {"WIDE_MOVE_TO", 4}, {"WIDE_LINE_TO", 5},
                                        {"CUBIC_CURVE_TO", 6}};
constexpr NativeConstant kWinding[] = {{"EVEN_ODD", 0, "evenOdd"}, {"NON_ZERO", 0, "nonZero"}};
constexpr NativeConstant kCulling[] = {
    {"NEGATIVE", 0, "negative"}, {"NONE", 0, "none"}, {"POSITIVE", 0, "positive"}};
constexpr NativeClass constants(std::string_view name, std::span<const NativeConstant> list)
{
    return {.package = "flash.display",
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constants = list};
}

constexpr std::string_view kFill = "flash.display::IGraphicsFill flash.display::IGraphicsData",
                           kPathKind = "flash.display::IGraphicsPath flash.display::IGraphicsData",
                           kStroke = "flash.display::IGraphicsStroke flash.display::IGraphicsData";
constexpr NativeClass kClasses[] = {
    interface("IGraphicsData"),
    interface("IGraphicsFill"),
    interface("IGraphicsPath"),
    interface("IGraphicsStroke"),
    record("GraphicsPath", kPathKind, "commands:* data:* @winding:String=evenOdd",
           &constructRecord<kWindings>, kPath),
    record("GraphicsTrianglePath", kPathKind, "vertices:* indices:* uvtData:* @culling:String=none",
           &constructRecord<kCullings>, kTriangles),
    record("GraphicsSolidFill", kFill, "color:uint alpha:Number=1"),
    record("GraphicsGradientFill", kFill,
           "@type:String=linear colors:* alphas:* ratios:* matrix:* @spreadMethod:String=pad "
           "@interpolationMethod:String=rgb focalPointRatio:Number",
           &constructRecord<kGradientTypes, kSpreads, kInterpolations>, kGradient),
    record("GraphicsBitmapFill", kFill, "bitmapData:* matrix:* repeat:Boolean=true smooth:Boolean"),
    record("GraphicsShaderFill", kFill, "shader:* matrix:*"),
    record("GraphicsEndFill", kFill, ""),
    record("GraphicsStroke", kStroke,
           "thickness:Number=nan pixelHinting:Boolean @scaleMode:String=normal @caps:String=none "
           "@joints:String=round miterLimit:Number=3 fill:*",
           &constructRecord<kScaleModes, kCaps, kJoints>, kLine),
    constants("GraphicsPathCommand", kCommands),
    constants("GraphicsPathWinding", kWinding),
    constants("TriangleCulling", kCulling),
};

} // namespace

Value drawPath(Call& call)
{
    auto& self = graphicsSelf(call);
    if (call.has(2)) check(call.vm, kWindings, call.arg(2));
    path(call.vm, self, call.arg(0), call.arg(1), call.has(2) ? call.arg(2) : Value());
    return {};
}

Value drawTriangles(Call& call)
{
    auto& self = graphicsSelf(call);
    if (call.has(3) && !kCullings.holds(call.vm, call.arg(3))) invalidGraphicsArgument(call.vm);
    const std::u16string culling = call.has(3) ? std::u16string(call.vm.text(call.arg(3))) : u"none";
    addTriangles(call.vm, self, call.arg(0), call.arg(1), call.arg(2), culling);
    return {};
}

Value drawGraphicsData(Call& call)
{
    auto& self = graphicsSelf(call);
    Object* list = call.arg(0).asObject();
    if (list == nullptr) return {};
    const std::uint32_t length = call.vm.toUint(call.vm.getPublic(call.arg(0), "length"));
    for (std::uint32_t i = 0; i < length; ++i) {
        Value entry;
        if (list->element(i, entry) && entry.isObject()) drawRecord(call.vm, self, *entry.object());
        call.vm.check();
    }
    return {};
}

Value copyGraphics(Call& call)
{
    auto& self = graphicsSelf(call);
    auto* source = as<GraphicsObject>(&objectArg(call, 0, "flash.display::Graphics", "sourceGraphics"));
    if (source == nullptr || source == &self) return {};
    self.drawing() = source->drawing();
    self.fill = source->fill;
    self.pieces = source->pieces;
    self.changed();
    return {};
}

std::span<const NativeClass> graphicsDataClasses() { return kClasses; }

} // namespace flash::avm2
