#pragma once

#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/abc/Opcodes.h"

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace swfc::actionscript3
{

namespace abc = flash::avm2::abc;
using abc::Op;

/// The code of one method while it is written: bytes, jumps that are filled in at the end, and how deep the
/// stacks get. What cannot be reached is left out.
class CodeWriter
{
public:
    using Label = std::size_t;

    void op(Op op) { emit(op, {}, 0); }
    /// @param names how many parts of its name an instruction takes from the stack
    void op(Op op, std::uint32_t operand, int names = 0) { emit(op, {operand}, names); }
    /// Instructions with a number of arguments.
    void call(Op op, std::uint32_t operand, std::uint32_t count, int names = 0)
    {
        emit(op, {operand, count}, names);
    }
    void call(Op op, std::uint32_t count) { emit(op, {count}, 0); }
    void hasNext(std::uint32_t object, std::uint32_t index) { emit(Op::hasnext2, {object, index}, 0); }
    void getLocal(std::uint32_t number);
    void setLocal(std::uint32_t number);
    void pushInt(std::int32_t value, std::uint32_t poolIndex);

    Label newLabel();
    void jump(Op op, Label target);
    /// Where to go for each number from 0 on; `otherwise` for all others.
    void lookupSwitch(Label otherwise, const std::vector<Label>& targets);
    void mark(Label label);
    /// The same for what is jumped to from further down, so that nothing needs to be known of it yet.
    void markLoop(Label label);
    /// What stands here is jumped to from further down only, by whoever comes to `way`.
    void enteredFromBelow(Label label, Label way)
    {
        if (m_labels[way].stack >= 0) m_labels[label] = {-1, m_labels[way].stack, m_labels[way].scopes};
    }
    [[nodiscard]] bool isReachable() const { return m_reachable; }

    void addException(Label from, Label to, Label target, std::uint32_t type, std::uint32_t name);
    /// @returns its number, for newcatch
    [[nodiscard]] std::uint32_t exceptionCount() const
    {
        return static_cast<std::uint32_t>(m_exceptions.size());
    }
    /// Where an error is caught: it alone is on the stack, and no scope.
    void markHandler(Label label);
    void setScopes(int scopes) { m_scopes = scopes; }
    [[nodiscard]] int scopes() const { return m_scopes; }
    [[nodiscard]] int stack() const { return m_stack; }

    /// @returns whether all jumps fit; then what the body needs to know is filled in, besides its locals.
    bool finish(abc::Body& body, std::vector<std::uint8_t>& code);

private:
    struct LabelState {
        std::int64_t at = -1;
        int stack = -1, scopes = 0;
    };
    struct Fixup {
        std::size_t at;   // of three bytes
        std::size_t base; // what they are counted from
        Label target;
    };
    struct Exception {
        Label from, to, target;
        std::uint32_t type, name;
    };
    void emit(Op op, std::initializer_list<std::uint32_t> operands, int names);
    void u30(std::uint32_t value);
    void reach(Label label);
    void offset(std::size_t base, Label target);

    std::vector<std::uint8_t> m_code;
    std::vector<LabelState> m_labels;
    std::vector<Fixup> m_fixups;
    std::vector<Exception> m_exceptions;
    bool m_reachable = true;
    int m_stack = 0, m_maxStack = 0, m_scopes = 0, m_maxScopes = 0;
};

} // namespace swfc::actionscript3
