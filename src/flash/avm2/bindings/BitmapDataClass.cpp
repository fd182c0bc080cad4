#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/avm2/classes/Library.h"
#include "flash/render/BitmapOps.h"
#include "flash/stage/Graphics.h"

#include <algorithm>

// Pictures of scripts: their making and their single pixels; and what shows them on the display list.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{
constexpr int kOldMaxSide = 2880, kMaxSide = 8191, kMaxPixels = 0xFFFFFF;
constexpr int kLargeVersion = 10;

[[noreturn]] void invalidData(Vm& vm) { vm.throwError(ErrorClass::Argument, 2015, "Invalid BitmapData."); }
BitmapDataObject& dataSelf(Call& call)
{
    return classes::selfAs<BitmapDataObject>(call, "flash.display.BitmapData");
}

std::shared_ptr<swf::Bitmap> makeBitmap(Vm& vm, int width, int height, bool transparent, std::uint32_t color)
{
    auto bitmap = std::make_shared<swf::Bitmap>(render::newBitmap(width, height, transparent, color));
    vm.heap().noteExternalBytes(bitmap->pixels.size() * sizeof(std::uint32_t));
    vm.check();
    return bitmap;
}
} // namespace

Value newBitmapData(Vm& vm, std::shared_ptr<swf::Bitmap> bitmap)
{
    auto* made = as<BitmapDataObject>(Value(vm.instantiate(vm.nativeClass("flash.display::BitmapData"))));
    vm.heap().noteExternalBytes(bitmap->pixels.size() * sizeof(std::uint32_t));
    made->bitmap = std::move(bitmap);
    return Value(made);
}

std::shared_ptr<swf::Bitmap> picture(Vm& vm, const BitmapDataObject& object)
{
    if (object.bitmap == nullptr) invalidData(vm);
    return object.bitmap;
}
std::shared_ptr<swf::Bitmap> picture(Call& call) { return picture(call.vm, dataSelf(call)); }
std::shared_ptr<swf::Bitmap> pictureArg(Call& call, std::uint32_t index, const char* name)
{
    return picture(call.vm,
                   *as<BitmapDataObject>(&objectArg(call, index, "flash.display::BitmapData", name)));
}
void pictureChanged(Call& call)
{
    const auto& bitmap = dataSelf(call).bitmap;
    if (bitmap.use_count() > 1) Player::of(call.vm).stage().view().noteDrawnOn(*bitmap);
}

namespace
{

Value constructData(Call& call)
{
    auto& made = dataSelf(call);
    Vm& vm = call.vm;
    Player& player = Player::of(vm);
    stage::MoviePtr movie;
    if (const std::uint16_t id = player.characterOf(made.traits()->cls, movie)) {
        const swf::Character* character = movie->character(id);
        const auto* data =
            character != nullptr ? std::get_if<swf::BitmapCharacter>(&character->data) : nullptr;
        if (data != nullptr && data->bitmap) {
            made.bitmap = std::make_shared<swf::Bitmap>(*data->bitmap);
            vm.heap().noteExternalBytes(made.bitmap->pixels.size() * sizeof(std::uint32_t));
            return {};
        }
    }
    if (call.count < 2)
        vm.throwError(ErrorClass::Argument, 1063,
                      "Argument count mismatch on flash.display::BitmapData(). Expected 2, got " +
                          std::to_string(call.count) + ".");
    const std::int32_t width = vm.toInt(call.arg(0)), height = vm.toInt(call.arg(1));
    const int longest = vm.apiVersion() < kLargeVersion ? kOldMaxSide : kMaxSide;
    if (width <= 0 || height <= 0 || width > longest || height > longest ||
        static_cast<std::int64_t>(width) * height > kMaxPixels)
        invalidData(vm);
    const bool transparent = !call.has(2) || vm.toBoolean(call.arg(2));
    made.bitmap =
        makeBitmap(vm, width, height, transparent, call.has(3) ? vm.toUint(call.arg(3)) : 0xFFFFFFFFU);
    return {};
}

bool isInside(const swf::Bitmap& bitmap, int x, int y)
{
    return x >= 0 && y >= 0 && x < bitmap.width && y < bitmap.height;
}

Value width(Call& call) { return picture(call)->width; }
Value height(Call& call) { return picture(call)->height; }
Value transparent(Call& call) { return !picture(call)->opaque; }
Value rect(Call& call)
{
    const auto bitmap = picture(call);
    return newRectangle(call.vm, 0, 0, bitmap->width, bitmap->height);
}
template <bool withAlpha>
Value getPixel(Call& call)
{
    const auto bitmap = picture(call);
    const int x = call.vm.toInt(call.arg(0)), y = call.vm.toInt(call.arg(1));
    if (!isInside(*bitmap, x, y)) return 0;
    return static_cast<double>(render::pixelAt(*bitmap, x, y) & (withAlpha ? 0xFFFFFFFFU : 0xFFFFFFU));
}
template <bool withAlpha>
Value setPixel(Call& call)
{
    const auto bitmap = picture(call);
    const int x = call.vm.toInt(call.arg(0)), y = call.vm.toInt(call.arg(1));
    std::uint32_t color = call.vm.toUint(call.arg(2));
    if (!isInside(*bitmap, x, y)) return {};
    if (!withAlpha) color = (color & 0xFFFFFFU) | (render::pixelAt(*bitmap, x, y) & 0xFF000000U);
    render::setPixelAt(*bitmap, x, y, color);
    pictureChanged(call);
    return {};
}
Value fillRect(Call& call)
{
    const auto bitmap = picture(call);
    render::IntRect area = pixelsOf(objectArg(call, 0, "flash.geom::Rectangle", "rect"));
    // Sizes may be negative here.
    if (area.left > area.right) std::swap(area.left, area.right);
    if (area.top > area.bottom) std::swap(area.top, area.bottom);
    render::fillRect(*bitmap, area, call.vm.toUint(call.arg(1)));
    pictureChanged(call);
    return {};
}
Value floodFill(Call& call)
{
    const auto bitmap = picture(call);
    const int x = call.vm.toInt(call.arg(0)), y = call.vm.toInt(call.arg(1));
    // Asking for a number may run script, which may dispose of the picture.
    const std::uint32_t color = call.vm.toUint(call.arg(2));
    if (isInside(*bitmap, x, y)) render::floodFill(*bitmap, x, y, color);
    pictureChanged(call);
    return {};
}
Value colorTransform(Call& call)
{
    const auto bitmap = picture(call);
    Object& area = objectArg(call, 0, "flash.geom::Rectangle", "rect");
    Object& color = objectArg(call, 1, "flash.geom::ColorTransform", "colorTransform");
    render::transformColors(*bitmap, pixelsOf(area), colorTransformOf(color));
    pictureChanged(call);
    return {};
}
Value scroll(Call& call)
{
    render::scroll(*picture(call), call.vm.toInt(call.arg(0)), call.vm.toInt(call.arg(1)));
    pictureChanged(call);
    return {};
}
Value colorBounds(Call& call)
{
    const render::IntRect r =
        render::colorBounds(*picture(call), call.vm.toUint(call.arg(0)), call.vm.toUint(call.arg(1)),
                            !call.has(2) || call.vm.toBoolean(call.arg(2)));
    return newRectangle(call.vm, r.left, r.top, r.width(), r.height());
}
Value clone(Call& call) { return newBitmapData(call.vm, std::make_shared<swf::Bitmap>(*picture(call))); }
Value dispose(Call& call)
{
    auto& self = dataSelf(call);
    if (self.bitmap == nullptr) return {};
    // Fills and instances that show it share it: they show nothing from now on.
    pictureChanged(call);
    self.bitmap->width = self.bitmap->height = 0;
    self.bitmap->pixels = {};
    self.bitmap = nullptr;
    return {};
}
/// While it is locked nothing is drawn of it elsewhere either; the picture is the same in the end.
Value ignore(Call&) { return {}; }

render::IntRect areaArg(Call& call, const swf::Bitmap& bitmap)
{
    return render::intersect(pixelsOf(objectArg(call, 0, "flash.geom::Rectangle", "rect")),
                             render::boundsOf(bitmap));
}
Value getPixels(Call& call)
{
    const auto bitmap = picture(call);
    const render::IntRect area = areaArg(call, *bitmap);
    auto* bytes = as<classes::ByteArrayObject>(Value(call.vm.instantiate(call.vm.classes().byteArray)));
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) {
            const std::uint32_t color = render::pixelAt(*bitmap, x, y);
            for (int shift = 24; shift >= 0; shift -= 8)
                bytes->content.push_back(static_cast<std::uint8_t>(color >> shift));
        }
        call.vm.check();
    }
    bytes->position = bytes->content.size();
    return Value(bytes);
}
Value copyPixelsToBytes(Call& call)
{
    const auto bitmap = picture(call);
    const render::IntRect area = areaArg(call, *bitmap);
    auto* bytes = as<classes::ByteArrayObject>(&objectArg(call, 1, "flash.utils::ByteArray", "data"));
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) {
            const std::uint32_t color = render::pixelAt(*bitmap, x, y);
            std::array<std::uint8_t, 4> quad{};
            for (std::size_t i = 0; i < quad.size(); ++i)
                quad[bytes->isLittle ? i : 3 - i] = static_cast<std::uint8_t>(color >> (8 * i));
            bytes->write(call.vm, quad);
        }
    }
    return {};
}
Value setPixels(Call& call)
{
    const auto bitmap = picture(call);
    const render::IntRect area = areaArg(call, *bitmap);
    auto* bytes =
        as<classes::ByteArrayObject>(&objectArg(call, 1, "flash.utils::ByteArray", "inputByteArray"));
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) {
            if (bytes->content.size() < bytes->position + 4)
                call.vm.throwError(ErrorClass::Error, 2030, "End of file was encountered.");
            const auto quad = bytes->read(call.vm, 4);
            std::uint32_t color = 0;
            for (std::size_t i = 0; i < 4; ++i)
                color |= static_cast<std::uint32_t>(quad[bytes->isLittle ? i : 3 - i]) << (8 * i);
            render::setPixelAt(*bitmap, x, y, color);
        }
    }
    pictureChanged(call);
    return {};
}
Value getVector(Call& call)
{
    const auto bitmap = picture(call);
    const render::IntRect area = areaArg(call, *bitmap);
    ClassObject* cls = call.vm.vectorOf(call.vm.classes().uinteger->instances);
    auto* list = as<VectorObject>(call.vm.construct(Value(cls), {}));
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x)
            list->push(call.vm, Value(static_cast<double>(render::pixelAt(*bitmap, x, y))));
        call.vm.check();
    }
    return Value(list);
}
Value setVector(Call& call)
{
    const auto bitmap = picture(call);
    render::IntRect area = areaArg(call, *bitmap);
    if (call.arg(1).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter imputVector must be non-null.");
    const auto colors = numbersOf(call.vm, call.arg(1));
    area = render::intersect(area, render::boundsOf(*bitmap)); // elements may have disposed of it
    const auto wanted = static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height());
    if (colors.size() < wanted)
        call.vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
    std::size_t next = 0;
    for (int y = area.top; y < area.bottom && next < colors.size(); ++y) {
        for (int x = area.left; x < area.right && next < colors.size(); ++x)
            render::setPixelAt(*bitmap, x, y, call.vm.toUint(Value(colors[next++])));
    }
    pictureChanged(call);
    return {};
}

// ---- what shows one ----

stage::BitmapNode* bitmapNode(DisplayObject& object)
{
    return object.node().kind() == stage::NodeKind::Bitmap ? static_cast<stage::BitmapNode*>(&object.node())
                                                           : nullptr;
}
void setShown(DisplayObject& self, Value value)
{
    const auto* data = as<BitmapDataObject>(value);
    self.bitmapData = data != nullptr ? value : Value::null();
    if (stage::BitmapNode* node = bitmapNode(self)) node->setBitmap(data != nullptr ? data->bitmap : nullptr);
}
Value bitmapData(Call& call)
{
    auto& self = displaySelf(call);
    if (self.bitmapData.isUndefined()) {
        const stage::BitmapNode* node = bitmapNode(self);
        if (node == nullptr || !node->bitmap()) return Value::null();
        // Of the class that is linked to the picture, if one is.
        const LoadedMovie* known = self.movie ? Player::of(call.vm).loaded(self.movie) : nullptr;
        ClassObject* cls = known != nullptr ? known->classOf(self.characterId) : nullptr;
        if (cls != nullptr &&
            cls->instances->isA(call.vm.nativeClass("flash.display::BitmapData")->instances)) {
            const Value zeros[] = {0, 0};
            setShown(self, call.vm.construct(Value(cls), zeros));
        } else {
            setShown(self, newBitmapData(call.vm, std::make_shared<swf::Bitmap>(*node->bitmap())));
        }
    }
    return self.bitmapData;
}
Value setBitmapData(Call& call)
{
    auto& self = displaySelf(call);
    setShown(self, Value(optionalArg(call, 0, "flash.display::BitmapData")));
    return {};
}
Value smoothing(Call& call)
{
    const stage::BitmapNode* node = bitmapNode(displaySelf(call));
    return node != nullptr && node->isSmooth();
}
Value setSmoothing(Call& call)
{
    if (stage::BitmapNode* node = bitmapNode(displaySelf(call)))
        node->setSmooth(call.vm.toBoolean(call.arg(0)));
    return {};
}
Value pixelSnapping(Call& call)
{
    const Value value = displaySelf(call).pixelSnapping;
    return value.isUndefined() ? Value(call.vm.string(std::string_view("auto"))) : value;
}
Value setPixelSnapping(Call& call)
{
    static constexpr std::u16string_view kNames[] = {u"auto", u"always", u"never"};
    const std::u16string name = call.arg(0).isNullish() ? u"" : std::u16string(call.vm.text(call.arg(0)));
    const auto* found = std::ranges::find(kNames, name);
    if (found == std::end(kNames))
        call.vm.throwError(ErrorClass::Argument, 2008,
                           "Parameter pixelSnapping must be one of the accepted values.");
    DisplayObject& self = displaySelf(call);
    self.pixelSnapping = call.arg(0);
    if (stage::BitmapNode* node = bitmapNode(self))
        node->setSnapping(static_cast<stage::PixelSnapping>(found - std::begin(kNames)));
    return {};
}
Value constructBitmap(Call& call)
{
    auto& self = displaySelf(call);
    stage::MoviePtr movie;
    const std::uint16_t id = Player::of(call.vm).characterOf(self.traits()->cls, movie);
    if (id != 0 && self.node().characterId() == 0) {
        const swf::Character* character = movie->character(id);
        const auto* data =
            character != nullptr ? std::get_if<swf::BitmapCharacter>(&character->data) : nullptr;
        if (data != nullptr && data->bitmap && bitmapNode(self) != nullptr)
            bitmapNode(self)->setBitmap(data->bitmap);
    }
    if (call.has(0) && !call.arg(0).isNullish()) setBitmapData(call);
    if (call.has(1)) {
        Call inner{call.vm, call.self, call.args + 1, call.count - 1};
        setPixelSnapping(inner);
    }
    if (call.has(2)) {
        Call inner{call.vm, call.self, call.args + 2, call.count - 2};
        setSmoothing(inner);
    }
    return constructDisplay(call);
}

constexpr NativeMember kData[] = {
    {"width", Kind::Getter, &width, 0, 0, nullptr, "int"},
    {"height", Kind::Getter, &height, 0, 0, nullptr, "int"},
    {"transparent", Kind::Getter, &transparent, 0, 0, nullptr, "Boolean"},
    {"rect", Kind::Getter, &rect, 0, 0, nullptr, "flash.geom::Rectangle"},
    {"getPixel", Kind::Method, &getPixel<false>, 2, 2},
    {"getPixel32", Kind::Method, &getPixel<true>, 2, 2},
    {"setPixel", Kind::Method, &setPixel<false>, 3, 3},
    {"setPixel32", Kind::Method, &setPixel<true>, 3, 3},
    {"fillRect", Kind::Method, &fillRect, 2, 2},
    {"floodFill", Kind::Method, &floodFill, 3, 3},
    {"colorTransform", Kind::Method, &colorTransform, 2, 2},
    {"scroll", Kind::Method, &scroll, 2, 2},
    {"getColorBoundsRect", Kind::Method, &colorBounds, 2, 3},
    {"clone", Kind::Method, &clone, 0, 0},
    {"dispose", Kind::Method, &dispose, 0, 0},
    {"lock", Kind::Method, &ignore, 0, 0},
    {"unlock", Kind::Method, &ignore, 0, 1},
    {"getPixels", Kind::Method, &getPixels, 1, 1},
    {"copyPixelsToByteArray", Kind::Method, &copyPixelsToBytes, 2, 2},
    {"setPixels", Kind::Method, &setPixels, 2, 2},
    {"getVector", Kind::Method, &getVector, 1, 1},
    {"setVector", Kind::Method, &setVector, 2, 2},
    {"draw", Kind::Method, &bitmapDraw, 1, 6},
    {"drawWithQuality", Kind::Method, &bitmapDrawWithQuality, 1, 7},
    {"applyFilter", Kind::Method, &bitmapApplyFilter, 4, 4},
    {"generateFilterRect", Kind::Method, &bitmapFilterRect, 2, 2},
    {"noise", Kind::Method, &bitmapNoise, 1, 5},
    {"perlinNoise", Kind::Method, &bitmapPerlinNoise, 6, 9},
    {"copyPixels", Kind::Method, &bitmapCopyPixels, 3, 6},
    {"copyChannel", Kind::Method, &bitmapCopyChannel, 5, 5},
    {"merge", Kind::Method, &bitmapMerge, 7, 7},
    {"threshold", Kind::Method, &bitmapThreshold, 5, 8},
    {"paletteMap", Kind::Method, &bitmapPaletteMap, 3, 7},
    {"pixelDissolve", Kind::Method, &bitmapDissolve, 3, 6},
    {"hitTest", Kind::Method, &bitmapHitTest, 3, 5},
    {"compare", Kind::Method, &bitmapCompare, 1, 1},
    {"histogram", Kind::Method, &bitmapHistogram, 0, 1},
    {"encode", Kind::Method, &bitmapEncode, 2, 3},
};
constexpr NativeMember kBitmap[] = {
    {"bitmapData", Kind::Getter, &bitmapData, 0, 0, &setBitmapData, "flash.display::BitmapData"},
    {"smoothing", Kind::Getter, &smoothing, 0, 0, &setSmoothing, "Boolean"},
    {"pixelSnapping", Kind::Getter, &pixelSnapping, 0, 0, &setPixelSnapping, "String"},
};
constexpr NativeConstant kChannels[] = {{"RED", 1, nullptr, NativeConstant::Kind::Uint},
                                        {"GREEN", 2, nullptr, NativeConstant::Kind::Uint},
                                        {"BLUE", 4, nullptr, NativeConstant::Kind::Uint},
                                        {"ALPHA", 8, nullptr, NativeConstant::Kind::Uint}};
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "BitmapData",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &constructData,
     .minArguments = 0,
     .maxArguments = 4,
     .allocate = &classes::allocateNative<BitmapDataObject>,
     .members = kData,
     .interfaces = "flash.display::IBitmapDrawable"},
    {.package = "flash.display",
     .name = "Bitmap",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &constructBitmap,
     .minArguments = 0,
     .maxArguments = 3,
     .members = kBitmap},
    {.package = "flash.display",
     .name = "BitmapDataChannel",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constants = kChannels},
};

} // namespace

std::span<const NativeClass> bitmapDataClasses() { return kClasses; }

} // namespace flash::avm2
