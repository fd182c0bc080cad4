#include "flash/avm2/bindings/Context3D.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Matrix3D.h"
#include "flash/avm2/classes/ByteArray.h"

#include <algorithm>
#include <bit>

// What a context draws with, and how.
namespace flash::avm2
{

using classes::ByteArrayObject;

namespace
{

/// The place of an argument's text among those that are accepted. @throws 2007, 2008
template <std::size_t count>
std::size_t choice(Call& call, std::uint32_t i, const std::u16string_view (&list)[count], const char* name)
{
    const auto* found = std::ranges::find(list, textArg(call, i, name));
    if (found == std::end(list)) throwNotAccepted(call.vm, name);
    return static_cast<std::size_t>(found - list);
}
template <class T, std::size_t count>
T choiceOf(Call& call, std::uint32_t i, const std::u16string_view (&list)[count], const char* name,
           T otherwise)
{
    return call.has(i) ? static_cast<T>(choice(call, i, list, name)) : otherwise;
}
std::uint32_t placeArg(Call& call, std::uint32_t i, std::size_t count, const char* text)
{
    const std::uint32_t place = call.vm.toUint(call.arg(i));
    if (place >= count) call.vm.throwError(ErrorClass::Range, 2006, text);
    return place;
}

render::GpuConstants& constantsOf(Context3DObject& self, std::size_t isVertex)
{
    return isVertex != 0 ? self.constants->vertex : self.constants->fragment;
}

constexpr std::u16string_view kProgramTypes[] = {u"fragment", u"vertex"};

/// @throws 2006 when so many registers are not there
void checkRegisters(Vm& vm, std::uint32_t first, std::size_t count)
{
    if (first > render::GpuProgram::kConstants || count > render::GpuProgram::kConstants - first)
        vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
}

constexpr std::u16string_view kCompares[] = {u"always", u"never",        u"less",    u"lessEqual",
                                             u"equal",  u"greaterEqual", u"greater", u"notEqual"};

constexpr std::u16string_view kFaces[] = {u"none", u"back", u"front", u"frontAndBack"};

} // namespace

// ---- what is drawn with -----------------------------------------------------------------------------------

Value setProgram3D(Call& call)
{
    auto* program = as<Program3DObject>(Value(objectArg(call, 0, "flash.display3D::Program3D")));
    auto& self = contextSelf(call);
    self.program = program;
    if (program == nullptr) return {};
    // Programs say how they sample, but for those that leave that to the context.
    for (const render::GpuStep& step : program->fragment.steps) {
        if (step.op == render::GpuOp::Tex && !step.keepsState && step.sampler < Context3DObject::kTextures)
            self.samplings[step.sampler] = step.sampling;
    }
    return {};
}

Value setConstantsFromVector(Call& call)
{
    Vm& vm = call.vm;
    const std::size_t type = choice(call, 0, kProgramTypes, "programType");
    const std::uint32_t first = vm.toUint(call.arg(1));
    const Value given = vm.coerce(call.arg(2), vm.vectorOf(vm.classes().number->instances)->instances);
    const int wanted = call.has(3) ? vm.toInt(call.arg(3)) : -1;
    auto& constants = constantsOf(contextSelf(call), type);
    if (given.isNullish()) throwNullParameter(vm, "data");
    const auto& list = *as<VectorObject>(given);
    const std::size_t count = wanted < 0 ? list.items.size() / 4 : static_cast<std::size_t>(wanted);
    checkRegisters(vm, first, count);
    if (list.items.size() / 4 < count)
        vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
    for (std::size_t i = 0; i < 4 * count; ++i)
        constants[first + i / 4][i % 4] = static_cast<float>(vm.toNumber(list.items[i]));
    return {};
}
Value setConstantsFromMatrix(Call& call)
{
    Vm& vm = call.vm;
    const std::size_t type = choice(call, 0, kProgramTypes, "programType");
    const std::uint32_t first = vm.toUint(call.arg(1));
    const bool isTransposed = call.has(3) && vm.toBoolean(call.arg(3));
    const space::Raw raw = space::matrixArg(call, 2, "matrix").raw;
    auto& constants = constantsOf(contextSelf(call), type);
    checkRegisters(vm, first, 4);
    for (std::size_t i = 0; i < raw.size(); ++i)
        constants[first + i / 4][i % 4] = raw[isTransposed ? i % 4 * 4 + i / 4 : i];
    return {};
}
Value setConstantsFromBytes(Call& call)
{
    Vm& vm = call.vm;
    const std::size_t type = choice(call, 0, kProgramTypes, "programType");
    const std::uint32_t first = vm.toUint(call.arg(1));
    const int wanted = vm.toInt(call.arg(2));
    const std::uint32_t from = vm.toUint(call.arg(4));
    auto& bytes = *as<ByteArrayObject>(&objectArg(call, 3, "flash.utils::ByteArray", "data"));
    auto& constants = constantsOf(contextSelf(call), type);
    constexpr std::size_t kRegister = 4 * sizeof(float);
    const std::size_t left = from < bytes.content.size() ? bytes.content.size() - from : 0;
    const std::size_t count = wanted < 0 ? left / kRegister : static_cast<std::size_t>(wanted);
    checkRegisters(vm, first, count);
    if (left / kRegister < count)
        vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
    for (std::size_t i = 0; i < 4 * count; ++i) {
        const std::uint8_t* at = bytes.content.data() + from + i * sizeof(float);
        constants[first + i / 4][i % 4] = std::bit_cast<float>(at[0] | at[1] << 8U | at[2] << 16U |
                                                               static_cast<std::uint32_t>(at[3]) << 24U);
    }
    return {};
}

Value setVertexBufferAt(Call& call)
{
    Vm& vm = call.vm;
    static constexpr std::u16string_view kFormats[] = {u"",       u"float1", u"float2",
                                                       u"float3", u"float4", u"bytes4"};
    using Format = render::GpuStream::Format;
    const std::uint32_t place =
        placeArg(call, 0, Context3DObject::kStreams, "The supplied index is out of bounds.");
    Object* given = objectArg(call, 1, "flash.display3D::VertexBuffer3D");
    const std::uint32_t offset = call.has(2) ? vm.toUint(call.arg(2)) : 0;
    Format format = Format::Float4;
    if (given != nullptr) {
        format = choiceOf(call, 3, kFormats, "vertexStreamFormat", Format::Float4);
        if (format == Format::None) throwNotAccepted(vm, "vertexStreamFormat");
    }
    auto* buffer = given != nullptr ? as<VertexBufferObject>(Value(given)) : nullptr;
    contextSelf(call).streams[place] = {buffer, offset, buffer != nullptr ? format : Format::None};
    return {};
}

Value setTextureAt(Call& call)
{
    const std::uint32_t place =
        placeArg(call, 0, Context3DObject::kTextures, "The supplied index is out of bounds.");
    Object* given = objectArg(call, 1, "flash.display3D.textures::TextureBase");
    contextSelf(call).textures[place] = given != nullptr ? as<TextureObject>(Value(given)) : nullptr;
    return {};
}

Value setSamplerStateAt(Call& call)
{
    static constexpr std::u16string_view kWraps[] = {u"clamp", u"repeat", u"clamp_u_repeat_v",
                                                     u"repeat_u_clamp_v"};
    static constexpr std::u16string_view kFilters[] = {u"nearest",       u"linear",        u"anisotropic2x",
                                                       u"anisotropic4x", u"anisotropic8x", u"anisotropic16x"};
    static constexpr std::u16string_view kMips[] = {u"mipnone", u"mipnearest", u"miplinear"};
    const std::uint32_t place =
        placeArg(call, 0, Context3DObject::kTextures, "The supplied index is out of bounds.");
    const std::size_t wrap = choice(call, 1, kWraps, "wrap");
    const std::size_t filter = choice(call, 2, kFilters, "filter");
    const std::size_t mips = choice(call, 3, kMips, "mipfilter");
    render::GpuSampling& how = contextSelf(call).samplings[place];
    how.repeatsU = wrap == 1 || wrap == 3;
    how.repeatsV = wrap == 1 || wrap == 2;
    how.filter = filter == 0 ? render::GpuFilter::Nearest : render::GpuFilter::Linear;
    how.mips = static_cast<render::GpuMips>(mips);
    how.bias = 0;
    return {};
}

// ---- how it is drawn --------------------------------------------------------------------------------------

Value setBlendFactors(Call& call)
{
    static constexpr std::u16string_view kFactors[] = {u"zero",
                                                       u"one",
                                                       u"sourceColor",
                                                       u"oneMinusSourceColor",
                                                       u"sourceAlpha",
                                                       u"oneMinusSourceAlpha",
                                                       u"destinationAlpha",
                                                       u"oneMinusDestinationAlpha",
                                                       u"destinationColor",
                                                       u"oneMinusDestinationColor"};
    const std::size_t source = choice(call, 0, kFactors, "sourceFactor");
    const std::size_t destination = choice(call, 1, kFactors, "destinationFactor");
    render::GpuState& state = contextSelf(call).state;
    state.source = static_cast<render::GpuBlend>(source);
    state.destination = static_cast<render::GpuBlend>(destination);
    return {};
}
Value setColorMask(Call& call)
{
    constexpr std::array<std::uint32_t, 4> kChannels = {0xFF0000U, 0xFF00U, 0xFFU, 0xFF000000U};
    std::uint32_t mask = 0;
    for (std::uint32_t i = 0; i < kChannels.size(); ++i)
        mask |= call.vm.toBoolean(call.arg(i)) ? kChannels[i] : 0;
    contextSelf(call).state.colorMask = mask;
    return {};
}

Value setDepthTest(Call& call)
{
    const bool writes = call.vm.toBoolean(call.arg(0));
    const std::size_t compare = choice(call, 1, kCompares, "passCompareMode");
    render::GpuState& state = contextSelf(call).state;
    state.writesDepth = writes;
    state.depthCompare = static_cast<render::GpuCompare>(compare);
    return {};
}
/// Fronts are seen with their corners running clockwise.
Value setCulling(Call& call)
{
    const std::size_t face = choice(call, 0, kFaces, "triangleFaceToCull");
    render::GpuState& state = contextSelf(call).state;
    state.cullsOthers = (face & 1U) != 0;
    state.cullsClockwise = (face & 2U) != 0;
    return {};
}
Value setScissorRectangle(Call& call)
{
    Object* given = objectArg(call, 0, "flash.geom::Rectangle");
    auto& self = contextSelf(call);
    self.state.scissor.reset();
    if (given != nullptr) self.state.scissor = pixelsOf(*given);
    return {};
}
Value setStencilActions(Call& call)
{
    static constexpr std::u16string_view kActions[] = {
        u"keep",          u"zero",   u"set", u"incrementSaturate", u"incrementWrap", u"decrementSaturate",
        u"decrementWrap", u"invert",
    };
    using render::GpuStencilAction;
    const auto face = choiceOf<std::size_t>(call, 0, kFaces, "triangleFace", 3);
    render::GpuStencil stencil;
    stencil.compare = choiceOf(call, 1, kCompares, "compareMode", render::GpuCompare::Always);
    stencil.pass = choiceOf(call, 2, kActions, "actionOnBothPass", GpuStencilAction::Keep);
    stencil.depthFails = choiceOf(call, 3, kActions, "actionOnDepthFail", GpuStencilAction::Keep);
    stencil.fails = choiceOf(call, 4, kActions, "actionOnDepthPassStencilFail", GpuStencilAction::Keep);
    render::GpuState& state = contextSelf(call).state;
    if (face & 2U) state.stencil[0] = stencil;
    if (face & 1U) state.stencil[1] = stencil;
    return {};
}
Value setStencilReference(Call& call)
{
    std::array<std::uint32_t, 3> numbers = {0, 255, 255};
    for (std::uint32_t i = 0; i < numbers.size(); ++i) {
        if (call.has(i)) numbers[i] = call.vm.toUint(call.arg(i));
    }
    render::GpuState& state = contextSelf(call).state;
    state.stencilReference = static_cast<std::uint8_t>(numbers[0]);
    state.stencilReadMask = static_cast<std::uint8_t>(numbers[1]);
    state.stencilWriteMask = static_cast<std::uint8_t>(numbers[2]);
    return {};
}

} // namespace flash::avm2
