#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Library.h"
#include "flash/render/BitmapOps.h"
#include "flash/render/Canvas.h"
#include "flash/render/Filters.h"
#include "flash/render/ShaderRun.h"
#include "flash/stage/Renderer.h"

#include <algorithm>
#include <cmath>

// Members of BitmapData that work on many pixels at once.
namespace flash::avm2
{

namespace
{

constexpr std::string_view kRectangle = "flash.geom::Rectangle", kPoint = "flash.geom::Point";

/// The arguments that most members begin with.
struct Copy {
    std::shared_ptr<swf::Bitmap> target, source;
    render::IntRect from;
    int x = 0, y = 0;
};
int whole(double value)
{
    constexpr double kFar = 1 << 29;
    return static_cast<int>(std::clamp(std::isnan(value) ? 0 : std::trunc(value), -kFar, kFar));
}
Copy copyArgs(Call& call)
{
    Copy copy;
    copy.target = picture(call);
    copy.source = pictureArg(call, 0, "sourceBitmapData");
    copy.from = pixelsOf(objectArg(call, 1, kRectangle, "sourceRect"));
    const swf::Point at = pointOf(objectArg(call, 2, kPoint, "destPoint"));
    copy.x = whole(at.x);
    copy.y = whole(at.y);
    call.vm.check();
    return copy;
}
int channelArg(Call& call, std::uint32_t index) { return call.vm.toInt(call.arg(index)); }
bool isSolid(const swf::Bitmap& b, int x, int y, std::uint32_t limit)
{
    return x >= 0 && y >= 0 && x < b.width && y < b.height && (render::pixelAt(b, x, y) >> 24U) >= limit;
}

bool isShader(const swf::Filter& filter)
{
    const auto* displacement = std::get_if<swf::DisplacementMapFilter>(&filter);
    return displacement != nullptr && render::shaderOf(displacement->map) != nullptr;
}

Value drawWith(Call& call, render::Quality quality)
{
    Vm& vm = call.vm;
    const auto bitmap = picture(call);
    if (call.arg(0).isNullish()) vm.throwError(ErrorClass::Type, 2007, "Parameter source must be non-null.");
    vm.coerce(call.arg(0), vm.nativeClass("flash.display::IBitmapDrawable")->instances);
    const auto* data = as<BitmapDataObject>(call.arg(0));
    std::shared_ptr<swf::Bitmap> source = data != nullptr ? picture(vm, *data) : nullptr;
    auto* object = as<DisplayObject>(call.arg(0));
    if (source == nullptr && object == nullptr) return {};
    Object* matrixArg = optionalArg(call, 1, "flash.geom::Matrix");
    const swf::Matrix given = matrixArg != nullptr ? matrixOf(*matrixArg) : swf::Matrix{};
    const swf::Matrix matrix{
        given.a, given.b, given.c, given.d, given.tx / swf::kTwipsPerPixel, given.ty / swf::kTwipsPerPixel};
    Object* colorArg = optionalArg(call, 2, "flash.geom::ColorTransform");
    const swf::ColorTransform color =
        colorArg != nullptr ? colorTransformOf(*colorArg) : swf::ColorTransform{};
    swf::BlendMode blend = swf::BlendMode::Normal;
    if (!call.arg(3).isNullish()) {
        const auto mode = blendModeOf(vm.text(call.arg(3)));
        if (!mode)
            vm.throwError(ErrorClass::Argument, 2008,
                          "Parameter blendMode must be one of the accepted values.");
        blend = *mode;
    }
    Object* clip = optionalArg(call, 4, kRectangle);
    const bool smooth = vm.toBoolean(call.arg(5));
    // What has no alpha takes no part in blending by it, nor does a picture that nothing shows.
    if ((bitmap->opaque || source != nullptr) &&
        (blend == swf::BlendMode::Alpha || blend == swf::BlendMode::Erase))
        return {};
    if (source == bitmap) source = std::make_shared<swf::Bitmap>(*bitmap);

    render::RenderCache cache;
    render::Canvas canvas({bitmap->pixels.data(), bitmap->width, bitmap->height, bitmap->width}, quality,
                          cache);
    if (clip != nullptr) canvas.setClip(render::intersect(pixelsOf(*clip), render::boundsOf(*bitmap)));
    const bool layered = blend != swf::BlendMode::Normal;
    if (layered) canvas.beginLayer(render::boundsOf(*bitmap));
    if (source) {
        canvas.drawBitmap(*source, matrix, color, smooth ? render::Smoothing::On : render::Smoothing::Off);
    } else {
        const swf::Matrix toDevice = matrix * render::twipsToPixels(swf::Matrix{});
        stage::Renderer(canvas, toDevice).drawForPicture(object->node(), toDevice, color);
    }
    if (layered) canvas.endLayer(blend);
    if (bitmap->opaque)
        for (std::uint32_t& pixel : bitmap->pixels) pixel |= 0xFF000000U;
    pictureChanged(call);
    return {};
}

} // namespace

Value bitmapDraw(Call& call)
{
    switch (Player::of(call.vm).stage().view().quality()) {
    case stage::Quality::Low: return drawWith(call, render::Quality::Low);
    case stage::Quality::Medium: return drawWith(call, render::Quality::Medium);
    case stage::Quality::Best: return drawWith(call, render::Quality::Best);
    case stage::Quality::High: break;
    }
    return drawWith(call, render::Quality::High);
}
Value bitmapDrawWithQuality(Call& call)
{
    if (call.arg(6).isNullish()) return bitmapDraw(call);
    std::u16string name(call.vm.text(call.arg(6)));
    if (name == u"low") return drawWith(call, render::Quality::Low);
    if (name == u"medium") return drawWith(call, render::Quality::Medium);
    if (name == u"high") return drawWith(call, render::Quality::High);
    if (name == u"best" || name.starts_with(u"8x8") || name.starts_with(u"16x16"))
        return drawWith(call, render::Quality::Best);
    call.vm.throwError(ErrorClass::Argument, 2008, "Parameter quality must be one of the accepted values.");
}

Value bitmapApplyFilter(Call& call)
{
    Copy copy = copyArgs(call);
    const auto filter = filterOf(call.vm, call.arg(3));
    if (!filter) {
        if (call.arg(3).isNullish())
            call.vm.throwError(ErrorClass::Type, 2007, "Parameter filter must be non-null.");
        return {};
    }
    // A kernel is given the whole picture, whatever part was named.
    if (isShader(*filter)) copy.from = render::boundsOf(*copy.source);
    // Filtered on a sheet with room for what the filter adds, then laid in place as a whole.
    const render::IntRect from = render::intersect(copy.from, render::boundsOf(*copy.source));
    if (from.isEmpty()) return {};
    const render::Growth growth = render::filterGrowth(*filter);
    const render::IntRect area = render::grown({0, 0, from.width(), from.height()}, growth);
    constexpr int kMax = 16384;
    if (area.width() > kMax || area.height() > kMax) return {};
    swf::Bitmap sheet{area.width(), area.height(), false, {}};
    sheet.pixels.resize(static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height()));
    render::copyPixels(sheet, growth.left, growth.top, *copy.source, from, render::CopyAlpha::Replace);
    render::applyFilter(*filter, {sheet.pixels.data(), sheet.width, sheet.height, sheet.width});
    render::copyPixels(*copy.target, copy.x + from.left - copy.from.left - growth.left,
                       copy.y + from.top - copy.from.top - growth.top, sheet, render::boundsOf(sheet),
                       render::CopyAlpha::Replace);
    pictureChanged(call);
    return {};
}
Value bitmapFilterRect(Call& call)
{
    const auto bitmap = picture(call);
    render::IntRect rect = pixelsOf(objectArg(call, 0, kRectangle, "sourceRect"));
    const auto filter = filterOf(call.vm, call.arg(1));
    if (!filter) call.vm.throwError(ErrorClass::Type, 2007, "Parameter filter must be non-null.");
    if (isShader(*filter)) rect = render::boundsOf(*bitmap);
    const render::IntRect r = render::grown(rect, render::filterGrowth(*filter));
    return newRectangle(call.vm, r.left, r.top, r.width(), r.height());
}

Value bitmapNoise(Call& call)
{
    const auto bitmap = picture(call);
    render::NoiseOptions options;
    options.seed = call.vm.toInt(call.arg(0));
    if (call.has(1)) options.low = static_cast<int>(std::min(255U, call.vm.toUint(call.arg(1))));
    if (call.has(2)) options.high = static_cast<int>(std::min(255U, call.vm.toUint(call.arg(2))));
    if (call.has(3)) options.channels = channelArg(call, 3);
    options.gray = call.vm.toBoolean(call.arg(4));
    render::noise(*bitmap, options);
    pictureChanged(call);
    return {};
}
Value bitmapPerlinNoise(Call& call)
{
    const auto bitmap = picture(call);
    Vm& vm = call.vm;
    render::PerlinOptions options;
    options.baseX = vm.toNumber(call.arg(0));
    options.baseY = vm.toNumber(call.arg(1));
    constexpr std::uint32_t kMaxOctaves = 1U << 10U;
    options.octaves = static_cast<int>(std::min(kMaxOctaves, vm.toUint(call.arg(2))));
    options.seed = vm.toInt(call.arg(3));
    options.stitch = vm.toBoolean(call.arg(4));
    options.fractal = vm.toBoolean(call.arg(5));
    if (call.has(6)) options.channels = channelArg(call, 6);
    options.gray = vm.toBoolean(call.arg(7));
    if (Object* offsets = call.arg(8).asObject()) {
        for (std::uint32_t i = 0; i < 16; ++i) {
            Value entry;
            const bool known = offsets->element(i, entry) && entry.isObject();
            options.offsets.push_back(known ? pointOf(*entry.object()) : swf::Point{});
        }
    }
    options.stops = [&vm] { return vm.isDisabled(); };
    render::perlinNoise(*bitmap, options);
    pictureChanged(call);
    return {};
}

Value bitmapCopyPixels(Call& call)
{
    const Copy copy = copyArgs(call);
    std::optional<render::AlphaSource> alpha;
    std::shared_ptr<swf::Bitmap> keep;
    if (!call.arg(3).isNullish()) {
        keep = pictureArg(call, 3, "alphaBitmapData");
        swf::Point at;
        if (Object* point = optionalArg(call, 4, kPoint)) at = pointOf(*point);
        alpha.emplace(render::AlphaSource{*keep, whole(at.x), whole(at.y)});
    }
    const bool merges = call.vm.toBoolean(call.arg(5));
    render::copyPixels(*copy.target, copy.x, copy.y, *copy.source, copy.from,
                       merges || (alpha && !copy.target->opaque && merges) ? render::CopyAlpha::Merge
                                                                           : render::CopyAlpha::Replace,
                       alpha);
    pictureChanged(call);
    return {};
}
Value bitmapCopyChannel(Call& call)
{
    const Copy copy = copyArgs(call);
    render::copyChannel(*copy.target, copy.x, copy.y, *copy.source, copy.from, channelArg(call, 3),
                        channelArg(call, 4));
    pictureChanged(call);
    return {};
}
Value bitmapMerge(Call& call)
{
    const Copy copy = copyArgs(call);
    const auto factor = [&](std::uint32_t i) {
        return static_cast<int>(std::min(256U, call.vm.toUint(call.arg(i))));
    };
    render::merge(*copy.target, copy.x, copy.y, *copy.source, copy.from,
                  {factor(3), factor(4), factor(5), factor(6)});
    pictureChanged(call);
    return {};
}
Value bitmapThreshold(Call& call)
{
    const Copy copy = copyArgs(call);
    constexpr std::u16string_view kOperators[] = {u"<", u"<=", u">", u">=", u"==", u"!="};
    if (call.arg(3).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter operation must be non-null.");
    const auto* found = std::ranges::find(kOperators, call.vm.text(call.arg(3)));
    if (found == std::end(kOperators))
        call.vm.throwError(ErrorClass::Argument, 2005,
                           "Parameter 0 is of the incorrect type. Should be type Operation.");
    render::ThresholdTest test;
    test.comparison = static_cast<render::Comparison>(found - std::begin(kOperators));
    test.threshold = call.vm.toUint(call.arg(4));
    test.color = call.has(5) ? call.vm.toUint(call.arg(5)) : 0;
    if (call.has(6)) test.mask = call.vm.toUint(call.arg(6));
    test.copySource = call.vm.toBoolean(call.arg(7));
    const int changed = render::threshold(*copy.target, copy.x, copy.y, *copy.source, copy.from, test);
    pictureChanged(call);
    return changed;
}
Value bitmapPaletteMap(Call& call)
{
    const Copy copy = copyArgs(call);
    std::array<render::PaletteTable, 4> tables;
    for (std::uint32_t i = 0; i < tables.size(); ++i) {
        Object* list = call.arg(3 + i).asObject();
        if (list == nullptr) continue;
        tables[i].emplace();
        for (std::uint32_t value = 0; value < 256; ++value) {
            Value entry;
            if (list->element(value, entry)) (*tables[i])[value] = call.vm.toUint(entry);
        }
    }
    render::paletteMap(*copy.target, copy.x, copy.y, *copy.source, copy.from, tables);
    pictureChanged(call);
    return {};
}
Value bitmapDissolve(Call& call)
{
    const Copy copy = copyArgs(call);
    const std::int64_t area = static_cast<std::int64_t>(copy.from.width()) * copy.from.height();
    int count = static_cast<int>(std::clamp<std::int64_t>(area / 30, 0, 0x7FFF'FFFF));
    if (call.has(4)) {
        count = call.vm.toInt(call.arg(4));
        if (count < 0)
            call.vm.throwError(ErrorClass::Range, 2027,
                               u"Parameter numPixels must be a non-negative number; got " +
                                   numberText(count) + u".");
    }
    const std::int32_t next = render::pixelDissolve(*copy.target, copy.x, copy.y, *copy.source, copy.from,
                                                    call.vm.toInt(call.arg(3)), count,
                                                    call.has(5) ? call.vm.toUint(call.arg(5)) : 0);
    pictureChanged(call);
    return next;
}

Value bitmapHitTest(Call& call)
{
    const auto own = picture(call);
    const swf::Point first = pointOf(objectArg(call, 0, kPoint, "firstPoint"));
    const std::uint32_t limit = std::min(255U, call.vm.toUint(call.arg(1)));
    const int left = whole(first.x), top = whole(first.y);
    Object* other = call.arg(2).asObject();
    if (other == nullptr)
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter secondObject must be non-null.");
    std::shared_ptr<swf::Bitmap> second;
    if (auto* data = as<BitmapDataObject>(other)) second = picture(call.vm, *data);
    if (auto* shown = as<DisplayObject>(other); shown != nullptr && !shown->bitmapData.isUndefined()) {
        if (auto* data = as<BitmapDataObject>(shown->bitmapData)) second = picture(call.vm, *data);
    }
    if (second) {
        const swf::Point at = pointOf(objectArg(call, 3, kPoint, "secondBitmapDataPoint"));
        const std::uint32_t secondLimit = call.has(4) ? std::min(255U, call.vm.toUint(call.arg(4))) : 1;
        const int dx = left - whole(at.x), dy = top - whole(at.y);
        for (int y = 0; y < own->height; ++y) {
            for (int x = 0; x < own->width; ++x) {
                if (isSolid(*own, x, y, limit) && isSolid(*second, x + dx, y + dy, secondLimit)) return true;
            }
        }
        return false;
    }
    if (call.vm.isType(call.arg(2), call.vm.nativeClass(kPoint)->instances)) {
        const swf::Point at = pointOf(*other);
        return isSolid(*own, whole(at.x) - left, whole(at.y) - top, limit);
    }
    if (call.vm.isType(call.arg(2), call.vm.nativeClass(kRectangle)->instances)) {
        const render::IntRect r = pixelsOf(*other);
        const render::IntRect area = render::intersect(
            {r.left - left, r.top - top, r.right - left, r.bottom - top}, render::boundsOf(*own));
        for (int y = area.top; y < area.bottom; ++y) {
            for (int x = area.left; x < area.right; ++x) {
                if (isSolid(*own, x, y, limit)) return true;
            }
        }
        return false;
    }
    call.vm.throwError(ErrorClass::Argument, 2005,
                       "Parameter 0 is of the incorrect type. Should be type BitmapData.");
}

/// @returns 0 for the same pictures, a picture of the differences, or what keeps them from being compared.
Value bitmapCompare(Call& call)
{
    constexpr int kOtherWidth = -3, kOtherHeight = -4;
    const auto own = picture(call), other = pictureArg(call, 0, "otherBitmapData");
    if (own->width != other->width) return kOtherWidth;
    if (own->height != other->height) return kOtherHeight;
    auto difference = std::make_shared<swf::Bitmap>(swf::Bitmap{own->width, own->height, false, {}});
    difference->pixels.resize(own->pixels.size());
    bool same = true;
    for (int y = 0; y < own->height; ++y) {
        for (int x = 0; x < own->width; ++x) {
            const std::uint32_t a = render::pixelAt(*own, x, y), b = render::pixelAt(*other, x, y);
            if (a == b) continue;
            same = false;
            const auto channel = [&](unsigned shift) { return ((a >> shift) - (b >> shift)) & 0xFFU; };
            // Where the colours are the same the difference in alpha is shown, in white.
            const bool sameColor = ((a ^ b) & 0xFFFFFFU) == 0;
            render::setPixelAt(*difference, x, y,
                               sameColor ? channel(24) << 24U | 0xFFFFFFU
                                         : 0xFF000000U | channel(16) << 16U | channel(8) << 8U | channel(0));
        }
    }
    return same ? Value(0) : newBitmapData(call.vm, std::move(difference));
}

Value bitmapHistogram(Call& call)
{
    Vm& vm = call.vm;
    const auto bitmap = picture(call);
    render::IntRect area = render::boundsOf(*bitmap);
    if (Object* rect = optionalArg(call, 0, kRectangle)) area = render::intersect(area, pixelsOf(*rect));
    std::array<std::array<double, 256>, 4> counts{};
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) {
            const std::uint32_t color = render::pixelAt(*bitmap, x, y);
            ++counts[0][color >> 16U & 0xFFU];
            ++counts[1][color >> 8U & 0xFFU];
            ++counts[2][color & 0xFFU];
            ++counts[3][color >> 24U];
        }
    }
    ClassObject* inner = vm.vectorOf(vm.classes().number->instances);
    const Value outer = vm.construct(Value(vm.vectorOf(inner->instances)), {});
    for (const auto& channel : counts) {
        const Value list = vm.construct(Value(inner), {});
        for (const double count : channel) vm.callPublic(list, "push", {Value(count)});
        vm.callPublic(outer, "push", {list});
    }
    return outer;
}

} // namespace flash::avm2
