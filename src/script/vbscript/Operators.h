#pragma once

#include "script/Dispatch.h"
#include "script/vbscript/Locale.h"
#include "script/vbscript/Tree.h"

namespace script::vbscript
{

/// Which operands of a comparison were written as literals: text and number then convert to the literal's
/// kind, while a text and a number out of variables never equal each other.
enum LiteralOperands : std::uint8_t {
    kNoLiteral = 0,
    kLeftLiteral = 1,
    kRightLiteral = 2,
    kNeverMismatched = 4, ///< of a Case: a text that is no number merely differs from one
};

/// Applies an operator to plain values (default values of objects are fetched before).
/// @errors 6, 11, 13, 14
Result<Value> applyBinary(Operator operation, const Value& left, const Value& right, std::uint8_t literals,
                          const Locale& locale);
Result<Value> applyUnary(Operator operation, const Value& operand, const Locale& locale);

/// @returns negative, 0 or positive; nothing when one of them is Null
Result<std::optional<int>> compareValues(const Value& left, const Value& right, std::uint8_t literals,
                                         const Locale& locale);

} // namespace script::vbscript
