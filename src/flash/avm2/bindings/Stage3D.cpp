#include "flash/avm2/bindings/Context3D.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"

#include <algorithm>

// The places behind the stage, and the contexts that are asked for there.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

void Stage3DObject::trace(Tracer& tracer)
{
    DispatcherObject::trace(tracer);
    tracer(context);
    if (picture) tracer.outside(picture->pixels.size() * sizeof(std::uint32_t));
}

void Stage3DObject::show(Vm& vm) const
{
    stage::View& view = Player::of(vm).stage().view();
    view.setBackdrop(index, isVisible ? picture : nullptr, x, y);
}

namespace
{

constexpr std::size_t kPlaces = 4;

Stage3DObject& stage3DSelf(Call& call) { return selfAs<Stage3DObject>(call, "flash.display.Stage3D"); }

Value context3D(Call& call)
{
    Context3DObject* context = stage3DSelf(call).context;
    return context != nullptr ? Value(context) : Value::null();
}
template <double Stage3DObject::*member>
Value place(Call& call)
{
    return stage3DSelf(call).*member;
}
template <double Stage3DObject::*member>
Value setPlace(Call& call)
{
    constexpr double kFar = 1e5;
    const double number = call.vm.toNumber(call.arg(0));
    auto& self = stage3DSelf(call);
    self.*member = std::isfinite(number) ? std::clamp(number, -kFar, kFar) : 0;
    self.show(call.vm);
    return {};
}
Value visible(Call& call) { return stage3DSelf(call).isVisible; }
Value setVisible(Call& call)
{
    auto& self = stage3DSelf(call);
    self.isVisible = call.vm.toBoolean(call.arg(0));
    self.show(call.vm);
    return {};
}

/// The context comes when the frame has ended, as one that a graphics card must be asked for would.
void request(Vm& vm, Stage3DObject& self)
{
    const auto held = std::make_shared<Root<Object>>(vm.heap(), &self);
    Player::of(vm).later([&vm, held, number = ++self.requests] {
        auto& place = *static_cast<Stage3DObject*>(held->get());
        if (number != place.requests) return;
        auto* made = as<Context3DObject>(Value(vm.instantiate(vm.nativeClass("flash.display3D::Context3D"))));
        if (place.context != nullptr) place.context->owner = nullptr;
        place.context = made;
        made->owner = &place;
        fire(vm, place, "context3DCreate");
    });
}
Value requestContext(Call& call)
{
    static constexpr std::u16string_view kModes[] = {u"auto", u"software"};
    const std::u16string mode = call.has(0) ? textArg(call, 0, "context3DRenderMode") : u"auto";
    if (std::ranges::find(kModes, mode) == std::end(kModes)) throwNotAccepted(call.vm, "context3DRenderMode");
    if (call.has(1)) textArg(call, 1, "profile");
    request(call.vm, stage3DSelf(call));
    return {};
}
Value requestMatching(Call& call)
{
    if (call.arg(0).isNullish()) throwNullParameter(call.vm, "profiles");
    request(call.vm, stage3DSelf(call));
    return {};
}

constexpr NativeMember kStage3D[] = {
    {"context3D", Kind::Getter, &context3D, 0, 0},
    {"x", Kind::Getter, &place<&Stage3DObject::x>, 0, 0, &setPlace<&Stage3DObject::x>},
    {"y", Kind::Getter, &place<&Stage3DObject::y>, 0, 0, &setPlace<&Stage3DObject::y>},
    {"visible", Kind::Getter, &visible, 0, 0, &setVisible},
    {"requestContext3D", Kind::Method, &requestContext, 0, 2},
    {"requestContext3DMatchingProfiles", Kind::Method, &requestMatching, 1, 1},
};

constexpr NativeConstant kBlendFactors[] = {
    {"DESTINATION_ALPHA", 0, "destinationAlpha"},
    {"DESTINATION_COLOR", 0, "destinationColor"},
    {"ONE", 0, "one"},
    {"ONE_MINUS_DESTINATION_ALPHA", 0, "oneMinusDestinationAlpha"},
    {"ONE_MINUS_DESTINATION_COLOR", 0, "oneMinusDestinationColor"},
    {"ONE_MINUS_SOURCE_ALPHA", 0, "oneMinusSourceAlpha"},
    {"ONE_MINUS_SOURCE_COLOR", 0, "oneMinusSourceColor"},
    {"SOURCE_ALPHA", 0, "sourceAlpha"},
    {"SOURCE_COLOR", 0, "sourceColor"},
    {"ZERO", 0, "zero"},
};
constexpr NativeConstant kBufferUsages[] = {{"DYNAMIC_DRAW", 0, "dynamicDraw"},
                                            {"STATIC_DRAW", 0, "staticDraw"}};
constexpr NativeConstant kClearMasks[] = {{"ALL", 7}, {"COLOR", 1}, {"DEPTH", 2}, {"STENCIL", 4}};
constexpr NativeConstant kCompareModes[] = {
    {"ALWAYS", 0, "always"},   {"EQUAL", 0, "equal"},
    {"GREATER", 0, "greater"}, {"GREATER_EQUAL", 0, "greaterEqual"},
    {"LESS", 0, "less"},       {"LESS_EQUAL", 0, "lessEqual"},
    {"NEVER", 0, "never"},     {"NOT_EQUAL", 0, "notEqual"},
};
constexpr NativeConstant kMipFilters[] = {
    {"MIPLINEAR", 0, "miplinear"}, {"MIPNEAREST", 0, "mipnearest"}, {"MIPNONE", 0, "mipnone"}};
constexpr NativeConstant kProfiles[] = {
    {"BASELINE", 0, "baseline"},
    {"BASELINE_CONSTRAINED", 0, "baselineConstrained"},
    {"BASELINE_EXTENDED", 0, "baselineExtended"},
    {"STANDARD", 0, "standard"},
    {"STANDARD_CONSTRAINED", 0, "standardConstrained"},
    {"STANDARD_EXTENDED", 0, "standardExtended"},
};
constexpr NativeConstant kProgramTypes[] = {{"FRAGMENT", 0, "fragment"}, {"VERTEX", 0, "vertex"}};
constexpr NativeConstant kRenderModes[] = {{"AUTO", 0, "auto"}, {"SOFTWARE", 0, "software"}};
constexpr NativeConstant kStencilActions[] = {
    {"DECREMENT_SATURATE", 0, "decrementSaturate"},
    {"DECREMENT_WRAP", 0, "decrementWrap"},
    {"INCREMENT_SATURATE", 0, "incrementSaturate"},
    {"INCREMENT_WRAP", 0, "incrementWrap"},
    {"INVERT", 0, "invert"},
    {"KEEP", 0, "keep"},
    {"SET", 0, "set"},
    {"ZERO", 0, "zero"},
};
constexpr NativeConstant kTextureFilters[] = {
    {"ANISOTROPIC16X", 0, "anisotropic16x"},
    {"ANISOTROPIC2X", 0, "anisotropic2x"},
    {"ANISOTROPIC4X", 0, "anisotropic4x"},
    {"ANISOTROPIC8X", 0, "anisotropic8x"},
    {"LINEAR", 0, "linear"},
    {"NEAREST", 0, "nearest"},
};
constexpr NativeConstant kTextureFormats[] = {
    {"BGRA", 0, "bgra"},
    {"BGRA_PACKED", 0, "bgraPacked4444"},
    {"BGR_PACKED", 0, "bgrPacked565"},
    {"COMPRESSED", 0, "compressed"},
    {"COMPRESSED_ALPHA", 0, "compressedAlpha"},
    {"RGBA_HALF_FLOAT", 0, "rgbaHalfFloat"},
};
constexpr NativeConstant kTriangleFaces[] = {
    {"BACK", 0, "back"}, {"FRONT", 0, "front"}, {"FRONT_AND_BACK", 0, "frontAndBack"}, {"NONE", 0, "none"}};
constexpr NativeConstant kVertexFormats[] = {
    {"BYTES_4", 0, "bytes4"}, {"FLOAT_1", 0, "float1"}, {"FLOAT_2", 0, "float2"},
    {"FLOAT_3", 0, "float3"}, {"FLOAT_4", 0, "float4"},
};
constexpr NativeConstant kWrapModes[] = {
    {"CLAMP", 0, "clamp"},
    {"CLAMP_U_REPEAT_V", 0, "clamp_u_repeat_v"},
    {"REPEAT", 0, "repeat"},
    {"REPEAT_U_CLAMP_V", 0, "repeat_u_clamp_v"},
};
constexpr NativeConstant kFillModes[] = {{"SOLID", 0, "solid"}, {"WIREFRAME", 0, "wireframe"}};

constexpr NativeClass names(std::string_view name, std::span<const NativeConstant> list)
{
    NativeClass made = constantsOf("flash.display3D", name, list);
    made.since = kStage3DSince;
    return made;
}
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "Stage3D",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction,
     .allocate = &allocateNative<Stage3DObject>,
     .members = kStage3D,
     .since = kStage3DSince},
    names("Context3DBlendFactor", kBlendFactors),
    names("Context3DBufferUsage", kBufferUsages),
    names("Context3DClearMask", kClearMasks),
    names("Context3DCompareMode", kCompareModes),
    names("Context3DFillMode", kFillModes),
    names("Context3DMipFilter", kMipFilters),
    names("Context3DProfile", kProfiles),
    names("Context3DProgramType", kProgramTypes),
    names("Context3DRenderMode", kRenderModes),
    names("Context3DStencilAction", kStencilActions),
    names("Context3DTextureFilter", kTextureFilters),
    names("Context3DTextureFormat", kTextureFormats),
    names("Context3DTriangleFace", kTriangleFaces),
    names("Context3DVertexBufferFormat", kVertexFormats),
    names("Context3DWrapMode", kWrapModes),
};
constexpr std::string_view kSignatures = R"(
flash.display::Stage3D
  context3D-:Context3D x:Number y:Number visible:Boolean requestContext3D(String=,String=):void
  requestContext3DMatchingProfiles(Vector<String>):void
flash.display3D::Context3D
  ^supportsVideoTexture-:Boolean driverInfo-:String profile-:String enableErrorChecking:Boolean backBufferWidth-:int
  backBufferHeight-:int maxBackBufferWidth:int maxBackBufferHeight:int totalGPUMemory-:Number
  clear(Number=,Number=,Number=,Number=,Number=,uint=,uint=):void
  configureBackBuffer(int,int,int,Boolean=,Boolean=,Boolean=):void
  createCubeTexture(int,String,Boolean,int=):CubeTexture createIndexBuffer(int,String=):IndexBuffer3D createProgram():Program3D
  createRectangleTexture(int,int,String,Boolean):RectangleTexture createTexture(int,int,String,Boolean,int=):Texture
  createVertexBuffer(int,int,String=):VertexBuffer3D dispose(Boolean=):void
  drawToBitmapData(BitmapData,Rectangle=,Point=):void drawTriangles(IndexBuffer3D,int=,int=):void present():void
  setBlendFactors(String,String):void setColorMask(Boolean,Boolean,Boolean,Boolean):void setCulling(String):void
  setDepthTest(Boolean,String):void setFillMode(String):void setProgram(Program3D):void
  setProgramConstantsFromByteArray(String,int,int,ByteArray,uint):void
  setProgramConstantsFromMatrix(String,int,Matrix3D,Boolean=):void
  setProgramConstantsFromVector(String,int,Vector<Number>,int=):void setRenderToBackBuffer():void
  setRenderToTexture(TextureBase,Boolean=,int=,int=,int=):void setSamplerStateAt(int,String,String,String):void
  setScissorRectangle(Rectangle):void setStencilActions(String=,String=,String=,String=,String=):void
  setStencilReferenceValue(uint,uint=,uint=):void setTextureAt(int,TextureBase):void
  setVertexBufferAt(int,VertexBuffer3D,int=,String=):void
flash.display3D::VertexBuffer3D
  uploadFromVector(Vector<Number>,int,int):void uploadFromByteArray(ByteArray,int,int,int):void dispose():void
flash.display3D::IndexBuffer3D
  uploadFromVector(Vector<uint>,int,int):void uploadFromByteArray(ByteArray,int,int,int):void dispose():void
flash.display3D::Program3D
  upload(ByteArray,ByteArray):void dispose():void
flash.display3D.textures::TextureBase
  dispose():void
flash.display3D.textures::Texture
  uploadFromBitmapData(BitmapData,uint=):void uploadFromByteArray(ByteArray,uint,uint=):void
  uploadCompressedTextureFromByteArray(ByteArray,uint,Boolean=):void
flash.display3D.textures::CubeTexture
  uploadFromBitmapData(BitmapData,uint,uint=):void uploadFromByteArray(ByteArray,uint,uint,uint=):void
  uploadCompressedTextureFromByteArray(ByteArray,uint,Boolean=):void
flash.display3D.textures::RectangleTexture
  uploadFromBitmapData(BitmapData):void uploadFromByteArray(ByteArray,uint):void
)";

} // namespace

Value newStage3Ds(Vm& vm)
{
    if (vm.apiVersion() < kStage3DSince) return Value::null();
    ClassObject* cls = vm.nativeClass("flash.display::Stage3D");
    Root<Object> list(vm.heap(), vm.construct(Value(vm.vectorOf(cls->instances)), {}).object());
    for (std::size_t i = 0; i < kPlaces; ++i) {
        auto* made = as<Stage3DObject>(Value(vm.instantiate(cls)));
        made->index = i;
        static_cast<VectorObject*>(list.get())->push(vm, Value(made));
    }
    return Value(list.get());
}

NativeLibrary stage3DLibrary() { return {kClasses, {}, kSignatures}; }
NativeLibrary context3DLibrary() { return {context3DClasses(), {}}; }
NativeLibrary resource3DLibrary() { return {resource3DClasses(), {}}; }

} // namespace flash::avm2
