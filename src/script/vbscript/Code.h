#pragma once

#include "script/Dispatch.h"
#include "script/vbscript/Tree.h"

#include <unordered_map>

namespace script::vbscript
{

// What the compiler makes of a tree: functions of fixed-size instructions for a stack machine. Names are
// resolved to slots here; a name that only running can tell (a procedure may refer to a global of a later
// piece of code) carries both its global and a local slot.

// clang-format off
enum class Op : std::uint8_t {
    // Operators, in the order of the enumeration Operator. Comparisons: flags are LiteralOperands.
    Add, Subtract, Multiply, Divide, IntegerDivide, Modulo, Power, Concat,
    Equal, NotEqual, Less, Greater, LessEqual, GreaterEqual, Is,
    And, Or, Xor, Eqv, Imp,
    Negate, Not,
    // Those up to GreaterEqual once more, in the same order: the right operand is a local variable (a: slot)...
    AddLocal, SubtractLocal, MultiplyLocal, DivideLocal, IntegerDivideLocal, ModuloLocal, PowerLocal, ConcatLocal,
    EqualLocal, NotEqualLocal, LessLocal, GreaterLocal, LessEqualLocal, GreaterEqualLocal,
    // ... or a constant (a: of Function::constants).
    AddConstant, SubtractConstant, MultiplyConstant, DivideConstant, IntegerDivideConstant, ModuloConstant,
    PowerConstant, ConcatConstant,
    EqualConstant, NotEqualConstant, LessConstant, GreaterConstant, LessEqualConstant, GreaterEqualConstant,
    // A local variable (a: slot) with the topmost value, which was evaluated first as that makes no difference.
    AddToLocal, SubtractFromLocal, MultiplyLocalBy,
    Pop,
    Constant,       // a: of Function::constants
    // Values of names. a: slot, Symbol, place in Function::implicitNames, field.
    Local, Global, Implicit, Field,
    // The same by reference, for arguments.
    LocalRef, GlobalRef, ImplicitRef, FieldRef,
    Me,
    New,            // a: Symbol of the class
    Raise,          // fails. a: number
    // Assignments of the topmost value; kSet is one with Set.
    StoreLocal, StoreGlobal, StoreImplicit, StoreField,
    // name(arguments): index, default member or call. count: arguments, all on the stack.
    CallLocal, CallGlobal, CallImplicit, CallField,
    CallOwn,        // a method of the own class. a: of Function::callees
    CallValue,      // the callee lies below the arguments
    Member,         // object.name(arguments), the object lies below the arguments. a: of Function::sites
    // name(arguments) = value: the value lies lowest, then an object, then the arguments.
    PutLocal, PutGlobal, PutImplicit, PutField, PutOwn, PutValue, PutMember,
    Jump, JumpFalse, JumpTrue, // a: target
    Loop,           // a jump back, which counts as a step of the script's time
    ForPrepare,     // from, limit, step -> from; count: the first of two hidden slots
    ForTest,        // goes on with the next instruction while the loop runs, else skips it. flags: VariableKind
    ForNext,        // the same after a step; the next instruction is a Loop
    ForEachPrepare, // group ->; count: hidden slot
    ForEachNext,    // -> value, next instruction; or skips it
    WithPrepare,    // object ->; a: hidden slot
    MakeArray,      // Dim inside a procedure. a: slot, count: of Function::shapes
    ReDim,          // reference, bounds... ->; count: bounds, flags: kPreserve
    Erase,          // reference ->
    OnError,        // flags: 1 resume next, 0 go to 0
    ClearLocal,     // a: slot
    Return,
};
// clang-format on

constexpr Op opOf(Operator operation)
{
    return static_cast<Op>(static_cast<int>(Op::Add) + static_cast<int>(operation));
}
constexpr Operator operatorOf(Op op)
{
    return static_cast<Operator>(static_cast<int>(op) - static_cast<int>(Op::Add));
}
/// Whether the operator has forms whose right operand does not pass through the stack.
constexpr bool isFusible(Operator operation) { return operation <= Operator::GreaterEqual; }
constexpr Op fused(Op first, Operator operation)
{
    return static_cast<Op>(static_cast<int>(first) + static_cast<int>(operation));
}
static_assert(fused(Op::AddLocal, Operator::GreaterEqual) == Op::GreaterEqualLocal);
static_assert(fused(Op::AddConstant, Operator::GreaterEqual) == Op::GreaterEqualConstant);
static_assert(opOf(Operator::Not) == Op::Not);

inline constexpr std::uint8_t kStatementCall = 1; // the result is not used
inline constexpr std::uint8_t kWantReference = 2; // of an array's element, for an argument
inline constexpr std::uint8_t kSet = 4;
inline constexpr std::uint8_t kPreserve = 8;
/// Of IntegerDivideConstant and ModuloConstant: the next constant holds, as the bits of a Currency, the
/// number that stands for one divided by this one in 64 bits behind the point, rounded up.
inline constexpr std::uint8_t kHasReciprocal = 16;

enum class VariableKind : std::uint8_t { Local, Global, Implicit, Field };

struct Instruction {
    Op op;
    std::uint8_t flags;
    std::uint16_t count;
    std::uint32_t a;
};
static_assert(sizeof(Instruction) == 8);

struct ClassInfo;
struct Function;

struct ClassMember;

/// A place where a member is asked for, with what it found last time.
struct MemberSite {
    Symbol name = 0;
    std::optional<Symbol> object;        // for error texts, where the object is a plain name
    const ClassMember* member = nullptr; // of a script class
    const void* layout = nullptr;
    Dispatch::MemberId id = 0;
};

struct StatementMark {
    std::uint32_t instruction;
    Position position;        // line 0: only a place to resume at
    std::uint32_t resume = 0; // where On Error Resume Next goes on instead of the next mark; 0: there
};

struct LocalName {
    std::uint32_t slot = 0;
    bool implicit = false; // a local only where there is no global of that name
    int constant = -1;     // of Function::constants, for a Const
};

/// A name of the surroundings that executed text uses.
struct Capture {
    std::uint32_t slot;
    int outerSlot; // -1: a variable of the procedure's frame that executed text made
    Symbol name;
    std::uint32_t depth = 0; // of the frame that holds it: 0 is the one right below
    bool declared = false;   // with Dim, in the executed text itself
};

struct ImplicitName {
    Symbol name;
    std::uint32_t slot;
};

struct Function {
    Procedure::Kind kind = Procedure::Kind::Sub;
    Symbol name = 0;
    bool isMain = false;
    bool seesLocals = false; // executed text inside a procedure
    bool isPrivate = false;
    bool optionExplicit = false;
    std::vector<std::uint8_t> byReference; // of each parameter
    int returnSlot = -1;
    std::uint32_t slots = 0; // parameters first
    std::uint32_t maxStack = 0;
    ClassInfo* owner = nullptr;
    std::vector<Instruction> code;
    std::vector<Value> constants;
    std::vector<StatementMark> statements; // by instruction
    std::vector<MemberSite> sites;
    std::vector<Function*> callees;
    std::vector<ImplicitName> implicitNames;
    std::vector<std::vector<std::int32_t>> shapes; // empty: without dimensions yet
    std::unordered_map<Symbol, LocalName> names;
    std::vector<Capture> captures;
    std::vector<Symbol> slotNames; // for error texts; hidden slots carry the function's own name
};

/// What a name of a class stands for.
struct ClassMember {
    int field = -1;
    bool isPrivate = false;
    Function* call = nullptr; // Sub, Function
    Function* get = nullptr;
    Function* let = nullptr;
    Function* set = nullptr;
};

struct ClassInfo {
    Symbol name = 0;
    std::vector<Declarator> fields;
    std::unordered_map<Symbol, ClassMember> members;
    std::optional<Symbol> defaultMember;
    Function* initialize = nullptr;
    Function* terminate = nullptr;
};

/// One compiled piece of source text.
struct Program {
    std::u16string source;
    std::unique_ptr<Function> main;
    std::vector<std::unique_ptr<Function>> functions;
    std::vector<std::unique_ptr<ClassInfo>> classes;
    std::vector<Function*> globalFunctions;
    std::vector<Declarator> variables; // Dim outside procedures
    std::vector<Declarator> constants;
    std::vector<Symbol> assigned; // without Dim, outside procedures
    std::vector<Symbol> redimmed; // by ReDim, which declares what is not declared
    /// Whether later code can reach into it once its main function has ended.
    [[nodiscard]] bool isLasting() const { return !functions.empty() || !classes.empty(); }
};

} // namespace script::vbscript
