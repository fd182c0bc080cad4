#pragma once

#include "swfc/actionscript3/CodeWriter.h"
#include "swfc/actionscript3/Program.h"

#include <algorithm>
#include <utility>

namespace swfc::actionscript3
{

/// Turns the tree of one function, or of what runs like one, into code. Walking the tree recurses; the parser
/// bounds its depth.
class FunctionCompiler
{
public:
    enum class Kind : std::uint8_t {
        Method,      ///< of a class, `this` known
        Constructor, ///< the same, which makes the fields first
        Closure,     ///< `this` is whatever it is called with
        ScriptInit,  ///< the statements of a file
        StaticInit,  ///< those of a class's body
    };
    struct Context {
        Program& program;
        Scope* scope;
        ClassSymbol* cls = nullptr;
        bool isStatic = false;
        FunctionCompiler* outer = nullptr; ///< whose variables are seen
        std::uint32_t scopeDepth = 0;      ///< scopes around it
    };
    FunctionCompiler(const Context& context, Kind kind)
        : m_program(context.program), m_context(context), m_kind(kind)
    {
    }

    /// Compiles a function. @returns its method
    Index function(const Function& fn, const std::string& name);
    /// For scripts and bodies of classes: the code in between is up to the caller.
    void beginInit(const Function* fn);
    Index finishInit(const std::string& name);
    void statements(const std::vector<Stmt*>& body);
    /// Gives a field, or a variable of a package, its first value: object, value, initproperty.
    void initialize(const Variable& variable, TypePtr type, Index name, bool onThis);
    CodeWriter& code() { return m_code; }
    /// Statements that follow are those of another package.
    void setScope(Scope& scope) { m_context.scope = &scope; }
    /// A value that the format can hold beside a declaration. @returns nothing when it takes code.
    std::optional<abc::Constant> constant(const Expr* expr, TypePtr type, int depth = 0);

private:
    using Label = CodeWriter::Label;
    struct LocalPlace {
        bool isSlot = false; ///< of the activation; else a register
        std::uint32_t number = 0;
        TypePtr type = nullptr;
        bool isConst = false;
    };
    struct CatchVariable {
        std::string name;
        bool isSlot = false;
        std::uint32_t number = 0; ///< register of the value, or of the scope that has it
        TypePtr type = nullptr;
    };
    struct Pushed { ///< scopes that an error takes away
        std::uint32_t reg = 0;
        bool isWith = false;
    };
    /// Where a name leads.
    struct Place {
        // clang-format off
        enum class Kind : std::uint8_t {
            Register, ///< number
            Slot,     ///< number, of the object in the register `holder`
            Member,   ///< name, of this
            Lexical,  ///< name, sought in the scopes
        };
        // clang-format on
        Kind kind = Kind::Lexical;
        std::uint32_t number = 0, holder = 0;
        Index name = 0;
        TypePtr type = nullptr;
        bool isConst = false, isKnown = false;
        const Definition* definition = nullptr;
        bool isVariable = false;  ///< of a function around this one
        TypePtr result = nullptr; ///< of a method
        bool isFilled = false;    ///< a constant of the object under construction
    };
    /// Where break and continue lead, and what must be done on the way.
    struct Enclosing {
        enum class Kind : std::uint8_t { Loop, Switch, Labeled, Finally };
        Kind kind = Kind::Loop;
        std::vector<std::string> labels;
        Label breakTo = 0, continueTo = 0;
        std::size_t scopes = 0; // that are pushed where it stands
        // Finally: a number says what comes behind it.
        std::uint32_t selector = 0;
        std::vector<Label> exits = {};
    };
    /// A name as instructions take it: what stands in the code, what comes from the stack.
    struct MemberName {
        Index name = 0;
        int parts = 0;
        TypePtr type = nullptr;
        bool isMethod = false;
    };

    /// A way out of a try that has a finally, to be gone on with behind it.
    struct Exit {
        Label from = 0;
        std::size_t target = 0; // of m_enclosing, or kReturn
        bool isBreak = true;
    };
    static constexpr auto kReturn = static_cast<std::size_t>(-1);

    [[nodiscard]] Scope& scope() const { return *m_context.scope; }
    void error(Position where, const std::string& message) { m_program.error(where, message); }

    /// The value of a static constant of one of the program's classes. @returns null for other expressions
    const Expr* constantValue(const Expr* expr);

    // set-up
    void parameters(const Function& fn, abc::MethodInfo& info);
    void chooseLocals(const Function& fn);
    void prologue(const Function& fn);
    void makeFunctions(const Function& fn);
    void fields();
    Index finish(const std::string& name, abc::MethodInfo info);
    std::uint32_t temporary();
    void release(std::uint32_t reg) { m_free.push_back(reg); }
    void restoreScopes();
    Index closure(const Function& fn);

    // statements
    void statement(const Stmt* stmt);
    void loop(const Stmt* stmt);
    void forIn(const Stmt* stmt);
    void ifStatement(const Stmt* stmt);
    void switchStatement(const Stmt* stmt);
    void tryStatement(const Stmt* stmt);
    void catchClause(const CatchClause& clause, Label from, Label to, Label done);
    void withStatement(const Stmt* stmt);
    void varStatement(const Stmt* stmt);
    void superCall(const Stmt* stmt);
    void jumpStatement(const Stmt* stmt);
    void returnStatement(const Stmt* stmt);
    /// Goes to where one of m_enclosing says, by way of every finally between.
    void leaveTo(std::size_t target, bool isBreak);
    void popTo(std::size_t scopes);
    std::vector<std::string> takeLabels() { return std::exchange(m_labels, {}); }

    // expressions
    TypePtr value(const Expr* expr);
    void valueAs(const Expr* expr, TypePtr type);
    void effect(const Expr* expr);
    void condition(const Expr* expr, Label target, bool when);
    void coerce(TypePtr to, TypePtr from);
    TypePtr number(double value, bool isInteger);
    TypePtr unary(const Expr* expr);
    TypePtr binary(const Expr* expr);
    TypePtr operation(std::string_view op, TypePtr a, TypePtr b);
    TypePtr logical(const Expr* expr);
    TypePtr conditional(const Expr* expr);
    TypePtr deleteOperator(const Expr* target);
    bool isIntSum(const Expr* expr);
    void intSum(const Expr* expr);
    TypePtr arrayLiteral(const Expr* expr);
    TypePtr vectorLiteral(const Expr* expr);
    TypePtr objectLiteral(const Expr* expr);
    TypePtr functionExpression(const Expr* expr);
    TypePtr regExp(const Expr* expr);
    TypePtr xml(const Expr* expr);
    TypePtr filter(const Expr* expr);
    TypePtr generic(const Expr* expr);
    void pushType(TypePtr type);

    // names
    Place resolve(const std::string& name);
    Place resolveDynamic(const std::string& name);
    [[nodiscard]] bool findOuter(const std::string& name, TypePtr& type) const;
    [[nodiscard]] bool declares(const std::string& name) const;
    TypePtr nameValue(const Expr* expr);
    TypePtr getPlace(const Place& place);
    void beginStore(const Place& place);
    void endStore(const Place& place, bool wanted);
    TypePtr constantName(const std::string& name);
    std::optional<Program::Found> packagedName(const Expr* expr);
    std::string dotted(const Expr* expr) const;
    Index memberQName(const Member& member, const std::string& name);
    std::vector<Index> open() { return m_program.openNamespaces(scope(), m_context.cls); }
    MemberName identifier(const Expr* expr, TypePtr base, bool forSetting);
    MemberName openMember(const Expr* expr);
    MemberName knownMember(const std::string& name, TypePtr base, bool forSetting);
    TypePtr staticBase(const Expr* expr, ClassSymbol*& cls);
    TypePtr member(const Expr* expr);
    TypePtr index(const Expr* expr);
    TypePtr super(const Expr* expr);
    bool isIndexName(const Expr* expr) const { return expr->kind == ExprKind::Index; }
    Index runtimeName(bool isAttribute = false);

    // calls and assignments
    TypePtr call(const Expr* expr, bool wanted);
    TypePtr callName(const Expr* expr, bool wanted);
    TypePtr conversion(const Expr* expr, const Place& place);
    TypePtr callMember(const Expr* expr, bool wanted);
    TypePtr newObject(const Expr* expr);
    void arguments(const Expr* expr);
    TypePtr assign(const Expr* expr, bool wanted);
    TypePtr assignMember(const Expr* expr, bool wanted);
    TypePtr update(const Expr* expr, bool wanted);
    TypePtr updatePlace(const Expr* expr, const Place& place, bool wanted);
    TypePtr compound(const Expr* expr, bool wanted);
    /// Puts object and name of a target twice on the stack, for reading and writing.
    struct Target {
        MemberName name;
        std::uint32_t object = 0, parts[2] = {0, 0};
        bool isSuper = false, isFilled = false; ///< as of a place
    };
    /// Whether a member is a constant that still gets its value: in the constructor, and nowhere else.
    [[nodiscard]] bool isFilledHere(const Member& member) const
    {
        return m_kind == Kind::Constructor && member.kind == Member::Kind::Constant;
    }
    Target openTarget(const Expr* target);
    void pushTarget(const Target& target);
    TypePtr getTarget(const Target& target);
    void setTarget(const Target& target, bool wanted);
    void closeTarget(const Target& target);
    void storeInto(const Expr* target, std::uint32_t reg, TypePtr type);

    Program& m_program;
    Context m_context;
    Kind m_kind;
    const Function* m_function = nullptr;
    CodeWriter m_code;
    std::map<std::string, LocalPlace> m_locals;
    std::vector<CatchVariable> m_catches;
    std::vector<Pushed> m_scopes;
    std::vector<Enclosing> m_enclosing;
    std::vector<Exit> m_exits;
    std::vector<std::string> m_labels; // of the statement about to be compiled
    std::vector<std::uint32_t> m_free;
    std::uint32_t m_registers = 1;
    std::uint32_t m_activation = 0; // register; 0: none
    std::vector<abc::Trait> m_activationTraits;
    TypePtr m_returnType = nullptr;
    std::uint32_t m_returnRegister = 0;
    int m_with = 0;
    bool m_isWithin = false; // a with statement around the function
    bool m_usesXmlNamespace = false;
};

} // namespace swfc::actionscript3
