#include "flash/avm1/interpreter/Actions.h"
#include "flash/avm1/interpreter/CacheHits.h"

#include <algorithm>

// Actions on variables, members, calls and objects.
namespace flash::avm1::actions
{

namespace
{

/// Arguments stay on the operand stack while a call runs, in call order; they are dropped with this.
class StackedArguments
{
public:
    explicit StackedArguments(Frame& frame) : m_frame(frame)
    {
        const Value said = frame.pop();
        const double count = said.isNumber() ? said.number() : avm1::toNumber(frame.vm, said);
        constexpr double kMaxRequested = 65535;
        m_wanted = count > 0 ? static_cast<std::size_t>(std::min(count, kMaxRequested)) : 0;
        // More arguments than operands: those that are there.
        m_count = std::min(m_wanted, frame.operandCount());
        // The first argument is pushed last.
        if (m_count > 1) std::reverse(frame.top - m_count, frame.top);
    }
    ~StackedArguments() { m_frame.top -= m_count; }
    StackedArguments(const StackedArguments&) = delete;
    StackedArguments& operator=(const StackedArguments&) = delete;

    [[nodiscard]] std::span<const Value> values() const { return {m_frame.top - m_count, m_count}; }
    /// As many as the script said, whether or not they were there.
    [[nodiscard]] std::size_t wanted() const { return m_wanted; }

private:
    Frame& m_frame;
    std::size_t m_count, m_wanted;
};

/// A method without a name is the object itself, called.
bool isNoName(Value key, Name name) { return key.isUndefined() || name.string()->isEmpty(); }

/// What a method of a primitive sees as `this`: natives the value itself, scripts an object around it.
Value receiverFor(Vm& vm, Value base, Value method)
{
    if (base.isObject() || !method.isObject() || !method.object()->isFunction()) return base;
    return method.object()->asFunction()->isNative() ? base : Value(avm1::toObject(vm, base));
}

void pushNames(Frame& frame, Value value)
{
    // The end of the loop, which what has no names is at once.
    frame.push(Value::undefined());
    Object* object = value.asObject();
    if (object == nullptr) return;
    const RootedNames names = object->enumerate(frame.vm);
    // The loop pops, so that the first name is pushed last.
    for (auto name = names.rbegin(); name != names.rend(); ++name) frame.push(Value(name->string()));
}

/// Where `var` puts a variable: the object of a `with` that has one of the name for its own, or else the
/// nearest function call's or the target clip.
Object* localObject(const Frame& frame, Name name)
{
    for (const Scope* scope = frame.scope; scope != nullptr && scope->kind == Scope::Kind::With;
         scope = scope->outer)
        if (scope->object->hasOwn(frame.vm, name)) return scope->object;
    if (frame.activation != nullptr) return frame.activation;
    // In version 5 SetTarget does not move variables made with `var`.
    return frame.version <= 5 ? frame.baseTarget : frame.variableTarget();
}

void putLocal(Frame& frame, Name name, Value value)
{
    Object* object = localObject(frame, name);
    if (object == nullptr) return;
    // A path leads somewhere for timelines only; a function gets a variable of that very name.
    if (name.isPath() && frame.activation == nullptr) return Interpreter::setPath(frame, name, value);
    object->put(frame.vm, name, value);
}

/// What a movie's own function that hangs on the global object has as `this` when it is called by its name
/// alone: the clip it was written in. The player's own functions see the global object, as do those that a
/// script of version 5 calls, which has none. @returns null for the global object
Object* clipOfGlobal(const Frame& frame, Value callable)
{
    const Function* function = callable.isObject() ? callable.object()->asFunction() : nullptr;
    if (frame.version <= 5 || function == nullptr || function->isNative() ||
        function->owner()->version() == Code::kCallersVersion)
        return nullptr;
    Object* clip = function->definingTarget();
    return clip != nullptr && frame.vm.host().isClip(clip) ? clip : nullptr;
}

} // namespace

void getVariable(Frame& frame, const Instruction& instruction)
{
    const Name name = nameOfKey(frame.vm, frame.pop());
    frame.push(Interpreter::getVariableCached(frame, name, instruction.b));
}

void setVariable(Frame& frame, const Instruction& instruction)
{
    const Value value = frame.pop();
    const Name name = avm1::toName(frame.vm, frame.pop());
    Interpreter::setVariableCached(frame, name, value, instruction.b);
}

void defineLocal(Frame& frame, const Instruction&)
{
    const Value value = frame.pop();
    putLocal(frame, avm1::toName(frame.vm, frame.pop()), value);
}

void defineLocal2(Frame& frame, const Instruction&)
{
    const Name name = avm1::toName(frame.vm, frame.pop());
    Object* object = localObject(frame, name);
    if (object == nullptr || object->has(frame.vm, name)) return;
    const bool isPath = name.isPath() && frame.activation == nullptr;
    if (!isPath || Interpreter::getVariable(frame, name).isUndefined()) putLocal(frame, name, {});
}

void deleteVariable(Frame& frame, const Instruction&)
{
    const Name name = avm1::toName(frame.vm, frame.pop());
    frame.push(Value(Interpreter::deleteVariable(frame, name)));
}

void deleteMember(Frame& frame, const Instruction&)
{
    const Name name = avm1::toName(frame.vm, frame.pop());
    Object* object = frame.pop().asObject();
    frame.push(Value(object != nullptr && object->remove(frame.vm, name)));
}

void getMember(Frame& frame, const Instruction& instruction)
{
    const Value name = frame.pop();
    const Value base = frame.pop();
    frame.push(Interpreter::getMemberCached(frame, base, name, instruction.b));
}

void setMember(Frame& frame, const Instruction& instruction)
{
    const Value value = frame.pop();
    const Value name = frame.pop();
    const Value base = frame.pop();
    Interpreter::setMemberCached(frame, base, name, value, instruction.b);
}

void initArray(Frame& frame, const Instruction&)
{
    Object* array = nullptr;
    {
        const StackedArguments elements(frame);
        // A literal has all elements that it promises.
        RootedValues all(frame.vm.heap(), elements.values().begin(), elements.values().end());
        while (all.size() < elements.wanted()) all.push_back(Value());
        array = frame.vm.newArray(*all);
    }
    // Without its class an array is a list and nothing more.
    Vm& vm = frame.vm;
    Value constructor;
    vm.global()->getPlain(vm, vm.name("Array"), vm.global(), constructor);
    if (!constructor.isObject()) array->setProto(vm, {});
    frame.push(Value(array));
}

void initObject(Frame& frame, const Instruction&)
{
    Vm& vm = frame.vm;
    const double count = avm1::toNumber(vm, frame.pop());
    Object* object = vm.newLiteral();
    for (double i = 0; i < count && frame.operandCount() > 0; ++i) {
        const Value value = frame.pop();
        object->put(vm, avm1::toName(vm, frame.pop()), value);
    }
    frame.push(Value(object));
}

void newObject(Frame& frame, const Instruction& instruction)
{
    const Name name = nameOfKey(frame.vm, frame.pop());
    Value result;
    {
        const StackedArguments args(frame);
        const Value constructor = Interpreter::getVariableCached(frame, name, instruction.b);
        result = Interpreter::construct(frame.vm, constructor, args.values());
    }
    frame.push(result);
    Interpreter::checkClip(frame);
}

void newMethod(Frame& frame, const Instruction&)
{
    const Value key = frame.pop();
    const Value base = frame.pop();
    const Name name = avm1::toName(frame.vm, key);
    Value result;
    {
        const StackedArguments args(frame);
        const Value constructor = isNoName(key, name) ? base : Interpreter::getMember(frame.vm, base, name);
        result = Interpreter::construct(frame.vm, constructor, args.values());
    }
    frame.push(result);
    if (base.isObject()) Interpreter::checkClip(frame);
}

void callFunction(Frame& frame, const Instruction& instruction)
{
    const Name name = nameOfKey(frame.vm, frame.pop());
    Value result;
    {
        const StackedArguments args(frame);
        Object* self = nullptr;
        const Value function = Interpreter::getVariableCached(frame, name, instruction.b, &self);
        if (self == nullptr) self = clipOfGlobal(frame, function);
        result = Interpreter::invoke(frame.vm, function, self, args.values(), {.isWritten = true});
    }
    frame.push(result);
    Interpreter::checkClip(frame);
}

void callMethod(Frame& frame, const Instruction& instruction)
{
    Vm& vm = frame.vm;
    const Value key = frame.pop();
    const Value base = frame.pop();
    const Name name = key.isUndefined() ? vm.common().empty : nameOfKey(vm, key);
    Value result;
    {
        const StackedArguments args(frame);
        if (isNoName(key, name)) {
            result = Interpreter::invoke(vm, base, Value(), args.values(), {.isWritten = true});
        } else {
            const InlineCache& cache = frame.code->cache(instruction.b);
            Object* holder = base.isString() ? Interpreter::cachedStringMember(cache, vm, name)
                                             : cachedMember(cache, vm, base, key);
            Value method = holder == nullptr ? Value() : holder->slot(cache.slot);
            if (method.isUndefined())
                method = Interpreter::getMethodCached(frame, base, name, holder, instruction.b);
            Value self = base;
            // To version 6 a method is one of the object's own class, wherever it was found.
            if (frame.version < 7) holder = nullptr;
            if (Object* object = base.asObject(); object != nullptr && object->exotic() == Exotic::Opaque) {
                if (const SuperNative* super = object->native<SuperNative>()) {
                    self = super->self;
                    holder = super->holderOf(vm, name);
                }
            }
            result = Interpreter::invoke(vm, method, receiverFor(vm, self, method), args.values(),
                                         {.superBase = holder, .isWritten = true});
        }
    }
    frame.push(result);
    // What is no object was not called.
    if (base.isObject()) Interpreter::checkClip(frame);
}

void enumerate(Frame& frame, const Instruction&)
{
    const Name name = avm1::toName(frame.vm, frame.pop());
    pushNames(frame, Interpreter::getVariable(frame, name));
}

void enumerate2(Frame& frame, const Instruction&) { pushNames(frame, frame.pop()); }

void instanceOf(Frame& frame, const Instruction&)
{
    Object* constructor = frame.pop().asObject();
    Object* object = frame.pop().asObject();
    bool is = false;
    if (constructor != nullptr && object != nullptr) {
        Object* prototype = frame.vm.prototypeOf(constructor);
        is = prototype != nullptr && object->isInstance(frame.vm, prototype);
    }
    frame.push(Value(is));
}

void castOp(Frame& frame, const Instruction&)
{
    Object* object = frame.pop().asObject();
    Object* constructor = frame.pop().asObject();
    if (constructor != nullptr && object != nullptr) {
        Object* prototype = frame.vm.prototypeOf(constructor);
        if (prototype != nullptr && object->isInstance(frame.vm, prototype)) return frame.push(Value(object));
    }
    frame.push(Value::null());
}

void implementsOp(Frame& frame, const Instruction&)
{
    Vm& vm = frame.vm;
    Object* constructor = frame.pop().asObject();
    const double count = avm1::toNumber(vm, frame.pop());
    Object* prototype = constructor == nullptr ? nullptr : vm.prototypeOf(constructor);
    for (double i = 0; i < count && frame.operandCount() > 0; ++i) {
        Object* interface = frame.pop().asObject();
        if (interface == nullptr || prototype == nullptr) continue;
        if (Object* interfacePrototype = vm.prototypeOf(interface))
            prototype->addInterface(interfacePrototype);
    }
}

void extends(Frame& frame, const Instruction&)
{
    Vm& vm = frame.vm;
    const Value superclass = frame.pop();
    Object* subclass = frame.pop().asObject();
    if (!superclass.isObject() || subclass == nullptr) return;
    Object* prototype = vm.newObject(nullptr);
    prototype->setProto(vm, superclass.object()->get(vm, vm.common().prototype));
    prototype->define(vm, vm.common().constructorInternal, superclass, kDontEnum | kFrom6);
    subclass->put(vm, vm.common().prototype, prototype);
}

void defineFunction(Frame& frame, const Instruction& instruction)
{
    Vm& vm = frame.vm;
    FunctionCode& code = frame.code->function(instruction.b);
    auto* function =
        vm.heap().make<Function>(vm, code, frame.code, frame.pool, frame.scope, frame.baseTarget);
    Object* prototype = vm.newObject();
    prototype->define(vm, vm.common().constructor, function, kBuiltIn);
    function->define(vm, vm.common().prototype, prototype, kBuiltIn);
    if (code.head.name.view().empty())
        frame.push(Value(function));
    else
        putLocal(frame, code.head.name, function);
}

} // namespace flash::avm1::actions
