#pragma once

#include <array>
#include <cstdint>

// The actions of ActionScript 1 and 2 as files have them: what the player's machine, the compiler, the
// disassembly and the tests know of an action's code.
namespace flash::swf
{

// clang-format off
enum class ActionCode : std::uint8_t {
    End = 0x00, NextFrame = 0x04, PreviousFrame = 0x05, Play = 0x06, Stop = 0x07, ToggleQuality = 0x08,
    StopSounds = 0x09, Add = 0x0A, Subtract = 0x0B, Multiply = 0x0C, Divide = 0x0D, Equals = 0x0E, Less = 0x0F,
    And = 0x10, Or = 0x11, Not = 0x12, StringEquals = 0x13, StringLength = 0x14, StringExtract = 0x15, Pop = 0x17,
    ToInteger = 0x18, GetVariable = 0x1C, SetVariable = 0x1D, SetTarget2 = 0x20, StringAdd = 0x21,
    GetProperty = 0x22, SetProperty = 0x23, CloneSprite = 0x24, RemoveSprite = 0x25, Trace = 0x26, StartDrag = 0x27,
    EndDrag = 0x28, StringLess = 0x29, Throw = 0x2A, CastOp = 0x2B, ImplementsOp = 0x2C, FsCommand2 = 0x2D,
    RandomNumber = 0x30, MbStringLength = 0x31, CharToAscii = 0x32, AsciiToChar = 0x33, GetTime = 0x34,
    MbStringExtract = 0x35, MbCharToAscii = 0x36, MbAsciiToChar = 0x37, Delete = 0x3A, Delete2 = 0x3B,
    DefineLocal = 0x3C, CallFunction = 0x3D, Return = 0x3E, Modulo = 0x3F, NewObject = 0x40, DefineLocal2 = 0x41,
    InitArray = 0x42, InitObject = 0x43, TypeOf = 0x44, TargetPath = 0x45, Enumerate = 0x46, Add2 = 0x47,
    Less2 = 0x48, Equals2 = 0x49, ToNumber = 0x4A, ToString = 0x4B, PushDuplicate = 0x4C, StackSwap = 0x4D,
    GetMember = 0x4E, SetMember = 0x4F, Increment = 0x50, Decrement = 0x51, CallMethod = 0x52, NewMethod = 0x53,
    InstanceOf = 0x54, Enumerate2 = 0x55, BitAnd = 0x60, BitOr = 0x61, BitXor = 0x62, ShiftLeft = 0x63,
    ShiftRight = 0x64, ShiftRightUnsigned = 0x65, StrictEquals = 0x66, Greater = 0x67, StringGreater = 0x68,
    Extends = 0x69, GotoFrame = 0x81, GetUrl = 0x83, StoreRegister = 0x87, ConstantPool = 0x88, WaitForFrame = 0x8A,
    SetTarget = 0x8B, GotoLabel = 0x8C, WaitForFrame2 = 0x8D, DefineFunction2 = 0x8E, Try = 0x8F, With = 0x94,
    Push = 0x96, Jump = 0x99, GetUrl2 = 0x9A, DefineFunction = 0x9B, If = 0x9D, Call = 0x9E, GotoFrame2 = 0x9F,
};
// clang-format on

/// What follows an action's code and length. Numbers are little-endian, texts end with a NUL byte.
enum class ActionPayload : std::uint8_t {
    None,
    Frame,        ///< 16 bits, counted from 0
    UrlAndWindow, ///< two texts
    Register,     ///< 8 bits
    ConstantPool, ///< 16 bits count, texts
    FrameAndSkip, ///< 16 bits; 8 bits, actions to skip while the frame is not loaded
    Text,
    Skip,       ///< 8 bits, actions
    Function,   ///< name, parameters' names; the body follows the action
    Function2,  ///< as Function, with registers and flags
    Try,        ///< flags, three lengths, where the exception goes; the parts follow the action
    Region,     ///< 16 bits, length of the body that follows the action
    Push,       ///< values, each after its type
    Branch,     ///< 16 bits, signed, from the end of the action
    Flags,      ///< 8 bits
    FrameFlags, ///< 8 bits; 16 bits more, a frame, if bit 1 is set
};

struct ActionCodeInfo {
    ActionCode code = ActionCode::End;
    const char* name = nullptr; ///< null: the code means nothing
    int since = 0;              ///< version of the format
    ActionPayload payload = ActionPayload::None;
};

/// From here on codes are followed by the 16-bit length of a payload.
constexpr std::uint8_t kFirstLongAction = 0x80;

// clang-format off
constexpr ActionCodeInfo kActionCodes[] = {
    // code                           name             since  payload
    {ActionCode::End,                "End",             3},
    {ActionCode::NextFrame,          "NextFrame",       3},
    {ActionCode::PreviousFrame,      "PreviousFrame",   3},
    {ActionCode::Play,               "Play",            3},
    {ActionCode::Stop,               "Stop",            3},
    {ActionCode::ToggleQuality,      "ToggleQuality",   5},
    {ActionCode::StopSounds,         "StopSounds",      3},
    {ActionCode::Add,                "Add",             4},
    {ActionCode::Subtract,           "Subtract",        4},
    {ActionCode::Multiply,           "Multiply",        4},
    {ActionCode::Divide,             "Divide",          4},
    {ActionCode::Equals,             "Equals",          4},
    {ActionCode::Less,               "Less",            4},
    {ActionCode::And,                "And",             4},
    {ActionCode::Or,                 "Or",              4},
    {ActionCode::Not,                "Not",             4},
    {ActionCode::StringEquals,       "StringEquals",    4},
    {ActionCode::StringLength,       "StringLength",    4},
    {ActionCode::StringExtract,      "StringExtract",   4},
    {ActionCode::Pop,                "Pop",             4},
    {ActionCode::ToInteger,          "ToInteger",       4},
    {ActionCode::GetVariable,        "GetVariable",     4},
    {ActionCode::SetVariable,        "SetVariable",     4},
    {ActionCode::SetTarget2,         "SetTarget2",      4},
    {ActionCode::StringAdd,          "StringAdd",       4},
    {ActionCode::GetProperty,        "GetProperty",     4},
    {ActionCode::SetProperty,        "SetProperty",     4},
    {ActionCode::CloneSprite,        "CloneSprite",     4},
    {ActionCode::RemoveSprite,       "RemoveSprite",    4},
    {ActionCode::Trace,              "Trace",           4},
    {ActionCode::StartDrag,          "StartDrag",       4},
    {ActionCode::EndDrag,            "EndDrag",         4},
    {ActionCode::StringLess,         "StringLess",      4},
    {ActionCode::Throw,              "Throw",           7},
    {ActionCode::CastOp,             "CastOp",          7},
    {ActionCode::ImplementsOp,       "ImplementsOp",    7},
    {ActionCode::FsCommand2,         "FSCommand2",      6},
    {ActionCode::RandomNumber,       "RandomNumber",    4},
    {ActionCode::MbStringLength,     "MBStringLength",  4},
    {ActionCode::CharToAscii,        "CharToAscii",     4},
    {ActionCode::AsciiToChar,        "AsciiToChar",     4},
    {ActionCode::GetTime,            "GetTime",         4},
    {ActionCode::MbStringExtract,    "MBStringExtract", 4},
    {ActionCode::MbCharToAscii,      "MBCharToAscii",   4},
    {ActionCode::MbAsciiToChar,      "MBAsciiToChar",   4},
    {ActionCode::Delete,             "Delete",          5},
    {ActionCode::Delete2,            "Delete2",         5},
    {ActionCode::DefineLocal,        "DefineLocal",     5},
    {ActionCode::CallFunction,       "CallFunction",    5},
    {ActionCode::Return,             "Return",          5},
    {ActionCode::Modulo,             "Modulo",          5},
    {ActionCode::NewObject,          "NewObject",       5},
    {ActionCode::DefineLocal2,       "DefineLocal2",    5},
    {ActionCode::InitArray,          "InitArray",       5},
    {ActionCode::InitObject,         "InitObject",      5},
    {ActionCode::TypeOf,             "TypeOf",          5},
    {ActionCode::TargetPath,         "TargetPath",      5},
    {ActionCode::Enumerate,          "Enumerate",       5},
    {ActionCode::Add2,               "Add2",            5},
    {ActionCode::Less2,              "Less2",           5},
    {ActionCode::Equals2,            "Equals2",         5},
    {ActionCode::ToNumber,           "ToNumber",        5},
    {ActionCode::ToString,           "ToString",        5},
    {ActionCode::PushDuplicate,      "PushDuplicate",   5},
    {ActionCode::StackSwap,          "StackSwap",       5},
    {ActionCode::GetMember,          "GetMember",       5},
    {ActionCode::SetMember,          "SetMember",       5},
    {ActionCode::Increment,          "Increment",       5},
    {ActionCode::Decrement,          "Decrement",       5},
    {ActionCode::CallMethod,         "CallMethod",      5},
    {ActionCode::NewMethod,          "NewMethod",       5},
    {ActionCode::InstanceOf,         "InstanceOf",      6},
    {ActionCode::Enumerate2,         "Enumerate2",      6},
    {ActionCode::BitAnd,             "BitAnd",          5},
    {ActionCode::BitOr,              "BitOr",           5},
    {ActionCode::BitXor,             "BitXor",          5},
    {ActionCode::ShiftLeft,          "BitLShift",       5},
    {ActionCode::ShiftRight,         "BitRShift",       5},
    {ActionCode::ShiftRightUnsigned, "BitURShift",      5},
    {ActionCode::StrictEquals,       "StrictEquals",    6},
    {ActionCode::Greater,            "Greater",         6},
    {ActionCode::StringGreater,      "StringGreater",   6},
    {ActionCode::Extends,            "Extends",         7},
    {ActionCode::GotoFrame,          "GotoFrame",       3, ActionPayload::Frame},
    {ActionCode::GetUrl,             "GetURL",          3, ActionPayload::UrlAndWindow},
    {ActionCode::StoreRegister,      "StoreRegister",   5, ActionPayload::Register},
    {ActionCode::ConstantPool,       "ConstantPool",    5, ActionPayload::ConstantPool},
    {ActionCode::WaitForFrame,       "WaitForFrame",    3, ActionPayload::FrameAndSkip},
    {ActionCode::SetTarget,          "SetTarget",       3, ActionPayload::Text},
    {ActionCode::GotoLabel,          "GotoLabel",       3, ActionPayload::Text},
    {ActionCode::WaitForFrame2,      "WaitForFrame2",   4, ActionPayload::Skip},
    {ActionCode::DefineFunction2,    "DefineFunction2", 7, ActionPayload::Function2},
    {ActionCode::Try,                "Try",             7, ActionPayload::Try},
    {ActionCode::With,               "With",            5, ActionPayload::Region},
    {ActionCode::Push,               "Push",            4, ActionPayload::Push},
    {ActionCode::Jump,               "Jump",            4, ActionPayload::Branch},
    {ActionCode::GetUrl2,            "GetURL2",         4, ActionPayload::Flags},
    {ActionCode::DefineFunction,     "DefineFunction",  5, ActionPayload::Function},
    {ActionCode::If,                 "If",              4, ActionPayload::Branch},
    {ActionCode::Call,               "Call",            4},
    {ActionCode::GotoFrame2,         "GotoFrame2",      4, ActionPayload::FrameFlags},
};
// clang-format on

consteval std::array<ActionCodeInfo, 256> actionCodesByNumber()
{
    std::array<ActionCodeInfo, 256> table{};
    for (const ActionCodeInfo& action : kActionCodes) {
        ActionCodeInfo& entry = table[static_cast<std::size_t>(action.code)];
        if (entry.name != nullptr) throw "two actions share a code";
        if (action.payload != ActionPayload::None &&
            static_cast<std::uint8_t>(action.code) < kFirstLongAction)
            throw "a short action has no payload";
        entry = action;
    }
    return table;
}
/// All 256 codes.
inline constexpr auto kActionCodeByNumber = actionCodesByNumber();

} // namespace flash::swf
