#pragma once

#include "swfc/actionscript/Tokens.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

// What a script says, as a tree. Nodes belong to the Program's lists, so that a deep tree is taken down
// without recursion; pointers between nodes only borrow.
namespace swfc::actionscript
{

struct Function;
struct ClassDeclaration;

// clang-format off
enum class ExprKind : std::uint8_t {
    Number,      ///< number
    String,      ///< text
    True, False, Null, Undefined, This, Super,
    Name,        ///< text
    SlashPath,   ///< text
    Array,       ///< list; a null entry is a hole
    Object,      ///< names[i] : list[i]
    Function,    ///< function
    Unary,       ///< op a: Plus, Minus, Not, Complement, TypeOf, Void, Delete
    Prefix,      ///< ++a or --a
    Postfix,     ///< a++ or a--
    Binary,      ///< a op b, the logical operators included
    Conditional, ///< a ? b : c
    Assign,      ///< a op b; op is Assign or one of the compound signs
    Comma,       ///< a, b
    Member,      ///< a.text
    Index,       ///< a[b]
    Call,        ///< a(list)
    New,         ///< new a(list)
};
// clang-format on

struct Expr {
    ExprKind kind = ExprKind::Undefined;
    Tok op = Tok::End;
    int depth = 1; ///< of the tree below; bounded by the parser, so that walking it may recurse
    Position where;
    double number = 0;
    std::string text;
    Expr *a = nullptr, *b = nullptr, *c = nullptr;
    std::vector<Expr*> list;
    std::vector<std::string> names;
    Function* function = nullptr;
};

// clang-format off
enum class StmtKind : std::uint8_t {
    Empty,
    Expression,  ///< a
    Block,       ///< body
    Var,         ///< names[i] = values[i] (null: no value)
    If,          ///< a, first, second (may be null)
    While,       ///< a, first
    DoWhile,     ///< a, first
    For,         ///< init (may be null), a (may be null), b (may be null), first
    ForIn,       ///< target a (or names[0] when declared there), object b, first
    Return,      ///< a (may be null)
    Break, Continue, ///< text: label or empty
    Labeled,     ///< text, first
    Switch,      ///< a, cases
    With,        ///< a, first
    Throw,       ///< a
    Try,         ///< first, catches, second (finally; may be null)
    Function,    ///< function
    Class,       ///< declaration
    Import,      ///< text: dotted name
    TellTarget,  ///< a, first
    IfFrameLoaded, ///< a, first, second (else; may be null)
};
// clang-format on

struct Stmt;
struct SwitchCase {
    Expr* test = nullptr; ///< null: default
    Position where;
    std::vector<Stmt*> body;
};
struct CatchClause {
    std::string name, type; ///< type: dotted, empty for any
    Stmt* body = nullptr;
};

struct Stmt {
    StmtKind kind = StmtKind::Empty;
    Position where;
    std::string text;
    Expr *a = nullptr, *b = nullptr;
    Stmt *init = nullptr, *first = nullptr, *second = nullptr;
    std::vector<Stmt*> body;
    std::vector<std::string> names;
    std::vector<Expr*> values;
    std::vector<SwitchCase> cases;
    std::vector<CatchClause> catches;
    Function* function = nullptr;
    ClassDeclaration* declaration = nullptr;
};

struct Function {
    std::string name; ///< empty: anonymous
    Position where;
    std::vector<std::string> parameters;
    std::vector<Stmt*> body;

    // What decides which names can live in registers.
    std::set<std::string> locals;     ///< var, for..in and catch names of this function, not of inner ones
    std::set<std::string> references; ///< names used in the function, inner functions included
    std::set<std::string> captured;   ///< names that inner functions use
    std::set<std::string> namedOnly;  ///< inner functions' own names and deleted names: never in a register
    bool usesThis = false, usesSuper = false, usesArguments = false;
    bool callsSuper = false;   ///< holds super(...)
    bool dynamicScope = false; ///< with, eval, set or tellTarget: names must stay names
};

struct ClassMember {
    enum class Kind : std::uint8_t { Field, Method, Getter, Setter };
    Kind kind = Kind::Field;
    bool isStatic = false;
    std::string name;
    Position where;
    Expr* value = nullptr; ///< Field; may be null
    Function* function = nullptr;
};

struct ClassDeclaration {
    std::string name; ///< dotted
    std::string base; ///< dotted, empty: Object
    std::vector<std::string> interfaces;
    Position where;
    bool isInterface = false, isIntrinsic = false;
    std::vector<ClassMember> members;
    Function* constructor = nullptr;
};

/// Handlers of a button or clip: `on (...) { }` and `onClipEvent (...) { }`.
struct Handler {
    Position where;
    bool clipEvent = false; ///< written as onClipEvent
    std::vector<std::string> events;
    std::string key; ///< of keyPress: "<Left>" or a character
    Function* body = nullptr;
};

struct Program {
    Function main; ///< its body is the script
    std::vector<Handler> handlers;

    Expr* addExpr() { return m_exprs.emplace_back(std::make_unique<Expr>()).get(); }
    Stmt* addStmt() { return m_stmts.emplace_back(std::make_unique<Stmt>()).get(); }
    Function* addFunction() { return m_functions.emplace_back(std::make_unique<Function>()).get(); }
    ClassDeclaration* addClass()
    {
        return m_classes.emplace_back(std::make_unique<ClassDeclaration>()).get();
    }

private:
    std::vector<std::unique_ptr<Expr>> m_exprs;
    std::vector<std::unique_ptr<Stmt>> m_stmts;
    std::vector<std::unique_ptr<Function>> m_functions;
    std::vector<std::unique_ptr<ClassDeclaration>> m_classes;
};

} // namespace swfc::actionscript
