#pragma once

#include "flash/avm2/abc/CodeReader.h"
#include "flash/avm2/interpreter/Code.h"

#include <optional>
#include <string>
#include <vector>

namespace flash::avm2
{

/// Why code is refused, by the player's number.
struct VerifyFault {
    int number = 0; ///< 0: none
    std::string text;
};

/// The instructions of a body that can be reached, by their offsets.
struct Decoded {
    struct State {
        std::int32_t stack = -1; ///< values on it before the instruction; -1: not reached
        std::int32_t scopes = 0;
    };
    std::vector<std::optional<abc::Instruction>> instructions;
    std::vector<State> states;
};

/// Checks the code of a body.
/// @param code receives the sizes of its frame
/// @param decoded receives what is to be translated; of no use when there is a fault
VerifyFault verify(Unit& unit, std::uint32_t body, Code& code, Decoded& decoded);

/// Checks the values that the code handles, once the types of its frame are known: what meets where ways
/// join, slots and methods that are named by number, classes that nobody defines.
VerifyFault verifyTypes(Vm& vm, const MethodEnv& env, const Code& code, const Decoded& decoded);

} // namespace flash::avm2
