#pragma once

#include "flash/avm2/interpreter/Code.h"

#include <string>

namespace flash::avm2
{

/// Why code is refused, by the player's number.
struct VerifyFault {
    int number = 0; ///< 0: none
    std::string text;
};

/// Checks the code of a body and turns it into what the interpreter runs.
/// @param code receives the result; of no use when there is a fault
VerifyFault verify(Unit& unit, std::uint32_t body, Code& code);

} // namespace flash::avm2
