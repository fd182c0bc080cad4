#pragma once

#include "flash/avm2/interpreter/Object.h"

#include <cstdint>
#include <span>
#include <string_view>

// How built-in classes are written down: a table for each.
namespace flash::avm2
{

struct NativeMember {
    enum class Kind : std::uint8_t {
        Method,    ///< found as a public name
        As3,       ///< in the language's own namespace, and the same in the prototype
        Prototype, ///< in the prototype only
        Getter,    ///< `function`, and a setter if `setter` is given
        Proxy,     ///< in the namespace of flash_proxy
        Static,
        StaticGetter,
    };
    std::string_view name;
    Kind kind = Kind::Method;
    NativeFunction function = nullptr;
    std::int8_t minArguments = 0, maxArguments = -1; ///< arguments; -1: any number
    NativeFunction setter = nullptr;
    std::string_view type = {}; ///< of a getter or a result, for describeType
    // Of methods and getters that are worth it; for setters there is none.
    QuickFunction quick = nullptr;
    std::uint8_t quickArguments = 0; ///< that it takes
};

struct NativeConstant {
    std::string_view name;
    double number = 0;
    const char* text = nullptr; ///< instead of the number
    enum class Kind : std::uint8_t { Number, Int, Uint } kind = Kind::Int;
};

struct NativeClass {
    std::string_view package, name;
    std::string_view base; ///< qualified with "::"; empty: Object
    enum Flag : std::uint8_t { Sealed = 1, Final = 2, Abstract = 4, Interface = 8 };
    std::uint8_t flags = 0;
    NativeFunction constructor = nullptr;
    std::int8_t minArguments = 0, maxArguments = -1;
    Allocator allocate = nullptr;
    NativeFunction conversion = nullptr;
    std::span<const NativeMember> members = {};
    std::span<const NativeConstant> constants = {};
    std::string_view interfaces = {};           ///< qualified, separated by spaces
    std::string_view slots = {};                ///< variables: `name:type=initial`, separated by spaces
    void (*setUp)(Vm&, ClassObject&) = nullptr; ///< does what a table cannot say
    std::int8_t since = 0;                      ///< movies before this version do not see the class
};

struct NativeFunctionInfo {
    std::string_view package, name;
    NativeFunction function;
    std::int8_t minArguments = 0, maxArguments = -1;
    bool isInternal = false; ///< seen from within its package only
};

/// A number that is in a package by itself.
struct NativeValue {
    std::string_view package, name;
    double number = 0;
};

struct NativeLibrary {
    std::span<const NativeClass> classes;
    std::span<const NativeFunctionInfo> functions;
    /// What classes take and give, see Signatures.h; of other libraries', too.
    std::string_view signatures = {};
    std::span<const NativeValue> values = {};
};

} // namespace flash::avm2
