#pragma once

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/interpreter/Vm.h"
#include "flash/render/ShaderRun.h"

#include <memory>

// Kernels as scripts hold them, for Shaders.cpp and ShaderJobs.cpp.
namespace flash::avm2
{

class ShaderInputObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ShaderInputObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(input);
    }
    int channels = 0, index = 0, width = 0, height = 0;
    Value input = Value::null();
};

class ShaderParameterObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ShaderParameterObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(value);
    }
    render::ShaderType type = render::ShaderType::Float;
    int index = 0;
    std::size_t number = 0; ///< among all parameters of the program
    Value value = Value::null();
};

class ShaderDataObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ShaderDataObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        if (program) tracer.outside(program->steps.size() * sizeof(render::ShaderStep));
        for (ShaderInputObject* input : inputs) tracer(input);
        for (ShaderParameterObject* parameter : parameters) tracer(parameter);
    }
    std::shared_ptr<const render::ShaderProgram> program; ///< null before it is constructed
    TracedList<ShaderInputObject*> inputs;
    TracedList<ShaderParameterObject*> parameters;
};

class ShaderObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ShaderObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(data);
    }
    Value data = Value::null();
    bool isFast = false; ///< the hint, which changes nothing here
};

/// How many images the place where a kernel is used gives it, before those of the script.
enum class Implied : std::uint8_t { None, Filtered, BelowAndAbove };
/// @throws 2004 for what is no kernel, 2162 for one that puts out nothing, 2164 to 2166 for what is wrong
/// with an input. Runs what scripts say of values.
std::shared_ptr<const render::ShaderBinding> bindKernel(Vm& vm, Value shader, Implied implied,
                                                        const render::Growth& margins = {});
/// Of a kernel whose colours are shown. @throws as bindKernel(), and 2162 for one that puts out fewer than
/// three
std::shared_ptr<const render::ShaderBinding> bindColors(Vm& vm, Value shader, Implied implied,
                                                        const render::Growth& margins = {});
[[noreturn]] void throwInvalidShader(Vm& vm);

} // namespace flash::avm2
