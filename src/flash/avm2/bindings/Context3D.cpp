#include "flash/avm2/bindings/Context3D.h"

#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/guard/Guard.h"

#include <algorithm>
#include <cmath>

// Contexts: what they draw on, drawing, and the picture that comes of it.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

void Buffers3D::resize(int newWidth, int newHeight, std::size_t newSamples, bool hasDepth)
{
    width = newWidth;
    height = newHeight;
    samples = newSamples;
    const std::size_t count = samples * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    depths.assign(hasDepth ? count : 0, 1.0F);
    stencils.assign(hasDepth ? count : 0, 0);
}

std::uint32_t Buffers3D::shown(std::size_t i) const
{
    constexpr std::uint32_t kOpaque = 0xFF000000U;
    if (samples == 1) return colors[i] | kOpaque;
    const std::uint32_t* at = colors.data() + samples * i;
    std::uint32_t mean = 0;
    for (const unsigned shift : {0U, 8U, 16U}) {
        std::uint32_t sum = 0;
        for (std::size_t s = 0; s < samples; ++s) sum += at[s] >> shift & 0xFFU;
        mean |= (sum + static_cast<std::uint32_t>(samples / 2)) / static_cast<std::uint32_t>(samples)
                << shift;
    }
    return mean | kOpaque;
}

void Context3DObject::trace(Tracer& tracer)
{
    DispatcherObject::trace(tracer);
    tracer(owner);
    tracer(drawnOn);
    tracer(program);
    for (const Stream& stream : streams) tracer(stream.buffer);
    for (TextureObject* texture : textures) tracer(texture);
    tracer.outside(back.bytes() + aside.bytes() + sizeof(Constants));
}

render::GpuTarget Context3DObject::target()
{
    if (drawnOn == nullptr || !drawnOn->texture)
        return {back.width, back.height, back.samples, back.colors, back.depths, back.stencils};
    auto& level = drawnOn->texture->level(drawnFace, 0);
    return {level.width, level.height, 1, level.pixels, aside.depths, aside.stencils};
}

Context3DObject& contextSelf(Call& call)
{
    auto& self = selfAs<Context3DObject>(call, "flash.display3D.Context3D");
    if (self.owner == nullptr)
        call.vm.throwError(ErrorClass::Error, 3694,
                           "The object was disposed by an earlier call of dispose() on it.");
    return self;
}

namespace
{

constexpr int kLeastSide = 32, kMostSide = 16384;
constexpr std::int64_t kMostPixels = std::int64_t{16} << 20;
/// Movies before this version hear of it in one word.
constexpr int kRangeVersion = 30;

[[noreturn]] void fail(Vm& vm, int number, const char* text)
{
    vm.throwError(ErrorClass::Error, number, text);
}

// ---- buffers ----------------------------------------------------------------------------------------------

void checkSide(Vm& vm, int side, bool isWidth)
{
    if (side >= kLeastSide && side <= kMostSide) return;
    if (vm.apiVersion() < kRangeVersion) fail(vm, 3669, "Bad input size.");
    vm.throwError(ErrorClass::Error, isWidth ? 3780 : 3781,
                  std::string("Requested ") + (isWidth ? "width" : "height") +
                      " of backbuffer is not in allowed range " + std::to_string(kLeastSide) + " to " +
                      std::to_string(kMostSide) + ".");
}
Value configureBackBuffer(Call& call)
{
    Vm& vm = call.vm;
    const int width = vm.toInt(call.arg(0)), height = vm.toInt(call.arg(1));
    const std::size_t samples = vm.toInt(call.arg(2)) > 1 ? 4 : 1;
    const bool hasDepth = !call.has(3) || vm.toBoolean(call.arg(3));
    auto& self = contextSelf(call);
    // Nothing at all lets go of what there is.
    const bool isNone = vm.apiVersion() < kRangeVersion && width == 0 && height == 0;
    if (!isNone) {
        checkSide(vm, width, true);
        checkSide(vm, height, false);
    }
    if (std::int64_t{width} * height > kMostPixels / static_cast<std::int64_t>(samples))
        fail(vm, 3672, "Buffer creation failed. Internal error.");
    self.back.colors.assign(samples * static_cast<std::size_t>(width) * static_cast<std::size_t>(height),
                            0xFF000000U);
    self.back.resize(width, height, samples, hasDepth);
    vm.heap().noteExternalBytes(self.back.bytes());
    return {};
}

Value clear(Call& call)
{
    Vm& vm = call.vm;
    std::array<double, 5> numbers = {0, 0, 0, 1, 1}; // red, green, blue, alpha, depth
    for (std::uint32_t i = 0; i < numbers.size(); ++i) {
        if (call.has(i)) numbers[i] = vm.toNumber(call.arg(i));
    }
    const std::uint32_t stencil = call.has(5) ? vm.toUint(call.arg(5)) : 0;
    const std::uint32_t mask = call.has(6) ? vm.toUint(call.arg(6)) : 0xFFFFFFFFU;
    const render::GpuTarget target = contextSelf(call).target();
    const auto channel = [&](std::size_t i) {
        const double number = std::isfinite(numbers[i]) ? std::clamp(numbers[i], 0.0, 1.0) : 0;
        return static_cast<std::uint32_t>(number * 255 + 0.5);
    };
    const std::uint32_t color = channel(3) << 24U | channel(0) << 16U | channel(1) << 8U | channel(2);
    if (mask & 1U) std::ranges::fill(target.colors, color);
    if (mask & 2U) std::ranges::fill(target.depths, static_cast<float>(numbers[4]));
    if (mask & 4U) std::ranges::fill(target.stencils, static_cast<std::uint8_t>(stencil));
    guard::check(static_cast<std::uint32_t>(1 + target.colors.size() / 1024));
    return {};
}

Value present(Call& call)
{
    auto& self = contextSelf(call);
    if (self.back.colors.empty()) return {};
    Stage3DObject& owner = *self.owner;
    auto& picture = owner.picture;
    if (!picture || picture->width != self.back.width || picture->height != self.back.height) {
        picture = std::make_shared<swf::Bitmap>();
        picture->width = self.back.width;
        picture->height = self.back.height;
        picture->pixels.resize(self.back.colors.size() / self.back.samples);
    }
    for (std::size_t i = 0; i < picture->pixels.size(); ++i) picture->pixels[i] = self.back.shown(i);
    owner.show(call.vm);
    guard::check(static_cast<std::uint32_t>(1 + self.back.colors.size() / 1024));
    return {};
}

Value drawToBitmapData(Call& call)
{
    const auto bitmap = pictureArg(call, 0, "destination");
    const auto& self = contextSelf(call);
    const int width = std::min(bitmap->width, self.back.width),
              height = std::min(bitmap->height, self.back.height);
    for (int y = 0; y < height; ++y) {
        const std::size_t from = static_cast<std::size_t>(y) * static_cast<std::size_t>(self.back.width);
        const std::size_t to = static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap->width);
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x)
            bitmap->pixels[to + x] = self.back.shown(from + x);
    }
    Player::of(call.vm).stage().view().noteDrawnOn(*bitmap);
    return {};
}

Value setRenderToTexture(Call& call)
{
    Vm& vm = call.vm;
    auto& texture =
        *as<TextureObject>(&objectArg(call, 0, "flash.display3D.textures::TextureBase", "texture"));
    const bool hasDepth = call.has(1) && vm.toBoolean(call.arg(1));
    const int face = call.has(3) ? vm.toInt(call.arg(3)) : 0;
    auto& self = contextSelf(call);
    if (!texture.texture) fail(vm, 3694, "The object was disposed by an earlier call of dispose() on it.");
    if (face < 0 || face >= (texture.texture->isCube() ? 6 : 1)) fail(vm, 3673, "Cube side must be [0..5].");
    self.drawnOn = &texture;
    self.drawnFace = face;
    self.aside.resize(texture.texture->width(), texture.texture->height(), 1, hasDepth);
    return {};
}
Value setRenderToBackBuffer(Call& call)
{
    contextSelf(call).drawnOn = nullptr;
    return {};
}

// ---- drawing ----------------------------------------------------------------------------------------------

Value drawTriangles(Call& call)
{
    Vm& vm = call.vm;
    const auto& indices =
        *as<IndexBufferObject>(&objectArg(call, 0, "flash.display3D::IndexBuffer3D", "indexBuffer"));
    const std::uint32_t first = call.has(1) ? vm.toUint(call.arg(1)) : 0;
    const int triangles = call.has(2) ? vm.toInt(call.arg(2)) : -1;
    auto& self = contextSelf(call);
    if (self.program == nullptr || !self.program->isReady()) fail(vm, 3600, "No valid program set.");
    const std::size_t size = indices.indices.size(), left = first < size ? size - first : 0;
    const std::size_t count = triangles < 0 ? left / 3 : static_cast<std::size_t>(triangles);
    if (count > left / 3)
        vm.throwError(ErrorClass::Error, 3603,
                      "Not enough indices in this buffer. " + std::to_string(count) +
                          " triangles at offset " + std::to_string(first) + ", but there are only " +
                          std::to_string(size) + " indices in total.");
    const render::GpuTarget target = self.target();
    if (target.colors.empty() || count == 0) return {};
    render::GpuDraw draw;
    draw.vertex = &self.program->vertex;
    draw.fragment = &self.program->fragment;
    draw.vertexConstants = &self.constants->vertex;
    draw.fragmentConstants = &self.constants->fragment;
    std::array<render::GpuSampler, Context3DObject::kTextures> samplers;
    for (std::size_t i = 0; i < samplers.size(); ++i) {
        const TextureObject* texture = self.textures[i];
        // A texture does not feed the picture that is drawn on it.
        const bool isFit = texture != nullptr && texture->texture && texture != self.drawnOn;
        samplers[i] = {isFit ? texture->texture.get() : nullptr, self.samplings[i]};
    }
    draw.samplers = samplers;
    for (std::size_t i = 0; i < self.streams.size(); ++i) {
        const Context3DObject::Stream& stream = self.streams[i];
        if (stream.buffer != nullptr)
            draw.streams[i] = {stream.format, stream.buffer->words, stream.buffer->perVertex, stream.offset};
        else if (draw.vertex->attributes >> i & 1U)
            vm.throwError(ErrorClass::Error, 3611,
                          "Stream " + std::to_string(i) +
                              " is read by the current vertex program but not set.");
    }
    draw.indices = std::span(indices.indices).subspan(first, 3 * count);
    render::drawGpuTriangles(draw, self.state, target);
    return {};
}

// ---- what is told -----------------------------------------------------------------------------------------

Value driverInfo(Call& call)
{
    const auto& self = selfAs<Context3DObject>(call, "flash.display3D.Context3D");
    return call.vm.string(std::string_view(self.owner != nullptr ? "Software" : "Disposed"));
}
Value profile(Call& call) { return call.vm.string(std::string_view("baseline")); }
Value checksErrors(Call& call) { return contextSelf(call).checksErrors; }
Value setChecksErrors(Call& call)
{
    contextSelf(call).checksErrors = call.vm.toBoolean(call.arg(0));
    return {};
}
Value backWidth(Call& call) { return contextSelf(call).back.width; }
Value backHeight(Call& call) { return contextSelf(call).back.height; }
template <int value>
Value always(Call&)
{
    return value;
}

Value dispose(Call& call)
{
    auto& self = selfAs<Context3DObject>(call, "flash.display3D.Context3D");
    if (self.owner == nullptr) return {};
    Stage3DObject& owner = *self.owner;
    self.owner = nullptr;
    self.back = self.aside = {};
    if (owner.context == &self) owner.context = nullptr;
    owner.picture.reset();
    owner.show(call.vm);
    return {};
}

constexpr NativeMember kContext[] = {
    {"supportsVideoTexture", Kind::StaticGetter, &isAlwaysFalse, 0, 0},
    {"driverInfo", Kind::Getter, &driverInfo, 0, 0, nullptr, "String"},
    {"profile", Kind::Getter, &profile, 0, 0, nullptr, "String"},
    {"enableErrorChecking", Kind::Getter, &checksErrors, 0, 0, &setChecksErrors, "Boolean"},
    {"backBufferWidth", Kind::Getter, &backWidth, 0, 0, nullptr, "int"},
    {"backBufferHeight", Kind::Getter, &backHeight, 0, 0, nullptr, "int"},
    {"maxBackBufferWidth", Kind::Getter, &always<kMostSide>, 0, 0, &doNothing, "int"},
    {"maxBackBufferHeight", Kind::Getter, &always<kMostSide>, 0, 0, &doNothing, "int"},
    {"totalGPUMemory", Kind::Getter, &always<0>, 0, 0, nullptr, "Number"},
    {"clear", Kind::Method, &clear, 0, 7},
    {"configureBackBuffer", Kind::Method, &configureBackBuffer, 3, 6},
    {"createCubeTexture", Kind::Method, &createCubeTexture, 3, 4},
    {"createIndexBuffer", Kind::Method, &createIndexBuffer, 1, 2},
    {"createProgram", Kind::Method, &createProgram3D, 0, 0},
    {"createRectangleTexture", Kind::Method, &createRectangleTexture, 4, 4},
    {"createTexture", Kind::Method, &createTexture, 4, 5},
    {"createVertexBuffer", Kind::Method, &createVertexBuffer, 2, 3},
    {"dispose", Kind::Method, &dispose, 0, 1},
    {"drawToBitmapData", Kind::Method, &drawToBitmapData, 1, 3},
    {"drawTriangles", Kind::Method, &drawTriangles, 1, 3},
    {"present", Kind::Method, &present, 0, 0},
    {"setBlendFactors", Kind::Method, &setBlendFactors, 2, 2},
    {"setColorMask", Kind::Method, &setColorMask, 4, 4},
    {"setCulling", Kind::Method, &setCulling, 1, 1},
    {"setDepthTest", Kind::Method, &setDepthTest, 2, 2},
    {"setFillMode", Kind::Method, &doNothing, 1, 1},
    {"setProgram", Kind::Method, &setProgram3D, 1, 1},
    {"setProgramConstantsFromByteArray", Kind::Method, &setConstantsFromBytes, 5, 5},
    {"setProgramConstantsFromMatrix", Kind::Method, &setConstantsFromMatrix, 3, 4},
    {"setProgramConstantsFromVector", Kind::Method, &setConstantsFromVector, 3, 4},
    {"setRenderToBackBuffer", Kind::Method, &setRenderToBackBuffer, 0, 0},
    {"setRenderToTexture", Kind::Method, &setRenderToTexture, 1, 5},
    {"setSamplerStateAt", Kind::Method, &setSamplerStateAt, 4, 4},
    {"setScissorRectangle", Kind::Method, &setScissorRectangle, 1, 1},
    {"setStencilActions", Kind::Method, &setStencilActions, 0, 5},
    {"setStencilReferenceValue", Kind::Method, &setStencilReference, 1, 3},
    {"setTextureAt", Kind::Method, &setTextureAt, 2, 2},
    {"setVertexBufferAt", Kind::Method, &setVertexBufferAt, 2, 4},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.display3D",
     .name = "Context3D",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction,
     .allocate = &allocateNative<Context3DObject>,
     .members = kContext,
     .since = kStage3DSince},
};

} // namespace

std::span<const NativeClass> context3DClasses() { return kClasses; }

} // namespace flash::avm2
