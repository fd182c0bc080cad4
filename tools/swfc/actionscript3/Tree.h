#pragma once

#include "swfc/Diagnostics.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// What a source file says, as a tree. Nodes belong to the File's lists, so that a deep tree is taken down
// without recursion; pointers between nodes only borrow.
namespace swfc::actionscript3
{

struct Function;
struct ClassDeclaration;
struct Expr;
struct Scope;

/// A type as written: `*`, `flash.display.Sprite`, `Vector.<int>`.
struct TypeExpr {
    std::string name;              ///< dotted; "*" for any
    TypeExpr* parameter = nullptr; ///< of a generic
    Position where;
};

// clang-format off
enum class ExprKind : std::uint8_t {
    Number,      ///< number, isInteger
    String,      ///< text
    RegExp,      ///< text, flags
    True, False, Null, This,
    Super,       ///< the object as its base class sees it; `super(object)` has it in a
    Name,        ///< identifier
    Array,       ///< list; a null entry is a hole
    Vector,      ///< new <type>[list]
    Object,      ///< names[i] : list[i]
    Function,    ///< function
    Unary,       ///< op a: + - ! ~ typeof void delete
    Prefix,      ///< op a: ++ or --
    Postfix,     ///< a op
    Binary,      ///< a op b, the logical operators included
    Conditional, ///< a ? b : c
    Assign,      ///< a op b; op is "=" or that of the compound sign
    Comma,       ///< a, b
    Member,      ///< a.identifier
    Descendants, ///< a..identifier
    Index,       ///< a[b]
    Filter,      ///< a.(b)
    Call,        ///< a(list)
    New,         ///< new a(list)
    Generic,     ///< a.<type>
    Xml,         ///< texts and values in turn: names[0] list[0] names[1]...; what a value is, parts say
    XmlList,     ///< the same, for <>...</>
};
enum class XmlPart : std::uint8_t { Raw, Attribute, Element };
// clang-format on

struct Expr {
    ExprKind kind = ExprKind::Null;
    std::string_view op; ///< one of the lexer's texts, which stay
    int depth = 1;       ///< of the tree below; bounded by the parser, so that walking it may recurse
    Position where;
    double number = 0;
    bool isInteger = false;
    std::string text, flags;
    Expr *a = nullptr, *b = nullptr, *c = nullptr;
    std::vector<Expr*> list;
    std::vector<std::string> names;
    std::vector<XmlPart> parts;
    TypeExpr* type = nullptr;
    Function* function = nullptr;

    // The identifier of Name, Member and Descendants: @qualifier::text or @qualifier::[b].
    bool isAttribute = false;
    bool isAnyName = false;    ///< the name is *
    Expr* qualifier = nullptr; ///< may be null
};

struct Metadata {
    std::string name;
    std::vector<std::pair<std::string, std::string>> items; ///< key (may be empty), value
};

/// What stands before a declaration.
struct Modifiers {
    std::string access; ///< public, private, protected, internal, a namespace's name; empty: none given
    bool isStatic = false, isFinal = false, isOverride = false, isDynamic = false;
    std::vector<Metadata> metadata;
};

// clang-format off
enum class StmtKind : std::uint8_t {
    Empty,
    Expression,  ///< a
    Block,       ///< body
    Var,         ///< variables; isConst; modifiers
    If,          ///< a, first, second (may be null)
    While,       ///< a, first
    DoWhile,     ///< a, first
    For,         ///< init (may be null), a (may be null), b (may be null), first
    ForIn,       ///< init (a variable) or target a, object b, first; isEach
    Return,      ///< a (may be null)
    Break, Continue, ///< text: label or empty
    Labeled,     ///< text, first
    Switch,      ///< a, cases
    With,        ///< a, first
    Throw,       ///< a
    Try,         ///< first, catches, second (finally; may be null)
    SuperCall,   ///< super(arguments of the call a)
    Function,    ///< function; modifiers
    Class,       ///< declaration
    Namespace,   ///< text, a (a string or another namespace; may be null); modifiers
    Import,      ///< text: dotted, may end with ".*"
    UseNamespace,///< names
    XmlNamespace,///< default xml namespace = a
};
// clang-format on

struct Stmt;
struct SwitchCase {
    Expr* test = nullptr; ///< null: default
    Position where;
    std::vector<Stmt*> body;
};
struct CatchClause {
    std::string name;
    TypeExpr* type = nullptr; ///< may be null
    Stmt* body = nullptr;
    bool isCaptured = false; ///< a function within uses the name
};
struct Variable {
    std::string name;
    TypeExpr* type = nullptr; ///< null: any
    Expr* value = nullptr;    ///< may be null
    Position where;
};

struct Stmt {
    StmtKind kind = StmtKind::Empty;
    Position where;
    std::string text;
    Expr *a = nullptr, *b = nullptr;
    Stmt *init = nullptr, *first = nullptr, *second = nullptr;
    bool isConst = false, isEach = false;
    std::vector<Stmt*> body;
    std::vector<std::string> names;
    std::vector<Variable> variables;
    std::vector<SwitchCase> cases;
    std::vector<CatchClause> catches;
    Function* function = nullptr;
    ClassDeclaration* declaration = nullptr;
    Modifiers modifiers;
};

struct Local {
    std::string name;
    TypeExpr* type = nullptr;
    bool isConst = false;
};

struct Function {
    enum class Role : std::uint8_t { Plain, Getter, Setter };
    std::string name; ///< empty: anonymous
    Role role = Role::Plain;
    Position where;
    std::vector<Variable> parameters;
    std::string rest; ///< empty: none
    TypeExpr* returnType = nullptr;
    std::vector<Stmt*> body;
    bool hasBody = true; ///< not in an interface

    // Declarations of this function, not of inner ones; where they stand does not matter.
    std::vector<Local> locals;
    std::vector<Function*> functions; ///< declared within, to be made when it begins
    std::set<std::string> captured;   ///< names used where they are sought at run time: in inner functions
    bool usesArguments = false, callsSuper = false, usesXmlNamespace = false;
    bool namesItself = false; ///< an expression whose name is used within
};

struct ClassDeclaration {
    std::string name;
    Position where;
    bool isInterface = false;
    Modifiers modifiers;
    TypeExpr* base = nullptr;
    std::vector<TypeExpr*> interfaces; ///< implemented, or extended by an interface
    std::vector<Stmt*> body;
    Function* initializer = nullptr; ///< whose locals statements in the body declare
};

/// A package of a file, or what stands outside of it.
struct Package {
    std::string name;
    bool isOutside = false;
    Scope* scope = nullptr; ///< of the names in it
    std::vector<Stmt*> body;
};

struct File {
    std::string path;
    int number = 0; ///< of the file among those of the movie
    std::vector<Package> packages;
    Function* initializer = nullptr; ///< of the script: what its outermost statements declare and use

    Expr* addExpr() { return m_exprs.emplace_back(std::make_unique<Expr>()).get(); }
    Stmt* addStmt() { return m_stmts.emplace_back(std::make_unique<Stmt>()).get(); }
    Function* addFunction() { return m_functions.emplace_back(std::make_unique<Function>()).get(); }
    TypeExpr* addType() { return m_types.emplace_back(std::make_unique<TypeExpr>()).get(); }
    ClassDeclaration* addClass()
    {
        return m_classes.emplace_back(std::make_unique<ClassDeclaration>()).get();
    }

private:
    std::vector<std::unique_ptr<Expr>> m_exprs;
    std::vector<std::unique_ptr<Stmt>> m_stmts;
    std::vector<std::unique_ptr<Function>> m_functions;
    std::vector<std::unique_ptr<TypeExpr>> m_types;
    std::vector<std::unique_ptr<ClassDeclaration>> m_classes;
};

} // namespace swfc::actionscript3
