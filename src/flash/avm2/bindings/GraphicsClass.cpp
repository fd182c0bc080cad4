#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Shaders.h"
#include "flash/avm2/classes/Library.h"
#include "flash/swf/FixedPoint.h"

#include <algorithm>
#include <cmath>
#include <numbers>

// The pen: fills, lines, figures.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{
constexpr double kTwips = swf::kTwipsPerPixel;

swf::Point pointArg(Call& call, std::uint32_t index)
{
    const double x = call.vm.toNumber(call.arg(index)), y = call.vm.toNumber(call.arg(index + 1));
    return {penTwips(x), penTwips(y)};
}
double number(Call& call, std::uint32_t index, double missing)
{
    return call.has(index) ? call.vm.toNumber(call.arg(index)) : missing;
}
std::u16string word(Call& call, std::uint32_t index, std::u16string_view missing)
{
    if (!call.has(index) || call.arg(index).isNullish()) return std::u16string(missing);
    return std::u16string(call.vm.text(call.arg(index)));
}
} // namespace

double penTwips(double pixels) { return std::isfinite(pixels) ? std::trunc(pixels * kTwips) : 0; }

stage::Drawing& GraphicsObject::drawing()
{
    return owner != nullptr && owner->clip() != nullptr ? owner->clip()->drawing() : m_unseen;
}
void GraphicsObject::changed()
{
    if (owner != nullptr && owner->hasNode()) owner->node().contentChanged();
}

GraphicsObject& graphicsSelf(Call& call)
{
    return classes::selfAs<GraphicsObject>(call, "flash.display.Graphics");
}

Value newGraphics(Vm& vm, DisplayObject& owner)
{
    auto* made = as<GraphicsObject>(Value(vm.instantiate(vm.nativeClass("flash.display::Graphics"))));
    made->owner = &owner;
    return Value(made);
}

std::vector<double> numbersOf(Vm& vm, Value list)
{
    std::vector<double> numbers;
    Object* object = list.asObject();
    if (object == nullptr) return numbers;
    constexpr std::uint32_t kMax = 1U << 22U;
    const std::uint32_t length = std::min(kMax, vm.toUint(vm.getPublic(list, "length")));
    numbers.reserve(length);
    for (std::uint32_t i = 0; i < length; ++i) {
        vm.check();
        Value value;
        object->element(i, value);
        numbers.push_back(vm.toNumber(value));
    }
    return numbers;
}

swf::FillStyle solidFill(std::uint32_t rgb, double alpha)
{
    constexpr double kOpaque = 255;
    swf::FillStyle fill;
    fill.color = {static_cast<std::uint8_t>(rgb >> 16U), static_cast<std::uint8_t>(rgb >> 8U),
                  static_cast<std::uint8_t>(rgb),
                  static_cast<std::uint8_t>(std::isnan(alpha) ? 0 : std::clamp(alpha, 0.0, 1.0) * kOpaque)};
    return fill;
}

std::optional<swf::FillStyle> gradientOf(Vm& vm, std::u16string_view type, Value colors, Value alphas,
                                         Value ratios, Value matrix, std::u16string_view spread,
                                         std::u16string_view interpolation, double focal)
{
    swf::FillStyle fill;
    fill.kind =
        type == u"radial" ? swf::FillStyle::Kind::RadialGradient : swf::FillStyle::Kind::LinearGradient;
    const auto rgbs = numbersOf(vm, colors), opacities = numbersOf(vm, alphas),
               places = numbersOf(vm, ratios);
    // What the lists do not all have is left out.
    constexpr std::size_t kMaxStops = 15;
    const std::size_t count = std::min({rgbs.size(), opacities.size(), places.size(), kMaxStops});
    for (std::size_t i = 0; i < count; ++i) {
        swf::Gradient::Stop stop;
        stop.color = solidFill(vm.toUint(Value(rgbs[i])), opacities[i]).color;
        const double place = std::isnan(places[i]) ? 0 : places[i];
        stop.ratio = static_cast<std::uint8_t>(std::clamp(place, 0.0, 255.0));
        fill.gradient.stops.push_back(stop);
    }
    if (fill.gradient.stops.empty()) return {};
    if (Object* given = matrix.asObject()) fill.matrix = swf::inFixedPoint(matrixOf(*given));
    // Without a matrix it is a square of 200 pixels around the origin.
    else
        fill.matrix = {200 * kTwips / 32768, 0, 0, 200 * kTwips / 32768, 0, 0};
    if (spread == u"reflect") fill.gradient.spread = swf::Gradient::Spread::Reflect;
    if (spread == u"repeat") fill.gradient.spread = swf::Gradient::Spread::Repeat;
    if (interpolation == u"linearRGB") fill.gradient.interpolation = swf::Gradient::Interpolation::Linear;
    if (type == u"radial" && focal != 0 && !std::isnan(focal)) {
        fill.kind = swf::FillStyle::Kind::FocalGradient;
        fill.gradient.focalPoint = swf::focalInFixedPoint(focal);
    }
    return fill;
}

std::optional<swf::FillStyle> bitmapFillOf(Vm& vm, Value bitmapData, Value matrix, bool repeat, bool smooth)
{
    const auto* data = as<BitmapDataObject>(bitmapData);
    if (data == nullptr) return {};
    swf::FillStyle fill;
    fill.kind = swf::FillStyle::Kind::Bitmap;
    fill.bitmap = picture(vm, *data);
    Object* given = matrix.asObject();
    fill.matrix =
        (given != nullptr ? matrixOf(*given) : swf::Matrix{}) * swf::Matrix{kTwips, 0, 0, kTwips, 0, 0};
    fill.repeat = repeat;
    fill.smooth = smooth;
    return fill;
}

void openFill(GraphicsObject& graphics, std::optional<swf::FillStyle> fill)
{
    graphics.fill = fill;
    if (fill)
        graphics.drawing().beginFill(std::move(*fill));
    else
        graphics.drawing().endFill();
    graphics.changed();
}

std::optional<swf::LineStyle> lineOf(double width, std::uint32_t rgb, double alpha, bool hinting,
                                     std::u16string_view scale, std::u16string_view caps,
                                     std::u16string_view joints, double miter)
{
    if (std::isnan(width)) return {};
    swf::LineStyle line;
    line.width = static_cast<std::uint16_t>(std::lround(std::clamp(width, 0.0, 255.0) * kTwips));
    line.color = solidFill(rgb, alpha).color;
    line.pixelHinting = hinting;
    line.noHorizontalScale = scale == u"none" || scale == u"vertical";
    line.noVerticalScale = scale == u"none" || scale == u"horizontal";
    if (caps == u"none") line.startCap = line.endCap = swf::LineStyle::Cap::None;
    if (caps == u"square") line.startCap = line.endCap = swf::LineStyle::Cap::Square;
    if (joints == u"bevel") line.join = swf::LineStyle::Join::Bevel;
    if (joints == u"miter") line.join = swf::LineStyle::Join::Miter;
    if (!std::isnan(miter)) line.miterLimit = std::clamp(miter, 1.0, 255.0);
    return line;
}

/// By four quadratic pieces.
void cubicTo(stage::Drawing& drawing, swf::Point c1, swf::Point c2, swf::Point to)
{
    constexpr int kPieces = 4;
    const swf::Point from = drawing.pen();
    const auto at = [&](double t) {
        const double u = 1 - t;
        const double f0 = u * u * u, f1 = 3 * u * u * t, f2 = 3 * u * t * t, f3 = t * t * t;
        return swf::Point{f0 * from.x + f1 * c1.x + f2 * c2.x + f3 * to.x,
                          f0 * from.y + f1 * c1.y + f2 * c2.y + f3 * to.y};
    };
    for (int i = 0; i < kPieces; ++i) {
        const double t0 = static_cast<double>(i) / kPieces, t1 = static_cast<double>(i + 1) / kPieces;
        const swf::Point a = at(t0), m = at((t0 + t1) / 2), b = at(t1);
        drawing.curveTo({2 * m.x - (a.x + b.x) / 2, 2 * m.y - (a.y + b.y) / 2}, i + 1 == kPieces ? to : b);
    }
}

namespace
{

Value clear(Call& call)
{
    auto& self = graphicsSelf(call);
    self.drawing().clear();
    self.fill.reset();
    self.pieces = 0;
    self.changed();
    return {};
}
Value beginFill(Call& call)
{
    openFill(graphicsSelf(call), solidFill(call.vm.toUint(call.arg(0)), number(call, 1, 1)));
    return {};
}
Value endFill(Call& call)
{
    openFill(graphicsSelf(call), {});
    return {};
}
std::optional<swf::FillStyle> gradientArgs(Call& call)
{
    const std::u16string type = word(call, 0, u"");
    if (type != u"linear" && type != u"radial")
        call.vm.throwError(ErrorClass::Argument, 2008, "Parameter type must be one of the accepted values.");
    return gradientOf(call.vm, type, call.arg(1), call.arg(2), call.arg(3), call.arg(4),
                      word(call, 5, u"pad"), word(call, 6, u"rgb"), number(call, 7, 0));
}
Value beginGradientFill(Call& call)
{
    openFill(graphicsSelf(call), gradientArgs(call));
    return {};
}
Value beginBitmapFill(Call& call)
{
    auto& self = graphicsSelf(call);
    if (call.arg(0).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter bitmap must be non-null.");
    openFill(self,
             bitmapFillOf(call.vm, call.arg(0), call.arg(1), !call.has(2) || call.vm.toBoolean(call.arg(2)),
                          call.vm.toBoolean(call.arg(3))));
    return {};
}
Value beginShaderFill(Call& call)
{
    auto& self = graphicsSelf(call);
    if (call.arg(0).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter shader must be non-null.");
    openFill(self, shaderFillOf(call.vm, call.arg(0), call.arg(1)));
    return {};
}

Value lineStyle(Call& call)
{
    auto& self = graphicsSelf(call);
    self.drawing().lineStyle(lineOf(number(call, 0, std::nan("")),
                                    call.has(1) ? call.vm.toUint(call.arg(1)) : 0, number(call, 2, 1),
                                    call.vm.toBoolean(call.arg(3)), word(call, 4, u"normal"),
                                    word(call, 5, u"round"), word(call, 6, u"round"), number(call, 7, 3)));
    return {};
}
void setLineFill(GraphicsObject& self, std::optional<swf::FillStyle> fill)
{
    if (!self.drawing().currentLine() || !fill) return;
    swf::LineStyle line = *self.drawing().currentLine();
    line.fill = std::move(fill);
    self.drawing().lineStyle(line);
}
Value lineGradientStyle(Call& call)
{
    setLineFill(graphicsSelf(call), gradientArgs(call));
    return {};
}
Value lineBitmapStyle(Call& call)
{
    setLineFill(graphicsSelf(call),
                bitmapFillOf(call.vm, call.arg(0), call.arg(1),
                             !call.has(2) || call.vm.toBoolean(call.arg(2)), call.vm.toBoolean(call.arg(3))));
    return {};
}
Value lineShaderStyle(Call& call)
{
    setLineFill(graphicsSelf(call), shaderFillOf(call.vm, call.arg(0), call.arg(1)));
    return {};
}

Value moveTo(Call& call)
{
    graphicsSelf(call).drawing().moveTo(pointArg(call, 0));
    return {};
}
Value lineTo(Call& call)
{
    auto& self = graphicsSelf(call);
    self.drawing().lineTo(pointArg(call, 0));
    self.changed();
    return {};
}
Value curveTo(Call& call)
{
    auto& self = graphicsSelf(call);
    self.drawing().curveTo(pointArg(call, 0), pointArg(call, 2));
    self.changed();
    return {};
}
Value cubicCurveTo(Call& call)
{
    auto& self = graphicsSelf(call);
    cubicTo(self.drawing(), pointArg(call, 0), pointArg(call, 2), pointArg(call, 4));
    self.changed();
    return {};
}

Value drawRect(Call& call)
{
    auto& self = graphicsSelf(call);
    const double x = call.vm.toNumber(call.arg(0)), y = call.vm.toNumber(call.arg(1)),
                 right = x + call.vm.toNumber(call.arg(2)), bottom = y + call.vm.toNumber(call.arg(3));
    stage::Drawing& pen = self.drawing();
    pen.moveTo({penTwips(x), penTwips(y)});
    pen.lineTo({penTwips(right), penTwips(y)});
    pen.lineTo({penTwips(right), penTwips(bottom)});
    pen.lineTo({penTwips(x), penTwips(bottom)});
    pen.lineTo({penTwips(x), penTwips(y)});
    self.changed();
    return {};
}

// Coordinates of round things are cut to twips as all others are; sums and sines may miss a whole one by a
// hair.
double cutTwips(double twips)
{
    constexpr double kHair = 1e-7;
    return std::isfinite(twips) ? std::trunc(twips + std::copysign(kHair, twips)) : 0;
}

/// A part of an ellipse, of 45 degrees each, from `from` eighths on.
void arcs(stage::Drawing& pen, swf::Point centre, double rx, double ry, int from, int count)
{
    constexpr double kEighth = std::numbers::pi / 4;
    const double reach = 1 / std::cos(kEighth / 2);
    for (int i = from; i < from + count; ++i) {
        const double end = kEighth * (i + 1), middle = kEighth * (i + 0.5);
        pen.curveTo({cutTwips(centre.x + std::cos(middle) * reach * rx),
                     cutTwips(centre.y + std::sin(middle) * reach * ry)},
                    {cutTwips(centre.x + std::cos(end) * rx), cutTwips(centre.y + std::sin(end) * ry)});
    }
}
void ellipse(GraphicsObject& self, double cx, double cy, double rx, double ry)
{
    stage::Drawing& pen = self.drawing();
    if (!std::isfinite(cx + cy + rx + ry)) return;
    pen.moveTo({cutTwips((cx + rx) * kTwips), cutTwips(cy * kTwips)});
    arcs(pen, {cx * kTwips, cy * kTwips}, rx * kTwips, ry * kTwips, 0, 8);
    self.changed();
}
Value drawCircle(Call& call)
{
    const double r = call.vm.toNumber(call.arg(2));
    ellipse(graphicsSelf(call), call.vm.toNumber(call.arg(0)), call.vm.toNumber(call.arg(1)), r, r);
    return {};
}
Value drawEllipse(Call& call)
{
    const double rx = call.vm.toNumber(call.arg(2)) / 2, ry = call.vm.toNumber(call.arg(3)) / 2;
    ellipse(graphicsSelf(call), call.vm.toNumber(call.arg(0)) + rx, call.vm.toNumber(call.arg(1)) + ry, rx,
            ry);
    return {};
}

/// @param radii upper left, upper right, lower left, lower right; pixels
void roundRect(GraphicsObject& self, double x, double y, double width, double height,
               const std::array<swf::Point, 4>& radii)
{
    if (!std::isfinite(x + y + width + height)) return;
    stage::Drawing& pen = self.drawing();
    const double right = x + width, bottom = y + height;
    const auto to = [](double px, double py) {
        return swf::Point{cutTwips(px * kTwips), cutTwips(py * kTwips)};
    };
    const auto corner = [&](double cx, double cy, swf::Point r, int from) {
        if (r.x > 0 && r.y > 0) arcs(pen, {cx * kTwips, cy * kTwips}, r.x * kTwips, r.y * kTwips, from, 2);
    };
    const auto [ul, ur, ll, lr] = radii;
    pen.moveTo(to(right, bottom - lr.y));
    corner(right - lr.x, bottom - lr.y, lr, 0);
    pen.lineTo(to(x + ll.x, bottom));
    corner(x + ll.x, bottom - ll.y, ll, 2);
    pen.lineTo(to(x, y + ul.y));
    corner(x + ul.x, y + ul.y, ul, 4);
    pen.lineTo(to(right - ur.x, y));
    corner(right - ur.x, y + ur.y, ur, 6);
    pen.lineTo(to(right, bottom - lr.y));
    self.changed();
}
Value drawRoundRect(Call& call)
{
    const double width = call.vm.toNumber(call.arg(2)), height = call.vm.toNumber(call.arg(3));
    const double w = call.vm.toNumber(call.arg(4));
    double h = number(call, 5, std::nan(""));
    if (std::isnan(h)) h = w;
    const swf::Point r{std::clamp(w / 2, 0.0, std::max(0.0, width / 2)),
                       std::clamp(h / 2, 0.0, std::max(0.0, height / 2))};
    roundRect(graphicsSelf(call), call.vm.toNumber(call.arg(0)), call.vm.toNumber(call.arg(1)), width, height,
              {r, r, r, r});
    return {};
}
Value drawRoundRectComplex(Call& call)
{
    const double width = call.vm.toNumber(call.arg(2)), height = call.vm.toNumber(call.arg(3));
    std::array<swf::Point, 4> radii;
    for (std::uint32_t i = 0; i < 4; ++i) {
        const double most = std::max(0.0, std::min(width, height) / 2);
        const double r = std::clamp(call.vm.toNumber(call.arg(4 + i)), 0.0, most);
        radii[i] = {r, r};
    }
    roundRect(graphicsSelf(call), call.vm.toNumber(call.arg(0)), call.vm.toNumber(call.arg(1)), width, height,
              radii);
    return {};
}

constexpr NativeMember kGraphics[] = {
    {"clear", Kind::Method, &clear, 0, 0},
    {"beginFill", Kind::Method, &beginFill, 1, 2},
    {"beginGradientFill", Kind::Method, &beginGradientFill, 4, 8},
    {"beginBitmapFill", Kind::Method, &beginBitmapFill, 1, 4},
    {"beginShaderFill", Kind::Method, &beginShaderFill, 1, 2},
    {"endFill", Kind::Method, &endFill, 0, 0},
    {"lineStyle", Kind::Method, &lineStyle, 0, 8},
    {"lineGradientStyle", Kind::Method, &lineGradientStyle, 4, 8},
    {"lineBitmapStyle", Kind::Method, &lineBitmapStyle, 1, 4},
    {"lineShaderStyle", Kind::Method, &lineShaderStyle, 1, 2},
    {"moveTo", Kind::Method, &moveTo, 2, 2},
    {"lineTo", Kind::Method, &lineTo, 2, 2},
    {"curveTo", Kind::Method, &curveTo, 4, 4},
    {"cubicCurveTo", Kind::Method, &cubicCurveTo, 6, 6},
    {"drawRect", Kind::Method, &drawRect, 4, 4},
    {"drawCircle", Kind::Method, &drawCircle, 3, 3},
    {"drawEllipse", Kind::Method, &drawEllipse, 4, 4},
    {"drawRoundRect", Kind::Method, &drawRoundRect, 5, 6},
    {"drawRoundRectComplex", Kind::Method, &drawRoundRectComplex, 8, 8},
    {"drawPath", Kind::Method, &drawPath, 2, 3},
    {"drawTriangles", Kind::Method, &drawTriangles, 1, 4},
    {"drawGraphicsData", Kind::Method, &drawGraphicsData, 1, 1},
    {"readGraphicsData", Kind::Method, &readGraphicsData, 0, 1},
    {"copyFrom", Kind::Method, &copyGraphics, 1, 1},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "Graphics",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &refuseConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &classes::allocateNative<GraphicsObject>,
     .members = kGraphics},
};

} // namespace

std::span<const NativeClass> graphicsClasses() { return kClasses; }

} // namespace flash::avm2
