#pragma once

#include "flash/avm1/interpreter/Vm.h"

namespace flash::avm1
{

/// How the player's own library has a function. Scripts see the difference: what is written in script has a
/// prototype of its own, as every function of theirs.
enum class Written : std::uint8_t { Native, Script };

/// One line of a class's table: everything that a script can find out about a function of the library.
struct LibraryFunction {
    const char* name;
    Written written;
    std::uint16_t flags; ///< all of them; nothing is added
    NativeFunction function;
    int minArguments = 0; ///< called with fewer, nothing happens
    int nativeIndex = -1; ///< what ASnative(table, index) calls it; -1 for none
};

/// Flags as the dumps of the library show them most: neither listed nor deleted, and from some version on.
inline constexpr std::uint16_t kHidden = kDontEnum | kDontDelete;
inline constexpr std::uint16_t kHidden6 = kHidden | kFrom6;
inline constexpr std::uint16_t kHidden7 = kHidden | kFrom7;
inline constexpr std::uint16_t kHidden8 = kHidden | kFrom8;
inline constexpr std::uint16_t kConstant = kHidden | kReadOnly;

/// Puts functions on an object. @param nativeTable first number of ASnative; -1 for none
void defineFunctions(Vm& vm, Object* object, std::span<const LibraryFunction> functions,
                     int nativeTable = -1);

} // namespace flash::avm1
