#pragma once

#include "script/Value.h"
#include "script/vbscript/Names.h"

#include <deque>
#include <memory>
#include <vector>

namespace script::vbscript
{

// The syntax tree. Nodes live in the arena of their Tree and are freed together, so that neither a long chain
// of operators nor a deep one is walked to free it.

// clang-format off
enum class Operator : std::uint8_t {
    Add, Subtract, Multiply, Divide, IntegerDivide, Modulo, Power, Concat,
    Equal, NotEqual, Less, Greater, LessEqual, GreaterEqual, Is,
    And, Or, Xor, Eqv, Imp,
    Negate, Not,
};
// clang-format on

struct Position {
    int line = 0; // 1-based
    int column = 0;
};

struct Expression {
    enum class Kind : std::uint8_t {
        Literal,
        Name,
        Member, // left.name, or .name of the With object when left is null
        Call,   // left(arguments): a call or an index, which only running tells
        Unary,  // operator left
        Binary, // left operator right
        Me,
        New,     // New name
        Missing, // an argument left out
    };
    Kind kind = Kind::Literal;
    Operator operation = Operator::Add;
    bool parenthesised = false; // such an argument is handed over by value
    Position position;
    Symbol name = 0;
    Value literal;
    Expression* left = nullptr;
    Expression* right = nullptr;
    std::vector<Expression*> arguments;
};

struct Statement;
using Block = std::vector<Statement*>;

struct Declarator {
    Symbol name = 0;
    Position position;
    bool isArray = false;
    std::vector<std::int32_t> bounds;   // of Dim a(2, 3); empty for Dim a()
    std::vector<Expression*> newBounds; // of ReDim
    Value literal;                      // of Const
    bool isPrivate = false;             // of a class's field
};

struct Parameter {
    Symbol name = 0;
    bool byReference = true;
};

struct Procedure {
    enum class Kind : std::uint8_t { Sub, Function, PropertyGet, PropertyLet, PropertySet };
    Kind kind = Kind::Sub;
    Symbol name = 0;
    Position position;
    bool isPrivate = false;
    bool isDefault = false;
    std::vector<Parameter> parameters;
    Block body;
    Position end;
};

struct ClassDeclaration {
    Symbol name = 0;
    Position position;
    std::vector<Declarator> fields;
    std::vector<Procedure*> procedures;
};

struct Branch {
    std::vector<Expression*> conditions; // of Case several, of If one
    Position position;
    Block body;
};

struct Statement {
    enum class Kind : std::uint8_t {
        Dim,
        ReDim,
        Erase,
        Const,
        Let,
        Set,
        Call,
        If,
        Select,
        For,
        ForEach,
        Do,
        With,
        Exit,
        OnErrorResumeNext,
        OnErrorGoToZero,
        Stop,
    };
    enum class Test : std::uint8_t { None, Before, After };
    enum class Exit : std::uint8_t { Do, For, Procedure };

    Kind kind = Kind::Stop;
    Position position;
    std::vector<Declarator> declarators; // Dim, ReDim, Const
    bool preserve = false;               // ReDim
    Expression* target = nullptr;        // Let, Set, Erase, For: the loop variable
    Expression* value = nullptr;         // Let, Set, Call, Select, For: from, ForEach: the group, Do, With
    Expression* limit = nullptr;         // For
    Expression* step = nullptr;          // For, may be null
    std::vector<Branch> branches;        // If, Select
    Block otherwise;                     // If, Select
    Block body;                          // loops, With
    Test test = Test::None;              // Do
    bool until = false;                  // Do
    Exit exit = Exit::Do;
    Position closing; // of the word that ends the loop, where After tests stand
};

/// What one piece of source text declares and does.
struct Tree {
    bool optionExplicit = false;
    Block body;
    std::vector<Procedure*> procedures;
    std::vector<ClassDeclaration*> classes;

    // The nodes.
    std::deque<Expression> expressions;
    std::deque<Statement> statements;
    std::deque<Procedure> procedureNodes;
    std::deque<ClassDeclaration> classNodes;
};

} // namespace script::vbscript
