#include "flash/avm1/Actions.h"
#include "flash/avm1/Interpreter.h"

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
    // In the order of Hot.
    static const void* const kCases[] = {
        &&viaTable,   &&pushLiteral, &&pushConstant, &&pushRegister, &&storeRegister, &&popOne,
        &&jumpAlways, &&jumpIf,      &&logicalNot,   &&add2,         &&subtract,      &&multiply,
        &&less2,      &&greater,     &&equals2,      &&increment,    &&decrement,     &&getVariable,
        &&getMember,  &&setMember,   &&end,          &&regionEnd,
    };
    const Instruction* ip = nullptr;
#define NEXT                                                                                                 \
    do {                                                                                                     \
        ip = frame.ip++;                                                                                     \
        goto* kCases[ip->hot];                                                                               \
    } while (false)

    NEXT;

viaTable:
    kActionByCode[ip->op].function(frame, *ip);
afterCall:
    if (vm.m_thrown || vm.m_aborted || frame.returned) [[unlikely]]
        return;
    if (vm.m_collectsAlways) [[unlikely]]
        safepoint(vm);
    if (frame.region != nullptr) [[unlikely]] {
        if (leftRegion(frame)) return;
    }
    NEXT;

pushLiteral:
    if (frame.top == frame.limit) goto viaTable;
    *frame.top++ = frame.code->literal(ip->b);
    NEXT;

pushConstant:
    if (frame.pool == nullptr || ip->b >= frame.pool->size() || frame.top == frame.limit) goto viaTable;
    *frame.top++ = (*frame.pool)[ip->b];
    NEXT;

pushRegister:
    if (ip->b >= frame.registerCount || frame.top == frame.limit) goto viaTable;
    *frame.top++ = frame.registers[ip->b];
    NEXT;

storeRegister:
    frame.setRegister(ip->a, frame.peek());
    NEXT;

popOne:
    if (frame.top != frame.base) --frame.top;
    NEXT;

jumpAlways:
    jump(frame, ip->b);
    goto afterCall;

jumpIf : {
    const Value condition = frame.pop();
    bool taken;
    if (condition.isBoolean())
        taken = condition.boolean();
    else if (condition.isNumber())
        taken = truth(condition.number());
    else
        taken = avm1::toBoolean(vm, condition);
    if (!taken) NEXT;
    jump(frame, ip->b);
    goto afterCall;
}

logicalNot:
    if (frame.top == frame.base || !frame.top[-1].isBoolean() || frame.version < 5) goto viaTable;
    frame.top[-1] = Value(!frame.top[-1].boolean());
    NEXT;

#define NUMERIC(expression)                                                                                  \
    if (frame.top - frame.base < 2 || !frame.top[-1].isNumber() || !frame.top[-2].isNumber()) goto viaTable; \
    {                                                                                                        \
        const double rhs = frame.top[-1].number();                                                           \
        const double lhs = frame.top[-2].number();                                                           \
        --frame.top;                                                                                         \
        frame.top[-1] = Value(expression);                                                                   \
    }                                                                                                        \
    NEXT

add2:
    NUMERIC(lhs + rhs);
subtract:
    NUMERIC(lhs - rhs);
multiply:
    NUMERIC(lhs * rhs);
less2:
    if (frame.top - frame.base >= 2 &&
        (std::isnan(frame.top[-1].number()) || std::isnan(frame.top[-2].number())))
        goto viaTable;
    NUMERIC(lhs < rhs);
greater:
    if (frame.top - frame.base >= 2 &&
        (std::isnan(frame.top[-1].number()) || std::isnan(frame.top[-2].number())))
        goto viaTable;
    NUMERIC(lhs > rhs);
equals2:
    if (frame.top - frame.base >= 2 &&
        (std::isnan(frame.top[-1].number()) || std::isnan(frame.top[-2].number())))
        goto viaTable;
    NUMERIC(lhs == rhs);
#undef NUMERIC

increment:
    if (frame.top == frame.base || !frame.top[-1].isNumber()) goto viaTable;
    frame.top[-1] = Value(frame.top[-1].number() + 1);
    NEXT;

decrement:
    if (frame.top == frame.base || !frame.top[-1].isNumber()) goto viaTable;
    frame.top[-1] = Value(frame.top[-1].number() - 1);
    NEXT;

getVariable:
    if (frame.top == frame.base) goto viaTable;
    frame.top[-1] = getVariableCached(frame, frame.top[-1], ip->b);
    goto afterCall;

getMember : {
    if (frame.operandCount() < 2) goto viaTable;
    const Value result = getMemberCached(frame, frame.top[-2], frame.top[-1], ip->b);
    --frame.top;
    frame.top[-1] = result;
    goto afterCall;
}

setMember:
    if (frame.operandCount() < 3) goto viaTable;
    setMemberCached(frame, frame.top[-3], frame.top[-2], frame.top[-1], ip->b);
    frame.top -= 3;
    goto afterCall;

regionEnd:
    if (frame.region != nullptr && frame.region->end == ip->b) {
        // Regions may end at the same place: the next one out looks at this instruction again.
        --frame.ip;
        return;
    }
    NEXT;

end:
    --frame.ip;
    return;
#undef NEXT
}

bool Interpreter::leftRegion(const Frame& frame)
{
    const auto index = static_cast<std::size_t>(frame.ip - frame.body->instructions.data());
    const std::uint32_t offset = frame.body->offsets[index];
    const Region& region = *frame.region;
    // Arriving at the end is not leaving yet: the instruction there says so.
    return offset < region.start || offset > region.end;
}

void Interpreter::runRegion(Frame& frame, std::uint32_t start, std::uint32_t end)
{
    if (start >= end) return;
    const Region region{start, end, frame.region};
    frame.region = &region;
    frame.ip = frame.body->instructions.data() + frame.body->instructionAt(start);
    // The start of one part is the end of the one before: its instruction must not end this one.
    ++frame.vm.m_regions;
    if (frame.vm.m_regions > kMostNestedRegions)
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

void Interpreter::safepoint(Vm& vm)
{
    if (vm.m_heap.shouldCollect()) {
        vm.m_heap.collect();
        vm.m_budget = 0; // what takes memory in great pieces is looked at more often
    }
    if (--vm.m_budget > 0) return;
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
