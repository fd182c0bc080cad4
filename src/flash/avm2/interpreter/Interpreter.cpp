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

constexpr int kJumpsBetweenChecks = 64;

std::int32_t bits(Value value) { return static_cast<std::int32_t>(value.bits()); }
std::uint32_t unsignedBits(Value value) { return static_cast<std::uint32_t>(value.bits()); }
Value rawValue(std::uint32_t value) { return vm::Value::fromBits(value); }

// Loops live in the registers of a frame: what one turn stores, the next one loads. Processors hand that on
// for next to nothing where both sides address it by one register, without an index, and move it by a general
// one; otherwise each time costs as much as several additions. Hence nothing below may be folded together.

/// The same pointer or word, and nothing known about it.
template <class Word>
Word opaque(Word word)
{
    asm("" : "+r"(word));
    return word;
}
Value loaded(const Value* from) { return vm::Value::fromBits(opaque(opaque(from)->bits())); }
void store(Value* to, Value value) { *opaque(to) = vm::Value::fromBits(opaque(value.bits())); }
/// A register that is written.
struct Place {
    Value* at;
    void operator=(Value value) const { store(at, value); }
};

/// @returns the element at an index; null where there is none.
const Value* elementAt(const TracedList<Value>& items, std::uint32_t index)
{
    const Value* const begin = items.data();
    const auto bytes =
        reinterpret_cast<const char*>(begin + items.size()) - reinterpret_cast<const char*>(begin);
    const auto at = static_cast<std::ptrdiff_t>(std::uint64_t{index} * sizeof(Value));
    return at < bytes ? begin + index : nullptr;
}
/// A method or getter of a receiver of a known class; null where it is no such object after all.
MethodEnv* methodAt(Value receiver, std::int32_t id)
{
    if (!receiver.isObject()) return nullptr;
    const auto& methods = receiver.object()->traits()->methods;
    return static_cast<std::size_t>(id) < methods.size() ? methods[static_cast<std::size_t>(id)] : nullptr;
}
bool hasSlot(const Object& object, std::int32_t slot)
{
    return static_cast<std::uint32_t>(slot) < object.slotCount();
}

/// What arithmetic makes of numbers is one: no NaN of its own lies among the patterns of other values.
Value computed(double number) { return vm::Value::fromBits(std::bit_cast<std::uint64_t>(number)); }

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

Value Interpreter::run(const void* const** labels)
{
    static const void* const kLabels[] = {
#define AVM2_LABEL(name) &&do_##name,
#define AVM2_OTHER(name) &&do_other,
        AVM2_REGISTER_OPS(AVM2_LABEL) AVM2_FUSED_OPS(AVM2_LABEL) AVM2_CALL_OPS(AVM2_LABEL)
            AVM2_STACK_OPS(AVM2_OTHER)
#undef AVM2_LABEL
#undef AVM2_OTHER
    };
    if (labels != nullptr) [[unlikely]] {
        *labels = kLabels;
        return {};
    }
    Vm& vm = m_vm;
    Frame* f = m_frame;
    const Value* constants = f->code->constants.data();
    Value* r = f->locals;
    const Ins* ip = f->code->code.data() + f->resume;
    // The last jump back in the present frame, and where it went to.
    const Ins *loopJump = nullptr, *loopHead = nullptr;
    Value returned;

#define DISPATCH() goto* const_cast<void*>(ip->label)
#define NEXT                                                                                                 \
    do {                                                                                                     \
        ++ip;                                                                                                \
        DISPATCH();                                                                                          \
    } while (false)
// What may throw or run script says first where it is.
#define MARK f->at = ip
#define D (Place{r + ip->d})
#define A loaded(r + ip->a)
#define B loaded(r + ip->b)
#define C loaded(r + ip->c)
// An instruction that computes a value and does nothing else.
#define COMPUTE(name, value)                                                                                 \
    do_##name : D = value;                                                                                   \
    NEXT;
// The same, where computing it may throw or run script.
#define COMPUTE_MARKED(name, value)                                                                          \
    do_##name : MARK;                                                                                        \
    D = value;                                                                                               \
    NEXT;
// A loop may go on for long: now and then somebody has to look at the clock and at the heap.
#define CHECK_LOOP                                                                                           \
    if (--untilCheck == 0) [[unlikely]] {                                                                    \
        MARK;                                                                                                \
        vm.check();                                                                                          \
        untilCheck = kJumpsBetweenChecks;                                                                    \
    }
// Of a jump that always goes to the same place. Most jumps back are the last one once more: where that is
// remembered, the processor need not wait for the target to be read before it goes on.
#define JUMP                                                                                                 \
    do {                                                                                                     \
        if (ip == loopJump) [[likely]] {                                                                     \
            CHECK_LOOP                                                                                       \
            ip = loopHead;                                                                                   \
            DISPATCH();                                                                                      \
        }                                                                                                    \
        if (ip->d <= 0) {                                                                                    \
            CHECK_LOOP                                                                                       \
            loopJump = ip;                                                                                   \
            loopHead = ip + ip->d;                                                                           \
        }                                                                                                    \
        ip += ip->d;                                                                                         \
        DISPATCH();                                                                                          \
    } while (false)
#define JUMP_IF(condition)                                                                                   \
    do {                                                                                                     \
        if (condition) JUMP;                                                                                 \
        NEXT;                                                                                                \
    } while (false)
#define BRANCH(name, condition) do_##name : JUMP_IF(condition);
#define BRANCH_MARKED(name, condition)                                                                       \
    do_##name : MARK;                                                                                        \
    JUMP_IF(condition);
// A call: of verified code the loop goes on with its frame, until that returns.
#define GO_ON_IF(hasBegun)                                                                                   \
    do {                                                                                                     \
        if (!(hasBegun)) NEXT;                                                                               \
        goto enter;                                                                                          \
    } while (false)
#define CALL(env, window, count, raws, result) GO_ON_IF(begin(env, window, count, raws, result))
// The same, where it may be a native that has a simple case.
#define TRY_QUICK(env, receiver, args, count, to)                                                            \
    if ((env).quickArguments == (count)) {                                                                   \
        if (const Value given = (env).quick(vm, receiver, args); !given.isHole()) [[likely]] {               \
            store(to, given);                                                                                \
            NEXT;                                                                                            \
        }                                                                                                    \
    }
    int untilCheck = kJumpsBetweenChecks;
    DISPATCH();

enter:
    f = m_frame;
    constants = f->code->constants.data();
    r = f->locals;
    ip = f->code->code.data() + f->resume;
    DISPATCH();

    COMPUTE(Move, B)
    COMPUTE(LoadConst, constants[ip->a])
    COMPUTE(LoadInt, rawValue(ip->a))
    COMPUTE(BoxInt, computed(bits(B)))
    COMPUTE(BoxUint, computed(unsignedBits(B)))
    COMPUTE(UnboxInt, rawValue(narrow(B.number())))
do_ToIntV:
    if (const Value value = B; value.isNumber()) {
        D = rawValue(narrow(value.number()));
    } else {
        MARK;
        D = rawValue(vm.toInt(B));
    }
    NEXT;
do_ToNumberV:
    if (const Value value = B; value.isNumber()) {
        D = value;
    } else {
        MARK;
        D = Value(vm.toNumber(B));
    }
    NEXT;
    COMPUTE(ToBooleanV, Value(B.isBoolean() ? B.boolean() : vm.toBoolean(B)))
do_CoerceString:
    if (const Value value = B; value.isString()) {
        D = value;
    } else {
        MARK;
        D = vm.coerceString(B);
    }
    NEXT;
do_CoerceType : {
    Traits* type = nullptr;
    if (f->unit->typeIfKnown(static_cast<std::uint32_t>(ip->a), type) &&
        (type == nullptr || fitsType(B, type))) {
        D = B;
        NEXT;
    }
    MARK;
    D = vm.coerce(B, f->unit->type(vm, static_cast<std::uint32_t>(ip->a)));
    NEXT;
}
    COMPUTE(CoerceObject, B.isUndefined() ? Value::null() : B)

    COMPUTE(AddI, rawValue(unsignedBits(B) + unsignedBits(C)))
    COMPUTE(SubI, rawValue(unsignedBits(B) - unsignedBits(C)))
    COMPUTE(MulI, rawValue(unsignedBits(B) * unsignedBits(C)))
    COMPUTE(AndI, rawValue(unsignedBits(B) & unsignedBits(C)))
    COMPUTE(OrI, rawValue(unsignedBits(B) | unsignedBits(C)))
    COMPUTE(XorI, rawValue(unsignedBits(B) ^ unsignedBits(C)))
    COMPUTE(ShlI, rawValue(unsignedBits(B) << (unsignedBits(C) & 31U)))
    COMPUTE(ShrI, rawValue(bits(B) >> (unsignedBits(C) & 31U)))
    COMPUTE(UshrI, rawValue(unsignedBits(B) >> (unsignedBits(C) & 31U)))
    COMPUTE(NotI, rawValue(~unsignedBits(B)))
    COMPUTE(NegI, rawValue(0U - unsignedBits(B)))
    COMPUTE(AddIK, rawValue(unsignedBits(B) + static_cast<std::uint32_t>(ip->c)))
    COMPUTE(AndIK, rawValue(unsignedBits(B) & static_cast<std::uint32_t>(ip->c)))
    COMPUTE(OrIK, rawValue(unsignedBits(B) | static_cast<std::uint32_t>(ip->c)))
    COMPUTE(ShlIK, rawValue(unsignedBits(B) << (static_cast<std::uint32_t>(ip->c) & 31U)))
    COMPUTE(ShrIK, rawValue(bits(B) >> (static_cast<std::uint32_t>(ip->c) & 31U)))
    COMPUTE(UshrIK, rawValue(unsignedBits(B) >> (static_cast<std::uint32_t>(ip->c) & 31U)))
    COMPUTE(AddII, computed(static_cast<double>(bits(B)) + static_cast<double>(bits(C))))
    COMPUTE(SubII, computed(static_cast<double>(bits(B)) - static_cast<double>(bits(C))))
    COMPUTE(MulII, computed(static_cast<double>(bits(B)) * static_cast<double>(bits(C))))
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

    COMPUTE(AddN, computed(B.number() + C.number()))
    COMPUTE(SubN, computed(B.number() - C.number()))
    COMPUTE(MulN, computed(B.number() * C.number()))
    COMPUTE(DivN, computed(B.number() / C.number()))
    COMPUTE(ModN, computed(std::fmod(B.number(), C.number())))
    COMPUTE(NegN, computed(-B.number()))
    COMPUTE(AddNK, computed(B.number() + constants[ip->c].number()))
    COMPUTE(SubNK, computed(B.number() - constants[ip->c].number()))
    COMPUTE(MulNK, computed(B.number() * constants[ip->c].number()))
    COMPUTE(DivNK, computed(B.number() / constants[ip->c].number()))
do_AddV : {
    const Value x = B, y = C;
    if (x.isNumber() && y.isNumber()) {
        D = computed(x.number() + y.number());
    } else {
        MARK;
        D = vm.add(x, y);
    }
    NEXT;
}
    COMPUTE(AddNI, computed(B.number() + bits(C)))
    COMPUTE(SubNI, computed(B.number() - bits(C)))
    COMPUTE(MulNI, computed(B.number() * bits(C)))
    COMPUTE(DivNI, computed(B.number() / bits(C)))
do_AddIV:
    if (const Value other = C; other.isNumber()) {
        D = computed(bits(B) + other.number());
    } else {
        MARK;
        // Which one is on the left tells where there are texts.
        const Value number = computed(bits(B));
        D = ip->parts != 0 ? vm.add(C, number) : vm.add(number, C);
    }
    NEXT;
do_AddToI:
    if (const Value other = C; isInt(other)) {
        D = rawValue(unsignedBits(B) + static_cast<std::uint32_t>(cut(other.number())));
    } else {
        MARK;
        const Value number = computed(bits(B));
        D = rawValue(vm.toInt(ip->parts != 0 ? vm.add(C, number) : vm.add(number, C)));
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

    COMPUTE(LtI, Value(bits(B) < bits(C)))
    COMPUTE(LeI, Value(bits(B) <= bits(C)))
    COMPUTE(EqI, Value(bits(B) == bits(C)))
    COMPUTE(LtU, Value(unsignedBits(B) < unsignedBits(C)))
    COMPUTE(LeU, Value(unsignedBits(B) <= unsignedBits(C)))
    COMPUTE(LtN, Value(B.number() < C.number()))
    COMPUTE(LeN, Value(B.number() <= C.number()))
    COMPUTE(EqN, Value(B.number() == C.number()))
    COMPUTE_MARKED(LtV, Value(less(vm, B, C)))
    COMPUTE_MARKED(LeV, Value(lessOrEqual(vm, B, C)))
    COMPUTE_MARKED(EqV, Value(vm.equals(B, C)))
    COMPUTE(SeqV, Value(vm.strictEquals(B, C)))
    COMPUTE(NotB, Value(!B.boolean()))
    COMPUTE(NotV, Value(!vm.toBoolean(B)))

    BRANCH(Jump, true)
    BRANCH(JTrueB, B.boolean())
    BRANCH(JFalseB, !B.boolean())
    BRANCH(JTrueI, unsignedBits(B) != 0)
    BRANCH(JFalseI, unsignedBits(B) == 0)
    BRANCH(JTrueV, B.isBoolean() ? B.boolean() : vm.toBoolean(B))
    BRANCH(JFalseV, !(B.isBoolean() ? B.boolean() : vm.toBoolean(B)))
    BRANCH(JLtI, bits(B) < bits(C))
    BRANCH(JLeI, bits(B) <= bits(C))
    BRANCH(JEqI, bits(B) == bits(C))
    BRANCH(JNeI, bits(B) != bits(C))
    BRANCH(JLtIK, bits(B) < ip->c)
    BRANCH(JLeIK, bits(B) <= ip->c)
    BRANCH(JGtIK, bits(B) > ip->c)
    BRANCH(JGeIK, bits(B) >= ip->c)
    BRANCH(JEqIK, bits(B) == ip->c)
    BRANCH(JNeIK, bits(B) != ip->c)
    BRANCH(JLtU, unsignedBits(B) < unsignedBits(C))
    BRANCH(JLeU, unsignedBits(B) <= unsignedBits(C))
    BRANCH(JLtN, B.number() < C.number())
    BRANCH(JLeN, B.number() <= C.number())
    BRANCH(JNltN, !(B.number() < C.number()))
    BRANCH(JNleN, !(B.number() <= C.number()))
    BRANCH(JEqN, B.number() == C.number())
    BRANCH(JNeN, B.number() != C.number())
    BRANCH_MARKED(JLtV, less(vm, B, C))
    BRANCH_MARKED(JLeV, lessOrEqual(vm, B, C))
    BRANCH_MARKED(JNltV, !less(vm, B, C))
    BRANCH_MARKED(JNleV, !lessOrEqual(vm, B, C))
    BRANCH_MARKED(JEqV, vm.equals(B, C))
    BRANCH_MARKED(JNeV, !vm.equals(B, C))
    BRANCH(JSeqV, vm.strictEquals(B, C))
    BRANCH(JSneV, !vm.strictEquals(B, C))
do_Switch : {
    const auto& targets = f->code->switches[static_cast<std::size_t>(ip->a)];
    const std::uint32_t index = unsignedBits(B);
    const Ins* const to =
        f->code->code.data() + (index < targets.size() - 1 ? targets[index] : targets.back());
    if (to <= ip) CHECK_LOOP
    ip = to;
    DISPATCH();
}

#include "flash/avm2/interpreter/LoopCalls.inl"
#include "flash/avm2/interpreter/LoopFused.inl"
#include "flash/avm2/interpreter/LoopProperties.inl"

do_PushScope:
    if (B.isObject()) [[likely]] {
        f->scopes[f->scopeCount] = B;
        f->withMask &= ~(std::uint64_t{1} << f->scopeCount);
        ++f->scopeCount;
        f->chain = nullptr;
    } else {
        MARK;
        pushScope(B, false);
    }
    NEXT;
do_popscope:
    --f->scopeCount;
    f->scopes[f->scopeCount] = Value();
    f->chain = nullptr;
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
    const Value holder = find(f->unit->multiname(static_cast<std::uint32_t>(ip->a)), *ip, true);
    const Value result = getCached(holder, *ip);
    r[ip->d] = result;
    NEXT;
}
do_other:
    MARK;
    stackOp(*ip, r + ip->d);
    NEXT;
#undef DISPATCH
#undef NEXT
#undef MARK
#undef A
#undef D
#undef B
#undef C
#undef COMPUTE
#undef COMPUTE_MARKED
#undef JUMP
#undef CHECK_LOOP
#undef JUMP_IF
#undef BRANCH
#undef BRANCH_MARKED
#undef CALL
#undef GO_ON_IF
#undef TRY_QUICK
#undef NUMERIC
}

} // namespace flash::avm2
