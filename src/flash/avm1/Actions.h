#pragma once

#include "flash/avm1/Code.h"

#include <array>

namespace flash::avm1
{

struct Frame;

/// The codes below 0x20 that the format leaves free serve the decoder.
enum InternalOp : std::uint8_t {
    kEnd = 0x00,          ///< the block ends here
    kPushLiteral = 0x01,  ///< b: index of the literal
    kPushConstant = 0x02, ///< b: index into the constant pool in force
    kPushRegister = 0x03, ///< b: number
    kRegionEnd = 0x1F,    ///< a `with` or `try` body ends here; b: byte offset
    kNothing = 0x16,
    kJumpAction = 0x99,
};

using ActionFunction = void (*)(Frame&, const Instruction&);

/// One action. Codes from 0x80 up carry a 16-bit payload length.
struct ActionInfo {
    std::uint8_t code;
    const char* name;
    int since; ///< version of the format
    ActionFunction function;
    bool cached = false;          ///< owns an inline cache
    bool needsActivation = false; ///< makes a variable of the running call, or a scope that outlives it
};

namespace actions
{
void add(Frame&, const Instruction&);
void subtract(Frame&, const Instruction&);
void multiply(Frame&, const Instruction&);
void divide(Frame&, const Instruction&);
void equals(Frame&, const Instruction&);
void less(Frame&, const Instruction&);
void logicalAnd(Frame&, const Instruction&);
void logicalOr(Frame&, const Instruction&);
void logicalNot(Frame&, const Instruction&);
void stringEquals(Frame&, const Instruction&);
void stringLength(Frame&, const Instruction&);
void stringExtract(Frame&, const Instruction&);
void pop(Frame&, const Instruction&);
void toInteger(Frame&, const Instruction&);
void getVariable(Frame&, const Instruction&);
void setVariable(Frame&, const Instruction&);
void stringAdd(Frame&, const Instruction&);
void stringLess(Frame&, const Instruction&);
void stringGreater(Frame&, const Instruction&);
void mbStringLength(Frame&, const Instruction&);
void charToAscii(Frame&, const Instruction&);
void asciiToChar(Frame&, const Instruction&);
void mbStringExtract(Frame&, const Instruction&);
void mbCharToAscii(Frame&, const Instruction&);
void mbAsciiToChar(Frame&, const Instruction&);
void modulo(Frame&, const Instruction&);
void add2(Frame&, const Instruction&);
void less2(Frame&, const Instruction&);
void equals2(Frame&, const Instruction&);
void greater(Frame&, const Instruction&);
void strictEquals(Frame&, const Instruction&);
void toNumber(Frame&, const Instruction&);
void toString(Frame&, const Instruction&);
void typeOf(Frame&, const Instruction&);
void pushDuplicate(Frame&, const Instruction&);
void stackSwap(Frame&, const Instruction&);
void increment(Frame&, const Instruction&);
void decrement(Frame&, const Instruction&);
void bitAnd(Frame&, const Instruction&);
void bitOr(Frame&, const Instruction&);
void bitXor(Frame&, const Instruction&);
void bitLeftShift(Frame&, const Instruction&);
void bitRightShift(Frame&, const Instruction&);
void bitUnsignedRightShift(Frame&, const Instruction&);
void storeRegister(Frame&, const Instruction&);
void constantPool(Frame&, const Instruction&);
void pushLiteral(Frame&, const Instruction&);
void pushConstant(Frame&, const Instruction&);
void pushRegister(Frame&, const Instruction&);

void defineLocal(Frame&, const Instruction&);
void defineLocal2(Frame&, const Instruction&);
void deleteMember(Frame&, const Instruction&);
void deleteVariable(Frame&, const Instruction&);
void getMember(Frame&, const Instruction&);
void setMember(Frame&, const Instruction&);
void initArray(Frame&, const Instruction&);
void initObject(Frame&, const Instruction&);
void newObject(Frame&, const Instruction&);
void newMethod(Frame&, const Instruction&);
void callFunction(Frame&, const Instruction&);
void callMethod(Frame&, const Instruction&);
void enumerate(Frame&, const Instruction&);
void enumerate2(Frame&, const Instruction&);
void instanceOf(Frame&, const Instruction&);
void castOp(Frame&, const Instruction&);
void implementsOp(Frame&, const Instruction&);
void extends(Frame&, const Instruction&);
void defineFunction(Frame&, const Instruction&);

void jump(Frame&, const Instruction&);
void jumpIf(Frame&, const Instruction&);
void with(Frame&, const Instruction&);
void tryBlock(Frame&, const Instruction&);
void throwValue(Frame&, const Instruction&);
void returnValue(Frame&, const Instruction&);
void end(Frame&, const Instruction&);
void nothing(Frame&, const Instruction&);

void nextFrame(Frame&, const Instruction&);
void previousFrame(Frame&, const Instruction&);
void play(Frame&, const Instruction&);
void stop(Frame&, const Instruction&);
void toggleQuality(Frame&, const Instruction&);
void stopSounds(Frame&, const Instruction&);
void setTarget2(Frame&, const Instruction&);
void getProperty(Frame&, const Instruction&);
void setProperty(Frame&, const Instruction&);
void cloneSprite(Frame&, const Instruction&);
void removeSprite(Frame&, const Instruction&);
void trace(Frame&, const Instruction&);
void startDrag(Frame&, const Instruction&);
void endDrag(Frame&, const Instruction&);
void fsCommand2(Frame&, const Instruction&);
void randomNumber(Frame&, const Instruction&);
void getTime(Frame&, const Instruction&);
void targetPath(Frame&, const Instruction&);
void gotoFrame(Frame&, const Instruction&);
void getUrl(Frame&, const Instruction&);
void waitForFrame(Frame&, const Instruction&);
void setTarget(Frame&, const Instruction&);
void gotoLabel(Frame&, const Instruction&);
void waitForFrame2(Frame&, const Instruction&);
void getUrl2(Frame&, const Instruction&);
void call(Frame&, const Instruction&);
void gotoFrame2(Frame&, const Instruction&);
} // namespace actions

// clang-format off
constexpr bool kCached = true, kNeedsActivation = true;
constexpr ActionInfo kActions[] = {
    // code  name              since  function
    {0x00, "End",               3, &actions::end},
    {0x01, "(literal)",         4, &actions::pushLiteral},
    {0x02, "(constant)",        5, &actions::pushConstant},
    {0x03, "(register)",        5, &actions::pushRegister},
    {0x04, "NextFrame",         3, &actions::nextFrame},
    {0x05, "PreviousFrame",     3, &actions::previousFrame},
    {0x06, "Play",              3, &actions::play},
    {0x07, "Stop",              3, &actions::stop},
    {0x08, "ToggleQuality",     5, &actions::toggleQuality},
    {0x09, "StopSounds",        3, &actions::stopSounds},
    {0x0A, "Add",               4, &actions::add},
    {0x0B, "Subtract",          4, &actions::subtract},
    {0x0C, "Multiply",          4, &actions::multiply},
    {0x0D, "Divide",            4, &actions::divide},
    {0x0E, "Equals",            4, &actions::equals},
    {0x0F, "Less",              4, &actions::less},
    {0x10, "And",               4, &actions::logicalAnd},
    {0x11, "Or",                4, &actions::logicalOr},
    {0x12, "Not",               4, &actions::logicalNot},
    {0x13, "StringEquals",      4, &actions::stringEquals},
    {0x14, "StringLength",      4, &actions::stringLength},
    {0x15, "StringExtract",     4, &actions::stringExtract},
    {0x17, "Pop",               4, &actions::pop},
    {0x18, "ToInteger",         4, &actions::toInteger},
    {0x1C, "GetVariable",       4, &actions::getVariable, kCached},
    {0x1D, "SetVariable",       4, &actions::setVariable, kCached},
    {0x1F, "(region end)",      5, &actions::nothing},
    {0x20, "SetTarget2",        4, &actions::setTarget2},
    {0x21, "StringAdd",         4, &actions::stringAdd},
    {0x22, "GetProperty",       4, &actions::getProperty},
    {0x23, "SetProperty",       4, &actions::setProperty},
    {0x24, "CloneSprite",       4, &actions::cloneSprite},
    {0x25, "RemoveSprite",      4, &actions::removeSprite},
    {0x26, "Trace",             4, &actions::trace},
    {0x27, "StartDrag",         4, &actions::startDrag},
    {0x28, "EndDrag",           4, &actions::endDrag},
    {0x29, "StringLess",        4, &actions::stringLess},
    {0x2A, "Throw",             7, &actions::throwValue},
    {0x2B, "CastOp",            7, &actions::castOp},
    {0x2C, "ImplementsOp",      7, &actions::implementsOp},
    {0x2D, "FSCommand2",        6, &actions::fsCommand2},
    {0x30, "RandomNumber",      4, &actions::randomNumber},
    {0x31, "MBStringLength",    4, &actions::mbStringLength},
    {0x32, "CharToAscii",       4, &actions::charToAscii},
    {0x33, "AsciiToChar",       4, &actions::asciiToChar},
    {0x34, "GetTime",           4, &actions::getTime},
    {0x35, "MBStringExtract",   4, &actions::mbStringExtract},
    {0x36, "MBCharToAscii",     4, &actions::mbCharToAscii},
    {0x37, "MBAsciiToChar",     4, &actions::mbAsciiToChar},
    {0x3A, "Delete",            5, &actions::deleteMember},
    {0x3B, "Delete2",           5, &actions::deleteVariable},
    {0x3C, "DefineLocal",       5, &actions::defineLocal, false, kNeedsActivation},
    {0x3D, "CallFunction",      5, &actions::callFunction, kCached},
    {0x3E, "Return",            5, &actions::returnValue},
    {0x3F, "Modulo",            5, &actions::modulo},
    {0x40, "NewObject",         5, &actions::newObject, kCached},
    {0x41, "DefineLocal2",      5, &actions::defineLocal2, false, kNeedsActivation},
    {0x42, "InitArray",         5, &actions::initArray},
    {0x43, "InitObject",        5, &actions::initObject},
    {0x44, "TypeOf",            5, &actions::typeOf},
    {0x45, "TargetPath",        5, &actions::targetPath},
    {0x46, "Enumerate",         5, &actions::enumerate},
    {0x47, "Add2",              5, &actions::add2},
    {0x48, "Less2",             5, &actions::less2},
    {0x49, "Equals2",           5, &actions::equals2},
    {0x4A, "ToNumber",          5, &actions::toNumber},
    {0x4B, "ToString",          5, &actions::toString},
    {0x4C, "PushDuplicate",     5, &actions::pushDuplicate},
    {0x4D, "StackSwap",         5, &actions::stackSwap},
    {0x4E, "GetMember",         5, &actions::getMember, kCached},
    {0x4F, "SetMember",         5, &actions::setMember, kCached},
    {0x50, "Increment",         5, &actions::increment},
    {0x51, "Decrement",         5, &actions::decrement},
    {0x52, "CallMethod",        5, &actions::callMethod, kCached},
    {0x53, "NewMethod",         5, &actions::newMethod},
    {0x54, "InstanceOf",        6, &actions::instanceOf},
    {0x55, "Enumerate2",        6, &actions::enumerate2},
    {0x60, "BitAnd",            5, &actions::bitAnd},
    {0x61, "BitOr",             5, &actions::bitOr},
    {0x62, "BitXor",            5, &actions::bitXor},
    {0x63, "BitLShift",         5, &actions::bitLeftShift},
    {0x64, "BitRShift",         5, &actions::bitRightShift},
    {0x65, "BitURShift",        5, &actions::bitUnsignedRightShift},
    {0x66, "StrictEquals",      6, &actions::strictEquals},
    {0x67, "Greater",           6, &actions::greater},
    {0x68, "StringGreater",     6, &actions::stringGreater},
    {0x69, "Extends",           7, &actions::extends},
    {0x81, "GotoFrame",         3, &actions::gotoFrame},
    {0x83, "GetURL",            3, &actions::getUrl},
    {0x87, "StoreRegister",     5, &actions::storeRegister},
    {0x88, "ConstantPool",      5, &actions::constantPool},
    {0x8A, "WaitForFrame",      3, &actions::waitForFrame},
    {0x8B, "SetTarget",         3, &actions::setTarget},
    {0x8C, "GotoLabel",         3, &actions::gotoLabel},
    {0x8D, "WaitForFrame2",     4, &actions::waitForFrame2},
    {0x8E, "DefineFunction2",   7, &actions::defineFunction, false, kNeedsActivation},
    {0x8F, "Try",               7, &actions::tryBlock},
    {0x94, "With",              5, &actions::with, false, kNeedsActivation},
    {0x99, "Jump",              4, &actions::jump},
    {0x9A, "GetURL2",           4, &actions::getUrl2},
    {0x9B, "DefineFunction",    5, &actions::defineFunction, false, kNeedsActivation},
    {0x9D, "If",                4, &actions::jumpIf},
    {0x9E, "Call",              4, &actions::call},
    {0x9F, "GotoFrame2",        4, &actions::gotoFrame2},
};
// clang-format on

consteval std::array<ActionInfo, 256> actionsByCode()
{
    std::array<ActionInfo, 256> table{};
    for (int code = 0; code < 256; ++code) {
        table[static_cast<std::size_t>(code)] = {static_cast<std::uint8_t>(code), nullptr, 0,
                                                 &actions::nothing};
    }
    for (const ActionInfo& action : kActions) {
        if (table[action.code].name != nullptr) throw "two actions share a code";
        table[action.code] = action;
    }
    return table;
}
/// All 256 codes; those that mean nothing have no name and do nothing.
inline constexpr auto kActionByCode = actionsByCode();

/// Actions that the interpreter's loop does itself when the operands are of the common kind.
enum class Hot : std::uint8_t {
    None,
    PushLiteral,
    PushConstant,
    PushRegister,
    StoreRegister,
    Pop,
    Jump,
    If,
    Not,
    Add2,
    Subtract,
    Multiply,
    Less2,
    Greater,
    Equals2,
    Increment,
    Decrement,
    GetVariable,
    GetMember,
    SetMember,
    SetVariable,
    Return,
    PushDuplicate,
    End,
    RegionEnd,
};

consteval std::array<std::uint8_t, 256> hotByCode()
{
    constexpr std::pair<int, Hot> kHot[] = {
        {kPushLiteral, Hot::PushLiteral},
        {kPushConstant, Hot::PushConstant},
        {kPushRegister, Hot::PushRegister},
        {0x87, Hot::StoreRegister},
        {0x17, Hot::Pop},
        {0x99, Hot::Jump},
        {0x9D, Hot::If},
        {0x12, Hot::Not},
        {0x47, Hot::Add2},
        {0x0B, Hot::Subtract},
        {0x0C, Hot::Multiply},
        {0x48, Hot::Less2},
        {0x67, Hot::Greater},
        {0x49, Hot::Equals2},
        {0x50, Hot::Increment},
        {0x51, Hot::Decrement},
        {0x1C, Hot::GetVariable},
        {0x4E, Hot::GetMember},
        {0x4F, Hot::SetMember},
        {0x1D, Hot::SetVariable},
        {0x3E, Hot::Return},
        {0x4C, Hot::PushDuplicate},
        {kEnd, Hot::End},
        {kRegionEnd, Hot::RegionEnd},
    };
    std::array<std::uint8_t, 256> table{};
    for (const auto& [code, hot] : kHot)
        table[static_cast<std::size_t>(code)] = static_cast<std::uint8_t>(hot);
    return table;
}
inline constexpr auto kHotByCode = hotByCode();

constexpr bool isCachedAction(std::uint8_t code) { return kActionByCode[code].cached; }

} // namespace flash::avm1
