#include "flash/avm1/bindings/BitmapDataMembers.h"

#include "flash/avm1/bindings/BitmapDataClass.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/Filters.h"
#include "flash/avm1/classes/GeomValues.h"
#include "flash/guard/Guard.h"
#include "flash/render/BitmapOps.h"
#include "flash/render/Filters.h"
#include "flash/stage/BitmapDrawing.h"
#include "flash/stage/Clip.h"

namespace flash::avm1::bitmaps
{

// ---- from another bitmap ----------------------------------------------------------------------------------

namespace
{
/// Source, its rectangle and the place to go to: the arguments that most copies begin with.
struct CopyArguments {
    std::shared_ptr<swf::Bitmap> source;
    render::IntRect from;
    int x = 0, y = 0;
};
std::optional<CopyArguments> copyArguments(Call& call)
{
    CopyArguments arguments;
    arguments.source = bitmapFromObject(call.arg(0).asObject());
    const auto rect = rectFromValue(call.vm, call.arg(1));
    if (arguments.source == nullptr || !rect) return {};
    arguments.from = *rect;
    const swf::Point to = pointFromValue(call.vm, call.arg(2));
    arguments.x = toInt32(to.x);
    arguments.y = toInt32(to.y);
    return arguments;
}
} // namespace

Value copyPixels(Call& call, swf::Bitmap& bitmap)
{
    const auto a = copyArguments(call);
    if (!a) return {};
    const auto alpha = bitmapFromObject(call.arg(3).asObject());
    const swf::Point at = pointFromValue(call.vm, call.arg(4));
    const bool merge = toBoolean(call.vm, call.arg(5));
    const auto source =
        alpha == nullptr
            ? std::optional<render::AlphaSource>()
            : std::optional<render::AlphaSource>(render::AlphaSource{*alpha, toInt32(at.x), toInt32(at.y)});
    render::copyPixels(bitmap, a->x, a->y, *a->source, a->from,
                       merge ? render::CopyAlpha::Merge : render::CopyAlpha::Replace, source);
    return {};
}
Value copyChannel(Call& call, swf::Bitmap& bitmap)
{
    if (const auto a = copyArguments(call))
        render::copyChannel(bitmap, a->x, a->y, *a->source, a->from, intArg(call, 3), intArg(call, 4));
    return {};
}
Value merge(Call& call, swf::Bitmap& bitmap)
{
    const auto a = copyArguments(call);
    if (!a) return {};
    const auto factor = [&](std::size_t index) { return std::clamp(intArg(call, index), 0, 256); };
    render::merge(bitmap, a->x, a->y, *a->source, a->from, {factor(3), factor(4), factor(5), factor(6)});
    return {};
}
Value threshold(Call& call, swf::Bitmap& bitmap)
{
    const auto a = copyArguments(call);
    if (!a) return 0;
    constexpr std::u16string_view kOperators[] = {u"<", u"<=", u">", u">=", u"==", u"!="};
    const std::u16string name = textArg(call, 3);
    const auto* found = std::find(std::begin(kOperators), std::end(kOperators), name);
    if (found == std::end(kOperators)) return 0;
    render::ThresholdTest test;
    test.comparison = static_cast<render::Comparison>(found - std::begin(kOperators));
    test.threshold = color(call, 4);
    test.color = color(call, 5);
    if (call.count() > 6) test.mask = color(call, 6);
    test.copySource = toBoolean(call.vm, call.arg(7));
    return render::threshold(bitmap, a->x, a->y, *a->source, a->from, test);
}
Value paletteMap(Call& call, swf::Bitmap& bitmap)
{
    const auto a = copyArguments(call);
    if (!a) return {};
    std::array<render::PaletteTable, 4> tables;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        Object* list = call.arg(3 + i).asObject();
        if (list == nullptr) continue;
        tables[i].emplace();
        for (std::uint32_t value = 0; value < 256; ++value) {
            const Value entry = list->get(call.vm, call.vm.names().fromIndex(value));
            (*tables[i])[value] = static_cast<std::uint32_t>(toInt32(call.vm, entry));
        }
    }
    render::paletteMap(bitmap, a->x, a->y, *a->source, a->from, tables);
    return {};
}
Value pixelDissolve(Call& call, swf::Bitmap& bitmap)
{
    const auto a = copyArguments(call);
    if (!a) return 0;
    const int area = a->from.width() * a->from.height();
    const int count = call.count() > 4 ? intArg(call, 4) : area / 30;
    return render::pixelDissolve(bitmap, a->x, a->y, *a->source, a->from, intArg(call, 3), count,
                                 color(call, 5));
}

// ---- filters, noise, drawing ------------------------------------------------------------------------------

Value applyFilter(Call& call, swf::Bitmap& bitmap)
{
    const auto a = copyArguments(call);
    const auto filter = filterFromValue(call.arg(3));
    if (!a || !filter) return kRefused;
    if (!render::applyFilter(bitmap, a->x, a->y, *a->source, a->from, *filter)) return kRefused;
    return 0;
}
Value generateFilterRect(Call& call, swf::Bitmap&)
{
    const auto rect = rectFromValue(call.vm, call.arg(0));
    const auto filter = filterFromValue(call.arg(1));
    if (!rect || !filter) return kRefused;
    const render::IntRect r = render::grown(*rect, render::filterGrowth(*filter));
    return newRectangle(call.vm, r.left, r.top, r.width(), r.height());
}
Value noise(Call& call, swf::Bitmap& bitmap)
{
    render::NoiseOptions options;
    options.seed = intArg(call, 0);
    if (call.count() > 1) options.low = intArg(call, 1);
    if (call.count() > 2) options.high = intArg(call, 2);
    if (call.count() > 3) options.channels = intArg(call, 3);
    options.gray = toBoolean(call.vm, call.arg(4));
    render::noise(bitmap, options);
    return {};
}
Value perlinNoise(Call& call, swf::Bitmap& bitmap)
{
    render::PerlinOptions options;
    options.baseX = numberArg(call, 0);
    options.baseY = numberArg(call, 1);
    options.octaves = intArg(call, 2);
    options.seed = intArg(call, 3);
    options.stitch = toBoolean(call.vm, call.arg(4));
    options.fractal = toBoolean(call.vm, call.arg(5));
    if (call.count() > 6) options.channels = intArg(call, 6);
    options.gray = toBoolean(call.vm, call.arg(7));
    if (Object* offsets = call.arg(8).asObject()) {
        for (std::uint32_t i = 0; i < 16; ++i)
            options.offsets.push_back(
                pointFromValue(call.vm, offsets->get(call.vm, call.vm.names().fromIndex(i))));
    }
    // Seconds, for a large one.
    options.stops = [&vm = call.vm, steps = static_cast<std::size_t>(bitmap.width)] {
        vm.noteWork(steps);
        return vm.checkLoop();
    };
    render::perlinNoise(bitmap, options);
    return {};
}

namespace
{
/// "multiply" and its like, or the number of a blend mode.
swf::BlendMode blendFromValue(Vm& vm, Value value)
{
    constexpr std::u16string_view kNames[] = {u"normal", u"layer",      u"multiply", u"screen",   u"lighten",
                                              u"darken", u"difference", u"add",      u"subtract", u"invert",
                                              u"alpha",  u"erase",      u"overlay",  u"hardlight"};
    if (value.isNumber()) {
        const int number = toInt32(value.number());
        return number >= 1 && number <= 14 ? static_cast<swf::BlendMode>(number) : swf::BlendMode::Normal;
    }
    const std::u16string name = value.isString() ? toText(vm, value) : std::u16string();
    const auto* found = std::find(std::begin(kNames), std::end(kNames), name);
    return found == std::end(kNames) ? swf::BlendMode::Normal
                                     : static_cast<swf::BlendMode>(found - std::begin(kNames) + 1);
}
} // namespace

Value draw(Call& call, swf::Bitmap& bitmap)
{
    Vm& vm = call.vm;
    Object* source = call.arg(0).asObject();
    const std::shared_ptr<swf::Bitmap> picture = bitmapFromObject(source);
    const auto node = [&] { return picture ? nullptr : StageBinding::of(call).nodeOf(source); };
    if (picture == nullptr && node() == nullptr) return kRefused;
    stage::BitmapDrawing how;
    how.matrix = matrixFromValue(vm, call.arg(1)).value_or(swf::Matrix{});
    how.transform = colorTransformFromValue(vm, call.arg(2)).value_or(swf::ColorTransform{});
    how.blend = blendFromValue(vm, call.arg(3));
    how.clip = rectFromValue(vm, call.arg(4));
    how.isSmooth = toBoolean(vm, call.arg(5));
    if (picture)
        stage::drawOnBitmap(bitmap, *picture, how);
    else if (stage::Node* left = node()) // reading the arguments may have taken it from the stage
        stage::drawOnBitmap(bitmap, *left, how);
    return {};
}

} // namespace flash::avm1::bitmaps
