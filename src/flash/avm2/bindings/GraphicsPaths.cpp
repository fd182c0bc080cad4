#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Shaders.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>
#include <cmath>

// Drawings as data: paths, triangles, records of IGraphicsData.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;

double twips(double pixels) { return std::isfinite(pixels) ? std::trunc(pixels * kTwips) : 0; }

[[noreturn]] void invalid(Vm& vm)
{
    vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
}
[[noreturn]] void notAccepted(Vm& vm, std::string_view name)
{
    vm.throwError(ErrorClass::Argument, 2008,
                  "Parameter " + std::string(name) + " must be one of the accepted values.");
}

void checkWinding(Vm& vm, Value winding)
{
    if (winding.isNullish()) notAccepted(vm, "winding");
    const std::u16string_view text = vm.text(winding);
    if (text != u"evenOdd" && text != u"nonZero") notAccepted(vm, "winding");
}
/// The rule is the drawing's, not the path's: one path that asks for it changes those before.
void fillBy(Vm& vm, GraphicsObject& graphics, Value winding)
{
    if (vm.text(winding) == u"nonZero") graphics.drawing().fillByWinding();
}
bool isCulling(Vm& vm, Value culling)
{
    if (culling.isNullish()) return false;
    const std::u16string_view text = vm.text(culling);
    return text == u"none" || text == u"positive" || text == u"negative";
}

void path(Vm& vm, GraphicsObject& graphics, Value commandList, Value dataList)
{
    const auto commands = numbersOf(vm, commandList), data = numbersOf(vm, dataList);
    if (!commands.empty() && data.size() % 2 != 0) invalid(vm);
    stage::Drawing& pen = graphics.drawing();
    std::size_t at = 0;
    const auto left = [&](std::size_t wanted) { return at + wanted <= data.size(); };
    const auto point = [&] {
        const swf::Point p{twips(data[at]), twips(data[at + 1])};
        at += 2;
        return p;
    };
    for (const double command : commands) {
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

struct Corner {
    swf::Point at, uv;
    double depth = 1; ///< as scripts have it: the greater, the nearer
};

/// A bitmap fill whose corners of the picture (0..1) lie where those of the triangle do.
std::optional<swf::FillStyle> stretched(const swf::FillStyle& fill, const std::array<Corner, 3>& t)
{
    if (!fill.bitmap) return {};
    const double w = fill.bitmap->width * kTwips, h = fill.bitmap->height * kTwips;
    const swf::Point u{(t[1].uv.x - t[0].uv.x) * w, (t[1].uv.y - t[0].uv.y) * h};
    const swf::Point v{(t[2].uv.x - t[0].uv.x) * w, (t[2].uv.y - t[0].uv.y) * h};
    const swf::Matrix source{u.x, u.y, v.x, v.y, t[0].uv.x * w, t[0].uv.y * h};
    if (!source.isInvertible()) return {};
    const swf::Matrix target{t[1].at.x - t[0].at.x,
                             t[1].at.y - t[0].at.y,
                             t[2].at.x - t[0].at.x,
                             t[2].at.y - t[0].at.y,
                             t[0].at.x,
                             t[0].at.y};
    swf::FillStyle result = fill;
    result.matrix = target * source.inverted() * swf::Matrix{kTwips, 0, 0, kTwips, 0, 0};
    return result;
}

void outline(stage::Drawing& pen, const std::array<Corner, 3>& corners)
{
    pen.moveTo(corners[0].at);
    pen.lineTo(corners[1].at);
    pen.lineTo(corners[2].at);
    pen.lineTo(corners[0].at);
}

/// A fill lies flat on its triangle. One whose corners are of different depth is therefore cut where an
/// edge's middle would show the wrong place of the picture, which leaves no gaps: triangles that share an
/// edge cut it alike.
void fillInDepth(stage::Drawing& pen, const swf::FillStyle& fill, const std::array<Corner, 3>& corners,
                 int cuts)
{
    constexpr double kSlack = 10; // twips
    std::size_t worst = 0;
    double most = 0;
    for (std::size_t i = 0; i < 3 && cuts > 0; ++i) {
        const Corner &a = corners[i], &b = corners[(i + 1) % 3];
        if (!(a.depth > 0 && b.depth > 0)) continue;
        const double off =
            std::abs(b.depth / (a.depth + b.depth) - 0.5) * std::hypot(b.at.x - a.at.x, b.at.y - a.at.y);
        if (off > most) {
            most = off;
            worst = i;
        }
    }
    if (most <= kSlack) {
        if (auto own = stretched(fill, corners)) pen.beginFill(std::move(*own));
        outline(pen, corners);
        return;
    }
    const Corner &a = corners[worst], &b = corners[(worst + 1) % 3], &c = corners[(worst + 2) % 3];
    const double share = b.depth / (a.depth + b.depth);
    const Corner middle{{(a.at.x + b.at.x) / 2, (a.at.y + b.at.y) / 2},
                        {std::lerp(a.uv.x, b.uv.x, share), std::lerp(a.uv.y, b.uv.y, share)},
                        (a.depth + b.depth) / 2};
    fillInDepth(pen, fill, {a, middle, c}, cuts - 1);
    fillInDepth(pen, fill, {middle, b, c}, cuts - 1);
}

void triangles(Vm& vm, GraphicsObject& graphics, Value vertexList, Value indexList, Value uvList,
               std::u16string_view culling)
{
    const auto vertices = numbersOf(vm, vertexList), uvs = numbersOf(vm, uvList);
    std::vector<double> indices = numbersOf(vm, indexList);
    const bool indexed = !indexList.isNullish();
    if (vertices.size() % 2 != 0) invalid(vm);
    const std::size_t points = vertices.size() / 2;
    if (indexed ? indices.size() % 3 != 0 : vertices.size() % 6 != 0) invalid(vm);
    if (!indexed) {
        for (std::size_t i = 0; i < points; ++i) indices.push_back(static_cast<double>(i));
    }
    const std::size_t uvStep = points > 0 && uvs.size() >= 3 * points ? 3 : 2;
    const bool hasUv = points > 0 && uvs.size() >= uvStep * points;
    const std::optional<swf::FillStyle> fill = graphics.fill;
    stage::Drawing& pen = graphics.drawing();
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        std::array<Corner, 3> corners;
        bool known = true;
        for (std::size_t k = 0; k < 3; ++k) {
            const double index = indices[i + k];
            known = known && index >= 0 && index < static_cast<double>(points);
            if (!known) break;
            const auto n = static_cast<std::size_t>(index);
            corners[k].at = {twips(vertices[2 * n]), twips(vertices[2 * n + 1])};
            if (hasUv) corners[k].uv = {uvs[uvStep * n], uvs[uvStep * n + 1]};
            if (hasUv && uvStep == 3) corners[k].depth = uvs[uvStep * n + 2];
        }
        // One with a corner that there is not ends them.
        if (!known) break;
        const auto [a, b, c] = corners;
        const double turn = (b.at.x - a.at.x) * (c.at.y - a.at.y) - (b.at.y - a.at.y) * (c.at.x - a.at.x);
        if ((culling == u"positive" && turn > 0) || (culling == u"negative" && turn < 0)) continue;
        const bool hasPicture = hasUv && fill && fill->kind == swf::FillStyle::Kind::Bitmap;
        if (hasPicture && (a.depth != b.depth || a.depth != c.depth)) {
            // Lines go around the whole of it.
            constexpr int kMaxCuts = 10;
            const std::optional<swf::LineStyle> line = pen.currentLine();
            pen.lineStyle({});
            // Twice, so that hardly anything shines through between the smooth edges of the parts.
            fillInDepth(pen, *fill, corners, kMaxCuts);
            fillInDepth(pen, *fill, corners, kMaxCuts);
            if (!line) continue;
            pen.endFill();
            pen.lineStyle(line);
            outline(pen, corners);
            continue;
        }
        if (hasPicture) {
            if (auto own = stretched(*fill, corners)) pen.beginFill(std::move(*own));
        }
        outline(pen, corners);
    }
    graphics.changed();
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
        checkWinding(vm, slot(record, 2));
        fillBy(vm, graphics, slot(record, 2));
        return path(vm, graphics, slot(record, 0), slot(record, 1));
    }
    if (name == u"GraphicsTrianglePath")
        return triangles(vm, graphics, slot(record, 0), slot(record, 1), slot(record, 2),
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

Value assign(Call& call)
{
    Object& self = *call.self.object();
    for (std::uint32_t i = 0; i < call.count && i < self.slotCount(); ++i)
        call.vm.setSlotTyped(self, i, call.args[i]);
    return {};
}
Value constructPath(Call& call)
{
    if (call.has(2)) checkWinding(call.vm, call.arg(2));
    return assign(call);
}
Value constructTriangles(Call& call)
{
    if (call.has(3) && !isCulling(call.vm, call.arg(3))) notAccepted(call.vm, "culling");
    return assign(call);
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

constexpr NativeMember kPath[] = {
    {"moveTo", Kind::Method, &extend<1, 2>, 2, 2},
    {"lineTo", Kind::Method, &extend<2, 2>, 2, 2},
    {"curveTo", Kind::Method, &extend<3, 4>, 4, 4},
    {"cubicCurveTo", Kind::Method, &extend<6, 6>, 6, 6},
};

constexpr NativeClass record(std::string_view name, std::string_view interfaces, std::string_view slots,
                             NativeFunction constructor = &assign, std::span<const NativeMember> members = {})
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
    record("GraphicsPath", kPathKind, "commands:* data:* winding:String=evenOdd", &constructPath, kPath),
    record("GraphicsTrianglePath", kPathKind, "vertices:* indices:* uvtData:* culling:String=none",
           &constructTriangles),
    record("GraphicsSolidFill", kFill, "color:uint alpha:Number=1"),
    record("GraphicsGradientFill", kFill,
           "type:String=linear colors:* alphas:* ratios:* matrix:* spreadMethod:String=pad "
           "interpolationMethod:String=rgb focalPointRatio:Number"),
    record("GraphicsBitmapFill", kFill, "bitmapData:* matrix:* repeat:Boolean=true smooth:Boolean"),
    record("GraphicsShaderFill", kFill, "shader:* matrix:*"),
    record("GraphicsEndFill", kFill, ""),
    record("GraphicsStroke", kStroke,
           "thickness:Number=nan pixelHinting:Boolean scaleMode:String=normal caps:String=none "
           "joints:String=round miterLimit:Number=3 fill:*"),
    constants("GraphicsPathCommand", kCommands),
    constants("GraphicsPathWinding", kWinding),
    constants("TriangleCulling", kCulling),
};

} // namespace

Value drawPath(Call& call)
{
    auto& self = graphicsSelf(call);
    if (call.has(2)) {
        checkWinding(call.vm, call.arg(2));
        fillBy(call.vm, self, call.arg(2));
    }
    path(call.vm, self, call.arg(0), call.arg(1));
    return {};
}

Value drawTriangles(Call& call)
{
    auto& self = graphicsSelf(call);
    if (call.has(3) && !isCulling(call.vm, call.arg(3))) invalid(call.vm);
    const std::u16string culling = call.has(3) ? std::u16string(call.vm.text(call.arg(3))) : u"none";
    triangles(call.vm, self, call.arg(0), call.arg(1), call.arg(2), culling);
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
    self.changed();
    return {};
}

std::span<const NativeClass> graphicsDataClasses() { return kClasses; }

} // namespace flash::avm2
