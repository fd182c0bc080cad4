#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/GeomValues.h"
#include "flash/stage/Drawing.h"
#include "flash/swf/FixedPoint.h"

#include <cmath>
#include <numbers>

namespace flash::avm1
{

namespace
{

swf::Rgba colorOf(int rgb, double alphaPercent)
{
    const double alpha = std::isnan(alphaPercent) ? 0 : std::clamp(alphaPercent, 0.0, 100.0);
    return {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8),
            static_cast<std::uint8_t>(rgb), static_cast<std::uint8_t>(alpha * 255 / 100)};
}

double alphaArg(Call& call, std::size_t index) { return call.count() > index ? numberArg(call, index) : 100; }

Value member(Vm& vm, Object* object, std::string_view name) { return object->get(vm, vm.name(name)); }
double numberMember(Vm& vm, Object* object, std::string_view name)
{
    return toNumber(vm, member(vm, object, name));
}

Value beginFill(Call& call)
{
    stage::Clip* clip = selfClip(call);
    if (!clip) return {};
    // Without a colour the fill is there, and counts for the size, but is not seen.
    swf::FillStyle fill;
    fill.color = {0, 0, 0, 0};
    if (!call.arg(0).isUndefined()) fill.color = colorOf(intArg(call, 0), alphaArg(call, 1));
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

/// What a gradient's arguments come to.
struct GradientFill {
    enum class Outcome { Fill, Nothing, NoChange };
    Outcome outcome = Outcome::Nothing;
    swf::FillStyle style;
};

/// The colours, alphas and ratios of a gradient, which may come from any objects that have a length.
///
/// An element that an object lacks keeps the value read before it: an alpha that of the colour, a ratio that
/// of the alpha. The length is asked for again at every element; what lies beyond it stays transparent.
class StopReader
{
public:
    StopReader(Vm& vm, Object* colors, Object* alphas, Object* ratios)
        : m_vm(vm), m_colors(colors), m_alphas(alphas), m_ratios(ratios)
    {
    }
    /// @returns nothing when the lists do not fit together or a ratio is out of range
    std::optional<std::vector<swf::Gradient::Stop>> read()
    {
        const double count = length(m_colors);
        if (length(m_alphas) != count || length(m_ratios) != count || !(count >= 0)) return {};
        constexpr double kMaxStops = 15;
        std::vector<swf::Gradient::Stop> stops(static_cast<std::size_t>(std::min(count, kMaxStops)));
        for (swf::Gradient::Stop& stop : stops) stop.color = {0, 0, 0, 0};
        for (std::size_t i = 0; i < stops.size(); ++i) {
            const auto index = static_cast<std::uint32_t>(i);
            double value = 0;
            // Before version 8 a colour that is no number is black.
            if (!element(m_colors, index, value, m_vm.version() < 8)) break;
            const int rgb = toInt32(m_vm, Value(value));
            if (!element(m_alphas, index, value)) break;
            stops[i].color = colorOf(rgb, value);
            if (!element(m_ratios, index, value)) break;
            const double ratio = std::isnan(value) ? 0 : std::trunc(value);
            if (ratio < 0 || ratio > 255) return {};
            stops[i].ratio = static_cast<std::uint8_t>(ratio);
        }
        return stops;
    }

private:
    double length(Object* list) { return numberMember(m_vm, list, "length"); }
    bool element(Object* list, std::uint32_t index, double& value, bool onlyNumbers = false)
    {
        if (!(index < length(list))) return false;
        Value found;
        if (!list->find(m_vm, m_vm.names().fromIndex(index), found, Value(list))) return true;
        value = onlyNumbers && !found.isNumber() ? 0 : toNumber(m_vm, found);
        return true;
    }
    Vm& m_vm;
    Object *m_colors, *m_alphas, *m_ratios;
};

GradientFill gradientFill(Call& call)
{
    Vm& vm = call.vm;
    GradientFill result;
    if (call.arg(0).isUndefined()) return result;
    const std::u16string kind = textArg(call, 0);
    swf::FillStyle& fill = result.style;
    if (kind == u"linear") {
        fill.kind = swf::FillStyle::Kind::LinearGradient;
    } else if (kind == u"radial") {
        fill.kind = swf::FillStyle::Kind::RadialGradient;
    } else {
        result.outcome = GradientFill::Outcome::NoChange;
        return result;
    }
    constexpr std::size_t kMostArguments = 8;
    if (call.count() > kMostArguments) return result;
    Object* colors = call.arg(1).asObject();
    Object* alphas = call.arg(2).asObject();
    Object* ratios = call.arg(3).asObject();
    Object* matrix = call.arg(4).asObject();
    if (!colors || !alphas || !ratios || !matrix) return result;
    auto stops = StopReader(vm, colors, alphas, ratios).read();
    if (!stops) return result;
    fill.gradient.stops = std::move(*stops);
    fill.matrix = swf::inFixedPoint(gradientMatrix(vm, matrix));
    const std::u16string spread = call.count() > 5 ? textArg(call, 5) : std::u16string();
    if (spread == u"reflect") fill.gradient.spread = swf::Gradient::Spread::Reflect;
    if (spread == u"repeat") fill.gradient.spread = swf::Gradient::Spread::Repeat;
    if (call.count() > 6 && textArg(call, 6) == u"linearRGB")
        fill.gradient.interpolation = swf::Gradient::Interpolation::Linear;
    if (call.count() > 7) {
        const double focal = numberArg(call, 7);
        if (fill.kind == swf::FillStyle::Kind::RadialGradient && focal != 0 && !std::isnan(focal)) {
            fill.kind = swf::FillStyle::Kind::FocalGradient;
            fill.gradient.focalPoint = swf::focalInFixedPoint(focal);
        }
    }
    result.outcome = GradientFill::Outcome::Fill;
    return result;
}

Value beginGradientFill(Call& call)
{
    stage::Clip* clip = selfClip(call);
    if (!clip) return {};
    GradientFill fill = gradientFill(call);
    switch (fill.outcome) {
    case GradientFill::Outcome::Fill: clip->drawing().beginFill(std::move(fill.style)); break;
    case GradientFill::Outcome::Nothing: clip->drawing().endFill(); break;
    case GradientFill::Outcome::NoChange: break;
    }
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
    GradientFill fill = gradientFill(call);
    if (fill.outcome != GradientFill::Outcome::Fill) return {};
    swf::LineStyle line = *clip->drawing().currentLine();
    line.fill = std::move(fill.style);
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
