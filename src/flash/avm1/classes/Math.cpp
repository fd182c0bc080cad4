#include "flash/avm1/classes/Classes.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace flash::avm1::classes
{

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double argument(Call& call, std::size_t index)
{
    if (index >= call.count()) return kNaN;
    const Value value = call.args[index];
    return value.isNumber() ? value.number() : toNumber(call.vm, value);
}

template <double (*function)(double)>
Value unary(Call& call)
{
    const double number = argument(call, 0);
    // Every function of this table converts two arguments, whether it uses them or not: valueOf may be
    // watching.
    argument(call, 1);
    return Value(function(number));
}

double roundHalfUp(double number) { return std::floor(number + 0.5); }
double absolute(double number) { return std::fabs(number); }

Value atan2(Call& call)
{
    const double y = argument(call, 0);
    return Value(std::atan2(y, argument(call, 1)));
}

Value pow(Call& call)
{
    const double base = argument(call, 0);
    const double exponent = argument(call, 1);
    if (std::isnan(exponent) || std::isinf(base)) return Value(kNaN);
    return Value(std::pow(base, exponent));
}

/// With one argument the answer is that number; more than two are not looked at.
template <bool largest>
Value extreme(Call& call)
{
    if (call.count() == 0)
        return Value(largest ? -std::numeric_limits<double>::infinity()
                             : std::numeric_limits<double>::infinity());
    const double first = argument(call, 0);
    if (call.count() == 1) return Value(kNaN);
    const double second = argument(call, 1);
    if (std::isnan(first) || std::isnan(second)) return Value(kNaN);
    return Value(largest ? std::fmax(first, second) : std::fmin(first, second));
}

Value random(Call& call)
{
    argument(call, 0);
    argument(call, 1);
    constexpr double kTwoTo31 = 2147483648.0;
    return Value((call.vm.host().random() >> 1) / kTwoTo31);
}

// clang-format off
constexpr MemberInfo kStatics[] = {
    // name     min    flags  function                native
    {"abs",     0,     0,     &unary<&absolute>,      0},
    {"min",     0,     0,     &extreme<false>,        1},
    {"max",     0,     0,     &extreme<true>,         2},
    {"sin",     0,     0,     &unary<&std::sin>,      3},
    {"cos",     0,     0,     &unary<&std::cos>,      4},
    {"atan2",   0,     0,     &atan2,                 5},
    {"tan",     0,     0,     &unary<&std::tan>,      6},
    {"exp",     0,     0,     &unary<&std::exp>,      7},
    {"log",     0,     0,     &unary<&std::log>,      8},
    {"sqrt",    0,     0,     &unary<&std::sqrt>,     9},
    {"round",   0,     0,     &unary<&roundHalfUp>,   10},
    {"random",  0,     0,     &random,                11},
    {"floor",   0,     0,     &unary<&std::floor>,    12},
    {"ceil",    0,     0,     &unary<&std::ceil>,     13},
    {"atan",    0,     0,     &unary<&std::atan>,     14},
    {"asin",    0,     0,     &unary<&std::asin>,     15},
    {"acos",    0,     0,     &unary<&std::acos>,     16},
    {"pow",     0,     0,     &pow,                   17},
};
// clang-format on
constexpr int kNativeTable = 200;

} // namespace

void installMath(Vm& vm)
{
    Object* math = vm.newObject();
    vm.addMembers(math, kStatics, kNativeTable);
    constexpr std::uint16_t kConstant = kBuiltIn | kReadOnly;
    math->define(vm, "E", Value(std::numbers::e), kConstant);
    math->define(vm, "LN2", Value(std::numbers::ln2), kConstant);
    math->define(vm, "LOG2E", Value(std::numbers::log2e), kConstant);
    math->define(vm, "LN10", Value(std::numbers::ln10), kConstant);
    math->define(vm, "LOG10E", Value(std::numbers::log10e), kConstant);
    math->define(vm, "PI", Value(std::numbers::pi), kConstant);
    math->define(vm, "SQRT1_2", Value(std::numbers::sqrt2 / 2), kConstant);
    math->define(vm, "SQRT2", Value(std::numbers::sqrt2), kConstant);
    vm.global()->define(vm, "Math", math, kDontEnum);
}

} // namespace flash::avm1::classes
