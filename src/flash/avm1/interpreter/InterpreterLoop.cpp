#include "flash/avm1/interpreter/Actions.h"
#include "flash/avm1/interpreter/CacheHits.h"

#include <utility>

// The loop that runs decoded code: a jump from each instruction straight to the next one's case. Common
// actions have cases of their own for the common kinds of operands; everything else goes through the table.
namespace flash::avm1
{

namespace
{

constexpr int kSafepointsBetweenClockLooks = 2000;

bool truth(double number) { return number == number && number != 0; }

} // namespace

void Frame::overflow() { Interpreter::abort(vm, "A script used up the operand stack."); }

void Interpreter::loop(Frame& frame)
{
    Vm& vm = frame.vm;
    static const void* const kCases[] = {&&viaTable,
#define FLASH_HOT_LABEL(name, label) &&label,
                                         FLASH_HOT_ACTIONS(FLASH_HOT_LABEL)
#undef FLASH_HOT_LABEL
    };
    // The frame's own are up to date wherever anything else may look at them: LEAVE before, ENTER after.
    const Instruction* ip = frame.ip;     // the next instruction
    const Instruction* current = nullptr; // the one that runs
    Value* top = frame.top;
    Value* const base = frame.base;
    Value* const limit = frame.limit;
    Value* const registers = frame.registers;
    const unsigned registerCount = frame.registerCount;
    const Region* const region = frame.region;

#define LEAVE (frame.ip = ip, frame.top = top)
#define ENTER (ip = frame.ip, top = frame.top)
#define NEXT                                                                                                 \
    do {                                                                                                     \
        current = ip++;                                                                                      \
        goto* kCases[static_cast<std::size_t>(current->hot)];                                                \
    } while (false)

    NEXT;

viaTable:
    LEAVE;
    kActionByOp[current->op].function(frame, *current);
    ENTER;
afterCall:
    if (vm.m_thrown || vm.m_aborted || frame.returned) [[unlikely]]
        goto leave;
    if (vm.m_collectsAlways) [[unlikely]] {
        LEAVE;
        safepoint(vm);
    }
    if (region != nullptr) [[unlikely]] {
        LEAVE;
        if (leftRegion(frame)) return;
    }
    NEXT;

pushLiteral:
    if (top == limit) [[unlikely]]
        goto viaTable;
    *top++ = frame.code->literal(current->b);
    NEXT;

pushConstant:
    if (frame.pool == nullptr || current->b >= frame.pool->size() || top == limit) [[unlikely]]
        goto viaTable;
    *top++ = (*frame.pool)[current->b];
    NEXT;

pushRegister:
    if (current->b >= registerCount || top == limit) [[unlikely]]
        goto viaTable;
    *top++ = registers[current->b];
    NEXT;

storeRegister:
    if (current->a >= registerCount) [[unlikely]]
        goto viaTable;
    registers[current->a] = top == base ? Value() : top[-1];
    NEXT;

popOne:
    if (top != base) --top;
    NEXT;

pushDuplicate:
    if (top == base || top == limit) [[unlikely]]
        goto viaTable;
    *top = top[-1];
    ++top;
    NEXT;

toNumber:
    if (top == base || !top[-1].isNumber()) goto viaTable;
    NEXT;

stackSwap:
    if (top - base < 2) goto viaTable;
    std::swap(top[-1], top[-2]);
    NEXT;

jumpIf : {
    const Value condition = top == base ? Value() : *--top;
    bool taken;
    if (condition.isBoolean())
        taken = condition.boolean();
    else if (condition.isNumber())
        taken = truth(condition.number());
    else
        taken = avm1::toBoolean(vm, condition);
    if (!taken) NEXT;
}
jump : {
    const Instruction* to = frame.body->instructions.data() + current->b;
    const bool backwards = to < ip;
    ip = to;
    if (backwards || region != nullptr) {
        LEAVE;
        safepoint(vm);
        goto afterCall;
    }
    NEXT;
}

logicalNot:
    if (top == base || !top[-1].isBoolean() || frame.version < 5) goto viaTable;
    top[-1] = Value(!top[-1].boolean());
    NEXT;

#define NUMERIC(isCase, expression)                                                                          \
    if (top - base < 2 || !top[-1].isNumber() || !top[-2].isNumber()) goto viaTable;                         \
    {                                                                                                        \
        const double rhs = top[-1].number();                                                                 \
        const double lhs = top[-2].number();                                                                 \
        if (!(isCase)) goto viaTable;                                                                        \
        --top;                                                                                               \
        top[-1] = Value(expression);                                                                         \
    }                                                                                                        \
    NEXT

add2:
    NUMERIC(true, lhs + rhs);
subtract:
    NUMERIC(true, lhs - rhs);
multiply:
    NUMERIC(true, lhs * rhs);
    // What is not a number compares as undefined, which is not what these yield.
less2:
    NUMERIC(lhs == lhs && rhs == rhs, lhs < rhs);
greater:
    NUMERIC(lhs == lhs && rhs == rhs, lhs > rhs);
equals2:
    NUMERIC(lhs == lhs && rhs == rhs, lhs == rhs);
#undef NUMERIC

increment:
    if (top == base || !top[-1].isNumber()) goto viaTable;
    top[-1] = Value(top[-1].number() + 1);
    NEXT;

decrement:
    if (top == base || !top[-1].isNumber()) goto viaTable;
    top[-1] = Value(top[-1].number() - 1);
    NEXT;

getVariable:
    if (top == base || !top[-1].isString()) goto viaTable;
    {
        const Atom* const name = top[-1].string()->atom();
        const InlineCache& cache = frame.code->cache(current->b);
        if (Object* const object = cachedVariable(cache, frame, name)) {
            top[-1] = cache.holderOr(object)->slot(cache.slot);
            NEXT;
        }
    }
    LEAVE;
    top[-1] = getVariableCached(frame, vm.m_names.intern(top[-1].string()), current->b);
    goto afterCall;

setVariable:
    if (top - base < 2 || !top[-2].isString()) goto viaTable;
    LEAVE;
    setVariableCached(frame, vm.m_names.intern(top[-2].string()), top[-1], current->b);
    top -= 2;
    goto afterCall;

getMember : {
    if (top - base < 2) goto viaTable;
    const InlineCache& cache = frame.code->cache(current->b);
    if (const Object* const holder = cachedMember(cache, vm, top[-2], top[-1])) [[likely]] {
        --top;
        top[-1] = holder->slot(cache.slot);
        NEXT;
    }
    LEAVE;
    const Value result = getMemberCached(frame, top[-2], top[-1], current->b);
    --top;
    top[-1] = result;
    goto afterCall;
}

setMember : {
    if (top - base < 3) goto viaTable;
    const InlineCache& cache = frame.code->cache(current->b);
    if (Object* const object = cachedAssignment(cache, vm, top[-3], top[-2])) [[likely]] {
        object->setSlot(cache.slot, top[-1]);
        top -= 3;
        NEXT;
    }
    LEAVE;
    setMemberCached(frame, top[-3], top[-2], top[-1], current->b);
    top -= 3;
    goto afterCall;
}

callFunction:
    LEAVE;
    actions::callFunction(frame, *current);
    ENTER;
    goto afterCall;

callMethod:
    LEAVE;
    actions::callMethod(frame, *current);
    ENTER;
    goto afterCall;

returnValue:
    frame.result = top == base ? Value() : *--top;
    frame.returned = true;
    goto leave;

regionEnd:
    // Regions may end at the same place: the next one out looks at this instruction again.
    if (region == nullptr || region->end != current->b) NEXT;
    ip = current;
    goto leave;

end:
    ip = current;
leave:
    LEAVE;
#undef NEXT
#undef ENTER
#undef LEAVE
}

bool Interpreter::leftRegion(const Frame& frame)
{
    const auto index = static_cast<std::size_t>(frame.ip - frame.body->instructions.data());
    const std::uint32_t offset = frame.body->offsets[index];
    const Region& region = *frame.region;
    // Arriving at the end is not leaving yet: the instruction there says so.
    return offset < region.start || offset > region.end;
}

void Interpreter::runRegion(Frame& frame, std::uint32_t start, std::uint32_t end, std::uint32_t entry)
{
    if (start >= end) return;
    const Region region{start, end, frame.region};
    frame.region = &region;
    frame.ip = frame.body->instructions.data() + frame.body->instructionAt(entry);
    // The start of one part is the end of the one before: its instruction must not end this one.
    ++frame.vm.m_regions;
    if (frame.vm.m_regions > kMaxNestedRegions)
        abort(frame.vm, "Blocks are nested too deeply.");
    else
        loop(frame);
    --frame.vm.m_regions;
    frame.region = region.outer;
}

void Interpreter::jump(Frame& frame, std::uint32_t instruction)
{
    const Instruction* to = frame.body->instructions.data() + instruction;
    const bool backwards = to <= frame.ip;
    frame.ip = to;
    if (backwards) safepoint(frame.vm);
}

void Interpreter::safepointDue(Vm& vm)
{
    if (vm.m_heap.shouldCollect()) {
        vm.m_heap.collect();
        if (!vm.takesMemory(0)) return;
        vm.m_budget = 0; // what takes memory in great pieces is looked at more often
    }
    if (vm.m_budget > 0) return;
    vm.m_budget = kSafepointsBetweenClockLooks;
    if (vm.m_host.endsScripts()) return abort(vm, "The host ended the scripts of this movie.");
    const double now = vm.m_host.realTimeMs();
    if (now - vm.m_startedMs < vm.m_timeoutMs) return;
    if (vm.m_host.askToStopScript((now - vm.m_startedMs) / 1000))
        abort(vm, "A script in this movie ran for too long and was stopped.");
    else
        vm.m_startedMs = now;
}

} // namespace flash::avm1
