#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Context3D.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Events.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/render/PackedTexture.h"

#include <algorithm>
#include <bit>

// Buffers, textures and programs: what scripts upload to be drawn.
namespace flash::avm2
{

using classes::allocateNative;
using classes::ByteArrayObject;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

constexpr std::uint32_t kMaxVertices = 65535, kMaxWords = 64, kMaxIndices = 983040;

[[noreturn]] void fail(Vm& vm, int number, const char* text)
{
    vm.throwError(ErrorClass::Error, number, text);
}
[[noreturn]] void outOfRange(Vm& vm)
{
    vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
}
template <class T>
T* make(Vm& vm, std::string_view name)
{
    return as<T>(Value(vm.instantiate(vm.nativeClass(name))));
}

// What arguments are converted to may be scripts' own doing, which may dispose of what they are for: all are
// converted before anything is looked at.

/// A part of a buffer, by two arguments.
struct Part {
    Part(Call& call, std::uint32_t i)
        : from(call.vm.toUint(call.arg(i))), count(call.vm.toUint(call.arg(i + 1)))
    {
    }
    void check(Vm& vm, std::size_t size) const
    {
        if (from > size || count > size - from) outOfRange(vm);
    }
    std::size_t from, count;
};

ByteArrayObject& bytesArg(Call& call)
{
    return *as<ByteArrayObject>(&objectArg(call, 0, "flash.utils::ByteArray", "byteArray"));
}
/// @throws 2006 when there are fewer
std::span<const std::uint8_t> bytesFrom(Vm& vm, const ByteArrayObject& bytes, std::size_t from,
                                        std::size_t wanted)
{
    if (from > bytes.content.size() || wanted > bytes.content.size() - from) outOfRange(vm);
    return std::span<const std::uint8_t>(bytes.content).subspan(from, wanted);
}
/// Numbers: reading them runs nothing.
const VectorObject& vectorArg(Call& call, std::uint32_t i, Traits* element)
{
    const Value list = call.vm.coerce(call.arg(i), call.vm.vectorOf(element)->instances);
    if (list.isNullish()) throwNullParameter(call.vm, "data");
    return *as<VectorObject>(list);
}
std::uint32_t little32(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return bytes[at] | bytes[at + 1] << 8U | bytes[at + 2] << 16U |
           static_cast<std::uint32_t>(bytes[at + 3]) << 24U;
}

// ---- corners ----------------------------------------------------------------------------------------------

VertexBufferObject& vertexSelf(Call& call)
{
    return selfAs<VertexBufferObject>(call, "flash.display3D.VertexBuffer3D");
}
Value uploadVertices(Call& call)
{
    Vm& vm = call.vm;
    const VectorObject& list = vectorArg(call, 0, vm.classes().number->instances);
    const Part part(call, 1);
    auto& self = vertexSelf(call);
    part.check(vm, self.words.size() / self.perVertex);
    if (list.items.size() < part.count * self.perVertex) outOfRange(vm);
    for (std::size_t i = 0; i < part.count * self.perVertex; ++i)
        self.words[part.from * self.perVertex + i] =
            std::bit_cast<std::uint32_t>(static_cast<float>(vm.toNumber(list.items[i])));
    return {};
}
Value uploadVertexBytes(Call& call)
{
    Vm& vm = call.vm;
    const ByteArrayObject& given = bytesArg(call);
    const std::uint32_t offset = vm.toUint(call.arg(1));
    const Part part(call, 2);
    auto& self = vertexSelf(call);
    part.check(vm, self.words.size() / self.perVertex);
    const std::size_t count = part.count * self.perVertex;
    const auto bytes = bytesFrom(vm, given, offset, count * sizeof(std::uint32_t));
    for (std::size_t i = 0; i < count; ++i)
        self.words[part.from * self.perVertex + i] = little32(bytes, i * sizeof(std::uint32_t));
    return {};
}
Value disposeVertices(Call& call)
{
    vertexSelf(call).words.clear();
    return {};
}

IndexBufferObject& indexSelf(Call& call)
{
    return selfAs<IndexBufferObject>(call, "flash.display3D.IndexBuffer3D");
}
Value uploadIndices(Call& call)
{
    Vm& vm = call.vm;
    const VectorObject& list = vectorArg(call, 0, vm.classes().uinteger->instances);
    const Part part(call, 1);
    auto& self = indexSelf(call);
    part.check(vm, self.indices.size());
    if (list.items.size() < part.count) outOfRange(vm);
    for (std::size_t i = 0; i < part.count; ++i)
        self.indices[part.from + i] = static_cast<std::uint16_t>(vm.toUint(list.items[i]));
    return {};
}
Value uploadIndexBytes(Call& call)
{
    Vm& vm = call.vm;
    const ByteArrayObject& given = bytesArg(call);
    const std::uint32_t offset = vm.toUint(call.arg(1));
    const Part part(call, 2);
    auto& self = indexSelf(call);
    part.check(vm, self.indices.size());
    const auto bytes = bytesFrom(vm, given, offset, part.count * sizeof(std::uint16_t));
    for (std::size_t i = 0; i < part.count; ++i)
        self.indices[part.from + i] = static_cast<std::uint16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8U);
    return {};
}
Value disposeIndices(Call& call)
{
    indexSelf(call).indices.clear();
    return {};
}

// ---- programs ---------------------------------------------------------------------------------------------

Program3DObject& programSelf(Call& call)
{
    return selfAs<Program3DObject>(call, "flash.display3D.Program3D");
}
Value uploadProgram(Call& call)
{
    Vm& vm = call.vm;
    auto& self = programSelf(call);
    auto& vertex = *as<ByteArrayObject>(&objectArg(call, 0, "flash.utils::ByteArray", "vertexProgram"));
    auto& fragment = *as<ByteArrayObject>(&objectArg(call, 1, "flash.utils::ByteArray", "fragmentProgram"));
    if (!vertex.isLittle || !fragment.isLittle) fail(vm, 3612, "Programs must be in little endian format.");
    render::GpuProgram first, second;
    auto fault = render::parseGpuProgram(vertex.content, render::GpuStage::Vertex, first);
    if (!fault) fault = render::parseGpuProgram(fragment.content, render::GpuStage::Fragment, second);
    if (!fault) fault = render::checkGpuLinkage(first, second);
    if (fault) vm.throwError(ErrorClass::Error, fault->number, fault->text);
    self.vertex = std::move(first);
    self.fragment = std::move(second);
    return {};
}
Value disposeProgram(Call& call)
{
    programSelf(call).vertex = {};
    programSelf(call).fragment = {};
    return {};
}

// ---- textures ---------------------------------------------------------------------------------------------

TextureObject& textureSelf(Call& call)
{
    auto& self = selfAs<TextureObject>(call, "flash.display3D.textures.TextureBase");
    if (!self.texture) fail(call.vm, 3694, "The object was disposed by an earlier call of dispose() on it.");
    return self;
}
/// @param side of a cube; 0 for all else
render::GpuTexture::Level& levelOf(Vm& vm, TextureObject& self, int side, std::uint32_t level)
{
    if (side < 0 || side >= (self.texture->isCube() ? 6 : 1)) fail(vm, 3673, "Cube side must be [0..5].");
    if (level >= static_cast<std::uint32_t>(self.texture->levels())) fail(vm, 3674, "Miplevel too large.");
    return self.texture->level(side, static_cast<int>(level));
}
/// @param sides 1 where an argument names the side of a cube
Value uploadPicture(Call& call, std::uint32_t sides)
{
    Vm& vm = call.vm;
    const auto bitmap = pictureArg(call, 0, "source");
    const int side = sides > 0 ? vm.toInt(call.arg(1)) : 0;
    const std::uint32_t number = vm.toUint(call.arg(1 + sides));
    auto& level = levelOf(vm, textureSelf(call), side, number);
    const int width = std::min(level.width, bitmap->width), height = std::min(level.height, bitmap->height);
    for (int y = 0; y < height; ++y) {
        const std::size_t from = static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap->width);
        const std::size_t to = static_cast<std::size_t>(y) * static_cast<std::size_t>(level.width);
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x)
            level.pixels[to + x] = bitmap->pixels[from + x] | (bitmap->opaque ? 0xFF000000U : 0U);
    }
    return {};
}
Value uploadBitmap(Call& call) { return uploadPicture(call, 0); }
Value uploadSide(Call& call) { return uploadPicture(call, 1); }

std::uint32_t expanded(std::uint32_t word, unsigned shift, unsigned bits)
{
    const std::uint32_t most = (1U << bits) - 1;
    return ((word >> shift & most) * 255 + most / 2) / most;
}
std::uint32_t pixelOf(TextureObject::Format format, std::span<const std::uint8_t> bytes, std::size_t i)
{
    if (format == TextureObject::Format::Bgra) return little32(bytes, 4 * i);
    const auto word = static_cast<std::uint32_t>(bytes[2 * i] | bytes[2 * i + 1] << 8U);
    if (format == TextureObject::Format::BgrPacked)
        return 0xFF000000U | expanded(word, 11, 5) << 16U | expanded(word, 5, 6) << 8U | expanded(word, 0, 5);
    return expanded(word, 12, 4) << 24U | expanded(word, 8, 4) << 16U | expanded(word, 4, 4) << 8U |
           expanded(word, 0, 4);
}
Value uploadPixels(Call& call, std::uint32_t sides)
{
    Vm& vm = call.vm;
    const ByteArrayObject& given = bytesArg(call);
    const std::uint32_t offset = vm.toUint(call.arg(1));
    const int side = sides > 0 ? vm.toInt(call.arg(2)) : 0;
    const std::uint32_t number = vm.toUint(call.arg(2 + sides));
    auto& self = textureSelf(call);
    if (self.format == TextureObject::Format::Other) fail(vm, 3675, "Texture format mismatch.");
    auto& level = levelOf(vm, self, side, number);
    const std::size_t size = self.format == TextureObject::Format::Bgra ? 4 : 2;
    const auto bytes = bytesFrom(vm, given, offset, level.pixels.size() * size);
    for (std::size_t i = 0; i < level.pixels.size(); ++i) level.pixels[i] = pixelOf(self.format, bytes, i);
    return {};
}
Value uploadBytes(Call& call) { return uploadPixels(call, 0); }
Value uploadSideBytes(Call& call) { return uploadPixels(call, 1); }
/// What only some graphics cards or a photograph's codec would read is refused.
Value uploadPacked(Call& call)
{
    Vm& vm = call.vm;
    const ByteArrayObject& given = bytesArg(call);
    const std::uint32_t offset = vm.toUint(call.arg(1));
    const bool isLater = vm.toBoolean(call.arg(2));
    TextureObject& self = textureSelf(call);
    const std::span<const std::uint8_t> content(given.content);
    switch (render::unpackTexture(content.subspan(std::min<std::size_t>(offset, content.size())),
                                  *self.texture)) {
    case render::Unpacking::Done: break;
    case render::Unpacking::Mismatch: fail(vm, 3675, "Texture format mismatch.");
    case render::Unpacking::Damaged:
    case render::Unpacking::Foreign: fail(vm, 3677, "Texture decoding failed. Internal error.");
    }
    if (!isLater) return {};
    const auto held = std::make_shared<Root<Object>>(vm.heap(), &self);
    Player::of(vm).later(
        [&vm, held] { fire(vm, *static_cast<TextureObject*>(held->get()), "textureReady"); });
    return {};
}
Value disposeTexture(Call& call)
{
    selfAs<TextureObject>(call, "flash.display3D.textures.TextureBase").texture.reset();
    return {};
}

Value newTexture(Call& call, std::string_view cls, int width, int height, int faces,
                 std::u16string_view format)
{
    Vm& vm = call.vm;
    if (width == 0 || height == 0) fail(vm, 3681, "Texture size is zero.");
    constexpr int kMaxSide = render::GpuTexture::kMaxSide;
    if (width < 0 || height < 0 || width > kMaxSide || height > kMaxSide)
        vm.throwError(ErrorClass::Error, 3683,
                      "Texture too big (max is " + std::to_string(kMaxSide) + "x" + std::to_string(kMaxSide) +
                          ").");
    using Format = TextureObject::Format;
    static constexpr std::u16string_view kFormats[] = {u"bgra", u"bgraPacked4444", u"bgrPacked565"};
    static constexpr std::u16string_view kOthers[] = {u"compressed", u"compressedAlpha", u"rgbaHalfFloat"};
    const auto* found = std::ranges::find(kFormats, format);
    if (found == std::end(kFormats) && std::ranges::find(kOthers, format) == std::end(kOthers))
        throwNotAccepted(vm, "textureFormat");
    auto* made = make<TextureObject>(vm, cls);
    made->format = found != std::end(kFormats) ? static_cast<Format>(found - kFormats) : Format::Other;
    made->texture = std::make_unique<render::GpuTexture>(width, height, faces);
    constexpr std::size_t kLevels = 2; // all but the first are smaller than it together
    vm.heap().noteExternalBytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                                static_cast<std::size_t>(faces) * sizeof(std::uint32_t) * kLevels);
    return Value(made);
}
bool isPower(int size) { return size > 0 && std::has_single_bit(static_cast<unsigned>(size)); }

// ---- tables -----------------------------------------------------------------------------------------------

constexpr NativeMember kVertexBuffer[] = {
    {"uploadFromVector", Kind::Method, &uploadVertices, 3, 3},
    {"uploadFromByteArray", Kind::Method, &uploadVertexBytes, 4, 4},
    {"dispose", Kind::Method, &disposeVertices, 0, 0},
};
constexpr NativeMember kIndexBuffer[] = {
    {"uploadFromVector", Kind::Method, &uploadIndices, 3, 3},
    {"uploadFromByteArray", Kind::Method, &uploadIndexBytes, 4, 4},
    {"dispose", Kind::Method, &disposeIndices, 0, 0},
};
constexpr NativeMember kProgram[] = {
    {"upload", Kind::Method, &uploadProgram, 2, 2},
    {"dispose", Kind::Method, &disposeProgram, 0, 0},
};
constexpr NativeMember kTextureBase[] = {{"dispose", Kind::Method, &disposeTexture, 0, 0}};
constexpr NativeMember kTexture[] = {
    {"uploadFromBitmapData", Kind::Method, &uploadBitmap, 1, 2},
    {"uploadFromByteArray", Kind::Method, &uploadBytes, 2, 3},
    {"uploadCompressedTextureFromByteArray", Kind::Method, &uploadPacked, 2, 3},
};
constexpr NativeMember kCubeTexture[] = {
    {"uploadFromBitmapData", Kind::Method, &uploadSide, 2, 3},
    {"uploadFromByteArray", Kind::Method, &uploadSideBytes, 3, 4},
    {"uploadCompressedTextureFromByteArray", Kind::Method, &uploadPacked, 2, 3},
};
constexpr NativeMember kRectangleTexture[] = {
    {"uploadFromBitmapData", Kind::Method, &uploadBitmap, 1, 1},
    {"uploadFromByteArray", Kind::Method, &uploadBytes, 2, 2},
};
constexpr NativeClass resource(std::string_view package, std::string_view name, std::string_view base,
                               Allocator allocate, std::span<const NativeMember> members)
{
    return {.package = package,
            .name = name,
            .base = base,
            .flags = NativeClass::Sealed,
            .constructor = &refuseConstruction,
            .allocate = allocate,
            .members = members,
            .since = kStage3DSince};
}
constexpr std::string_view kTextures = "flash.display3D.textures",
                           kBase = "flash.display3D.textures::TextureBase";
constexpr NativeClass kClasses[] = {
    resource("flash.display3D", "VertexBuffer3D", {}, &allocateNative<VertexBufferObject>, kVertexBuffer),
    resource("flash.display3D", "IndexBuffer3D", {}, &allocateNative<IndexBufferObject>, kIndexBuffer),
    resource("flash.display3D", "Program3D", {}, &allocateNative<Program3DObject>, kProgram),
    resource(kTextures, "TextureBase", "flash.events::EventDispatcher", &allocateNative<TextureObject>,
             kTextureBase),
    resource(kTextures, "Texture", kBase, &allocateNative<TextureObject>, kTexture),
    resource(kTextures, "CubeTexture", kBase, &allocateNative<TextureObject>, kCubeTexture),
    resource(kTextures, "RectangleTexture", kBase, &allocateNative<TextureObject>, kRectangleTexture),
};

} // namespace

Value createVertexBuffer(Call& call)
{
    Vm& vm = call.vm;
    contextSelf(call);
    const std::uint32_t count = vm.toUint(call.arg(0)), words = vm.toUint(call.arg(1));
    if (count == 0 || words == 0) fail(vm, 3671, "Buffer has zero size.");
    if (count > kMaxVertices || words > kMaxWords) fail(vm, 3670, "Buffer too big.");
    auto* made = make<VertexBufferObject>(vm, "flash.display3D::VertexBuffer3D");
    made->perVertex = words;
    made->words.resize(std::size_t{count} * words);
    vm.heap().noteExternalBytes(made->words.size() * sizeof(std::uint32_t));
    return Value(made);
}

Value createIndexBuffer(Call& call)
{
    Vm& vm = call.vm;
    contextSelf(call);
    const std::uint32_t count = vm.toUint(call.arg(0));
    if (count == 0) fail(vm, 3671, "Buffer has zero size.");
    if (count > kMaxIndices) fail(vm, 3670, "Buffer too big.");
    auto* made = make<IndexBufferObject>(vm, "flash.display3D::IndexBuffer3D");
    made->indices.resize(count);
    vm.heap().noteExternalBytes(made->indices.size() * sizeof(std::uint16_t));
    return Value(made);
}

Value createProgram3D(Call& call)
{
    contextSelf(call);
    return Value(make<Program3DObject>(call.vm, "flash.display3D::Program3D"));
}

Value createTexture(Call& call)
{
    const int width = call.vm.toInt(call.arg(0)), height = call.vm.toInt(call.arg(1));
    const std::u16string format = textArg(call, 2, "textureFormat");
    contextSelf(call);
    if (width > 0 && height > 0 && !(isPower(width) && isPower(height)))
        fail(call.vm, 3682, "Texture size not a power of two.");
    return newTexture(call, "flash.display3D.textures::Texture", width, height, 1, format);
}

Value createCubeTexture(Call& call)
{
    constexpr int kFaces = 6;
    const int size = call.vm.toInt(call.arg(0));
    const std::u16string format = textArg(call, 1, "textureFormat");
    contextSelf(call);
    if (size > 0 && !isPower(size)) fail(call.vm, 3682, "Texture size not a power of two.");
    return newTexture(call, "flash.display3D.textures::CubeTexture", size, size, kFaces, format);
}

Value createRectangleTexture(Call& call)
{
    const int width = call.vm.toInt(call.arg(0)), height = call.vm.toInt(call.arg(1));
    const std::u16string format = textArg(call, 2, "textureFormat");
    contextSelf(call);
    return newTexture(call, "flash.display3D.textures::RectangleTexture", width, height, 1, format);
}

std::span<const NativeClass> resource3DClasses() { return kClasses; }

} // namespace flash::avm2
