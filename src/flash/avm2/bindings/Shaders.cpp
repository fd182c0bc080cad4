#include "flash/avm2/bindings/Shaders.h"

#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/ShaderObjects.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/guard/Guard.h"
#include "flash/render/ShaderRun.h"

#include <algorithm>
#include <cstring>

// Kernels as scripts have them: what describes them, what they are given, and jobs that run them.
namespace flash::avm2
{

using classes::allocateNative;
using classes::ByteArrayObject;
using classes::selfAs;
using Kind = NativeMember::Kind;
using render::ShaderType;

namespace
{

constexpr std::string_view kTypeNames[] = {
    "",     "float", "float2", "float3", "float4", "matrix2x2", "matrix3x3", "matrix4x4", "int",
    "int2", "int3",  "int4",   "string", "bool",   "bool2",     "bool3",     "bool4"};

[[noreturn]] void badInput(Vm& vm, int number, const std::string& name)
{
    const char* what = number == 2164   ? " is missing or an unsupported type."
                       : number == 2165 ? " does not have enough data."
                                        : " lacks valid dimensions.";
    vm.throwError(ErrorClass::Argument, number, "The Shader input " + name + what);
}
[[noreturn]] void badOutput(Vm& vm)
{
    vm.throwError(ErrorClass::Argument, 2162, "The Shader output type is not compatible for this operation.");
}

Value numberOf(ShaderType type, double number)
{
    return render::isBool(type) ? Value(number != 0) : Value(number);
}
Value listOf(Vm& vm, ShaderType type, const std::vector<double>& numbers)
{
    auto* list = static_cast<ArrayObject*>(vm.newArray());
    Root<Object> keep(vm.heap(), list);
    for (const double number : numbers) list->push(vm, numberOf(type, number));
    return Value(list);
}
enum class Of : std::uint8_t { Kernel, Parameter };
void describe(Vm& vm, Object& object, const std::vector<render::ShaderMetadata>& metadata, Of of)
{
    for (const render::ShaderMetadata& m : metadata) {
        const Name key = vm.name(std::u16string_view(fromUtf8(m.key)));
        const Value value = m.type == ShaderType::String                ? Value(vm.string(fromUtf8(m.text)))
                            : of == Of::Kernel && m.numbers.size() == 1 ? numberOf(m.type, m.numbers.front())
                                                                        : listOf(vm, m.type, m.numbers);
        vm.set(Value(&object), vm.publicName(key), value);
    }
}
template <class T>
T* makeNative(Vm& vm, std::string_view name)
{
    return as<T>(Value(vm.instantiate(vm.nativeClass(name))));
}

// ---- what describes a kernel ------------------------------------------------------------------------------

void addInput(Vm& vm, ShaderDataObject& data, const render::ShaderTexture& texture)
{
    auto* made = makeNative<ShaderInputObject>(vm, "flash.display::ShaderInput");
    data.inputs.push_back(made);
    made->channels = texture.channels;
    made->index = texture.index;
    const std::u16string name = fromUtf8(texture.name);
    vm.setPublic(Value(made), "name", Value(vm.string(name)));
    describe(vm, *made, texture.metadata, Of::Parameter);
    vm.set(Value(&data), vm.publicName(vm.name(std::u16string_view(name))), Value(made));
}
void addParameter(Vm& vm, ShaderDataObject& data, std::size_t number)
{
    const render::ShaderParameter& parameter = data.program->parameters[number];
    auto* made = makeNative<ShaderParameterObject>(vm, "flash.display::ShaderParameter");
    made->index = static_cast<int>(data.parameters.size());
    data.parameters.push_back(made);
    made->type = parameter.type;
    made->number = number;
    const std::u16string name = fromUtf8(parameter.name);
    vm.setPublic(Value(made), "name", Value(vm.string(name)));
    describe(vm, *made, parameter.metadata, Of::Parameter);
    const auto initial = std::ranges::find(parameter.metadata, "defaultValue", &render::ShaderMetadata::key);
    std::vector<double> numbers;
    if (initial != parameter.metadata.end()) numbers = initial->numbers;
    numbers.resize(parameter.size());
    made->value = listOf(vm, parameter.type, numbers);
    vm.set(Value(&data), vm.publicName(vm.name(std::u16string_view(name))), Value(made));
}

Value constructData(Call& call)
{
    Vm& vm = call.vm;
    auto& self = selfAs<ShaderDataObject>(call, "flash.display.ShaderData");
    auto* bytes = as<ByteArrayObject>(call.arg(0));
    if (bytes == nullptr) throwNullParameter(vm, "byteCode");
    auto parsed = render::parseShader(bytes->content);
    if (!parsed) throwInvalidShader(vm);
    self.program = std::make_shared<const render::ShaderProgram>(std::move(*parsed));
    self.inputs.clear();
    self.parameters.clear();
    vm.setPublic(call.self, "name", Value(vm.string(fromUtf8(self.program->name))));
    describe(vm, self, self.program->metadata, Of::Kernel);
    const auto program = self.program;
    for (const render::ShaderTexture& texture : program->textures) addInput(vm, self, texture);
    for (std::size_t i = 0; i < program->parameters.size(); ++i) {
        const render::ShaderParameter& p = program->parameters[i];
        if (!p.isOutput && p.name != render::kShaderPlace) addParameter(vm, self, i);
    }
    return {};
}

ShaderInputObject& inputSelf(Call& call)
{
    return selfAs<ShaderInputObject>(call, "flash.display.ShaderInput");
}
template <int ShaderInputObject::*member>
Value inputNumber(Call& call)
{
    return inputSelf(call).*member;
}
template <int ShaderInputObject::*member>
Value setInputNumber(Call& call)
{
    const int value = call.vm.toInt(call.arg(0));
    inputSelf(call).*member = value;
    return {};
}
Value input(Call& call) { return inputSelf(call).input; }
Value setInput(Call& call)
{
    inputSelf(call).input = call.arg(0).isNullish() ? Value::null() : call.arg(0);
    return {};
}

ShaderParameterObject& parameterSelf(Call& call)
{
    return selfAs<ShaderParameterObject>(call, "flash.display.ShaderParameter");
}
Value parameterType(Call& call)
{
    return call.vm.string(kTypeNames[static_cast<std::size_t>(parameterSelf(call).type)]);
}
Value parameterIndex(Call& call) { return parameterSelf(call).index; }
Value parameterValue(Call& call) { return parameterSelf(call).value; }
Value setParameterValue(Call& call)
{
    const Value value = call.vm.coerce(call.arg(0), call.vm.classes().array->instances);
    parameterSelf(call).value = value;
    return {};
}

// ---- Shader -----------------------------------------------------------------------------------------------

ShaderObject& shaderSelf(Call& call) { return selfAs<ShaderObject>(call, "flash.display.Shader"); }
Value setByteCode(Call& call)
{
    const Value args[] = {Value(objectArg(call, 0, "flash.utils::ByteArray"))};
    const Value data = call.vm.construct(Value(call.vm.nativeClass("flash.display::ShaderData")),
                                         std::span<const Value>(args));
    shaderSelf(call).data = data;
    return {};
}
Value constructShader(Call& call)
{
    if (!call.arg(0).isNullish()) setByteCode(call);
    return {};
}
Value shaderData(Call& call) { return shaderSelf(call).data; }
Value setShaderData(Call& call)
{
    Object* data = objectArg(call, 0, "flash.display::ShaderData");
    shaderSelf(call).data = data != nullptr ? Value(data) : Value::null();
    return {};
}
Value precisionHint(Call& call) { return call.vm.string(shaderSelf(call).isFast ? "fast" : "full"); }
Value setPrecisionHint(Call& call)
{
    const std::u16string hint = textArg(call, 0, "precisionHint");
    if (hint != u"fast" && hint != u"full") throwNotAccepted(call.vm, "precisionHint");
    shaderSelf(call).isFast = hint == u"fast";
    return {};
}

// ---- what a kernel is given -------------------------------------------------------------------------------

render::ShaderImage imageOf(Vm& vm, const ShaderInputObject& input, const std::string& name)
{
    render::ShaderImage image;
    if (const auto* data = as<BitmapDataObject>(input.input)) {
        image.bitmap = picture(vm, *data);
        image.width = image.bitmap->width;
        image.height = image.bitmap->height;
        return image;
    }
    const auto* bytes = as<ByteArrayObject>(input.input);
    const auto* vector = as<VectorObject>(input.input);
    const bool isNumbers = vector != nullptr && vector->elementType() == vm.classes().number->instances;
    if (bytes == nullptr && !isNumbers) badInput(vm, 2164, name);
    if (input.width <= 0 || input.height <= 0) badInput(vm, 2166, name);
    image.width = input.width;
    image.height = input.height;
    image.channels = input.channels;
    const std::size_t count = static_cast<std::size_t>(input.width) * static_cast<std::size_t>(input.height);
    const std::size_t given = bytes != nullptr ? bytes->content.size() / sizeof(float) : vector->items.size();
    if (count > given / static_cast<std::size_t>(input.channels)) badInput(vm, 2165, name);
    image.numbers.resize(count * static_cast<std::size_t>(input.channels));
    for (std::size_t i = 0; i < image.numbers.size(); ++i) {
        if (bytes != nullptr)
            std::memcpy(&image.numbers[i], bytes->content.data() + i * sizeof(float), sizeof(float));
        else
            image.numbers[i] = static_cast<float>(vm.toNumber(vector->items[i]));
    }
    return image;
}

// ---- tables -----------------------------------------------------------------------------------------------

using In = ShaderInputObject;
constexpr NativeMember kInput[] = {
    {"channels", Kind::Getter, &inputNumber<&In::channels>, 0, 0, nullptr, "int"},
    {"index", Kind::Getter, &inputNumber<&In::index>, 0, 0, nullptr, "int"},
    {"width", Kind::Getter, &inputNumber<&In::width>, 0, 0, &setInputNumber<&In::width>, "int"},
    {"height", Kind::Getter, &inputNumber<&In::height>, 0, 0, &setInputNumber<&In::height>, "int"},
    {"input", Kind::Getter, &input, 0, 0, &setInput, "Object"},
};
constexpr NativeMember kParameter[] = {
    {"type", Kind::Getter, &parameterType, 0, 0, nullptr, "String"},
    {"index", Kind::Getter, &parameterIndex, 0, 0, nullptr, "int"},
    {"value", Kind::Getter, &parameterValue, 0, 0, &setParameterValue, "Array"},
};
constexpr NativeMember kShader[] = {
    {"byteCode", Kind::Getter, nullptr, 0, 0, &setByteCode, "flash.utils::ByteArray"},
    {"data", Kind::Getter, &shaderData, 0, 0, &setShaderData, "flash.display::ShaderData"},
    {"precisionHint", Kind::Getter, &precisionHint, 0, 0, &setPrecisionHint, "String"},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "ShaderInput",
     .base = {},
     .flags = NativeClass::Final,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<ShaderInputObject>,
     .members = kInput},
    {.package = "flash.display",
     .name = "ShaderParameter",
     .base = {},
     .flags = NativeClass::Final,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<ShaderParameterObject>,
     .members = kParameter},
    {.package = "flash.display",
     .name = "ShaderData",
     .base = {},
     .flags = NativeClass::Final,
     .constructor = &constructData,
     .minArguments = 1,
     .maxArguments = 1,
     .allocate = &allocateNative<ShaderDataObject>},
    {.package = "flash.display",
     .name = "Shader",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &constructShader,
     .minArguments = 0,
     .maxArguments = 1,
     .allocate = &allocateNative<ShaderObject>,
     .members = kShader},
};

} // namespace

void throwInvalidShader(Vm& vm)
{
    vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
}

std::shared_ptr<const render::ShaderBinding> bindKernel(Vm& vm, Value shader, Implied implied,
                                                        const render::Growth& margins)
{
    const auto* held = as<ShaderObject>(shader);
    auto* data = held != nullptr ? as<ShaderDataObject>(held->data) : nullptr;
    if (data == nullptr || !data->program) throwInvalidShader(vm);
    // Values are asked of scripts, which may give the Shader other data meanwhile.
    const Root<ShaderDataObject> keep(vm.heap(), data);
    auto made = std::make_shared<render::ShaderBinding>();
    made->program = data->program;
    made->margins = margins;
    const render::ShaderParameter* output = made->program->output();
    if (output == nullptr || !render::isFloat(output->type) || output->size() > 4) badOutput(vm);
    for (std::size_t i = 0; i < data->inputs.size(); ++i) {
        const ShaderInputObject& input = *data->inputs[i];
        const auto index = static_cast<std::size_t>(input.index);
        if (made->images.size() <= index) made->images.resize(index + 1);
        if (index < static_cast<std::size_t>(implied)) continue;
        made->images[index] = imageOf(vm, input, made->program->textures[i].name);
    }
    made->arguments.resize(made->program->parameters.size());
    for (std::size_t i = 0; i < data->parameters.size(); ++i) {
        const ShaderParameterObject& parameter = *data->parameters[i];
        made->arguments[parameter.number] = numbersOf(vm, parameter.value);
    }
    return made;
}
std::shared_ptr<const render::ShaderBinding> bindColors(Vm& vm, Value shader, Implied implied,
                                                        const render::Growth& margins)
{
    auto made = bindKernel(vm, shader, implied, margins);
    if (made->program->output()->size() < 3) badOutput(vm);
    return made;
}

swf::Filter shaderFilterOf(Vm& vm, Object& filter)
{
    swf::DisplacementMapFilter made;
    if (filter.slot(0).isNullish()) return made; // changes nothing
    constexpr int kWidest = 4096;
    const auto margin = [&](std::uint32_t slot) {
        return std::clamp(static_cast<int>(vm.toInt(filter.slot(slot))), 0, kWidest);
    };
    made.map = render::shaderBitmap(
        bindColors(vm, filter.slot(0), Implied::Filtered,
                   {.left = margin(1), .top = margin(2), .right = margin(3), .bottom = margin(4)}));
    return made;
}

swf::Filter shaderBlendOf(Vm& vm, Value shader)
{
    auto binding = std::make_shared<render::ShaderBinding>(*bindColors(vm, shader, Implied::BelowAndAbove));
    binding->blends = true;
    swf::DisplacementMapFilter made;
    made.map = render::shaderBitmap(std::move(binding));
    return made;
}

std::optional<swf::FillStyle> shaderFillOf(Vm& vm, Value shader, Value matrix)
{
    if (shader.isNullish()) return {};
    constexpr double kTwips = swf::kTwipsPerPixel;
    swf::FillStyle fill;
    fill.kind = swf::FillStyle::Kind::Bitmap;
    fill.bitmap = render::shaderBitmap(bindColors(vm, shader, Implied::None));
    Object* given = matrix.asObject();
    fill.matrix =
        (given != nullptr ? matrixOf(*given) : swf::Matrix{}) * swf::Matrix{kTwips, 0, 0, kTwips, 0, 0};
    return fill;
}

NativeLibrary shaderLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
