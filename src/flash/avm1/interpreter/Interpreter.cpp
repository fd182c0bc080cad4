#include "flash/avm1/interpreter/Interpreter.h"

#include "flash/avm1/interpreter/ArrayNative.h"

#include <algorithm>
#include <string>

// Calls: from script to script, to natives and back.
namespace flash::avm1
{

namespace
{

#if defined(__x86_64__)
__attribute__((target("avx"))) void clearUpperHalves() { __builtin_ia32_vzeroupper(); }
#endif

/// Libraries may leave the upper halves of the vector registers in use. Each change between instructions that
/// know of them and those that do not then costs some hundred cycles: every call of sin() or exp().
void settleVectorRegisters()
{
#if defined(__x86_64__)
    static const bool hasUpperHalves = __builtin_cpu_supports("avx") != 0;
    if (hasUpperHalves) clearUpperHalves();
#endif
}

/// Makes a frame the innermost one for as long as it exists, and its version the current one.
class FrameGuard
{
public:
    FrameGuard(Frame*& innermost, int& version, Frame& frame)
        : m_innermost(innermost), m_version(version), m_previousVersion(version)
    {
        frame.outer = innermost;
        innermost = &frame;
        version = frame.version;
        m_outer = frame.outer;
    }
    ~FrameGuard()
    {
        m_innermost = m_outer;
        m_version = m_previousVersion;
    }
    FrameGuard(const FrameGuard&) = delete;
    FrameGuard& operator=(const FrameGuard&) = delete;

private:
    Frame*& m_innermost;
    Frame* m_outer;
    int& m_version;
    int m_previousVersion;
};

} // namespace

void SuperNative::trace(Tracer& tracer)
{
    tracer(self);
    tracer(base);
}

bool SuperNative::getOwn(Vm& vm, Object&, Name name, Value, Value& result)
{
    Object* above = base == nullptr ? nullptr : base->prototype(vm);
    return above != nullptr && above->find(vm, name, result, self);
}

Value SuperNative::primitive(Vm& vm, Object&)
{
    return base == nullptr ? Value(vm.string("[type Function]")) : Value();
}

Object* SuperNative::holderOf(Vm& vm, Name name) const
{
    for (Object* object = base == nullptr ? nullptr : base->prototype(vm); object != nullptr;
         object = object->prototype(vm)) {
        if (object->hasOwn(vm, name)) return object;
    }
    return nullptr;
}

namespace
{

/// Natives go through the texts and lists that they are given, most of them once.
void noteWorkOn(Vm& vm, Value self, std::span<const Value> args)
{
    constexpr std::size_t kItemsPerStep = 64;
    std::size_t items = 0;
    if (self.isString())
        items = self.string()->length();
    else if (const Object* object = self.asObject(); object != nullptr) {
        if (const auto* list = object->native<ArrayNative>())
            items = static_cast<std::size_t>(list->length());
    }
    if (!args.empty() && args[0].isString()) items += args[0].string()->length();
    if (items >= kItemsPerStep) vm.noteWork(items / kItemsPerStep);
}

} // namespace

Value Interpreter::invoke(Vm& vm, Value callable, Value self, std::span<const Value> args,
                          const CallOptions& options)
{
    Object* object = callable.asObject();
    if (object == nullptr) return {};
    Function* function = object->asFunction();
    if (function == nullptr) {
        SuperNative* super = object->native<SuperNative>();
        return super == nullptr ? Value() : invokeSuper(vm, *super, args);
    }
    if (vm.m_disabled) return {};
    if (vm.m_depth == 0) {
        vm.m_startedMs = vm.m_host.realTimeMs();
        vm.m_budget = 0;
        settleVectorRegisters();
    }
    if (vm.m_depth >= vm.m_nestedCalls) {
        abort(vm,
              std::to_string(vm.m_nestedCalls) + " levels of recursion were exceeded in one action list.");
        return {};
    }
    ++vm.m_depth;
    Value result;
    if (!function->isNative()) {
        result = invokeScript(vm, function, self, args, options);
    } else if (args.size() >= static_cast<std::size_t>(function->minArguments())) {
        if (!function->isBrief()) noteWorkOn(vm, self, args);
        Call call{vm, self, args, function, options.isConstruct};
        result = function->nativeFunction()(call);
    }
    --vm.m_depth;
    if (vm.m_thrown || vm.m_aborted) {
        result = Value();
        if (vm.m_depth == 0) vm.reportUncaught();
    }
    return result;
}

namespace
{

/// Makes the clip that a call comes from, or is made on, the one that the called code works on.
void borrow(Frame& frame, const Frame& caller)
{
    Host& host = frame.vm.host();
    const bool isMethod = frame.self.isObject() && host.isClip(frame.self.object());
    frame.target = frame.baseTarget = isMethod ? frame.self.object() : caller.baseTarget;
    frame.endsWithClip = frame.baseTarget != nullptr && host.isClip(frame.baseTarget);
    if (frame.baseTarget != nullptr) frame.version = std::max(host.movieVersion(frame.baseTarget), 5);
}

} // namespace

Value Interpreter::invokeScript(Vm& vm, Function* function, Value self, std::span<const Value> args,
                                const CallOptions& options)
{
    FunctionCode& code = *function->code();
    const FunctionHead& head = code.head;
    Frame frame{vm};
    frame.code = function->owner();
    frame.body = &frame.code->bodyOf(code);
    frame.pool = function->pool();
    frame.ip = frame.body->instructions.data();
    // Functions came with version 5; an older movie that has one runs it as such.
    // The player's own script runs as whoever calls it.
    const int written = frame.code->version();
    frame.version = std::max(written == Code::kCallersVersion ? vm.version() : written, 5);
    frame.self = self;
    frame.callee = function;
    frame.caller = vm.m_frame == nullptr ? nullptr : vm.m_frame->callee;
    frame.args = args;
    frame.superBase = options.superBase;
    frame.isConstruct = options.isConstruct;
    frame.target = frame.baseTarget = function->definingTarget();
    // A function whose clip is gone works on the clip it is called on, or on the root.
    frame.endsWithClip = frame.baseTarget != nullptr && vm.m_host.isClip(frame.baseTarget);
    if (frame.baseTarget != nullptr && !frame.endsWithClip) {
        Object* const own = self.asObject();
        Object* const other = own != nullptr && vm.m_host.isClip(own) ? own : vm.m_host.level(0);
        if (other != nullptr) frame.target = frame.baseTarget = other;
    }
    // In version 5 a method of a clip works on that clip, wherever it was written.
    if (frame.version == 5 && self.isObject() && vm.m_host.isClip(self.object()))
        frame.target = frame.baseTarget = self.object();
    // What a script of version 5 calls belongs to the clip it is called on, or to the caller's, and is of
    // that clip's version, whoever wrote it.
    const bool isBorrowed = options.isWritten && written != Code::kCallersVersion && vm.m_frame->version <= 5;
    if (isBorrowed) borrow(frame, *vm.m_frame);

    Value* stack = vm.m_frame == nullptr ? vm.m_stack.get() : vm.m_frame->top;
    frame.limit = vm.m_stack.get() + Vm::kStackValues;
    // A function that asks for no registers of its own works with the four that all share.
    if (head.registerCount > 0) {
        if (frame.limit - stack <= head.registerCount) {
            frame.overflow();
            return {};
        }
        frame.registers = stack;
        frame.registerCount = head.registerCount;
        std::fill_n(stack, head.registerCount, Value());
        stack += head.registerCount;
    } else {
        frame.registers = vm.m_registers;
        frame.registerCount = Frame::kSharedRegisters;
    }
    frame.base = frame.top = stack;

    const FrameGuard guard(vm.m_frame, vm.m_version, frame);
    // Version 5 has no closures: a function sees its own variables and those of its clip.
    const bool isClosure = frame.version > 5 && !isBorrowed;
    Scope* outer =
        isClosure ? function->scope() : vm.m_heap.make<Scope>(Scope::Kind::Target, frame.baseTarget, nullptr);
    if (frame.body->needsActivation) {
        frame.activation = vm.m_heap.make<Object>(vm, nullptr);
        frame.scope = vm.m_heap.make<Scope>(Scope::Kind::Activation, frame.activation, outer);
    } else {
        frame.scope = outer;
    }
    if ((head.flags & FunctionHead::kPreloads) != 0) preload(frame, head);
    for (std::size_t i = 0; i < head.parameters.size(); ++i) {
        const FunctionHead::Parameter& parameter = head.parameters[i];
        const Value value = i < args.size() ? args[i] : Value();
        if (parameter.registerNumber != 0)
            frame.setRegister(parameter.registerNumber, value);
        else
            frame.activation->define(vm, parameter.name, value);
    }
    safepoint(vm);
    if (!vm.isUnwinding()) loop(frame);
    return frame.result;
}

void Interpreter::preload(Frame& frame, const FunctionHead& head)
{
    Vm& vm = frame.vm;
    unsigned next = 1;
    // `this` and `super` both preloaded and suppressed take their register and leave it empty.
    const auto put = [&](FunctionHead::Flag flag, unsigned suppress, auto&& value) {
        if ((head.flags & flag) != 0)
            frame.setRegister(next++, (head.flags & suppress) != 0 ? Value() : Value(value()));
    };
    Object* const clip = frame.baseTarget;
    put(FunctionHead::PreloadThis, FunctionHead::SuppressThis, [&] { return frame.self; });
    put(FunctionHead::PreloadArguments, 0, [&] { return argumentsObject(frame); });
    put(FunctionHead::PreloadSuper, FunctionHead::SuppressSuper, [&] { return superObject(frame); });
    put(FunctionHead::PreloadRoot, 0,
        [&] { return clip == nullptr ? Value() : Value(vm.m_host.root(clip)); });
    if ((head.flags & FunctionHead::PreloadParent) != 0) {
        // A root has no parent, and leaves no register for one.
        Object* const parent = clip == nullptr ? nullptr : vm.m_host.parent(clip);
        if (parent != nullptr || clip == nullptr) frame.setRegister(next++, parent);
    }
    put(FunctionHead::PreloadGlobal, 0, [&] { return Value(vm.global()); });
}

Value Interpreter::argumentsObject(Frame& frame)
{
    Vm& vm = frame.vm;
    if (frame.argumentsValue.isUndefined()) {
        Object* arguments = vm.newArray(frame.args);
        arguments->define(vm, vm.common().callee, Value(frame.callee), kBuiltIn);
        arguments->define(vm, vm.common().caller,
                          frame.caller == nullptr ? Value::null() : Value(frame.caller), kBuiltIn);
        frame.argumentsValue = arguments;
    }
    return frame.argumentsValue;
}

Value Interpreter::superObject(Frame& frame)
{
    if (frame.version < 6) return {};
    if (frame.superValue.isUndefined()) {
        Vm& vm = frame.vm;
        // Where the function was found decides. Found on the object itself, or called without a look-up, it
        // counts as one of the object's class.
        Object* base = frame.superBase;
        Object* self = frame.self.asObject();
        if (self != nullptr && (base == nullptr || base == self)) base = self->prototype(vm);
        Object* super = vm.newObject(nullptr);
        // What scripts see as its __proto__ is the prototype it looks into.
        if (base != nullptr) super->setProto(vm, base->protoValue());
        super->attachNew<SuperNative>(frame.self, base);
        frame.superValue = super;
    }
    return frame.superValue;
}

Value Interpreter::invokeSuper(Vm& vm, SuperNative& super, std::span<const Value> args)
{
    if (super.base == nullptr) return {};
    Value constructor;
    if (!super.base->find(vm, vm.common().constructorInternal, constructor, super.self)) return {};
    return invoke(vm, constructor, super.self, args, {super.base->prototype(vm), true});
}

Value Interpreter::construct(Vm& vm, Value constructor, std::span<const Value> args)
{
    Object* function = constructor.asObject();
    if (function == nullptr || !function->isFunction()) return {};
    const Value prototype = function->get(vm, vm.common().prototype);
    Object* object = vm.newObject(nullptr);
    if (!prototype.isUndefined()) object->setProto(vm, prototype);
    object->define(vm, vm.common().constructorInternal, constructor, kDontEnum | kFrom6);
    if (vm.version() < 7) object->define(vm, vm.common().constructor, constructor, kDontEnum);
    const Value result = invoke(vm, constructor, object, args, {prototype.asObject(), true});
    // Natives may answer with another object, or with null when there is to be none; what scripts return is
    // dropped.
    if (!function->asFunction()->isNative()) return object;
    if (result.isNull()) return {};
    return result.isObject() ? result : Value(object);
}

void Interpreter::runBlock(Vm& vm, Code& code, Object* target)
{
    if (vm.m_disabled || vm.m_depth >= vm.m_nestedCalls) return;
    if (vm.m_depth == 0) {
        vm.m_startedMs = vm.m_host.realTimeMs();
        vm.m_budget = 0;
        settleVectorRegisters();
    }
    Frame frame{vm};
    frame.code = &code;
    frame.body = &code.body();
    frame.ip = frame.body->instructions.data();
    frame.version = code.version() == Code::kCallersVersion ? vm.version() : code.version();
    frame.self = target;
    frame.endsWithClip = vm.m_host.isClip(target);
    frame.target = frame.baseTarget = target;
    frame.base = frame.top = vm.m_frame == nullptr ? vm.m_stack.get() : vm.m_frame->top;
    frame.limit = vm.m_stack.get() + Vm::kStackValues;
    frame.registers = vm.m_registers;
    frame.registerCount = Frame::kSharedRegisters;
    frame.scope = vm.m_heap.make<Scope>(Scope::Kind::Target, target, nullptr);
    {
        const FrameGuard guard(vm.m_frame, vm.m_version, frame);
        ++vm.m_depth;
        loop(frame);
        --vm.m_depth;
    }
    if (vm.isUnwinding() && vm.m_depth == 0) vm.reportUncaught();
}

void Interpreter::checkClip(Frame& frame)
{
    // A target that is gone is none: the script is back at its own clip.
    if (frame.target != frame.baseTarget && frame.target != nullptr && !frame.vm.m_host.isClip(frame.target))
        frame.target = frame.baseTarget;
    if (frame.endsWithClip && !frame.vm.m_host.isClip(frame.baseTarget)) frame.returned = true;
}

void Interpreter::throwValue(Vm& vm, Value value)
{
    vm.m_exception = value;
    vm.m_thrown = true;
}

Value Interpreter::takeException(Vm& vm)
{
    vm.m_thrown = false;
    return std::exchange(vm.m_exception, Value());
}

void Interpreter::abort(Vm& vm, std::string_view why)
{
    if (vm.m_aborted) return;
    vm.m_aborted = true;
    vm.m_disabled = true;
    vm.m_host.log(why);
    vm.m_host.scriptsEnded(why);
}

} // namespace flash::avm1
