#pragma once

#include "flash/avm1/interpreter/Code.h"
#include "flash/swf/ActionCodes.h"

#include <array>

namespace flash::avm1
{

struct Frame;
using swf::ActionCode;

/// Instructions that only the decoder makes, under codes that files leave free.
enum InternalOp : std::uint8_t {
    kPushLiteral = 0x01,  ///< b: index of the literal
    kPushConstant = 0x02, ///< b: index into the constant pool in force
    kPushRegister = 0x03, ///< b: number
    kNothing = 0x16,
    kRegionEnd = 0x1F, ///< a `with` or `try` body ends here; b: byte offset
};

using ActionFunction = void (*)(Frame&, const Instruction&);

/// Actions that the interpreter's loop does itself when the operands are of the common kind, each with its
/// label there.
#define FLASH_HOT_ACTIONS(X)                                                                                 \
    X(PushLiteral, pushLiteral)                                                                              \
    X(PushConstant, pushConstant)                                                                            \
    X(PushRegister, pushRegister)                                                                            \
    X(StoreRegister, storeRegister)                                                                          \
    X(Pop, popOne)                                                                                           \
    X(Jump, jump)                                                                                            \
    X(If, jumpIf)                                                                                            \
    X(Not, logicalNot)                                                                                       \
    X(Add2, add2)                                                                                            \
    X(Subtract, subtract)                                                                                    \
    X(Multiply, multiply)                                                                                    \
    X(Less2, less2)                                                                                          \
    X(Greater, greater)                                                                                      \
    X(Equals2, equals2)                                                                                      \
    X(Increment, increment)                                                                                  \
    X(Decrement, decrement)                                                                                  \
    X(GetVariable, getVariable)                                                                              \
    X(GetMember, getMember)                                                                                  \
    X(SetMember, setMember)                                                                                  \
    X(SetVariable, setVariable)                                                                              \
    X(Return, returnValue)                                                                                   \
    X(PushDuplicate, pushDuplicate)                                                                          \
    X(ToNumber, toNumber)                                                                                    \
    X(StackSwap, stackSwap)                                                                                  \
    X(CallFunction, callFunction)                                                                            \
    X(CallMethod, callMethod)                                                                                \
    X(End, end)                                                                                              \
    X(RegionEnd, regionEnd)

enum class Hot : std::uint8_t {
    None,
#define FLASH_HOT(name, label) name,
    FLASH_HOT_ACTIONS(FLASH_HOT)
#undef FLASH_HOT
};

/// What the machine does for an instruction. Name, version and payload of actions stand in swf::kActionCodes.
struct ActionInfo {
    std::uint8_t op = 0;
    ActionFunction function = nullptr;
    Hot hot = Hot::None;
    bool cached = false;          ///< owns an inline cache
    bool needsActivation = false; ///< makes a variable of the running call, or a scope that outlives it

    consteval ActionInfo() = default;
    consteval ActionInfo(ActionCode code, ActionFunction function, Hot hot = Hot::None, unsigned flags = 0)
        : ActionInfo(static_cast<std::uint8_t>(code), function, hot, flags)
    {
    }
    consteval ActionInfo(std::uint8_t op, ActionFunction function, Hot hot = Hot::None, unsigned flags = 0)
        : op(op), function(function), hot(hot), cached((flags & kCached) != 0),
          needsActivation((flags & kNeedsActivation) != 0)
    {
    }
    static constexpr unsigned kCached = 1, kNeedsActivation = 2;
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
constexpr unsigned kCached = ActionInfo::kCached, kNeedsActivation = ActionInfo::kNeedsActivation;
constexpr ActionInfo kActions[] = {
    {ActionCode::End,                &actions::end,                    Hot::End},
    {InternalOp::kPushLiteral,       &actions::pushLiteral,            Hot::PushLiteral},
    {InternalOp::kPushConstant,      &actions::pushConstant,           Hot::PushConstant},
    {InternalOp::kPushRegister,      &actions::pushRegister,           Hot::PushRegister},
    {ActionCode::NextFrame,          &actions::nextFrame},
    {ActionCode::PreviousFrame,      &actions::previousFrame},
    {ActionCode::Play,               &actions::play},
    {ActionCode::Stop,               &actions::stop},
    {ActionCode::ToggleQuality,      &actions::toggleQuality},
    {ActionCode::StopSounds,         &actions::stopSounds},
    {ActionCode::Add,                &actions::add},
    {ActionCode::Subtract,           &actions::subtract,               Hot::Subtract},
    {ActionCode::Multiply,           &actions::multiply,               Hot::Multiply},
    {ActionCode::Divide,             &actions::divide},
    {ActionCode::Equals,             &actions::equals},
    {ActionCode::Less,               &actions::less},
    {ActionCode::And,                &actions::logicalAnd},
    {ActionCode::Or,                 &actions::logicalOr},
    {ActionCode::Not,                &actions::logicalNot,             Hot::Not},
    {ActionCode::StringEquals,       &actions::stringEquals},
    {ActionCode::StringLength,       &actions::stringLength},
    {ActionCode::StringExtract,      &actions::stringExtract},
    {ActionCode::Pop,                &actions::pop,                    Hot::Pop},
    {ActionCode::ToInteger,          &actions::toInteger},
    {ActionCode::GetVariable,        &actions::getVariable,            Hot::GetVariable, kCached},
    {ActionCode::SetVariable,        &actions::setVariable,            Hot::SetVariable, kCached},
    {InternalOp::kRegionEnd,         &actions::nothing,                Hot::RegionEnd},
    {ActionCode::SetTarget2,         &actions::setTarget2},
    {ActionCode::StringAdd,          &actions::stringAdd},
    {ActionCode::GetProperty,        &actions::getProperty},
    {ActionCode::SetProperty,        &actions::setProperty},
    {ActionCode::CloneSprite,        &actions::cloneSprite},
    {ActionCode::RemoveSprite,       &actions::removeSprite},
    {ActionCode::Trace,              &actions::trace},
    {ActionCode::StartDrag,          &actions::startDrag},
    {ActionCode::EndDrag,            &actions::endDrag},
    {ActionCode::StringLess,         &actions::stringLess},
    {ActionCode::Throw,              &actions::throwValue},
    {ActionCode::CastOp,             &actions::castOp},
    {ActionCode::ImplementsOp,       &actions::implementsOp},
    {ActionCode::FsCommand2,         &actions::fsCommand2},
    {ActionCode::RandomNumber,       &actions::randomNumber},
    {ActionCode::MbStringLength,     &actions::mbStringLength},
    {ActionCode::CharToAscii,        &actions::charToAscii},
    {ActionCode::AsciiToChar,        &actions::asciiToChar},
    {ActionCode::GetTime,            &actions::getTime},
    {ActionCode::MbStringExtract,    &actions::mbStringExtract},
    {ActionCode::MbCharToAscii,      &actions::mbCharToAscii},
    {ActionCode::MbAsciiToChar,      &actions::mbAsciiToChar},
    {ActionCode::Delete,             &actions::deleteMember},
    {ActionCode::Delete2,            &actions::deleteVariable},
    {ActionCode::DefineLocal,        &actions::defineLocal,            Hot::None, kNeedsActivation},
    {ActionCode::CallFunction,       &actions::callFunction,           Hot::CallFunction, kCached},
    {ActionCode::Return,             &actions::returnValue,            Hot::Return},
    {ActionCode::Modulo,             &actions::modulo},
    {ActionCode::NewObject,          &actions::newObject,              Hot::None, kCached},
    {ActionCode::DefineLocal2,       &actions::defineLocal2,           Hot::None, kNeedsActivation},
    {ActionCode::InitArray,          &actions::initArray},
    {ActionCode::InitObject,         &actions::initObject},
    {ActionCode::TypeOf,             &actions::typeOf},
    {ActionCode::TargetPath,         &actions::targetPath},
    {ActionCode::Enumerate,          &actions::enumerate},
    {ActionCode::Add2,               &actions::add2,                   Hot::Add2},
    {ActionCode::Less2,              &actions::less2,                  Hot::Less2},
    {ActionCode::Equals2,            &actions::equals2,                Hot::Equals2},
    {ActionCode::ToNumber,           &actions::toNumber,               Hot::ToNumber},
    {ActionCode::ToString,           &actions::toString},
    {ActionCode::PushDuplicate,      &actions::pushDuplicate,          Hot::PushDuplicate},
    {ActionCode::StackSwap,          &actions::stackSwap,              Hot::StackSwap},
    {ActionCode::GetMember,          &actions::getMember,              Hot::GetMember, kCached},
    {ActionCode::SetMember,          &actions::setMember,              Hot::SetMember, kCached},
    {ActionCode::Increment,          &actions::increment,              Hot::Increment},
    {ActionCode::Decrement,          &actions::decrement,              Hot::Decrement},
    {ActionCode::CallMethod,         &actions::callMethod,             Hot::CallMethod, kCached},
    {ActionCode::NewMethod,          &actions::newMethod},
    {ActionCode::InstanceOf,         &actions::instanceOf},
    {ActionCode::Enumerate2,         &actions::enumerate2},
    {ActionCode::BitAnd,             &actions::bitAnd},
    {ActionCode::BitOr,              &actions::bitOr},
    {ActionCode::BitXor,             &actions::bitXor},
    {ActionCode::ShiftLeft,          &actions::bitLeftShift},
    {ActionCode::ShiftRight,         &actions::bitRightShift},
    {ActionCode::ShiftRightUnsigned, &actions::bitUnsignedRightShift},
    {ActionCode::StrictEquals,       &actions::strictEquals},
    {ActionCode::Greater,            &actions::greater,                Hot::Greater},
    {ActionCode::StringGreater,      &actions::stringGreater},
    {ActionCode::Extends,            &actions::extends},
    {ActionCode::GotoFrame,          &actions::gotoFrame},
    {ActionCode::GetUrl,             &actions::getUrl},
    {ActionCode::StoreRegister,      &actions::storeRegister,          Hot::StoreRegister},
    {ActionCode::ConstantPool,       &actions::constantPool},
    {ActionCode::WaitForFrame,       &actions::waitForFrame},
    {ActionCode::SetTarget,          &actions::setTarget},
    {ActionCode::GotoLabel,          &actions::gotoLabel},
    {ActionCode::WaitForFrame2,      &actions::waitForFrame2},
    {ActionCode::DefineFunction2,    &actions::defineFunction,         Hot::None, kNeedsActivation},
    {ActionCode::Try,                &actions::tryBlock},
    {ActionCode::With,               &actions::with,                   Hot::None, kNeedsActivation},
    {ActionCode::Jump,               &actions::jump,                   Hot::Jump},
    {ActionCode::GetUrl2,            &actions::getUrl2},
    {ActionCode::DefineFunction,     &actions::defineFunction,         Hot::None, kNeedsActivation},
    {ActionCode::If,                 &actions::jumpIf,                 Hot::If},
    {ActionCode::Call,               &actions::call},
    {ActionCode::GotoFrame2,         &actions::gotoFrame2},
};
// clang-format on

consteval std::array<ActionInfo, 256> actionsByOp()
{
    std::array<ActionInfo, 256> table{};
    // Sanitizers let no function's address be looked at while compiling.
    std::array<bool, 256> isThere{};
    for (const ActionInfo& action : kActions) {
        if (isThere[action.op]) throw "two actions share a code";
        isThere[action.op] = true;
        table[action.op] = action;
    }
    for (int op = 0; op < 256; ++op) {
        const bool hasFunction = isThere[static_cast<std::size_t>(op)];
        const bool isKnown = swf::kActionCodeByNumber[static_cast<std::size_t>(op)].name != nullptr;
        // Push becomes instructions of the decoder's own.
        if (isKnown && !hasFunction && op != static_cast<int>(ActionCode::Push))
            throw "an action has no function";
        if (!hasFunction)
            table[static_cast<std::size_t>(op)] =
                ActionInfo(static_cast<std::uint8_t>(op), &actions::nothing);
    }
    return table;
}
/// All 256; those that mean nothing do nothing.
inline constexpr auto kActionByOp = actionsByOp();

} // namespace flash::avm1
