#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Library.h"

namespace flash::avm2
{

using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

class TimerObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    TimerObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    double delay = 0;
    std::int32_t repeatCount = 0, currentCount = 0;
    std::uint32_t id = 0; ///< 0: not running
};

TimerObject& timer(Call& call) { return selfAs<TimerObject>(call, "flash.utils.Timer"); }

void checkDelay(Call& call, double delay)
{
    if (delay < 0 || !std::isfinite(delay))
        call.vm.throwError(ErrorClass::Range, 2066, "The Timer delay specified is out of range.");
}

Value constructTimer(Call& call)
{
    auto& made = timer(call);
    const double delay = call.vm.toNumber(call.arg(0));
    checkDelay(call, delay);
    made.delay = delay;
    made.repeatCount = call.has(1) ? call.vm.toInt(call.arg(1)) : 0;
    return {};
}

Value tick(Call& call)
{
    auto* self = as<TimerObject>(call.arg(0));
    if (self == nullptr || self->id == 0) return {};
    Vm& vm = call.vm;
    ++self->currentCount;
    self->dispatch(vm, *newEvent(vm, "flash.events::TimerEvent", "timer"));
    // It still runs while its last tick is told of, and what the listeners set counts.
    if (self->repeatCount <= 0 || self->currentCount < self->repeatCount) return {};
    if (self->id != 0) Player::of(vm).removeTimer(self->id);
    self->id = 0;
    self->dispatch(vm, *newEvent(vm, "flash.events::TimerEvent", "timerComplete"));
    return {};
}

Value startTimer(Call& call)
{
    auto& self = timer(call);
    if (self.id != 0) return {};
    const Value args[] = {Value(&self)};
    self.id = Player::of(call.vm).addTimer(Value(call.vm.newFunction(&tick, "tick")), args, self.delay, true);
    return {};
}
Value stopTimer(Call& call)
{
    auto& self = timer(call);
    if (self.id != 0) Player::of(call.vm).removeTimer(self.id);
    self.id = 0;
    return {};
}
Value resetTimer(Call& call)
{
    timer(call).currentCount = 0;
    return stopTimer(call);
}
Value delay(Call& call) { return timer(call).delay; }
Value setDelay(Call& call)
{
    const double value = call.vm.toNumber(call.arg(0));
    checkDelay(call, value);
    timer(call).delay = value;
    if (timer(call).id != 0) {
        stopTimer(call);
        startTimer(call);
    }
    return {};
}
Value repeatCount(Call& call) { return timer(call).repeatCount; }
Value setRepeatCount(Call& call)
{
    auto& self = timer(call);
    self.repeatCount = call.vm.toInt(call.arg(0));
    if (self.repeatCount > 0 && self.currentCount >= self.repeatCount) stopTimer(call);
    return {};
}
Value currentCount(Call& call) { return timer(call).currentCount; }
Value running(Call& call) { return timer(call).id != 0; }

template <bool repeats>
Value schedule(Call& call)
{
    const double every = call.vm.toNumber(call.arg(1));
    return Player::of(call.vm).addTimer(call.arg(0), call.rest(2), std::isnan(every) ? 0 : every, repeats);
}
Value unschedule(Call& call)
{
    Player::of(call.vm).removeTimer(call.vm.toUint(call.arg(0)));
    return {};
}

constexpr NativeMember kTimer[] = {
    {"start", Kind::Method, &startTimer, 0, 0},
    {"stop", Kind::Method, &stopTimer, 0, 0},
    {"reset", Kind::Method, &resetTimer, 0, 0},
    {"delay", Kind::Getter, &delay, 0, 0, &setDelay, "Number"},
    {"repeatCount", Kind::Getter, &repeatCount, 0, 0, &setRepeatCount, "int"},
    {"currentCount", Kind::Getter, &currentCount, 0, 0, nullptr, "int"},
    {"running", Kind::Getter, &running, 0, 0, nullptr, "Boolean"},
};
constexpr NativeClass kTimerClasses[] = {
    {.package = "flash.utils",
     .name = "Timer",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &constructTimer,
     .minArguments = 1,
     .maxArguments = 2,
     .allocate = &classes::allocateNative<TimerObject>,
     .members = kTimer},
};
constexpr NativeFunctionInfo kTimerFunctions[] = {
    {"flash.utils", "setTimeout", &schedule<false>, 2, -1},
    {"flash.utils", "setInterval", &schedule<true>, 2, -1},
    {"flash.utils", "clearTimeout", &unschedule, 1, 1},
    {"flash.utils", "clearInterval", &unschedule, 1, 1},
};

} // namespace

NativeLibrary timerLibrary() { return {kTimerClasses, kTimerFunctions}; }

} // namespace flash::avm2
