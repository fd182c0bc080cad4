#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/Boxed.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace flash::avm1::classes
{

namespace
{

Value construct(Call& call)
{
    const Value number = call.count() == 0 ? Value(0) : Value(toNumber(call.vm, call.arg(0)));
    if (!call.isConstruct) return number;
    if (Object* self = call.self.asObject()) self->attachNew<Boxed>(number);
    return {};
}

/// @returns the number inside of `this`, or undefined when `this` is something else.
Value inner(const Call& call)
{
    if (call.self.isNumber()) return call.self;
    const Boxed* boxed = call.native<Boxed>();
    return boxed != nullptr && boxed->value.isNumber() ? boxed->value : Value();
}

Value valueOf(Call& call) { return inner(call); }

/// Other bases than 10 show the 32-bit integer. What is no number, and the lowest integer, which has no
/// positive twin, come out as the genuine player has them: its digits are negative then.
std::u16string integerText(double number, int radix)
{
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    const std::int32_t integer = std::isfinite(number) ? avm1::toInt32(number) : kLowest;
    if (integer == 0) return u"0";
    std::int64_t rest = integer == kLowest ? integer : std::abs(integer);
    std::u16string digits;
    for (; rest != 0; rest /= radix) {
        const auto digit = static_cast<int>(rest % radix);
        digits += static_cast<char16_t>(digit < 10 ? u'0' + digit : u'a' + digit - 10);
    }
    if (integer < 0) digits += u'-';
    std::ranges::reverse(digits);
    return digits;
}

Value toString(Call& call)
{
    const Value number = inner(call);
    if (number.isUndefined()) return {};
    int radix = call.count() == 0 ? 10 : toInt32(call.vm, call.arg(0));
    if (radix < 2 || radix > 36) radix = 10;
    if (radix != 10) {
        return call.vm.string(integerText(number.number(), radix));
    }
    return call.vm.string(formatNumber(number.number()));
}

// clang-format off
constexpr MemberInfo kMembers[] = {
    // name      min    flags  function    native
    {"valueOf",  0,     0,     &valueOf,   0},
    {"toString", 0,     0,     &toString,  1},
};
// clang-format on
constexpr int kNativeTable = 106;

} // namespace

void installNumber(Vm& vm)
{
    Function* constructor = vm.defineClass("Number", &construct, kMembers, 0, kNativeTable);
    vm.registerNative(kNativeTable, 2, &construct);
    vm.builtIns().number = vm.prototypeOf(constructor);
    constexpr std::uint16_t kConstant = kBuiltIn | kReadOnly;
    constructor->define(vm, "MAX_VALUE", Value(DBL_MAX), kConstant);
    constructor->define(vm, "MIN_VALUE", Value(std::numeric_limits<double>::denorm_min()), kConstant);
    constructor->define(vm, "NaN", Value(std::numeric_limits<double>::quiet_NaN()), kConstant);
    constructor->define(vm, "NEGATIVE_INFINITY", Value(-std::numeric_limits<double>::infinity()), kConstant);
    constructor->define(vm, "POSITIVE_INFINITY", Value(std::numeric_limits<double>::infinity()), kConstant);
    constructor->changeFlags(vm, Name(), kConstant, 0);
}

} // namespace flash::avm1::classes
