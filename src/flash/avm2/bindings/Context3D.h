#pragma once

#include "flash/avm2/bindings/Fields.h"
#include "flash/render/GpuRaster.h"
#include "flash/swf/Shape.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

// The space behind the stage: what scripts hold of it, for Stage3D.cpp, Context3D.cpp and
// Context3DResources.cpp. All of it is drawn by the processor.
namespace flash::avm2
{

class Context3DObject;

constexpr std::int8_t kStage3DSince = 13; ///< the version of movies that see any of it

/// A place behind the stage that a context's picture is shown in.
class Stage3DObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    Stage3DObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override;
    /// Has the view show what is to be seen now.
    void show(Vm& vm) const;
    Context3DObject* context = nullptr;
    std::shared_ptr<swf::Bitmap> picture; ///< what was presented last
    std::size_t index = 0;                ///< the first lies lowest
    double x = 0, y = 0;                  ///< pixels of the stage
    bool isVisible = true;
    int requests = 0; ///< counts them, so that only the last is answered
};

class VertexBufferObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    VertexBufferObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer.outside(words.size() * sizeof(std::uint32_t));
    }
    std::vector<std::uint32_t> words; ///< empty once disposed of
    std::size_t perVertex = 1;        ///< words
};

class IndexBufferObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    IndexBufferObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer.outside(indices.size() * sizeof(std::uint16_t));
    }
    std::vector<std::uint16_t> indices; ///< empty once disposed of
};

class Program3DObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    Program3DObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer.outside((vertex.steps.size() + fragment.steps.size()) * sizeof(render::GpuStep));
    }
    render::GpuProgram vertex, fragment; ///< without steps until they are uploaded
    [[nodiscard]] bool isReady() const { return !vertex.steps.empty() && !fragment.steps.empty(); }
};

class TextureObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    TextureObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        if (texture) tracer.outside(texture->bytes());
    }
    std::unique_ptr<render::GpuTexture> texture; ///< none once disposed of
    enum class Format : std::uint8_t { Bgra, BgraPacked, BgrPacked, Other } format = Format::Bgra;
};

/// What is cleared, and drawn on.
struct Buffers3D {
    int width = 0, height = 0;
    std::size_t samples = 1;           ///< of a pixel
    std::vector<std::uint32_t> colors; ///< none where those of a texture are drawn on
    std::vector<float> depths;
    std::vector<std::uint8_t> stencils;
    void resize(int newWidth, int newHeight, std::size_t newSamples, bool hasDepth);
    /// What is seen of a pixel, opaque whatever its alpha. @param i counted row by row
    [[nodiscard]] std::uint32_t shown(std::size_t i) const;
    [[nodiscard]] std::size_t bytes() const
    {
        return colors.size() * sizeof(std::uint32_t) + depths.size() * sizeof(float) + stencils.size();
    }
};

class Context3DObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    Context3DObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override;
    struct Stream {
        VertexBufferObject* buffer = nullptr;
        std::size_t offset = 0; ///< words
        render::GpuStream::Format format = render::GpuStream::Format::None;
    };
    static constexpr std::size_t kStreams = 8, kTextures = 8;
    /// Where drawing goes: the back buffer, or a texture's first level.
    [[nodiscard]] render::GpuTarget target();

    Stage3DObject* owner = nullptr; ///< none once disposed of
    Buffers3D back, aside;          ///< aside: what goes with a texture that is drawn on
    TextureObject* drawnOn = nullptr;
    int drawnFace = 0;
    render::GpuState state;
    struct Constants {
        render::GpuConstants vertex{}, fragment{};
    };
    std::unique_ptr<Constants> constants = std::make_unique<Constants>();
    Program3DObject* program = nullptr;
    std::array<Stream, kStreams> streams{};
    std::array<TextureObject*, kTextures> textures{};
    std::array<render::GpuSampling, kTextures> samplings{};
    Value checksErrors = false;
};

/// Of `this`. @throws 3694 for one that was disposed of
Context3DObject& contextSelf(Call& call);
/// The four that a stage has; null for movies from before there were any, which start without them.
Value newStage3Ds(Vm& vm);

// Members of Context3D that make things.
Value createVertexBuffer(Call& call);
Value createIndexBuffer(Call& call);
Value createProgram3D(Call& call);
Value createTexture(Call& call);
Value createCubeTexture(Call& call);
Value createRectangleTexture(Call& call);

// Members of Context3D that say with what and how it draws.
Value setProgram3D(Call& call);
Value setConstantsFromVector(Call& call);
Value setConstantsFromMatrix(Call& call);
Value setConstantsFromBytes(Call& call);
Value setVertexBufferAt(Call& call);
Value setTextureAt(Call& call);
Value setSamplerStateAt(Call& call);
Value setBlendFactors(Call& call);
Value setColorMask(Call& call);
Value setDepthTest(Call& call);
Value setCulling(Call& call);
Value setScissorRectangle(Call& call);
Value setStencilActions(Call& call);
Value setStencilReference(Call& call);

std::span<const NativeClass> context3DClasses();
std::span<const NativeClass> resource3DClasses();

} // namespace flash::avm2
