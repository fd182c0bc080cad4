#pragma once

#include "swfc/actionscript/Assembler.h"
#include "swfc/actionscript/ClassTable.h"
#include "swfc/actionscript/Script.h"
#include "swfc/actionscript/Tree.h"

#include <map>
#include <memory>
#include <optional>
#include <string_view>

namespace swfc::actionscript
{

/// Turns the tree of one script into actions. Walking the tree recurses; the parser bounds its depth.
class Compiler
{
public:
    Compiler(ScriptContext& context, std::string path)
        : m_context(context), m_version(context.version), m_asm(context.version, context.diagnostics),
          m_path(std::move(path))
    {
    }
    /// Compiles statements as the outermost ones of a block of actions.
    std::vector<std::uint8_t> run(const std::vector<Stmt*>& body);

private:
    /// A break or continue that leaves a 'try': it goes to `from`, where a copy of 'finally' stands.
    struct Exit {
        Label from = 0;
        std::size_t target = 0; // index of the statement that it leaves or goes on with
        bool isBreak = true;
    };
    /// Where break and continue lead, and what must be tidied up on the way out.
    struct Enclosing {
        enum class Kind : std::uint8_t { Loop, Switch, Labeled, ForIn, TellTarget, Finally };
        Kind kind = Kind::Loop;
        std::vector<std::string> labels;
        Label breakTo = 0, continueTo = 0;
        std::vector<Exit> exits = {}; // Finally
    };
    struct MethodContext {
        std::string className; // empty: not in a class
        bool isStatic = false;
        bool callSuperFirst = false;
    };
    /// The function (or the script) whose body is being compiled.
    struct Scope {
        bool isFunction = false;
        std::map<std::string, std::uint8_t> registers; // names that live in registers
        std::uint8_t temporary[2] = {0, 1};
        MethodContext method;
        const Function* function = nullptr;
        std::vector<Enclosing> enclosing;
        int finallyCopies = 0; // that are being compiled, one within the other
    };
    struct Resolved {
        enum class Kind : std::uint8_t { Variable, Register, OwnMember, StaticMember };
        Kind kind = Kind::Variable;
        std::uint8_t number = 0;
        std::string owner; // StaticMember: dotted class name
    };
    enum class Produced : std::uint8_t { NotBuiltin, Nothing, Value };
    enum class Wanted : std::uint8_t { Effect, Value };

    bool need(int version, Position where, std::string_view what);
    void error(Position where, const std::string& expected);

    // statements
    void statements(const std::vector<Stmt*>& body);
    void hoisted(const std::vector<Stmt*>& body);
    void statement(const Stmt* stmt);
    void ifChain(const Stmt* stmt);
    void loop(const Stmt* stmt);
    void forIn(const Stmt* stmt);
    void forInObject(const Expr* object);
    void drain(Label start);
    void switchStatement(const Stmt* stmt);
    void tryStatement(const Stmt* stmt);
    void catchClauses(const Stmt* stmt);
    void exitsOfTry(const Stmt* stmt, const std::vector<Exit>& exits);
    void jump(const Stmt* stmt);
    void jumpTo(std::size_t target, bool isBreak);
    void leave(const Enclosing& enclosing);
    void returnStatement(const Stmt* stmt);
    void varStatement(const Stmt* stmt);
    void withStatement(const Stmt* stmt);
    void tellTarget(const Stmt* stmt);
    void ifFrameLoaded(const Stmt* stmt);
    void importClass(const Stmt* stmt);
    void body(const Stmt* stmt, Enclosing enclosing);

    // expressions
    void value(const Expr* expr);
    void effect(const Expr* expr);
    void condition(const Expr* expr, Label target, bool when);
    void nameValue(const std::string& name, Position where);
    void unary(const Expr* expr);
    void deleteOperator(const Expr* target);
    void binary(const Expr* expr);
    void wordComparison(const Expr* expr);
    void binaryAction(Tok op, Position where);
    void logical(const Expr* expr);
    void call(const Expr* expr);
    void calledMethod(const Expr* callee);
    void newObject(const Expr* expr);
    void callArguments(const std::vector<Expr*>& list);
    void arrayLiteral(const Expr* expr);
    void objectLiteral(const Expr* expr);
    [[nodiscard]] Resolved resolve(const std::string& name) const;
    [[nodiscard]] bool isRepeatable(const Expr* expr) const;

    // assignments
    void assign(const Expr* expr, Wanted wanted);
    void update(const Expr* expr, Wanted wanted);
    void storeName(const std::string& name, Wanted wanted);
    void memberTarget(const Expr* target, bool twice);
    void memberKey(const Expr* target);
    void compound(Tok op, const Expr* right);

    // functions and classes
    void function(const Function& fn, const std::string& name, const MethodContext& method);
    void functionExpression(const Function& fn);
    void chooseRegisters(const Function& fn, const MethodContext& method, Scope& scope,
                         Assembler::Payload& header);
    void classDeclaration(const ClassDeclaration& declaration);
    void classMembers(const ClassDeclaration& declaration);
    void accessors(const ClassDeclaration& declaration);
    void dottedValue(const std::string& name, bool fromGlobal);
    [[nodiscard]] std::string fullClassName(const std::string& name) const;

    // built-in functions that are actions of their own
    Produced builtin(const Expr* call, Wanted wanted);
    Produced gotoFrame(const Expr* call, bool play);
    Produced loadOrUnload(const Expr* call, std::string_view name);
    Produced startDrag(const Expr* call);
    bool countArguments(const Expr* call, std::size_t least, std::size_t most);
    void levelName(const Expr* level);
    int sendMethod(const Expr* call, std::size_t index);

    // version 4
    struct SlashName {
        std::string path, name;
        std::optional<int> property;
        [[nodiscard]] std::string variable() const;
    };
    std::optional<SlashName> slashName(const Expr* expr);
    [[nodiscard]] std::optional<std::string> slashPath(const Expr* expr) const;
    void slashValue(const Expr* expr);
    void slashAssign(const Expr* target, const Expr* right, Tok op, Wanted wanted);

    ScriptContext& m_context;
    int m_version;
    Assembler m_asm;
    std::string m_path; // of the script's file; imported classes are looked for beside it
    Scope m_scope;
    int m_finallyCopiesInAll = 0;
    std::map<std::string, std::string> m_imports; // short class name to dotted
    std::vector<std::unique_ptr<Program>> m_imported;
    int m_importDepth = 0;
    std::vector<std::string> m_pendingLabels; // of the statement about to be compiled
};

/// @returns the number of a clip property such as "_x", as the property actions count them.
std::optional<int> propertyNumber(std::string_view name, int version);

} // namespace swfc::actionscript
