#include "flash/avm2/interpreter/Verifier.h"

#include "flash/avm2/abc/CodeReader.h"
#include "flash/avm2/interpreter/Unit.h"

#include <algorithm>

namespace flash::avm2
{

namespace
{

using abc::Op;

constexpr std::uint32_t kMaxScopes = 64; // one bit for each tells a `with`

class Verifier
{
public:
    Verifier(Unit& unit, std::uint32_t bodyIndex, Code& code, Decoded& decoded)
        : m_unit(unit), m_abc(unit.abc()), m_body(m_abc.bodies[bodyIndex]), m_code(code), m_decoded(decoded)
    {
    }

    VerifyFault run(std::uint32_t bodyIndex)
    {
        const abc::MethodInfo& method = m_abc.methods[m_body.method];
        m_code.unit = &m_unit;
        m_code.body = bodyIndex;
        m_code.locals = std::max<std::uint32_t>(m_body.localCount, 1);
        m_code.maxStack = m_body.maxStack;
        m_code.maxScopes = m_body.maxScopeDepth - m_body.initScopeDepth;
        const bool hasMore =
            (method.flags & (abc::MethodInfo::NeedRest | abc::MethodInfo::NeedArguments)) != 0;
        if (method.parameterTypes.size() + 1 + (hasMore ? 1 : 0) > m_code.locals)
            return badRegister(m_code.locals);
        if (m_code.maxScopes > kMaxScopes) return fault(1017, "Scope stack overflow occurred.");
        if (m_body.code.empty()) return fault(1043, "Invalid code_length=0.");
        const abc::ExceptionInfo* damaged = nullptr;
        for (const abc::ExceptionInfo& info : m_body.exceptions) {
            if (info.from > info.to || info.to > m_body.code.size() || info.target >= m_body.code.size())
                damaged = &info;
        }
        if (damaged != nullptr) return fault(1054, "Illegal range or target offsets in exception handler.");
        flow();
        return m_fault;
    }

private:
    VerifyFault fault(int number, std::string text)
    {
        if (m_fault.number == 0) m_fault = {number, std::move(text)};
        return m_fault;
    }
    VerifyFault badRegister(std::size_t index)
    {
        return fault(1025, "An invalid register " + std::to_string(index) + " was accessed.");
    }

    void reach(std::int64_t at, Decoded::State state)
    {
        if (at < 0 || at >= static_cast<std::int64_t>(m_body.code.size())) {
            fault(at == static_cast<std::int64_t>(m_body.code.size()) && !m_isJump ? 1020 : 1021,
                  at == static_cast<std::int64_t>(m_body.code.size()) && !m_isJump
                      ? "Code cannot fall off the end of a method."
                      : "At least one branch target was not on a valid instruction in the method.");
            return;
        }
        const auto place = static_cast<std::uint32_t>(at);
        Decoded::State& known = m_decoded.states[place];
        if (known.stack < 0) {
            known = state;
            m_pending.push_back(place);
        } else if (known.stack != state.stack) {
            fault(1030, "Stack depth is unbalanced. " + std::to_string(state.stack) +
                            " != " + std::to_string(known.stack) + ".");
        } else if (known.scopes != state.scopes) {
            fault(1031, "Scope depth is unbalanced. " + std::to_string(state.scopes) +
                            " != " + std::to_string(known.scopes) + ".");
        }
    }

    /// Follows the code from its beginning; what is not reached is not looked at.
    void flow()
    {
        m_decoded.states.assign(m_body.code.size() + 1, {});
        m_inside.assign(m_body.code.size(), false);
        m_decoded.instructions.resize(m_body.code.size());
        reach(0, {0, 0});
        while (!m_pending.empty() && m_fault.number == 0) {
            const std::uint32_t at = m_pending.back();
            m_pending.pop_back();
            step(at);
        }
        if (m_fault.number != 0) return;
        for (std::uint32_t at = 0; at < m_body.code.size(); ++at) {
            if (m_decoded.states[at].stack >= 0 && m_inside[at]) {
                fault(1021, "At least one branch target was not on a valid instruction in the method.");
                return;
            }
        }
    }

    void step(std::uint32_t at)
    {
        if (m_inside[at]) {
            fault(1021, "At least one branch target was not on a valid instruction in the method.");
            return;
        }
        auto read = abc::CodeReader(m_body.code, at).next();
        if (!read) {
            if (abc::opInfo(m_body.code[at]).name.empty())
                fault(1011, "Method contained illegal opcode.");
            else
                fault(1020, "Code cannot fall off the end of a method.");
            return;
        }
        for (std::uint32_t i = at + 1; i < read->next; ++i) m_inside[i] = true;
        Decoded::State state = m_decoded.states[at];
        // Handlers begin with the error on the stack, and with no scopes but the outer ones.
        for (const abc::ExceptionInfo& info : m_body.exceptions) {
            if (at < info.from || at >= info.to) continue;
            const Decoded::State& known = m_decoded.states[info.target];
            if (known.stack != 1 || known.scopes != 0) reach(info.target, {1, 0});
        }
        const std::uint8_t parts = operands(*read);
        if (m_fault.number != 0) return;
        const abc::OpInfo& info = abc::opInfo(read->op);
        std::int32_t pops = info.pops + (parts & 1U) + (parts >> 1U & 1U), pushes = info.pushes;
        for (std::size_t i = 0; i < info.operands.size(); ++i) {
            if (info.operands[i] != 'a') continue;
            const std::int32_t count = read->operands[i];
            const auto op = static_cast<Op>(read->op);
            pops += op == Op::newobject ? count * 2 : count;
        }
        state.stack -= pops;
        if (state.stack < 0) {
            fault(1024, "Stack underflow occurred.");
            return;
        }
        state.stack += pushes;
        if (state.stack > static_cast<std::int32_t>(m_body.maxStack)) {
            fault(1023, "Stack overflow occurred.");
            return;
        }
        scopes(*read, state);
        if (m_fault.number != 0) return;
        follow(*read, state);
        m_decoded.instructions[at] = std::move(read);
    }

    void scopes(const abc::Instruction& instruction, Decoded::State& state)
    {
        switch (static_cast<Op>(instruction.op)) {
        case Op::pushscope:
        case Op::pushwith:
            if (++state.scopes > static_cast<std::int32_t>(m_code.maxScopes))
                fault(1017, "Scope stack overflow occurred.");
            break;
        case Op::popscope:
            if (--state.scopes < 0) fault(1018, "Scope stack underflow occurred.");
            break;
        case Op::getscopeobject:
            if (static_cast<std::uint32_t>(instruction.operands[0]) >=
                static_cast<std::uint32_t>(state.scopes))
                fault(1019,
                      "Getscopeobject " + std::to_string(instruction.operands[0]) + " is out of bounds.");
            break;
        default: break;
        }
    }

    void follow(const abc::Instruction& instruction, Decoded::State state)
    {
        const auto op = static_cast<Op>(instruction.op);
        if (op == Op::returnvoid || op == Op::returnvalue || op == Op::throw_) return;
        const std::string_view operands = abc::opInfo(instruction.op).operands;
        if (operands == "j" || operands == "L") {
            m_isJump = true;
            reach(instruction.operands[0], state);
            for (const std::int32_t target : instruction.cases) reach(target, state);
            m_isJump = false;
            if (op == Op::jump || op == Op::lookupswitch) return;
        }
        reach(instruction.next, state);
    }

    /// @returns which parts of its multiname the instruction takes from the stack.
    std::uint8_t operands(const abc::Instruction& instruction)
    {
        const std::string_view kinds = abc::opInfo(instruction.op).operands;
        std::uint8_t parts = 0;
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            const auto value = static_cast<std::uint32_t>(instruction.operands[i]);
            const auto within = [&](std::size_t size) {
                if (value >= size)
                    fault(1032, "Cpool index " + std::to_string(value) + " is out of range " +
                                    std::to_string(size) + ".");
            };
            switch (kinds[i]) {
            case 'm': {
                if (value >= m_abc.multinames.size()) {
                    within(m_abc.multinames.size());
                    break;
                }
                const abc::MultinameInfo& info = m_abc.multinames[value];
                if (info.hasRuntimeName()) parts |= 1U;
                if (info.hasRuntimeNamespace()) parts |= 2U;
                const auto op = static_cast<Op>(instruction.op);
                const bool isType = op == Op::coerce || op == Op::astype || op == Op::istype;
                if (value == 0 && !isType) within(0);
                if (parts != 0 && (isType || op == Op::finddef || op == Op::getlex))
                    fault(1078, "Illegal opcode/multiname combination.");
                break;
            }
            case 's': within(m_abc.strings.size()); break;
            case 'i': within(m_abc.ints.size()); break;
            case 'U': within(m_abc.uints.size()); break;
            case 'd': within(m_abc.doubles.size()); break;
            case 'n': within(m_abc.namespaces.size()); break;
            case 'c':
                if (value >= m_abc.classes.size())
                    fault(1060, "ClassInfo " + std::to_string(value) +
                                    " exceeds class_count=" + std::to_string(m_abc.classes.size()) + ".");
                break;
            case 'f':
                if (value >= m_abc.methods.size())
                    fault(1027, "Method_info " + std::to_string(value) +
                                    " exceeds method_count=" + std::to_string(m_abc.methods.size()) + ".");
                break;
            case 'e':
                if (value >= m_body.exceptions.size())
                    fault(1054, "Illegal range or target offsets in exception handler.");
                break;
            case 'l':
                if (value >= m_code.locals) badRegister(value);
                break;
            case 'a':
                if (value > m_body.maxStack) fault(1024, "Stack underflow occurred.");
                break;
            default: break;
            }
        }
        const auto op = static_cast<Op>(instruction.op);
        // Those that have their register's number, 0 to 3, in themselves.
        if (op >= Op::getlocal_0 && op <= Op::setlocal_3 && (instruction.op & 3U) >= m_code.locals)
            badRegister(instruction.op & 3U);
        return parts;
    }

    Unit& m_unit;
    const abc::Abc& m_abc;
    const abc::Body& m_body;
    Code& m_code;
    Decoded& m_decoded;
    VerifyFault m_fault;
    bool m_isJump = false;
    std::vector<bool> m_inside; ///< within an instruction, not at its first byte
    std::vector<std::uint32_t> m_pending;
};

} // namespace

VerifyFault verify(Unit& unit, std::uint32_t body, Code& code, Decoded& decoded)
{
    return Verifier(unit, body, code, decoded).run(body);
}

} // namespace flash::avm2
