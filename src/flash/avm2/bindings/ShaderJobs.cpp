#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/ShaderObjects.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/guard/Guard.h"

#include <cstring>

// Jobs that run a kernel on a bitmap or on numbers.
namespace flash::avm2
{

using classes::allocateNative;
using classes::ByteArrayObject;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

/// More numbers than this no job puts out.
constexpr std::size_t kMaxNumbers = guard::kMaxElements;

class ShaderJobObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    ShaderJobObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        tracer(shader);
        tracer(target);
    }
    Value shader = Value::null(), target = Value::null();
    int width = 0, height = 0;
    double progress = 0;
    bool isRunning = false;
    int generation = 0; ///< counts the starts, so that one that was cancelled is known
};

ShaderJobObject& jobSelf(Call& call) { return selfAs<ShaderJobObject>(call, "flash.display.ShaderJob"); }

Value constructJob(Call& call)
{
    auto& self = jobSelf(call);
    Object* shader = objectArg(call, 0, "flash.display::Shader");
    if (shader != nullptr) self.shader = Value(shader);
    if (!call.arg(1).isNullish()) self.target = call.arg(1);
    self.width = call.has(2) ? call.vm.toInt(call.arg(2)) : 0;
    self.height = call.has(3) ? call.vm.toInt(call.arg(3)) : 0;
    return {};
}

void paint(Vm& vm, ShaderJobObject& job, const BitmapDataObject& target)
{
    // Values of parameters may be scripts' own, which run here; what they leave of the target is asked after.
    const auto binding = bindColors(vm, job.shader, Implied::None);
    const auto bitmap = picture(vm, target);
    // The target may be what the kernel reads.
    std::vector<std::uint32_t> made(bitmap->pixels.size());
    render::ShaderRun run(*binding);
    const auto width = static_cast<std::size_t>(bitmap->width);
    for (int y = 0; y < bitmap->height; ++y) {
        run.row({0.5, y + 0.5}, {1, 0}, width, made.data() + static_cast<std::size_t>(y) * width);
        vm.check();
    }
    if (bitmap->opaque)
        for (std::uint32_t& pixel : made) pixel |= 0xFF000000U;
    bitmap->pixels = std::move(made);
    Player::of(vm).stage().view().noteDrawnOn(*bitmap);
}
void compute(Vm& vm, ShaderJobObject& job, ByteArrayObject* bytes, VectorObject* vector)
{
    const auto binding = bindKernel(vm, job.shader, Implied::None);
    render::ShaderRun run(*binding);
    if (job.width <= 0 || job.height <= 0) throwInvalidShader(vm);
    const auto width = static_cast<std::size_t>(job.width), height = static_cast<std::size_t>(job.height),
               channels = static_cast<std::size_t>(run.channels());
    if (height > kMaxNumbers / channels / width) throwInvalidShader(vm);
    std::vector<float> made(width * height * channels);
    for (std::size_t y = 0; y < height; ++y) {
        run.row({0.5, static_cast<double>(y) + 0.5}, {1, 0}, width, made.data() + y * width * channels);
        vm.check();
    }
    if (bytes != nullptr) {
        bytes->resize(vm, made.size() * sizeof(float));
        std::memcpy(bytes->content.data(), made.data(), made.size() * sizeof(float));
        return;
    }
    vector->resize(vm, static_cast<double>(made.size()));
    for (std::size_t i = 0; i < made.size(); ++i) vector->items[i] = Value(static_cast<double>(made[i]));
}
void runJob(Vm& vm, ShaderJobObject& job)
{
    // Values are asked of scripts, which may give the job another target meanwhile.
    const Root<Object> keep(vm.heap(), job.target.asObject());
    if (const auto* bitmap = as<BitmapDataObject>(job.target)) {
        paint(vm, job, *bitmap);
    } else {
        auto* bytes = as<ByteArrayObject>(job.target);
        auto* vector = as<VectorObject>(job.target);
        if (vector != nullptr && vector->elementType() != vm.classes().number->instances) vector = nullptr;
        if (bytes == nullptr && vector == nullptr) throwInvalidShader(vm);
        compute(vm, job, bytes, vector);
    }
    job.progress = 1;
}

void finishLater(Vm& vm, ShaderJobObject& job)
{
    job.isRunning = false;
    runJob(vm, job);
    const auto given = [&job](bool fits) { return fits ? job.target : Value::null(); };
    fireWith(vm, job, "flash.events::ShaderEvent", "complete",
             {given(as<BitmapDataObject>(job.target) != nullptr),
              given(as<ByteArrayObject>(job.target) != nullptr),
              given(as<VectorObject>(job.target) != nullptr)});
}
Value startJob(Call& call)
{
    auto& self = jobSelf(call);
    Vm& vm = call.vm;
    if (self.isRunning) return {};
    self.progress = 0;
    if (vm.toBoolean(call.arg(0))) {
        runJob(vm, self);
        return {};
    }
    // What is missing shows at once, whenever the job is done.
    bindKernel(vm, self.shader, Implied::None);
    self.isRunning = true;
    auto held = std::make_shared<Root<ShaderJobObject>>(vm.heap(), &self);
    Player::of(vm).later([&vm, held, generation = ++self.generation] {
        ShaderJobObject& job = **held;
        if (job.isRunning && job.generation == generation) finishLater(vm, job);
    });
    return {};
}
Value cancelJob(Call& call)
{
    jobSelf(call).isRunning = false;
    return {};
}
template <int ShaderJobObject::*member>
Value jobNumber(Call& call)
{
    return jobSelf(call).*member;
}
template <int ShaderJobObject::*member>
Value setJobNumber(Call& call)
{
    const int value = call.vm.toInt(call.arg(0));
    jobSelf(call).*member = value;
    return {};
}
Value jobProgress(Call& call) { return jobSelf(call).progress; }
Value jobShader(Call& call) { return jobSelf(call).shader; }
Value setJobShader(Call& call)
{
    Object* shader = objectArg(call, 0, "flash.display::Shader");
    jobSelf(call).shader = shader != nullptr ? Value(shader) : Value::null();
    return {};
}
Value jobTarget(Call& call) { return jobSelf(call).target; }
Value setJobTarget(Call& call)
{
    jobSelf(call).target = call.arg(0).isNullish() ? Value::null() : call.arg(0);
    return {};
}

using Job = ShaderJobObject;
constexpr NativeMember kJob[] = {
    {"start", Kind::Method, &startJob, 0, 1},
    {"cancel", Kind::Method, &cancelJob, 0, 0},
    {"width", Kind::Getter, &jobNumber<&Job::width>, 0, 0, &setJobNumber<&Job::width>, "int"},
    {"height", Kind::Getter, &jobNumber<&Job::height>, 0, 0, &setJobNumber<&Job::height>, "int"},
    {"progress", Kind::Getter, &jobProgress, 0, 0, nullptr, "Number"},
    {"shader", Kind::Getter, &jobShader, 0, 0, &setJobShader, "flash.display::Shader"},
    {"target", Kind::Getter, &jobTarget, 0, 0, &setJobTarget, "Object"},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "ShaderJob",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &constructJob,
     .minArguments = 0,
     .maxArguments = 4,
     .allocate = &allocateNative<ShaderJobObject>,
     .members = kJob},
};

} // namespace

NativeLibrary shaderJobLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
