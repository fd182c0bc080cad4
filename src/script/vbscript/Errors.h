#pragma once

#include "script/Dispatch.h"

namespace script::vbscript
{

// The numbers that code names; Errors.cpp holds the whole table with its texts.
namespace error
{
inline constexpr int kInvalidCall = 5;
inline constexpr int kOverflow = 6;
inline constexpr int kOutOfMemory = 7;
inline constexpr int kSubscript = 9;
inline constexpr int kArrayLocked = 10;
inline constexpr int kDivisionByZero = 11;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kOutOfStringSpace = 14;
inline constexpr int kOutOfStack = 28;
inline constexpr int kObjectNotSet = 91;
inline constexpr int kLoopNotInitialized = 92;
inline constexpr int kInvalidNull = 94;
inline constexpr int kObjectRequired = 424;
inline constexpr int kCannotCreate = 429;
inline constexpr int kNoSuchMember = 438;
inline constexpr int kWrongArguments = 450;
inline constexpr int kNotCollection = 451;
inline constexpr int kKeyExists = 457;
inline constexpr int kUndefinedVariable = 500;
inline constexpr int kIllegalAssignment = 501;
inline constexpr int kUnqualifiedReference = 505;
inline constexpr int kClassNotDefined = 506;
inline constexpr int kElementNotFound = 32811;
/// The host or a limit ended the script.
inline constexpr int kInterrupted = -2147467260;

inline constexpr int kFirstCompilation = 1001;
inline constexpr int kLastCompilation = 1058;
inline constexpr int kSyntax = 1002;
} // namespace error

inline bool isCompilationError(int number)
{
    return number >= error::kFirstCompilation && number <= error::kLastCompilation;
}

/// @returns the engine's text for the number, or "Unknown runtime error".
std::u16string_view errorText(int number);
/// The description a user sees: the fault's own, or the number's text with the subject behind it.
std::u16string describe(const Fault& fault);
/// Which part of the engine reports the fault, or the source that the script gave.
std::u16string sourceOf(const Fault& fault);

} // namespace script::vbscript
