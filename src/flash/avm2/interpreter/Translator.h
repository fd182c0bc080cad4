#pragma once

#include "flash/avm2/interpreter/Types.h"
#include "flash/avm2/interpreter/Verifier.h"

namespace flash::avm2
{

/// Turns verified instructions into the register form.
///
/// First the types of all values are found, by going through the code until nothing changes where its ways
/// meet; then each stretch of code between such places is gone through once more and written. What the
/// operand stack holds is often not there yet: a value of it may stand for a local or a constant as long as
/// nobody overwrites that, so that most loads and stores of the file vanish. Where ways meet, everything lies
/// boxed in its place.
class Translator
{
public:
    Translator(Vm& vm, const Decoded& decoded, Code& code);
    void run();

private:
    /// The register form of an instruction that finds its operands side by side.
    static RegisterOp stackOp(abc::Op op);
    enum class Rep : std::uint8_t { Boxed, Int, Uint };
    struct Operand {
        enum class Where : std::uint8_t { Register, Constant, IntConstant };
        Where where = Where::Register;
        Rep rep = Rep::Boxed;
        std::int32_t at = 0; ///< register, index of a constant, the int itself
        Type type;
    };
    struct Scope {
        Type type;
        bool isWith = false;
        friend bool operator==(const Scope&, const Scope&) = default;
    };
    /// A place that is jumped to.
    struct Head {
        std::uint32_t offset = 0;
        bool isReached = false, isPending = false;
        std::vector<Type> locals, stack;
        std::vector<Scope> scopes;
    };
    enum class Pass : std::uint8_t { FindTypes, ChooseForms, Write };

    // Translator.cpp: the ways through the code, and where values are
    void findHeads();
    void enter();
    void followAll();
    void simulate(std::size_t head);
    void meet(std::uint32_t offset);
    void meetHandlers(std::uint32_t offset);
    void finish();
    void fuse(); ///< TranslatorFusing.cpp, as the next
    void takeEntry();
    Ins& emit(RegisterOp op, std::int32_t d, std::int32_t a = 0, std::int32_t b = 0, std::int32_t c = 0);
    [[nodiscard]] std::size_t depth() const { return m_stack.size(); }
    [[nodiscard]] std::int32_t reg(std::size_t depth) const
    {
        return static_cast<std::int32_t>(m_code.stackBase() + depth);
    }
    std::int32_t constant(Value value);
    Value valueOf(const Operand& operand) const;
    std::int32_t boxed(std::size_t depth);
    std::int32_t raw(std::size_t depth);
    std::int32_t number(std::size_t depth);
    void place(std::size_t depth);
    void flush();
    void pop(std::size_t count = 1) { m_stack.resize(m_stack.size() - count); }
    /// Pushes what an instruction computes.
    Ins& define(RegisterOp op, Type type, Rep rep, std::int32_t b = 0, std::int32_t c = 0,
                std::int32_t a = 0);
    void push(Type type) { m_stack.push_back({Operand::Where::Register, Rep::Boxed, reg(depth()), type}); }
    void pushConstant(Value value, Type type);
    void pushInt(std::int32_t value, Type type)
    {
        m_stack.push_back({Operand::Where::IntConstant, Rep::Boxed, value, type});
    }
    [[nodiscard]] bool isFresh(const Operand& operand) const;
    bool spill(std::int32_t local);
    [[nodiscard]] Type localType(std::size_t local) const { return m_isTyped ? m_locals[local] : Type(); }
    void readLocal(std::size_t local);
    void writeLocal(std::size_t local, Type type, bool hasToBeBoxed = false);
    void getLocal(std::int32_t local);
    void setLocal(std::int32_t local);
    std::int32_t cache();

    // TranslatorOps.cpp: what each instruction does. Each @returns whether the code goes on behind it
    bool step(const abc::Instruction& instruction);
    bool arithmetic(abc::Op op);
    bool jumps(const abc::Instruction& instruction);
    bool properties(const abc::Instruction& instruction);
    void others(const abc::Instruction& instruction);
    void jump(RegisterOp op, std::uint32_t target, std::int32_t a, std::int32_t b, std::int32_t c);
    bool jumpIfCompared(abc::Op op, std::uint32_t target);
    void jumpIf(bool wanted, std::uint32_t target);
    void compare(abc::Op op);
    void toInt(Type::Kind kind);
    void toNumber();
    void addInt(RegisterOp op, RegisterOp immediate);
    void numeric(RegisterOp numbers, RegisterOp immediate, RegisterOp any);
    void stepLocal(std::int32_t local, int by, bool isInt);
    void coerce(const abc::Instruction& instruction);
    void pushScope(bool isWith);
    const Binding* binding(const Type& receiver, std::uint32_t multiname);
    bool isNumberConstant(std::size_t depth) const;
    [[nodiscard]] std::uint16_t parts(std::uint32_t multiname) const;
    bool getProperty(std::uint32_t multiname);
    bool setProperty(std::uint32_t multiname, bool isInit);
    bool setElement(std::uint32_t multiname);
    void call(const abc::Instruction& instruction);
    std::uint16_t placeArguments(std::size_t base, const MethodEnv* method);
    Type resultOf(const MethodEnv& method);
    bool findInScopes(std::uint32_t multiname);
    Type constantType(Value value) const;

    Vm& m_vm;
    const Decoded& m_decoded;
    Code& m_code;
    const abc::Abc& m_abc;
    const abc::Body& m_body;
    Pass m_pass = Pass::FindTypes;
    bool m_isTyped = true; ///< false where there is too much to keep in mind
    std::vector<Head> m_heads;
    std::vector<std::int32_t> m_headAt; ///< by offset
    std::vector<std::size_t> m_pending;
    std::vector<std::uint32_t> m_index; ///< first instruction for each offset
    // The state while going through.
    std::vector<Type> m_locals;
    std::vector<Operand> m_stack;
    std::vector<Scope> m_scopes;
    std::size_t m_last = 0;     ///< the instruction that made the value on top, plus one
    bool m_isTouched = true;    ///< locals were written since handlers have seen them
    std::uint32_t m_before = 0; ///< offset of the instruction before
    std::vector<Rep> m_forms;   ///< of locals
    std::vector<bool> m_maybeInt, m_maybeUint;
};

/// @returns the form of an instruction that works on the operand stack; of no use for others
RegisterOp stackOp(abc::Op op);

} // namespace flash::avm2
