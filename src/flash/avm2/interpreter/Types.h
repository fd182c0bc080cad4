#pragma once

#include "flash/avm2/abc/Opcodes.h"
#include "flash/avm2/interpreter/Object.h"

namespace flash::avm2
{

/// What is known of a value before the code runs.
struct Type {
    enum class Kind : std::uint8_t { Any, Undefined, Null, Int, Uint, Number, Boolean, String, Instance };
    Kind kind = Kind::Any;
    bool isNonNull = false;   ///< of an Instance
    Traits* traits = nullptr; ///< of an Instance or something derived from it; belongs to a unit

    [[nodiscard]] bool isNumeric() const
    {
        return kind == Kind::Int || kind == Kind::Uint || kind == Kind::Number;
    }
    friend bool operator==(const Type&, const Type&) = default;
    static Type of(Kind kind) { return {kind, false, nullptr}; }
    static Type instance(Traits* traits, bool isNonNull)
    {
        return traits == nullptr ? Type() : Type{Kind::Instance, isNonNull, traits};
    }
};

/// What holds for a value that comes from either of two places.
Type merge(const Type& a, const Type& b);
/// Leaves of what is known what holds for another value, too. @returns whether that is less than before
bool narrowBy(Type& known, const Type& other);
/// Of what was coerced to a class.
Type typeOfTraits(Traits* traits);
/// The class that a multiname of a unit names, when that can be told without running script.
/// @param known receives whether it can; any type is told by null
Traits* settledType(Vm& vm, Unit& unit, std::uint32_t multiname, bool& known);
/// Of a slot, for those that read it.
Type typeOfSlot(Vm& vm, const Traits& traits, std::uint32_t slot);
/// Of what an instruction leaves on the stack, where its code alone tells.
Type resultTypeOf(Vm& vm, abc::Op op);

} // namespace flash::avm2
