// Frames of calls, the ends of objects between two instructions, and the limits of time and work.

#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Reference.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

// A time slice counts for no more than this: what lies beyond was spent waiting in the host (a dialog).
constexpr auto kLongestSlice = std::chrono::milliseconds(250);

} // namespace

Result<void> Engine::pushFrame(Function& function, std::size_t count, Value* result, Ref<Instance> me,
                               bool discards)
{
    if (count != function.byReference.size())
        return fault(error::kWrongArguments, m_names.spelling(function.name));
    Value* locals = m_sp - count;
    const std::size_t need = function.slots + function.maxStack + kSpareValues;
    const auto used = static_cast<std::size_t>(locals - m_stack.get());
    if (m_frames.size() >= kMaxFrames || used + need > kStackValues) {
        return fault(error::kOutOfStack, m_names.spelling(function.name));
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (function.byReference[i] == 0) dereference(locals[i]);
    }
    for (Value* end = locals + function.slots; m_sp < end; ++m_sp) new (m_sp) Value();
    --m_ticks;
    Frame& made = m_frames.emplace_back();
    made.function = &function;
    made.next = function.code.data();
    made.locals = locals;
    made.result = result;
    made.me = std::move(me);
    made.discards = discards;
    return {};
}

void Engine::popFrame()
{
    // What the frame held may run code when it is freed; it goes last.
    Frame& top = m_frames.back();
    Value* result = top.result;
    const Ref<Instance> me = std::move(top.me);
    const auto extras = std::move(top.extras);
    if (top.isTermination) {
        m_waiting = top.waiting;
        if (mustTerminate()) park();
    }
    m_frames.pop_back();
    dropTo(result);
}

Result<Value> Engine::call(Function& function, Instance* me, Arguments arguments)
{
    if (m_nestedRuns >= kMaxNestedRuns || m_tornDown)
        return fault(error::kOutOfStack, m_names.spelling(function.name));
    if (arguments.size() + static_cast<std::size_t>(m_sp - m_stack.get()) + kSpareValues > kStackValues)
        return fault(error::kOutOfStack);
    Value* bottom = m_sp;
    for (const Value& argument : arguments) push(argument.resolved());
    if (auto pushed = pushFrame(function, arguments.size(), bottom, Ref<Instance>(me), false); !pushed) {
        dropTo(bottom);
        return Failed(std::move(pushed).error());
    }
    frame().isBoundary = true;
    return run();
}

Result<Value> Engine::runProgram(std::unique_ptr<Program> program)
{
    CHECK_RESULT(define(*program));
    Function& main = *program->main;
    const bool lasts = program->isLasting();
    if (lasts) m_programs.push_back(std::move(program));
    return call(main, nullptr, {});
}

void Engine::becameUnreachable(Instance& instance)
{
    if (m_tornDown) return;
    m_dying.emplace_back(&instance);
    park();
}

// Has the machine look up from its work after this instruction.
void Engine::park()
{
    if (m_isParked) return;
    m_isParked = true;
    m_ticksAside = std::exchange(m_ticks, -1);
}

// Work that is worth so many steps, so that the clock is looked at in time.
void Engine::spend(std::size_t steps)
{
    int& left = m_isParked ? m_ticksAside : m_ticks;
    left -= static_cast<int>(std::min(steps, static_cast<std::size_t>(kTicksBetweenChecks)));
}

// Outside of any call. Counts as one call, so that objects which make new ones when they end run out of time.
bool Engine::runTerminations()
{
    if (m_dying.empty() || m_nestedRuns > 0) return true;
    ++m_nestedRuns;
    m_used = {};
    m_lastCheck = std::chrono::steady_clock::now();
    bool inTime = true;
    while (!m_dying.empty() && inTime) {
        const Ref<Instance> instance = std::move(m_dying.front());
        m_dying.pop_front();
        m_waiting = m_dying.size();
        // There is nobody to report an error to.
        const auto ended = call(*instance->info->terminate, instance.get(), {});
        inTime = ended || !ended.error()->uncatchable;
        m_waiting = 0;
    }
    --m_nestedRuns;
    while (!m_dying.empty()) m_dying.pop_front();
    return inTime;
}

// Class_Terminate runs as soon as the instruction that released the object is done. What does not fit on the
// stack now is tried again later. Objects that wait already do so until this one has ended, so that their
// number does not become the depth of the stack; those that it releases itself come at once.
bool Engine::beginTermination()
{
    const auto first = m_dying.begin() + static_cast<std::ptrdiff_t>(m_waiting);
    const Ref<Instance> instance = *first;
    if (!pushFrame(*instance->info->terminate, 0, m_sp, instance, true)) return false;
    m_dying.erase(first);
    frame().isTermination = true;
    frame().waiting = std::exchange(m_waiting, m_dying.size());
    return true;
}

// Every now and then between two instructions: time, memory and the ends of objects.
Result<void> Engine::attend()
{
    if (std::exchange(m_isParked, false)) m_ticks = m_ticksAside;
    const bool isDue = m_ticks < 0;
    if (isDue) m_ticks = kTicksBetweenChecks;
    if (mustTerminate() && !beginTermination()) park();
    if (!isDue) return {};
    m_steps += kTicksBetweenChecks;
    if (m_limits.steps != 0 && m_steps > m_limits.steps) {
        auto failed = fault(error::kInterrupted);
        failed.value()->uncatchable = true;
        return failed;
    }
    CHECK_RESULT(reserve(0));
    return checkTime();
}

Result<void> Engine::checkTime()
{
    const auto now = std::chrono::steady_clock::now();
    m_used += std::min<std::chrono::steady_clock::duration>(now - m_lastCheck, kLongestSlice);
    m_lastCheck = now;
    if (m_limits.timeout.count() == 0 || m_used <= m_limits.timeout) return {};
    if (m_host.continueAfterTimeout()) {
        m_used = {};
        return {};
    }
    auto failed = fault(error::kInterrupted);
    failed.value()->uncatchable = true;
    return failed;
}

} // namespace script::vbscript
