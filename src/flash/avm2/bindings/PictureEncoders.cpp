#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/render/PictureWriter.h"

#include <algorithm>

// BitmapData.encode, and what says how.
namespace flash::avm2
{

namespace
{

constexpr NativeClass options(std::string_view name, std::string_view slots)
{
    return {.package = "flash.display",
            .name = name,
            .base = {},
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constructor = &assignSlots,
            .minArguments = 0,
            .maxArguments = 3,
            .slots = slots};
}
constexpr NativeClass kClasses[] = {
    options("PNGEncoderOptions", "fastCompression:Boolean"),
    options("JPEGEncoderOptions", "quality:uint=80"),
    options("JPEGXREncoderOptions", "quantization:uint=20 colorSpace:String=auto trimFlexBits:uint"),
};

} // namespace

Value bitmapEncode(Call& call)
{
    Vm& vm = call.vm;
    const auto bitmap = picture(call);
    Object& rectangle = objectArg(call, 0, "flash.geom::Rectangle", "rect");
    Object* how = call.arg(1).asObject();
    if (how == nullptr) vm.throwError(ErrorClass::Type, 2007, "Parameter compressor must be non-null.");
    const auto is = [&](std::string_view cls) { return how->traits()->isA(vm.nativeClass(cls)->instances); };
    const bool png = is("flash.display::PNGEncoderOptions"), jpeg = is("flash.display::JPEGEncoderOptions");
    if (!png && !jpeg) {
        if (is("flash.display::JPEGXREncoderOptions"))
            Player::of(vm).log("BitmapData.encode: JPEG XR is not supported");
        else
            vm.throwError(ErrorClass::Argument, 2008,
                          "Parameter compressor must be one of the accepted values.");
        return Value::null();
    }
    const render::IntRect area =
        render::intersect(pixelsOf(rectangle), {0, 0, bitmap->width, bitmap->height});
    if (area.isEmpty()) return Value::null();
    std::vector<std::uint8_t> bytes;
    if (png)
        bytes = render::encodePng(
            *bitmap, area, vm.toBoolean(how->slot(0)) ? render::PngEffort::Fast : render::PngEffort::Small);
    else
        bytes = render::encodeJpeg(*bitmap, area, static_cast<int>(std::min(vm.toUint(how->slot(0)), 100U)));
    if (bytes.empty()) return Value::null();
    auto* out = as<classes::ByteArrayObject>(call.arg(2));
    Root<classes::ByteArrayObject> made(vm.heap(), out);
    if (!made) made = as<classes::ByteArrayObject>(vm.construct(Value(vm.classes().byteArray), {}));
    made->write(vm, bytes);
    return Value(made.get());
}

NativeLibrary pictureEncoderLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
