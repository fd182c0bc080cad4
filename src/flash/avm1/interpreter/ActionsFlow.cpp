#include "flash/avm1/interpreter/Actions.h"
#include "flash/avm1/interpreter/Interpreter.h"

#include <utility>

// Actions that decide what runs next.
namespace flash::avm1::actions
{

void jump(Frame& frame, const Instruction& instruction) { Interpreter::jump(frame, instruction.b); }

void jumpIf(Frame& frame, const Instruction& instruction)
{
    if (avm1::toBoolean(frame.vm, frame.pop())) Interpreter::jump(frame, instruction.b);
}

void end(Frame&, const Instruction&) {}
void nothing(Frame&, const Instruction&) {}

namespace
{

std::uint32_t nextOffset(const Frame& frame)
{
    return frame.body->offsets[static_cast<std::size_t>(frame.ip - frame.body->instructions.data())];
}

void goTo(Frame& frame, std::uint32_t offset)
{
    frame.ip = frame.body->instructions.data() + frame.body->instructionAt(offset);
}

/// The first action behind a `with` still belongs to it, which shows when that is a jump back into it.
/// @param target where it leads
/// @returns whether it was, and was taken
bool jumpsBack(Frame& frame, std::uint32_t start, std::uint32_t end, std::uint32_t& target)
{
    if (frame.vm.isUnwinding() || frame.returned || nextOffset(frame) != end) return false;
    const Instruction* first = frame.ip;
    while (first->op == kRegionEnd) ++first;
    const Instruction& next = *first;
    const auto op = static_cast<ActionCode>(next.op);
    if (op != ActionCode::Jump && op != ActionCode::If) return false;
    target = frame.body->offsets[next.b];
    if (target < start || target >= end) return false;
    frame.ip = first + 1;
    if (op == ActionCode::If && !avm1::toBoolean(frame.vm, frame.pop())) return false;
    Interpreter::jump(frame, next.b);
    return true;
}

} // namespace

void with(Frame& frame, const Instruction& instruction)
{
    Object* object = avm1::toObject(frame.vm, frame.pop());
    const Instruction* after = frame.ip;
    const std::uint32_t start =
        frame.body->offsets[static_cast<std::size_t>(after - frame.body->instructions.data())];
    const int mostNested = frame.version < 6 ? 7 : 15;
    if (object == nullptr || frame.withDepth >= mostNested) {
        if (object == nullptr)
            frame.vm.host().reportError(
                u"Error: A 'with' action failed because the specified object did not exist.\n");
        frame.ip = frame.body->instructions.data() + frame.body->instructionAt(instruction.b);
        return;
    }
    Scope* outer = frame.scope;
    frame.scope = frame.vm.heap().make<Scope>(Scope::Kind::With, object, outer);
    ++frame.withDepth;
    std::uint32_t entry = start;
    do {
        Interpreter::runRegion(frame, start, instruction.b, entry);
    } while (jumpsBack(frame, start, instruction.b, entry));
    --frame.withDepth;
    frame.scope = outer;
}

namespace
{

void bindException(Frame& frame, const TryHead& head, Value exception)
{
    if (head.catchInRegister) return frame.setRegister(head.catchRegister, exception);
    Object* object = frame.activation != nullptr ? frame.activation : frame.target;
    if (object != nullptr) object->put(frame.vm, head.catchName, exception);
}

} // namespace

void tryBlock(Frame& frame, const Instruction& instruction)
{
    Vm& vm = frame.vm;
    const TryHead head = frame.code->tryHead(instruction.b);
    Scope* const scope = frame.scope;
    // Where a part ends that neither jumps nor throws.
    std::uint32_t partEnd = head.tryEnd;
    const std::uint32_t start = nextOffset(frame);
    Interpreter::runRegion(frame, start, head.tryEnd);
    if (start >= head.tryEnd) goTo(frame, head.tryEnd);
    if (Interpreter::isThrown(vm) && head.hasCatch) {
        frame.scope = scope;
        bindException(frame, head, Interpreter::takeException(vm));
        partEnd = head.catchEnd;
        goTo(frame, head.catchEnd);
        Interpreter::runRegion(frame, head.tryEnd, head.catchEnd);
    }
    if (!vm.isUnwinding() && !frame.returned && partEnd == head.tryEnd && nextOffset(frame) == head.tryEnd &&
        head.catchEnd > head.tryEnd) {
        // Only a jump leads past what catches: compilers put one there.
        partEnd = head.catchEnd;
        Interpreter::runRegion(frame, head.tryEnd, head.catchEnd);
    }
    const bool completed = !vm.isUnwinding() && !frame.returned && nextOffset(frame) == partEnd;
    // A jump out of a part skips the last one.
    const bool jumped = !completed && !vm.isUnwinding() && !frame.returned;
    if (jumped) return;
    if (!head.hasFinally) {
        if (completed) goTo(frame, head.finallyEnd);
        return;
    }
    // Whatever was under way waits until the last part is done, and goes on unless that part goes elsewhere.
    const Instruction* const wayOn = frame.ip;
    const bool returned = std::exchange(frame.returned, false);
    const Value result = frame.result;
    const bool thrown = Interpreter::isThrown(vm);
    const Value exception = thrown ? Interpreter::takeException(vm) : Value();
    frame.scope = scope;
    goTo(frame, head.finallyEnd);
    Interpreter::runRegion(frame, head.catchEnd, head.finallyEnd);
    if (vm.isUnwinding() || frame.returned || nextOffset(frame) != head.finallyEnd) return;
    if (thrown) return Interpreter::throwValue(vm, exception);
    frame.returned = returned;
    frame.result = result;
    if (!completed) frame.ip = wayOn;
}

void throwValue(Frame& frame, const Instruction&) { Interpreter::throwValue(frame.vm, frame.pop()); }

void returnValue(Frame& frame, const Instruction&)
{
    frame.result = frame.pop();
    frame.returned = true;
}

} // namespace flash::avm1::actions
