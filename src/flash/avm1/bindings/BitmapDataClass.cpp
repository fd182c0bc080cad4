#include "flash/avm1/bindings/BitmapDataClass.h"

#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/Filters.h"
#include "flash/avm1/classes/GeomValues.h"
#include "flash/guard/Guard.h"
#include "flash/render/BitmapOps.h"
#include "flash/render/Canvas.h"
#include "flash/render/Filters.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Renderer.h"

namespace flash::avm1
{
namespace
{

/// The longest side; beyond it there is no bitmap.
constexpr double kLongestSide = 2880;

struct BitmapDataNative final : Native {
    static inline const char kTag = 0;
    explicit BitmapDataNative(std::shared_ptr<swf::Bitmap> picture) : bitmap(std::move(picture)) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    void trace(Tracer& tracer) override
    {
        if (bitmap) tracer.outside(bitmap->pixels.size() * sizeof(std::uint32_t));
    }
    std::shared_ptr<swf::Bitmap> bitmap; ///< null once disposed of
};

/// What members answer on a bitmap that was disposed of, or when they are called with too little.
const Value kRefused = -1;

std::shared_ptr<swf::Bitmap> newBitmap(int width, int height, bool transparent, std::uint32_t color)
{
    auto bitmap = std::make_shared<swf::Bitmap>();
    bitmap->width = width;
    bitmap->height = height;
    bitmap->opaque = !transparent;
    bitmap->pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    render::fillRect(*bitmap, render::boundsOf(*bitmap), color);
    return bitmap;
}

void attach(Vm& vm, Object& object, std::shared_ptr<swf::Bitmap> bitmap)
{
    vm.heap().noteExternalBytes(bitmap->pixels.size() * sizeof(std::uint32_t));
    object.attachNew<BitmapDataNative>(std::move(bitmap));
}

/// Whether the movie may have another bitmap of that size; when not it gets none, as for one with too long a
/// side.
bool hasRoomFor(Vm& vm, double width, double height)
{
    if (vm.hasRoomFor(static_cast<std::size_t>(width * height) * sizeof(std::uint32_t))) return true;
    guard::refuse(guard::Bound::ScriptMemory, "The movie makes too many bitmaps; further ones stay empty");
    return false;
}

using Member = Value (*)(Call&, swf::Bitmap&);

/// The checks that all members share, around what one does.
template <Member Function, std::size_t Least>
Value guarded(Call& call)
{
    const auto* native = call.native<BitmapDataNative>();
    if (native == nullptr || native->bitmap == nullptr || call.count() < Least) return kRefused;
    const std::shared_ptr<swf::Bitmap> keep = native->bitmap; // a script called from here may dispose of it
    constexpr std::size_t kPixelsPerStep = 1024;              // for all that is done to them
    call.vm.noteWork(keep->pixels.size() / kPixelsPerStep);
    return Function(call, *keep);
}

/// As guarded(), for members that change pixels: what shows the bitmap is drawn again.
template <Member Function, std::size_t Least>
Value changing(Call& call)
{
    const auto* native = call.native<BitmapDataNative>();
    const Value result = guarded<Function, Least>(call);
    if (native != nullptr && native->bitmap.use_count() > 1) StageBinding::of(call).stage().invalidateAll();
    return result;
}

std::uint32_t color(Call& call, std::size_t index)
{
    return static_cast<std::uint32_t>(toInt32(call.vm, call.arg(index)));
}

/// A script's colour as a number: negative when its alpha is 128 or more.
Value colorValue(std::uint32_t color) { return static_cast<double>(static_cast<std::int32_t>(color)); }

bool isInside(const swf::Bitmap& bitmap, int x, int y)
{
    return x >= 0 && y >= 0 && x < bitmap.width && y < bitmap.height;
}

// ---- properties -------------------------------------------------------------------------------------------

Value getWidth(Call&, swf::Bitmap& bitmap) { return bitmap.width; }
Value getHeight(Call&, swf::Bitmap& bitmap) { return bitmap.height; }
Value getTransparent(Call&, swf::Bitmap& bitmap) { return !bitmap.opaque; }
Value getRectangle(Call& call, swf::Bitmap& bitmap)
{
    return newRectangle(call.vm, 0, 0, bitmap.width, bitmap.height);
}

constexpr AccessorInfo kProperties[] = {
    {"width", 0, &guarded<&getWidth, 0>, nullptr},
    {"height", 0, &guarded<&getHeight, 0>, nullptr},
    {"rectangle", 0, &guarded<&getRectangle, 0>, nullptr},
    {"transparent", 0, &guarded<&getTransparent, 0>, nullptr},
};

// ---- single pixels ----------------------------------------------------------------------------------------

Value getPixel(Call& call, swf::Bitmap& bitmap)
{
    const int x = intArg(call, 0), y = intArg(call, 1);
    if (!isInside(bitmap, x, y)) return 0;
    return static_cast<double>(render::pixelAt(bitmap, x, y) & 0xFFFFFF);
}
Value getPixel32(Call& call, swf::Bitmap& bitmap)
{
    const int x = intArg(call, 0), y = intArg(call, 1);
    return isInside(bitmap, x, y) ? colorValue(render::pixelAt(bitmap, x, y)) : Value(0);
}
Value setPixel(Call& call, swf::Bitmap& bitmap)
{
    const int x = intArg(call, 0), y = intArg(call, 1);
    if (!isInside(bitmap, x, y)) return {};
    const std::uint32_t alpha = render::pixelAt(bitmap, x, y) & 0xFF000000U;
    render::setPixelAt(bitmap, x, y, alpha | (color(call, 2) & 0xFFFFFF));
    return {};
}
Value setPixel32(Call& call, swf::Bitmap& bitmap)
{
    const int x = intArg(call, 0), y = intArg(call, 1);
    if (isInside(bitmap, x, y)) render::setPixelAt(bitmap, x, y, color(call, 2));
    return {};
}

// ---- areas ------------------------------------------------------------------------------------------------

Value fillRect(Call& call, swf::Bitmap& bitmap)
{
    if (const auto rect = rectFromValue(call.vm, call.arg(0))) {
        // A negative size reaches to the left and upwards.
        const auto [left, right] = std::minmax(rect->left, rect->right);
        const auto [top, bottom] = std::minmax(rect->top, rect->bottom);
        render::fillRect(bitmap, {left, top, right, bottom}, color(call, 1));
    }
    return {};
}
Value floodFill(Call& call, swf::Bitmap& bitmap)
{
    render::floodFill(bitmap, intArg(call, 0), intArg(call, 1), color(call, 2));
    return {};
}
Value colorTransform(Call& call, swf::Bitmap& bitmap)
{
    const auto rect = rectFromValue(call.vm, call.arg(0));
    const auto transform = colorTransformFromValue(call.vm, call.arg(1));
    if (rect && transform) render::transformColors(bitmap, *rect, *transform);
    return {};
}
Value scroll(Call& call, swf::Bitmap& bitmap)
{
    render::scroll(bitmap, intArg(call, 0), intArg(call, 1));
    return {};
}
Value getColorBoundsRect(Call& call, swf::Bitmap& bitmap)
{
    const bool find = call.count() < 3 || toBoolean(call.vm, call.arg(2));
    const render::IntRect r = render::colorBounds(bitmap, color(call, 0), color(call, 1), find);
    return newRectangle(call.vm, r.left, r.top, r.width(), r.height());
}

// ---- from another bitmap ----------------------------------------------------------------------------------

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
    // Filtered on a sheet with room for what the filter adds, then laid in place as a whole.
    const render::Growth growth = render::filterGrowth(*filter);
    const render::IntRect area = render::grown({0, 0, a->from.width(), a->from.height()}, growth);
    if (area.width() > 2 * kLongestSide || area.height() > 2 * kLongestSide) return kRefused;
    swf::Bitmap sheet{area.width(), area.height(), false, {}};
    sheet.pixels.resize(static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height()));
    render::copyPixels(sheet, growth.left, growth.top, *a->source, a->from, render::CopyAlpha::Replace);
    render::applyFilter(*filter, {sheet.pixels.data(), sheet.width, sheet.height, sheet.width});
    render::copyPixels(bitmap, a->x - growth.left, a->y - growth.top, sheet, render::boundsOf(sheet),
                       render::CopyAlpha::Replace);
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

Value draw(Call& call, swf::Bitmap& bitmap)
{
    Vm& vm = call.vm;
    Object* source = call.arg(0).asObject();
    std::shared_ptr<swf::Bitmap> picture = bitmapFromObject(source);
    stage::Node* node = picture ? nullptr : StageBinding::of(call).nodeOf(source);
    if (picture == nullptr && node == nullptr) return kRefused;
    const swf::Matrix matrix = matrixFromValue(vm, call.arg(1)).value_or(swf::Matrix{});
    const auto transform = colorTransformFromValue(vm, call.arg(2)).value_or(swf::ColorTransform{});
    const swf::BlendMode blend = blendFromValue(vm, call.arg(3));
    const auto clip = rectFromValue(vm, call.arg(4));
    const bool smooth = toBoolean(vm, call.arg(5));
    if (picture.get() == &bitmap) picture = std::make_shared<swf::Bitmap>(bitmap);

    render::RenderCache cache;
    render::Canvas canvas({bitmap.pixels.data(), bitmap.width, bitmap.height, bitmap.width},
                          render::Quality::High, cache);
    if (clip) canvas.setClip(render::intersect(*clip, render::boundsOf(bitmap)));
    const bool layered = blend != swf::BlendMode::Normal;
    if (layered) canvas.beginLayer(render::boundsOf(bitmap));
    if (picture) {
        canvas.drawBitmap(*picture, matrix, transform,
                          smooth ? render::Smoothing::On : render::Smoothing::Off);
    } else {
        const swf::Matrix toDevice = matrix * render::twipsToPixels(swf::Matrix{});
        stage::Renderer(canvas, toDevice).drawForPicture(*node, toDevice, transform);
    }
    if (layered) canvas.endLayer(blend);
    if (bitmap.opaque)
        for (std::uint32_t& pixel : bitmap.pixels) pixel |= 0xFF000000U;
    return {};
}

// ---- the whole --------------------------------------------------------------------------------------------

Value hitTest(Call& call, swf::Bitmap& bitmap)
{
    Vm& vm = call.vm;
    const swf::Point own = pointFromValue(vm, call.arg(0));
    const auto least = static_cast<std::uint32_t>(std::clamp(intArg(call, 1), 0, 255));
    const auto solid = [](const swf::Bitmap& b, int x, int y, std::uint32_t limit) {
        return isInside(b, x, y) && (render::pixelAt(b, x, y) >> 24) >= limit;
    };
    Object* other = call.arg(2).asObject();
    if (other == nullptr) return kRefused;
    const int left = toInt32(own.x), top = toInt32(own.y);
    if (const auto second = bitmapFromObject(other)) {
        const swf::Point at = pointFromValue(vm, call.arg(3));
        const auto limit =
            static_cast<std::uint32_t>(std::clamp(call.count() > 4 ? intArg(call, 4) : 1, 0, 255));
        for (int y = 0; y < bitmap.height; ++y)
            for (int x = 0; x < bitmap.width; ++x)
                if (solid(bitmap, x, y, least) &&
                    solid(*second, x + left - toInt32(at.x), y + top - toInt32(at.y), limit))
                    return true;
        return false;
    }
    Value width;
    if (!other->find(vm, vm.name(std::string_view("width")), width, other)) {
        const swf::Point at = pointFromValue(vm, other);
        return solid(bitmap, toInt32(at.x) - left, toInt32(at.y) - top, least);
    }
    const auto rect = rectFromValue(vm, other);
    const render::IntRect moved{rect->left - left, rect->top - top, rect->right - left, rect->bottom - top};
    const render::IntRect area = render::intersect(moved, render::boundsOf(bitmap));
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (solid(bitmap, x, y, least)) return true;
    return false;
}

Value clone(Call& call, swf::Bitmap& bitmap)
{
    if (!hasRoomFor(call.vm, bitmap.width, bitmap.height)) return {};
    Object* copy = call.vm.newObject(call.self.object()->protoValue().asObject());
    attach(call.vm, *copy, std::make_shared<swf::Bitmap>(bitmap));
    return copy;
}

Value dispose(Call& call, swf::Bitmap& bitmap)
{
    // Fills and instances that show it share it: they show nothing from now on.
    bitmap.width = bitmap.height = 0;
    bitmap.pixels = {};
    call.native<BitmapDataNative>()->bitmap = nullptr;
    return {};
}

/// @returns 0 for the same pictures, a picture of the differences, or a negative number: what is wrong.
Value compare(Call& call)
{
    constexpr int kNoPicture = -1, kNoOther = -2, kOtherWidth = -3, kOtherHeight = -4;
    const auto* native = call.native<BitmapDataNative>();
    if (native == nullptr || native->bitmap == nullptr) return kNoPicture;
    const auto other = bitmapFromObject(call.arg(0).asObject());
    if (other == nullptr) return kNoOther;
    const std::shared_ptr<swf::Bitmap> own = native->bitmap;
    if (own->width != other->width) return kOtherWidth;
    if (own->height != other->height) return kOtherHeight;
    if (!hasRoomFor(call.vm, own->width, own->height)) return {};
    const auto difference = newBitmap(own->width, own->height, true, 0);
    bool same = true;
    for (int y = 0; y < own->height; ++y) {
        for (int x = 0; x < own->width; ++x) {
            const std::uint32_t a = render::pixelAt(*own, x, y), b = render::pixelAt(*other, x, y);
            if (a == b) continue;
            same = false;
            const auto channel = [&](int shift) { return ((a >> shift) - (b >> shift)) & 0xFF; };
            // Where the colours are the same the difference in alpha is shown, in white.
            const bool sameColor = ((a ^ b) & 0xFFFFFF) == 0;
            const std::uint32_t shown = sameColor
                                            ? channel(24) << 24 | 0xFFFFFF
                                            : 0xFF000000 | channel(16) << 16 | channel(8) << 8 | channel(0);
            render::setPixelAt(*difference, x, y, shown);
        }
    }
    if (same) return 0;
    Object* object = call.vm.newObject(call.self.object()->protoValue().asObject());
    attach(call.vm, *object, difference);
    return object;
}

constexpr MemberInfo kMembers[] = {
    {"getPixel", 0, 0, &guarded<&getPixel, 2>, 1},
    {"setPixel", 0, 0, &changing<&setPixel, 3>, 2},
    {"fillRect", 0, 0, &changing<&fillRect, 2>, 3},
    {"copyPixels", 0, 0, &changing<&copyPixels, 3>, 4},
    {"applyFilter", 0, 0, &changing<&applyFilter, 4>, 5},
    {"scroll", 0, 0, &changing<&scroll, 2>, 6},
    {"threshold", 0, 0, &changing<&threshold, 5>, 7},
    {"draw", 0, 0, &changing<&draw, 1>, 8},
    {"pixelDissolve", 0, 0, &changing<&pixelDissolve, 3>, 9},
    {"getPixel32", 0, 0, &guarded<&getPixel32, 2>, 10},
    {"setPixel32", 0, 0, &changing<&setPixel32, 3>, 11},
    {"floodFill", 0, 0, &changing<&floodFill, 3>, 12},
    {"getColorBoundsRect", 0, 0, &guarded<&getColorBoundsRect, 2>, 13},
    {"perlinNoise", 0, 0, &changing<&perlinNoise, 6>, 14},
    {"colorTransform", 0, 0, &changing<&colorTransform, 2>, 15},
    {"hitTest", 0, 0, &guarded<&hitTest, 3>, 16},
    {"paletteMap", 0, 0, &changing<&paletteMap, 3>, 17},
    {"merge", 0, 0, &changing<&merge, 7>, 18},
    {"noise", 0, 0, &changing<&noise, 1>, 19},
    {"copyChannel", 0, 0, &changing<&copyChannel, 5>, 20},
    {"clone", 0, 0, &guarded<&clone, 0>, 21},
    {"dispose", 0, 0, &changing<&dispose, 0>, 22},
    {"generateFilterRect", 0, 0, &guarded<&generateFilterRect, 2>, 23},
    {"compare", 0, 0, &compare, 24},
};
constexpr int kNativeTable = 1100;

Value constructBitmapData(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr || !call.isConstruct) return {};
    // Without a size that it can have there is no object at all.
    if (call.count() < 2) return Value::null();
    const double width = numberArg(call, 0), height = numberArg(call, 1);
    if (!(width >= 1 && height >= 1 && width <= kLongestSide && height <= kLongestSide)) return Value::null();
    if (!hasRoomFor(call.vm, width, height)) return Value::null();
    const bool transparent = call.count() < 3 || toBoolean(call.vm, call.arg(2));
    const std::uint32_t fill = call.count() > 3 ? color(call, 3) : 0xFFFFFFFF;
    attach(call.vm, *self, newBitmap(static_cast<int>(width), static_cast<int>(height), transparent, fill));
    return {};
}

/// BitmapData.loadBitmap(linkage name)
Value loadBitmap(Call& call)
{
    stage::Clip* clip = StageBinding::of(call).clipOf(call.vm.target());
    if (clip == nullptr || clip->movie() == nullptr) return {};
    const swf::Movie& movie = *clip->movie();
    const auto exported = movie.exports.find(utf8Arg(call, 0));
    const swf::Character* character =
        exported == movie.exports.end() ? nullptr : movie.character(exported->second);
    const auto* picture =
        character == nullptr ? nullptr : std::get_if<swf::BitmapCharacter>(&character->data);
    if (picture == nullptr || picture->bitmap == nullptr) return {};
    if (!hasRoomFor(call.vm, picture->bitmap->width, picture->bitmap->height)) return {};
    Object* object = call.vm.newObject(call.vm.prototypeOf(call.self.asObject()));
    attach(call.vm, *object, std::make_shared<swf::Bitmap>(*picture->bitmap));
    return object;
}

} // namespace

void installBitmapData(StageBinding& binding, Object* package)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.newFunction(&constructBitmapData);
    Object* prototype = vm.newObject();
    prototype->define(vm, vm.common().constructor, constructor, kBuiltIn);
    vm.addMembers(prototype, kMembers, kNativeTable);
    vm.addAccessors(prototype, kProperties);
    constructor->define(vm, vm.common().prototype, prototype, kBuiltIn);
    constructor->define(vm, "loadBitmap", vm.newFunction(&loadBitmap, 1), kBuiltIn);
    constexpr std::pair<const char*, int> kChannels[] = {
        {"RED_CHANNEL", 1}, {"GREEN_CHANNEL", 2}, {"BLUE_CHANNEL", 4}, {"ALPHA_CHANNEL", 8}};
    for (const auto& [name, bit] : kChannels) constructor->define(vm, name, bit, kBuiltIn);
    package->define(vm, "BitmapData", constructor, 0);
}

std::shared_ptr<swf::Bitmap> bitmapFromObject(const Object* object)
{
    const auto* native = object == nullptr ? nullptr : object->native<BitmapDataNative>();
    return native == nullptr ? nullptr : native->bitmap;
}

} // namespace flash::avm1
