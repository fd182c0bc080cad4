#include "flash/avm1/bindings/BitmapDataClass.h"

#include "flash/avm1/bindings/BitmapDataMembers.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/BitmapDataNative.h"
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

using bitmaps::color;
using bitmaps::kRefused;

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
template <Member Function, std::size_t MinArguments>
Value guarded(Call& call)
{
    const auto* native = call.native<BitmapDataNative>();
    if (native == nullptr || native->bitmap == nullptr || call.count() < MinArguments) return kRefused;
    const std::shared_ptr<swf::Bitmap> keep = native->bitmap; // a script called from here may dispose of it
    constexpr std::size_t kPixelsPerStep = 1024;              // for all that is done to them
    call.vm.noteWork(keep->pixels.size() / kPixelsPerStep);
    return Function(call, *keep);
}

/// As guarded(), for members that change pixels: what shows the bitmap is drawn again.
template <Member Function, std::size_t MinArguments>
Value changing(Call& call)
{
    const auto* native = call.native<BitmapDataNative>();
    const std::shared_ptr<swf::Bitmap> before = native != nullptr ? native->bitmap : nullptr;
    const Value result = guarded<Function, MinArguments>(call);
    // Held by itself, unless it has been disposed of, and here.
    if (before.use_count() > (native != nullptr && native->bitmap == before ? 2 : 1))
        StageBinding::of(call).stage().view().noteDrawnOn(*before);
    return result;
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

// ---- the whole --------------------------------------------------------------------------------------------

Value hitTest(Call& call, swf::Bitmap& bitmap)
{
    Vm& vm = call.vm;
    const swf::Point own = pointFromValue(vm, call.arg(0));
    const auto threshold = static_cast<std::uint32_t>(std::clamp(intArg(call, 1), 0, 255));
    Object* other = call.arg(2).asObject();
    if (other == nullptr) return kRefused;
    const int left = toInt32(own.x), top = toInt32(own.y);
    if (const auto second = bitmapFromObject(other)) {
        const swf::Point at = pointFromValue(vm, call.arg(3));
        const auto limit =
            static_cast<std::uint32_t>(std::clamp(call.count() > 4 ? intArg(call, 4) : 1, 0, 255));
        return render::overlap({bitmap, threshold}, {*second, limit}, toInt32(at.x) - left,
                               toInt32(at.y) - top);
    }
    Value width;
    if (!other->find(vm, vm.name(std::string_view("width")), width, other)) {
        const swf::Point at = pointFromValue(vm, other);
        return render::isSolid(bitmap, toInt32(at.x) - left, toInt32(at.y) - top, threshold);
    }
    const auto rect = rectFromValue(vm, other);
    const render::IntRect moved{rect->left - left, rect->top - top, rect->right - left, rect->bottom - top};
    return render::holdsSolid(bitmap, moved, threshold);
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
    auto found = render::difference(*own, *other);
    if (!found) return 0;
    Object* object = call.vm.newObject(call.self.object()->protoValue().asObject());
    attach(call.vm, *object, std::make_shared<swf::Bitmap>(std::move(*found)));
    return object;
}

constexpr MemberInfo kMembers[] = {
    {"getPixel", 0, kFrom8, &guarded<&getPixel, 2>, 1},
    {"setPixel", 0, kFrom8, &changing<&setPixel, 3>, 2},
    {"fillRect", 0, kFrom8, &changing<&fillRect, 2>, 3},
    {"copyPixels", 0, kFrom8, &changing<&bitmaps::copyPixels, 3>, 4},
    {"applyFilter", 0, kFrom8, &changing<&bitmaps::applyFilter, 4>, 5},
    {"scroll", 0, kFrom8, &changing<&scroll, 2>, 6},
    {"threshold", 0, kFrom8, &changing<&bitmaps::threshold, 5>, 7},
    {"draw", 0, kFrom8, &changing<&bitmaps::draw, 1>, 8},
    {"pixelDissolve", 0, kFrom8, &changing<&bitmaps::pixelDissolve, 3>, 9},
    {"getPixel32", 0, kFrom8, &guarded<&getPixel32, 2>, 10},
    {"setPixel32", 0, kFrom8, &changing<&setPixel32, 3>, 11},
    {"floodFill", 0, kFrom8, &changing<&floodFill, 3>, 12},
    {"getColorBoundsRect", 0, kFrom8, &guarded<&getColorBoundsRect, 2>, 13},
    {"perlinNoise", 0, kFrom8, &changing<&bitmaps::perlinNoise, 6>, 14},
    {"colorTransform", 0, kFrom8, &changing<&colorTransform, 2>, 15},
    {"hitTest", 0, kFrom8, &guarded<&hitTest, 3>, 16},
    {"paletteMap", 0, kFrom8, &changing<&bitmaps::paletteMap, 3>, 17},
    {"merge", 0, kFrom8, &changing<&bitmaps::merge, 7>, 18},
    {"noise", 0, kFrom8, &changing<&bitmaps::noise, 1>, 19},
    {"copyChannel", 0, kFrom8, &changing<&bitmaps::copyChannel, 5>, 20},
    {"clone", 0, kFrom8, &guarded<&clone, 0>, 21},
    {"dispose", 0, kFrom8, &changing<&dispose, 0>, 22},
    {"generateFilterRect", 0, kFrom8, &guarded<&bitmaps::generateFilterRect, 2>, 23},
    {"compare", 0, kFrom8, &compare, 24},
};
constexpr int kNativeTable = 1100;

Value constructBitmapData(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr || !call.isConstruct) return {};
    // Without a size that it can have there is no object at all.
    if (call.count() < 2) return Value::null();
    const double width = numberArg(call, 0), height = numberArg(call, 1);
    if (!(width >= 1 && height >= 1 && width <= render::kMaxBitmapSide && height <= render::kMaxBitmapSide))
        return Value::null();
    if (!hasRoomFor(call.vm, width, height)) return Value::null();
    const bool transparent = call.count() < 3 || toBoolean(call.vm, call.arg(2));
    const std::uint32_t fill = call.count() > 3 ? color(call, 3) : 0xFFFFFFFF;
    attach(call.vm, *self,
           std::make_shared<swf::Bitmap>(
               render::newBitmap(static_cast<int>(width), static_cast<int>(height), transparent, fill)));
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
    constructor->define(vm, "loadBitmap", vm.newFunction(&loadBitmap, 1), kBuiltIn | kFrom8);
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
