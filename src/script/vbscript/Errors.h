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
inline constexpr int kUnknownLocale = 447;
inline constexpr int kWrongArguments = 450;
inline constexpr int kNotCollection = 451;
inline constexpr int kKeyExists = 457;
inline constexpr int kUnknownType = 458;
inline constexpr int kUndefinedVariable = 500;
inline constexpr int kIllegalAssignment = 501;
inline constexpr int kUnqualifiedReference = 505;
inline constexpr int kClassNotDefined = 506;
inline constexpr int kElementNotFound = 32811;
/// The host or a limit ended the script.
inline constexpr int kInterrupted = -2147467260;

// Compilation errors.
inline constexpr int kTooComplex = 1001;
inline constexpr int kSyntax = 1002;
inline constexpr int kExpectedLeftParen = 1005;
inline constexpr int kExpectedRightParen = 1006;
inline constexpr int kExpectedBracket = 1007;
inline constexpr int kExpectedIdentifier = 1010;
inline constexpr int kExpectedEqual = 1011;
inline constexpr int kExpectedIf = 1012;
inline constexpr int kExpectedTo = 1013;
inline constexpr int kExpectedEnd = 1014;
inline constexpr int kExpectedFunction = 1015;
inline constexpr int kExpectedSub = 1016;
inline constexpr int kExpectedThen = 1017;
inline constexpr int kExpectedWend = 1018;
inline constexpr int kExpectedLoop = 1019;
inline constexpr int kExpectedNext = 1020;
inline constexpr int kExpectedCase = 1021;
inline constexpr int kExpectedSelect = 1022;
inline constexpr int kExpectedExpression = 1023;
inline constexpr int kExpectedStatement = 1024;
inline constexpr int kExpectedEndOfStatement = 1025;
inline constexpr int kExpectedIntegerConstant = 1026;
inline constexpr int kExpectedLoopTest = 1028;
inline constexpr int kExpectedWith = 1029;
inline constexpr int kIdentifierTooLong = 1030;
inline constexpr int kInvalidNumber = 1031;
inline constexpr int kInvalidCharacter = 1032;
inline constexpr int kUnterminatedString = 1033;
inline constexpr int kInvalidMe = 1037;
inline constexpr int kLoopWithoutDo = 1038;
inline constexpr int kInvalidExit = 1039;
inline constexpr int kInvalidLoopVariable = 1040;
inline constexpr int kNameRedefined = 1041;
inline constexpr int kSubInParentheses = 1044;
inline constexpr int kExpectedLiteral = 1045;
inline constexpr int kExpectedIn = 1046;
inline constexpr int kExpectedClass = 1047;
inline constexpr int kOutsideClass = 1048;
inline constexpr int kExpectedPropertyKind = 1049;
inline constexpr int kExpectedProperty = 1050;
inline constexpr int kInconsistentArguments = 1051;
inline constexpr int kTwoDefaults = 1052;
inline constexpr int kEventWithArguments = 1053;
inline constexpr int kLetWithoutArgument = 1054;
inline constexpr int kUnexpectedNext = 1055;
inline constexpr int kDefaultOfVariable = 1056;
inline constexpr int kDefaultNotPublic = 1057;
inline constexpr int kDefaultNotGet = 1058;

inline constexpr int kFirstCompilation = 1001;
inline constexpr int kLastCompilation = 1058;
} // namespace error

inline bool isCompilationError(int number)
{
    return number >= error::kFirstCompilation && number <= error::kLastCompilation;
}

/// In which language errors are described: that of the program around, whatever locale a script sets.
enum class Language : std::uint8_t { English, Russian };

/// @returns the engine's text for the number, or "Unknown runtime error".
std::u16string_view errorText(int number, Language language);
/// The description a user sees: the fault's own, or the number's text with the subject behind it.
std::u16string describe(const Fault& fault, Language language);
/// What Err.Description holds: the same without the subject.
std::u16string bareDescription(const Fault& fault, Language language);
/// Which part of the engine reports the fault, or the source that the script gave.
std::u16string sourceOf(const Fault& fault, Language language);

/// The engine's own number for the code of an operating system or an object: 0x800A000D and
/// DISP_E_TYPEMISMATCH are 13. Other codes stay as they are.
int numberOfHresult(std::int32_t code);

} // namespace script::vbscript
