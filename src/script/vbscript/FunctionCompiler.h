#pragma once

#include "script/vbscript/Compiler.h"

namespace script::vbscript
{

Failed failAt(int number, Position position);

/// Turns one body into instructions. The halves: names and expressions, statements.
class FunctionCompiler
{
public:
    FunctionCompiler(Program& program, Function& function, const Names& names, const Surroundings& outer,
                     const std::vector<Symbol>& programGlobals)
        : m_program(program), m_function(function), m_names(names), m_outer(outer),
          m_programGlobals(programGlobals)
    {
    }

    Result<void> procedure(const Procedure& procedure);
    Result<void> main(const Tree& tree);

private:
    struct Place { // what a name stands for in this function
        enum class Kind { Local, Constant, Global, Implicit, Field, Own };
        Kind kind = Kind::Global;
        std::uint32_t index = 0; // see Op::Local...; of constants for Constant
        const ClassMember* member = nullptr;
        bool known = false; // surely a variable, never a procedure
    };
    struct Loop {
        bool isFor;
        std::vector<std::size_t> exits; // jumps to patch
        int eachSlot;                   // of a For Each, to be cleared on the way out; -1
    };

    // Names (FunctionCompiler.cpp)
    Place place(Symbol name);
    struct Outside { // where the surroundings of executed text keep a name
        std::uint32_t depth = 0;
        int slot = -1; // see Capture::outerSlot
        const Value* constant = nullptr;
        bool implicit = false;
    };
    [[nodiscard]] std::optional<Outside> outside(Symbol name) const;
    [[nodiscard]] bool isExecuted() const { return m_function.isMain && !m_outer.functions.empty(); }
    Place assignedPlace(Symbol name);
    Place global(Symbol name, bool known) const;
    [[nodiscard]] bool isReturnName(Symbol name) const;
    Place implicit(Symbol name, const std::optional<Outside>& around);
    std::uint32_t newSlot();
    void nameSlots();
    std::uint32_t constant(const Value& value);
    std::uint32_t site(Symbol name, const Expression* object);
    std::uint32_t callee(Function* function);

    // Emission
    void emit(Op op, int effect, std::uint32_t a = 0, std::size_t count = 0, std::uint8_t flags = 0);
    std::size_t emitJump(Op op, int effect);
    void patch(std::size_t jump) { m_function.code[jump].a = here(); }
    [[nodiscard]] std::uint32_t here() const { return static_cast<std::uint32_t>(m_function.code.size()); }
    /// A statement begins here, or only a place to resume at. @returns its index
    std::size_t mark(Position position = {});
    Result<void> checkCount(std::size_t count, Position position) const;

    // Expressions (ExpressionCompiler.cpp)
    Result<void> value(const Expression* expression);
    Result<void> argument(const Expression* expression, bool calleeIsVariable);
    Result<void> arguments(const std::vector<Expression*>& arguments, bool calleeIsVariable);
    Result<void> binary(const Expression* expression);
    bool binaryOfLocal(const Expression* expression, Result<void>& outcome);
    [[nodiscard]] bool isSimple(const Expression* expression);
    std::uint8_t reciprocal(Operator operation, std::uint32_t index);
    Result<void> name(const Expression* expression, bool byReference);
    Result<void> call(const Expression* expression, std::uint8_t flags);
    Result<void> member(const Expression* expression, const std::vector<Expression*>& arguments,
                        std::uint8_t flags);
    Result<void> object(const Expression* expression);
    static std::uint8_t literals(const Expression* left, const Expression* right);

    // Statements (StatementCompiler.cpp)
    Result<void> block(const Block& block);
    Result<void> statement(const Statement& statement);
    Result<void> declareLocals(const Block& block);
    Result<void> declareLocal(const Declarator& declared, Statement::Kind kind);
    Result<void> assignment(const Statement& statement);
    Result<void> store(Place place, std::uint8_t flags, Position position);
    Result<void> storeIndexed(const Expression* target, std::uint8_t flags);
    Result<void> callStatement(const Statement& statement);
    Result<void> ifStatement(const Statement& statement);
    Result<void> select(const Statement& statement);
    Result<void> forLoop(const Statement& statement);
    Result<void> forEach(const Statement& statement);
    Result<void> doLoop(const Statement& statement);
    Result<void> with(const Statement& statement);
    Result<void> exit(const Statement& statement);
    Result<void> reDim(const Statement& statement);
    Result<void> reference(const Expression* target);

    Program& m_program;
    Function& m_function;
    const Names& m_names;
    const Surroundings& m_outer;
    const std::vector<Symbol>& m_programGlobals; // sorted
    std::vector<Loop> m_loops;
    std::vector<std::uint32_t> m_withSlots;
    int m_depth = 0; // values on the stack
};

} // namespace script::vbscript
