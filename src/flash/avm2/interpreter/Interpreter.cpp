#include "flash/avm2/interpreter/Interpreter.h"

#include "flash/avm2/interpreter/Collections.h"
#include "flash/avm2/interpreter/Unit.h"
#include "flash/vm/Numbers.h"

#include <bit>
#include <cmath>

// The loop over the register form: one label for each instruction, each jumps to the next one's.
namespace flash::avm2
{

namespace
{

std::int32_t bits(Value value) { return static_cast<std::int32_t>(value.bits()); }
std::uint32_t unsignedBits(Value value) { return static_cast<std::uint32_t>(value.bits()); }
Value rawValue(std::uint32_t value) { return vm::Value::fromBits(value); }
Value rawValue(std::int32_t value) { return vm::Value::fromBits(static_cast<std::uint32_t>(value)); }

/// What arithmetic makes of numbers is one: no NaN of its own lies among the patterns of other values.
Value computed(double number) { return vm::Value::fromBits(std::bit_cast<std::uint64_t>(number)); }

/// The 32 bits of a number.
std::int32_t narrow(double number)
{
    constexpr double kLongs = 9.2e18;
    if (std::fabs(number) < kLongs) [[likely]]
        return static_cast<std::int32_t>(static_cast<std::int64_t>(number));
    return vm::toInt32(number);
}

bool less(Vm& vm, Value a, Value b)
{
    if (a.isNumber() && b.isNumber()) return a.number() < b.number();
    return vm.compare(a, b) == Vm::Order::Less;
}

/// a <= b, which is not the contrary of b < a where there is not-a-number.
bool lessOrEqual(Vm& vm, Value a, Value b)
{
    if (a.isNumber() && b.isNumber()) return a.number() <= b.number();
    return vm.compare(b, a) == Vm::Order::NotLess;
}

} // namespace

Value Interpreter::run()
{
    static const void* const kLabels[] = {
#define AVM2_LABEL(name) &&do_##name,
#define AVM2_OTHER(name) &&do_other,
        AVM2_REGISTER_OPS(AVM2_LABEL) AVM2_CALL_OPS(AVM2_LABEL) AVM2_STACK_OPS(AVM2_OTHER)
#undef AVM2_LABEL
#undef AVM2_OTHER
    };
    Frame& f = m_frame;
    Vm& vm = m_vm;
    const Ins* const code = f.code->code.data();
    const Value* const constants = f.code->constants.data();
    Value* const r = f.locals;
    const Ins* ip = code + f.resume;

#define DISPATCH() goto* kLabels[static_cast<std::size_t>(ip->op)]
#define NEXT                                                                                                 \
    do {                                                                                                     \
        ++ip;                                                                                                \
        DISPATCH();                                                                                          \
    } while (false)
// What may throw or run script says first where it is.
#define MARK f.at = ip
#define D r[ip->d]
#define B r[ip->b]
#define C r[ip->c]
#define JUMP_IF(condition)                                                                                   \
    do {                                                                                                     \
        if (!(condition)) NEXT;                                                                              \
        const Ins* const target = code + ip->d;                                                              \
        if (target <= ip) {                                                                                  \
            MARK;                                                                                            \
            vm.check();                                                                                      \
        }                                                                                                    \
        ip = target;                                                                                         \
        DISPATCH();                                                                                          \
    } while (false)
    DISPATCH();

do_Move:
    D = B;
    NEXT;
do_LoadConst:
    D = constants[ip->a];
    NEXT;
do_LoadInt:
    D = rawValue(ip->a);
    NEXT;
do_BoxInt:
    D = computed(bits(B));
    NEXT;
do_BoxUint:
    D = computed(unsignedBits(B));
    NEXT;
do_UnboxInt:
    D = rawValue(narrow(B.number()));
    NEXT;
do_ToIntV:
    if (B.isNumber()) {
        D = rawValue(narrow(B.number()));
    } else {
        MARK;
        D = rawValue(vm.toInt(B));
    }
    NEXT;
do_ToNumberV:
    if (B.isNumber()) {
        D = B;
    } else {
        MARK;
        D = Value(vm.toNumber(B));
    }
    NEXT;
do_ToBooleanV:
    D = Value(B.isBoolean() ? B.boolean() : vm.toBoolean(B));
    NEXT;
do_CoerceString:
    if (B.isString()) {
        D = B;
    } else {
        MARK;
        D = vm.coerceString(B);
    }
    NEXT;
do_CoerceType : {
    Traits* type = nullptr;
    if (f.unit->typeIfKnown(static_cast<std::uint32_t>(ip->a), type) &&
        (type == nullptr || fitsType(B, type))) {
        D = B;
        NEXT;
    }
    MARK;
    D = vm.coerce(B, f.unit->type(vm, static_cast<std::uint32_t>(ip->a)));
    NEXT;
}
do_CoerceObject:
    D = B.isUndefined() ? Value::null() : B;
    NEXT;

do_AddI:
    D = rawValue(unsignedBits(B) + unsignedBits(C));
    NEXT;
do_SubI:
    D = rawValue(unsignedBits(B) - unsignedBits(C));
    NEXT;
do_MulI:
    D = rawValue(unsignedBits(B) * unsignedBits(C));
    NEXT;
do_AndI:
    D = rawValue(unsignedBits(B) & unsignedBits(C));
    NEXT;
do_OrI:
    D = rawValue(unsignedBits(B) | unsignedBits(C));
    NEXT;
do_XorI:
    D = rawValue(unsignedBits(B) ^ unsignedBits(C));
    NEXT;
do_ShlI:
    D = rawValue(unsignedBits(B) << (unsignedBits(C) & 31U));
    NEXT;
do_ShrI:
    D = rawValue(bits(B) >> (unsignedBits(C) & 31U));
    NEXT;
do_UshrI:
    D = rawValue(unsignedBits(B) >> (unsignedBits(C) & 31U));
    NEXT;
do_NotI:
    D = rawValue(~unsignedBits(B));
    NEXT;
do_NegI:
    D = rawValue(0U - unsignedBits(B));
    NEXT;
do_AddIK:
    D = rawValue(unsignedBits(B) + static_cast<std::uint32_t>(ip->c));
    NEXT;
do_AndIK:
    D = rawValue(unsignedBits(B) & static_cast<std::uint32_t>(ip->c));
    NEXT;
do_OrIK:
    D = rawValue(unsignedBits(B) | static_cast<std::uint32_t>(ip->c));
    NEXT;
do_ShlIK:
    D = rawValue(unsignedBits(B) << (static_cast<std::uint32_t>(ip->c) & 31U));
    NEXT;
do_ShrIK:
    D = rawValue(bits(B) >> (static_cast<std::uint32_t>(ip->c) & 31U));
    NEXT;
do_UshrIK:
    D = rawValue(unsignedBits(B) >> (static_cast<std::uint32_t>(ip->c) & 31U));
    NEXT;
do_AddII:
    D = computed(static_cast<double>(bits(B)) + static_cast<double>(bits(C)));
    NEXT;
do_SubII:
    D = computed(static_cast<double>(bits(B)) - static_cast<double>(bits(C)));
    NEXT;
do_MulII:
    D = computed(static_cast<double>(bits(B)) * static_cast<double>(bits(C)));
    NEXT;
do_MulToI : {
    const std::int64_t product = std::int64_t{bits(B)} * bits(C);
    constexpr std::int64_t kExact = std::int64_t{1} << 53;
    // As a number the product may have lost its lower bits.
    D = product > -kExact && product < kExact
            ? rawValue(static_cast<std::int32_t>(static_cast<std::uint64_t>(product)))
            : rawValue(vm::toInt32(static_cast<double>(product)));
    NEXT;
}
do_ModII : {
    const std::int32_t a = bits(B), b = bits(C);
    D = a >= 0 && b > 0 ? computed(a % b)
                        : computed(std::fmod(static_cast<double>(a), static_cast<double>(b)));
    NEXT;
}

do_AddN:
    D = computed(B.number() + C.number());
    NEXT;
do_SubN:
    D = computed(B.number() - C.number());
    NEXT;
do_MulN:
    D = computed(B.number() * C.number());
    NEXT;
do_DivN:
    D = computed(B.number() / C.number());
    NEXT;
do_ModN:
    D = computed(std::fmod(B.number(), C.number()));
    NEXT;
do_NegN:
    D = computed(-B.number());
    NEXT;
do_AddNK:
    D = computed(B.number() + constants[ip->c].number());
    NEXT;
do_SubNK:
    D = computed(B.number() - constants[ip->c].number());
    NEXT;
do_MulNK:
    D = computed(B.number() * constants[ip->c].number());
    NEXT;
do_DivNK:
    D = computed(B.number() / constants[ip->c].number());
    NEXT;
do_AddV:
    if (B.isNumber() && C.isNumber()) {
        D = computed(B.number() + C.number());
    } else {
        MARK;
        D = vm.add(B, C);
    }
    NEXT;
#define NUMERIC(name, expression)                                                                            \
    do_##name:                                                                                               \
    {                                                                                                        \
        MARK;                                                                                                \
        const double x = B.isNumber() ? B.number() : vm.toNumber(B);                                         \
        const double y = C.isNumber() ? C.number() : vm.toNumber(C);                                         \
        D = Value(expression);                                                                               \
        NEXT;                                                                                                \
    }
    NUMERIC(SubV, x - y)
    NUMERIC(MulV, x * y)
    NUMERIC(DivV, x / y)
    NUMERIC(ModV, std::fmod(x, y))

do_LtI:
    D = Value(bits(B) < bits(C));
    NEXT;
do_LeI:
    D = Value(bits(B) <= bits(C));
    NEXT;
do_EqI:
    D = Value(bits(B) == bits(C));
    NEXT;
do_LtU:
    D = Value(unsignedBits(B) < unsignedBits(C));
    NEXT;
do_LeU:
    D = Value(unsignedBits(B) <= unsignedBits(C));
    NEXT;
do_LtN:
    D = Value(B.number() < C.number());
    NEXT;
do_LeN:
    D = Value(B.number() <= C.number());
    NEXT;
do_EqN:
    D = Value(B.number() == C.number());
    NEXT;
do_LtV:
    MARK;
    D = Value(less(vm, B, C));
    NEXT;
do_LeV:
    MARK;
    D = Value(lessOrEqual(vm, B, C));
    NEXT;
do_EqV:
    MARK;
    D = Value(vm.equals(B, C));
    NEXT;
do_SeqV:
    D = Value(vm.strictEquals(B, C));
    NEXT;
do_NotB:
    D = Value(!B.boolean());
    NEXT;
do_NotV:
    D = Value(!vm.toBoolean(B));
    NEXT;

do_Jump:
    JUMP_IF(true);
do_JTrueB:
    JUMP_IF(B.boolean());
do_JFalseB:
    JUMP_IF(!B.boolean());
do_JTrueI:
    JUMP_IF(unsignedBits(B) != 0);
do_JFalseI:
    JUMP_IF(unsignedBits(B) == 0);
do_JTrueV:
    JUMP_IF(B.isBoolean() ? B.boolean() : vm.toBoolean(B));
do_JFalseV:
    JUMP_IF(!(B.isBoolean() ? B.boolean() : vm.toBoolean(B)));
do_JLtI:
    JUMP_IF(bits(B) < bits(C));
do_JLeI:
    JUMP_IF(bits(B) <= bits(C));
do_JEqI:
    JUMP_IF(bits(B) == bits(C));
do_JNeI:
    JUMP_IF(bits(B) != bits(C));
do_JLtIK:
    JUMP_IF(bits(B) < ip->c);
do_JLeIK:
    JUMP_IF(bits(B) <= ip->c);
do_JGtIK:
    JUMP_IF(bits(B) > ip->c);
do_JGeIK:
    JUMP_IF(bits(B) >= ip->c);
do_JEqIK:
    JUMP_IF(bits(B) == ip->c);
do_JNeIK:
    JUMP_IF(bits(B) != ip->c);
do_JLtU:
    JUMP_IF(unsignedBits(B) < unsignedBits(C));
do_JLeU:
    JUMP_IF(unsignedBits(B) <= unsignedBits(C));
do_JLtN:
    JUMP_IF(B.number() < C.number());
do_JLeN:
    JUMP_IF(B.number() <= C.number());
do_JNltN:
    JUMP_IF(!(B.number() < C.number()));
do_JNleN:
    JUMP_IF(!(B.number() <= C.number()));
do_JEqN:
    JUMP_IF(B.number() == C.number());
do_JNeN:
    JUMP_IF(B.number() != C.number());
do_JLtV:
    MARK;
    JUMP_IF(less(vm, B, C));
do_JLeV:
    MARK;
    JUMP_IF(lessOrEqual(vm, B, C));
do_JNltV:
    MARK;
    JUMP_IF(!less(vm, B, C));
do_JNleV:
    MARK;
    JUMP_IF(!lessOrEqual(vm, B, C));
do_JEqV:
    MARK;
    JUMP_IF(vm.equals(B, C));
do_JNeV:
    MARK;
    JUMP_IF(!vm.equals(B, C));
do_JSeqV:
    JUMP_IF(vm.strictEquals(B, C));
do_JSneV:
    JUMP_IF(!vm.strictEquals(B, C));
do_Switch : {
    const auto& targets = f.code->switches[static_cast<std::size_t>(ip->a)];
    const std::uint32_t index = unsignedBits(B);
    const Ins* const target = code + (index < targets.size() - 1 ? targets[index] : targets.back());
    if (target <= ip) {
        MARK;
        vm.check();
    }
    ip = target;
    DISPATCH();
}

do_GetProp : {
    Object* const object = B.asObject();
    if (object != nullptr && object->exotic() != Exotic::First) {
        const SiteCache& cache = f.code->caches[static_cast<std::size_t>(ip->cache)];
        if (cache.traits == object->traits() &&
            (cache.binding.kind == Binding::Kind::Slot || cache.binding.kind == Binding::Kind::Const)) {
            D = object->slot(static_cast<std::uint32_t>(cache.binding.id));
            NEXT;
        }
    }
    MARK;
    const Value result = getCached(B, *ip);
    D = result;
    NEXT;
}
do_SetProp:
    if (Object* const object = B.asObject(); object != nullptr) {
        const SiteCache& cache = f.code->caches[static_cast<std::size_t>(ip->cache)];
        if (cache.traits == object->traits() && cache.binding.kind == Binding::Kind::Slot) {
            const auto slot = static_cast<std::uint32_t>(cache.binding.id);
            const TypeRef& type = cache.traits->slotTypes[slot];
            if (type.unit == nullptr && (type.resolved == nullptr || fitsType(C, type.resolved))) {
                object->setSlot(slot, C);
                NEXT;
            }
        }
    }
    MARK;
    setCached(B, *ip, C);
    NEXT;
do_GetSlot:
    if (Object* const object = B.asObject();
        object != nullptr && static_cast<std::uint32_t>(ip->c) < object->slotCount()) [[likely]] {
        D = object->slot(static_cast<std::uint32_t>(ip->c));
    } else {
        MARK;
        const Value result = getSlotOr(*ip, B);
        D = result;
    }
    NEXT;
do_SetSlot:
    if (Object* const object = B.asObject();
        object != nullptr && static_cast<std::uint32_t>(ip->c) < object->slotCount()) [[likely]] {
        object->setSlot(static_cast<std::uint32_t>(ip->c), r[ip->a]);
    } else {
        MARK;
        setSlotOr(*ip, B, r[ip->a], false);
    }
    NEXT;
do_GetSlotI:
    if (Object* const object = B.asObject();
        object != nullptr && static_cast<std::uint32_t>(ip->c) < object->slotCount()) [[likely]] {
        D = rawValue(narrow(object->slot(static_cast<std::uint32_t>(ip->c)).number()));
    } else {
        MARK;
        const std::int32_t result = vm.toInt(getSlotOr(*ip, B));
        D = rawValue(result);
    }
    NEXT;
do_SetSlotI:
    if (Object* const object = B.asObject();
        object != nullptr && static_cast<std::uint32_t>(ip->c) < object->slotCount()) [[likely]] {
        object->setSlot(static_cast<std::uint32_t>(ip->c), computed(bits(r[ip->a])));
    } else {
        MARK;
        setSlotOr(*ip, B, computed(bits(r[ip->a])), false);
    }
    NEXT;
do_GetElemI : {
    Object* const object = B.asObject();
    const std::uint32_t index = unsignedBits(C);
    if (object != nullptr && object->elements() == Object::Elements::Vector) [[likely]] {
        const auto& items = static_cast<VectorObject*>(object)->items;
        if (index < items.size()) {
            D = rawValue(narrow(items[index].number()));
            NEXT;
        }
    }
    MARK;
    const std::int32_t result = vm.toInt(elementSlow(*ip, B, ip->parts != 0 ? Value(index) : Value(bits(C))));
    D = rawValue(result);
    NEXT;
}
do_SetSlotTyped:
    MARK;
    setSlotOr(*ip, B, r[ip->a], true);
    NEXT;
do_GetElem : {
    Object* const object = B.asObject();
    const std::uint32_t index = unsignedBits(C);
    if (object != nullptr) [[likely]] {
        if (object->elements() == Object::Elements::Array) {
            const auto& items = static_cast<ArrayObject*>(object)->items;
            if (index < items.size() && !items[index].isHole()) {
                D = items[index];
                NEXT;
            }
        } else if (object->elements() == Object::Elements::Vector) {
            const auto& items = static_cast<VectorObject*>(object)->items;
            if (index < items.size()) {
                D = items[index];
                NEXT;
            }
        }
    }
    MARK;
    const Value result = elementSlow(*ip, B, ip->parts != 0 ? Value(index) : Value(bits(C)));
    D = result;
    NEXT;
}
do_SetElem : {
    Object* const object = B.asObject();
    const std::uint32_t index = unsignedBits(C);
    if (object != nullptr && setElementFast(*object, index, r[ip->a])) NEXT;
    MARK;
    setElementSlow(*ip, B, ip->parts != 0 ? Value(index) : Value(bits(C)), r[ip->a]);
    NEXT;
}
do_GetAccessor : {
    MARK;
    const Value result = getAccessor(*ip, B);
    D = result;
    NEXT;
}
do_CallEarly : {
    MARK;
    Value* const window = r + ip->d - ip->b - 1;
    const Value result = callEarly(*ip, window);
    *window = result;
    NEXT;
}
do_PushScope:
    if (B.isObject()) [[likely]] {
        f.scopes[f.scopeCount] = B;
        f.withMask &= ~(std::uint64_t{1} << f.scopeCount);
        ++f.scopeCount;
        f.chain = nullptr;
    } else {
        MARK;
        pushScope(B, false);
    }
    NEXT;
do_Return:
    return B;
do_ReturnCoerced:
    if (fitsType(B, f.code->returnType)) return B;
    MARK;
    return vm.coerce(B, f.code->returnType);
do_ReturnVoid:
    if (f.code->returnType == nullptr) return {};
    MARK;
    return vm.coerce(Value(), f.code->returnType);

do_popscope:
    --f.scopeCount;
    f.scopes[f.scopeCount] = Value();
    f.chain = nullptr;
    NEXT;
do_findpropstrict:
do_findproperty : {
    MARK;
    Value* sp = r + ip->d;
    const Multiname name = multiname(*ip, sp);
    const Value found = find(name, *ip, ip->op == RegisterOp::findpropstrict);
    *sp = found;
    NEXT;
}
do_getlex : {
    MARK;
    const Value holder = find(f.unit->multiname(static_cast<std::uint32_t>(ip->a)), *ip, true);
    const Value result = getCached(holder, *ip);
    r[ip->d] = result;
    NEXT;
}
do_call : {
    MARK;
    Value* const window = r + ip->d - ip->a - 1;
    const Value result = vm.callInPlace(window[-1], window, static_cast<std::uint32_t>(ip->a));
    window[-1] = result;
    NEXT;
}
do_construct : {
    MARK;
    Value* const window = r + ip->d - ip->a - 1;
    const Value result = vm.constructInPlace(*window, window, static_cast<std::uint32_t>(ip->a));
    *window = result;
    NEXT;
}
do_callproperty:
do_callproplex : {
    MARK;
    Value* const args = r + ip->d - ip->b;
    if (ip->parts == 0) {
        const Value result = callCached(*ip, args - 1);
        args[-1] = result;
    } else {
        Value* base = args;
        const Multiname name = multiname(*ip, base);
        const Value result = vm.callProperty(base[-1], name, {args, static_cast<std::size_t>(ip->b)},
                                             ip->op == RegisterOp::callproplex);
        base[-1] = result;
    }
    NEXT;
}
do_constructprop : {
    MARK;
    Value* const args = r + ip->d - ip->b;
    if (ip->parts == 0) {
        const Value result = constructCached(*ip, args - 1);
        args[-1] = result;
    } else {
        Value* base = args;
        const Multiname name = multiname(*ip, base);
        const Value result = vm.constructProperty(base[-1], name, {args, static_cast<std::size_t>(ip->b)});
        base[-1] = result;
    }
    NEXT;
}
do_other:
    MARK;
    stackOp(*ip, r + ip->d);
    NEXT;
#undef DISPATCH
#undef NEXT
#undef MARK
#undef D
#undef B
#undef C
#undef JUMP_IF
#undef NUMERIC
}

} // namespace flash::avm2
