#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/GeomValues.h"
#include "flash/stage/Drawing.h"

#include <cmath>
#include <numbers>

namespace flash::avm1
{

namespace
{

swf::Rgba colorOf(int rgb, double alphaPercent)
{
    const double alpha = std::isnan(alphaPercent) ? 100 : std::clamp(alphaPercent, 0.0, 100.0);
    return {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8),
            static_cast<std::uint8_t>(rgb), static_cast<std::uint8_t>(alpha * 255 / 100)};
}

double alphaArg(Call& call, std::size_t index)
{
    return call.count() > index && !call.arg(index).isUndefined() ? numberArg(call, index) : 100;
}

Value member(Vm& vm, Object* object, std::string_view name) { return object->get(vm, vm.name(name)); }
double numberMember(Vm& vm, Object* object, std::string_view name)
{
    return toNumber(vm, member(vm, object, name));
}

Value beginFill(Call& call)
{
    stage::Clip* clip = selfClip(call);
    if (!clip || call.count() == 0) {
        if (clip) clip->drawing().endFill();
        return {};
    }
    swf::FillStyle fill;
    fill.color = colorOf(intArg(call, 0), alphaArg(call, 1));
    clip->drawing().beginFill(std::move(fill));
    return {};
}

/// The matrix argument of a gradient: a box, three rows by letters, or a geometry matrix.
swf::Matrix gradientMatrix(Vm& vm, Object* object)
{
    constexpr double kGradientSide = 32768; // twips
    constexpr double kTwips = swf::kTwipsPerPixel;
    if (toText(vm, member(vm, object, "matrixType")) == u"box") {
        const double width = numberMember(vm, object, "w"), height = numberMember(vm, object, "h");
        const double angle = numberMember(vm, object, "r");
        const double x = numberMember(vm, object, "x"), y = numberMember(vm, object, "y");
        const double sx = width * kTwips / kGradientSide, sy = height * kTwips / kGradientSide;
        const double c = std::cos(angle), s = std::sin(angle);
        return {c * sx, s * sx, -s * sy, c * sy, (x + width / 2) * kTwips, (y + height / 2) * kTwips};
    }
    Value ignored;
    if (object->find(vm, vm.name(std::string_view("tx")), ignored, Value(object))) {
        return {numberMember(vm, object, "a"),           numberMember(vm, object, "b"),
                numberMember(vm, object, "c"),           numberMember(vm, object, "d"),
                numberMember(vm, object, "tx") * kTwips, numberMember(vm, object, "ty") * kTwips};
    }
    // a b c / d e f / g h i act on a square of one unit.
    const double f = kTwips / kGradientSide;
    return {numberMember(vm, object, "a") * f,      numberMember(vm, object, "b") * f,
            numberMember(vm, object, "d") * f,      numberMember(vm, object, "e") * f,
            numberMember(vm, object, "g") * kTwips, numberMember(vm, object, "h") * kTwips};
}

std::optional<swf::FillStyle> gradientFill(Call& call)
{
    Vm& vm = call.vm;
    Object* colors = call.arg(1).asObject();
    Object* alphas = call.arg(2).asObject();
    Object* ratios = call.arg(3).asObject();
    Object* matrix = call.arg(4).asObject();
    if (!colors || !alphas || !ratios || !matrix) return {};
    const std::u16string kind = textArg(call, 0);
    swf::FillStyle fill;
    if (kind == u"linear")
        fill.kind = swf::FillStyle::Kind::LinearGradient;
    else if (kind == u"radial")
        fill.kind = swf::FillStyle::Kind::RadialGradient;
    else
        return {};
    const auto length = [&](Object* array) { return numberMember(vm, array, "length"); };
    const double count = length(colors);
    if (length(alphas) != count || length(ratios) != count || !(count >= 1)) return {};
    constexpr int kMostStops = 15;
    for (int i = 0; i < std::min(static_cast<int>(count), kMostStops); ++i) {
        const Name index = vm.names().fromIndex(static_cast<std::uint32_t>(i));
        const double ratio = std::clamp(toNumber(vm, ratios->get(vm, index)), 0.0, 255.0);
        swf::Gradient::Stop stop;
        stop.ratio = static_cast<std::uint8_t>(std::isnan(ratio) ? 0 : ratio);
        if (!fill.gradient.stops.empty()) stop.ratio = std::max(stop.ratio, fill.gradient.stops.back().ratio);
        stop.color = colorOf(toInt32(vm, colors->get(vm, index)), toNumber(vm, alphas->get(vm, index)));
        fill.gradient.stops.push_back(stop);
    }
    fill.matrix = gradientMatrix(vm, matrix);
    const std::u16string spread = call.count() > 5 ? textArg(call, 5) : std::u16string();
    if (spread == u"reflect") fill.gradient.spread = swf::Gradient::Spread::Reflect;
    if (spread == u"repeat") fill.gradient.spread = swf::Gradient::Spread::Repeat;
    if (call.count() > 6 && textArg(call, 6) == u"linearRGB")
        fill.gradient.interpolation = swf::Gradient::Interpolation::Linear;
    if (call.count() > 7) {
        const double focal = numberArg(call, 7);
        if (fill.kind == swf::FillStyle::Kind::RadialGradient && focal != 0 && !std::isnan(focal)) {
            fill.kind = swf::FillStyle::Kind::FocalGradient;
            fill.gradient.focalPoint = std::clamp(focal, -1.0, 1.0);
        }
    }
    return fill;
}

Value beginGradientFill(Call& call)
{
    stage::Clip* clip = selfClip(call);
    if (!clip) return {};
    if (auto fill = gradientFill(call))
        clip->drawing().beginFill(std::move(*fill));
    else
        clip->drawing().endFill();
    return {};
}

Value beginBitmapFill(Call& call)
{
    stage::Clip* clip = selfClip(call);
    Object* object = call.arg(0).asObject();
    if (!clip || !object) return {};
    swf::FillStyle fill;
    fill.kind = swf::FillStyle::Kind::Bitmap;
    fill.bitmap = StageBinding::of(call).bitmapOf(object);
    if (!fill.bitmap) return {};
    constexpr double kTwips = swf::kTwipsPerPixel;
    fill.matrix = swf::Matrix{kTwips, 0, 0, kTwips, 0, 0} *
                  matrixFromValue(call.vm, call.arg(1)).value_or(swf::Matrix{});
    fill.repeat = call.arg(2).isUndefined() || toBoolean(call.vm, call.arg(2));
    fill.smooth = toBoolean(call.vm, call.arg(3));
    clip->drawing().beginFill(std::move(fill));
    return {};
}

Value lineStyle(Call& call)
{
    stage::Clip* clip = selfClip(call);
    if (!clip) return {};
    const double width = call.count() > 0 ? numberArg(call, 0) : std::nan("");
    if (call.arg(0).isUndefined() || std::isnan(width)) {
        clip->drawing().lineStyle({});
        return {};
    }
    swf::LineStyle line;
    line.width = static_cast<std::uint16_t>(std::lround(std::clamp(width, 0.0, 255.0) * swf::kTwipsPerPixel));
    line.color = colorOf(call.count() > 1 ? intArg(call, 1) : 0, alphaArg(call, 2));
    line.pixelHinting = toBoolean(call.vm, call.arg(3));
    const std::u16string scale = call.count() > 4 ? textArg(call, 4) : std::u16string();
    line.noHorizontalScale = scale == u"none" || scale == u"vertical";
    line.noVerticalScale = scale == u"none" || scale == u"horizontal";
    const std::u16string cap = call.count() > 5 ? textArg(call, 5) : std::u16string();
    if (cap == u"none") line.startCap = line.endCap = swf::LineStyle::Cap::None;
    if (cap == u"square") line.startCap = line.endCap = swf::LineStyle::Cap::Square;
    const std::u16string join = call.count() > 6 ? textArg(call, 6) : std::u16string();
    if (join == u"bevel") line.join = swf::LineStyle::Join::Bevel;
    if (join == u"miter") line.join = swf::LineStyle::Join::Miter;
    if (call.count() > 7) {
        const double limit = numberArg(call, 7);
        if (!std::isnan(limit)) line.miterLimit = std::clamp(limit, 1.0, 255.0);
    }
    clip->drawing().lineStyle(line);
    return {};
}

Value lineGradientStyle(Call& call)
{
    stage::Clip* clip = selfClip(call);
    if (!clip || !clip->drawing().currentLine()) return {};
    auto fill = gradientFill(call);
    if (!fill) return {};
    swf::LineStyle line = *clip->drawing().currentLine();
    line.fill = std::move(*fill);
    clip->drawing().lineStyle(line);
    return {};
}

swf::Point pointArg(Call& call, std::size_t index)
{
    const auto twips = [&](std::size_t at) {
        const double value = numberArg(call, at);
        return std::isfinite(value) ? std::trunc(value * swf::kTwipsPerPixel) : 0;
    };
    const double x = twips(index);
    return {x, twips(index + 1)};
}

Value moveTo(Call& call)
{
    if (stage::Clip* clip = selfClip(call)) clip->drawing().moveTo(pointArg(call, 0));
    return {};
}
Value lineTo(Call& call)
{
    if (stage::Clip* clip = selfClip(call)) {
        clip->drawing().lineTo(pointArg(call, 0));
        clip->contentChanged();
    }
    return {};
}
Value curveTo(Call& call)
{
    if (stage::Clip* clip = selfClip(call)) {
        const swf::Point control = pointArg(call, 0);
        clip->drawing().curveTo(control, pointArg(call, 2));
        clip->contentChanged();
    }
    return {};
}
Value endFill(Call& call)
{
    if (stage::Clip* clip = selfClip(call)) {
        clip->drawing().endFill();
        clip->contentChanged();
    }
    return {};
}
Value clear(Call& call)
{
    if (stage::Clip* clip = selfClip(call)) {
        clip->contentChanged();
        clip->drawing().clear();
    }
    return {};
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"beginFill",         0, kFrom6, &beginFill},
    {"beginGradientFill", 0, kFrom6, &beginGradientFill},
    {"moveTo",            2, kFrom6, &moveTo},
    {"lineTo",            2, kFrom6, &lineTo},
    {"curveTo",           4, kFrom6, &curveTo},
    {"lineStyle",         0, kFrom6, &lineStyle},
    {"endFill",           0, kFrom6, &endFill},
    {"clear",             0, kFrom6, &clear},
    {"lineGradientStyle", 0, kFrom8, &lineGradientStyle},
    {"beginBitmapFill",   1, kFrom8, &beginBitmapFill},
};
// clang-format on

} // namespace

void installMovieClipDrawing(StageBinding& binding, Object* prototype)
{
    binding.vm().addMembers(prototype, kMembers);
}

} // namespace flash::avm1
