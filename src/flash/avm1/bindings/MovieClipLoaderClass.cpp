#include "flash/avm1/bindings/Classes.h"
#include "flash/swf/LevelName.h"

namespace flash::avm1
{

namespace
{

/// Tells a MovieClipLoader's listeners how a load goes.
class Reporter final : public stage::LoadListener
{
public:
    Reporter(StageBinding& binding, Object* loader)
        : m_binding(binding), m_loader(binding.vm().heap(), loader)
    {
    }

    void started(stage::Clip& clip) override { tell("onLoadStart", {Value(m_binding.objectOf(&clip))}); }
    void progressed(stage::Clip& clip, double loaded, double total) override
    {
        tell("onLoadProgress", {Value(m_binding.objectOf(&clip)), Value(loaded), Value(total)});
    }
    void completed(stage::Clip& clip) override
    {
        tell("onLoadComplete", {Value(m_binding.objectOf(&clip)), Value(0)});
    }
    // The scripts of the loaded movie's first frame wait until all of these are told.
    void initialized(stage::Clip& clip) override
    {
        tell("onLoadInit", {Value(m_binding.objectOf(&clip))});
        m_binding.stage().queue().run();
    }
    void failed(stage::Clip* clip, std::string_view error) override
    {
        Object* const object = m_binding.objectOf(clip);
        tell("onLoadError",
             {object ? Value(object) : Value(), Value(m_binding.vm().string(error)), Value(0)});
        m_binding.stage().queue().run();
    }

private:
    void tell(std::string_view message, std::initializer_list<Value> args)
    {
        Vm& vm = m_binding.vm();
        stage::Stage& stage = m_binding.stage();
        const Vm::VersionScope scope(vm, stage.movie() ? std::max<int>(stage.movie()->header.version, 6) : 7);
        RootedValues all(vm.heap());
        all.push_back(vm.string(message));
        all->insert(all->end(), args.begin(), args.end());
        vm.callMethod(m_loader.get(), vm.name(std::string_view("broadcastMessage")), *all);
    }
    StageBinding& m_binding;
    Root<Object> m_loader;
};

/// Marks what `new MovieClipLoader` made: nothing else has its methods.
class LoaderObject final : public Native
{
public:
    static constexpr char kTag = 0;
    [[nodiscard]] const void* tag() const override { return &kTag; }
};

/// Where a load goes to: a clip, or a level by number or name.
struct Target {
    stage::Clip* clip = nullptr;
    int level = -1;
};

Target targetArg(Call& call, std::size_t index)
{
    StageBinding& binding = StageBinding::of(call);
    const Value value = call.arg(index);
    Target target;
    if (value.isObject()) {
        target.clip = binding.clipOf(value.object());
        return target;
    }
    if (value.isNumber()) {
        target.level = toInt32(call.vm, value);
        return target;
    }
    const std::u16string path = toText(call.vm, value);
    Object* base = call.vm.target();
    if (!base) base = binding.host().level(0);
    target.clip = binding.clipOf(call.vm.resolveTarget(base, path));
    const auto number = swf::afterLevelPrefix(std::u16string_view(path));
    if (!target.clip && number && !number->empty()) target.level = toInt32(parseNumber(*number, 7));
    return target;
}

Value loadClip(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    Object* self = call.self.asObject();
    if (!self || !call.arg(0).isString()) return Value(false);
    const Target target = targetArg(call, 1);
    if (!target.clip && target.level < 0) return Value(false);
    stage::Clip* sender = binding.clipOf(call.vm.target());
    stage::LoadRequest request;
    request.url = utf8Arg(call, 0);
    request.baseUrl = sender ? sender->url() : binding.stage().url();
    // A level that is named by a text, and is not there yet, loads without a word to the loader.
    const bool silent = !target.clip && call.arg(1).isString();
    auto reporter = silent ? nullptr : std::make_shared<Reporter>(binding, self);
    if (target.clip)
        binding.stage().loads().intoClip(*target.clip, std::move(request), std::move(reporter));
    else
        binding.stage().loads().intoLevel(target.level, std::move(request), std::move(reporter));
    return Value(true);
}

Value unloadClip(Call& call)
{
    const Target target = targetArg(call, 0);
    stage::Stage& stage = StageBinding::of(call).stage();
    if (target.clip)
        stage.loads().unloadClip(*target.clip);
    else if (target.level >= 0)
        stage.loads().unloadLevel(target.level);
    else
        return Value(false);
    return Value(true);
}

Value getProgress(Call& call)
{
    if (!call.native<LoaderObject>()) return {};
    Target target = targetArg(call, 0);
    if (target.level >= 0) target.clip = StageBinding::of(call).stage().displayList().level(target.level);
    if (call.arg(0).isNullish() || (call.arg(0).isObject() && !target.clip)) return {};
    // A bare object, without a class.
    Object* progress = call.vm.newObject(nullptr);
    progress->define(call.vm, "bytesLoaded", target.clip ? Value(target.clip->bytesLoaded()) : Value());
    progress->define(call.vm, "bytesTotal", target.clip ? Value(target.clip->bytesTotal()) : Value());
    return progress;
}

Value construct(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    self->attachNew<LoaderObject>();
    // Listens to itself.
    const Value own[] = {Value(self)};
    self->define(call.vm, "_listeners", Value(call.vm.newArray(own)), kBuiltIn);
    return {};
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"loadClip",    2, 0,      &loadClip},
    {"getProgress", 1, 0,      &getProgress},
    {"unloadClip",  1, 0,      &unloadClip},
};
// clang-format on

} // namespace

void installMovieClipLoader(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("MovieClipLoader", &construct, kMembers);
    makeBroadcaster(vm, vm.prototypeOf(constructor));
    vm.prototypeOf(constructor)->changeFlags(vm, Name(), kBuiltIn | kFrom7, 0);
}

} // namespace flash::avm1
