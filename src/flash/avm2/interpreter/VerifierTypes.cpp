#include "flash/avm2/interpreter/Types.h"
#include "flash/avm2/interpreter/Unit.h"
#include "flash/avm2/interpreter/Verifier.h"
#include "flash/avm2/interpreter/Vm.h"

#include <algorithm>
#include <map>

namespace flash::avm2
{

namespace
{

using abc::Op;
using Kind = Type::Kind;

/// Types kept at the places where ways meet, for one method. Longer ones do without what is known by type.
constexpr std::size_t kMaxTypes = std::size_t{1} << 21;

/// Whether names of a package are the player's own. Of those, one that is not here is missed when it is used.
bool isOfPlayer(const Multiname& name)
{
    for (std::uint32_t i = 0; i < name.size(); ++i) {
        const std::u16string_view package = name.at(i)->uri.view();
        if (package.starts_with(u"flash.") || package.starts_with(u"air.") || package.starts_with(u"__AS3__"))
            return true;
    }
    return false;
}

class TypeVerifier
{
public:
    TypeVerifier(Vm& vm, const MethodEnv& env, const Code& code, const Decoded& decoded)
        : m_vm(vm), m_env(env), m_code(code), m_decoded(decoded), m_unit(*code.unit), m_abc(m_unit.abc()),
          m_body(m_abc.bodies[code.body])
    {
    }

    VerifyFault run()
    {
        std::size_t types = 0;
        markHeads();
        for (const auto& [offset, head] : m_heads)
            types += m_code.locals + static_cast<std::size_t>(std::max(m_decoded.states[offset].stack, 0));
        if (types > kMaxTypes) return {};
        for (const abc::ExceptionInfo& info : m_body.exceptions) checkClass(info.type);
        m_state.locals.assign(m_code.locals, Type::of(Kind::Undefined));
        m_state.locals[0] = Type::instance(m_code.self, true);
        for (std::uint32_t i = 0; i < m_code.declared; ++i)
            m_state.locals[i + 1] = typeOfTraits(m_code.parameterTypes[i]);
        if (m_code.takesMore)
            m_state.locals[m_code.declared + 1] = Type::instance(m_vm.classes().array->instances, true);
        meet(0, m_state);
        while (!m_pending.empty() && m_fault.number == 0) {
            const std::uint32_t at = m_pending.back();
            m_pending.pop_back();
            m_heads.at(at).isPending = false;
            followFrom(at);
        }
        return m_fault;
    }

private:
    struct Scope {
        Type type;
        bool isWith = false;
    };
    struct State {
        std::vector<Type> locals, stack;
        std::vector<Scope> scopes;
    };
    /// A place that ways lead to.
    struct Head {
        bool isReached = false, isPending = false;
        State state;
    };

    void fault(int number, const std::u16string& text)
    {
        if (m_fault.number == 0) m_fault = {number, toUtf8(text)};
    }

    void markHeads()
    {
        m_heads[0];
        for (const auto& instruction : m_decoded.instructions) {
            if (!instruction) continue;
            const std::string_view operands = abc::opInfo(instruction->op).operands;
            if (operands != "j" && operands != "L") continue;
            m_heads[static_cast<std::uint32_t>(instruction->operands[0])];
            for (const std::int32_t target : instruction->cases) m_heads[static_cast<std::uint32_t>(target)];
        }
        for (const abc::ExceptionInfo& info : m_body.exceptions) {
            if (m_decoded.states[info.target].stack >= 0) m_heads[info.target];
        }
    }

    [[nodiscard]] std::u16string nameOf(const Type& type) const
    {
        switch (type.kind) {
        case Kind::Any: return u"*";
        case Kind::Undefined: return u"void";
        case Kind::Null: return u"null";
        case Kind::Int: return u"int";
        case Kind::Uint: return u"uint";
        case Kind::Number: return u"Number";
        case Kind::Boolean: return u"Boolean";
        case Kind::String: return u"String";
        case Kind::Instance: return type.traits->qualifiedName();
        }
        return u"*";
    }

    /// Joins a state to what is known of a place: what is common to both is left.
    void meet(std::uint32_t offset, const State& state)
    {
        Head& head = m_heads.at(offset);
        bool changed = !head.isReached;
        if (!head.isReached) {
            head.isReached = true;
            head.state = state;
        } else {
            const auto join = [&changed](Type& known, const Type& other) {
                changed |= narrowBy(known, other);
            };
            for (std::size_t i = 0; i < state.locals.size(); ++i) join(head.state.locals[i], state.locals[i]);
            for (std::size_t i = 0; i < state.stack.size(); ++i) join(head.state.stack[i], state.stack[i]);
            for (std::size_t i = 0; i < state.scopes.size(); ++i) {
                // Names are looked for in one way in a plain scope, in another in that of `with`.
                if (head.state.scopes[i].isWith != state.scopes[i].isWith) {
                    fault(1068, nameOf(state.scopes[i].type) + u" and " + nameOf(head.state.scopes[i].type) +
                                    u" cannot be reconciled.");
                    return;
                }
                join(head.state.scopes[i].type, state.scopes[i].type);
            }
        }
        if (!changed || head.isPending) return;
        head.isPending = true;
        m_pending.push_back(offset);
    }

    void meetHandlers(std::uint32_t at)
    {
        for (const abc::ExceptionInfo& info : m_body.exceptions) {
            if (at < info.from || at >= info.to || m_decoded.states[info.target].stack < 0) continue;
            meet(info.target, {m_state.locals, {Type()}, {}});
        }
    }

    void followFrom(std::uint32_t at)
    {
        m_state = m_heads.at(at).state;
        bool isTouched = true;
        while (m_fault.number == 0) {
            const abc::Instruction& instruction = *m_decoded.instructions[at];
            // Handlers find the locals as they are before and after each instruction.
            if (isTouched || startsRange(at)) meetHandlers(at);
            isTouched = false;
            const auto op = static_cast<Op>(instruction.op);
            step(instruction, isTouched);
            if (isTouched) meetHandlers(at);
            if (m_fault.number != 0 || op == Op::returnvoid || op == Op::returnvalue || op == Op::throw_)
                return;
            const std::string_view operands = abc::opInfo(instruction.op).operands;
            if (operands == "j" || operands == "L") {
                meet(static_cast<std::uint32_t>(instruction.operands[0]), m_state);
                for (const std::int32_t target : instruction.cases)
                    meet(static_cast<std::uint32_t>(target), m_state);
                if (op == Op::jump || op == Op::lookupswitch) return;
            }
            at = instruction.next;
            if (m_heads.contains(at)) {
                meet(at, m_state);
                return;
            }
        }
    }

    [[nodiscard]] bool startsRange(std::uint32_t at) const
    {
        return std::ranges::any_of(m_body.exceptions, [at](const auto& info) { return info.from == at; });
    }

    Type pop()
    {
        const Type type = m_state.stack.back();
        m_state.stack.pop_back();
        return type;
    }
    void push(Type type) { m_state.stack.push_back(type); }
    void push(Kind kind) { push(Type::of(kind)); }

    /// Takes what an instruction takes, and leaves values of a type.
    void replace(const abc::Instruction& instruction, Type type = {})
    {
        const abc::OpInfo& info = abc::opInfo(instruction.op);
        std::size_t pops = info.pops;
        for (std::size_t i = 0; i < info.operands.size(); ++i) {
            const auto value = static_cast<std::uint32_t>(instruction.operands[i]);
            if (info.operands[i] == 'm') {
                const abc::MultinameInfo& name = m_abc.multinames[value];
                pops += (name.hasRuntimeName() ? 1U : 0U) + (name.hasRuntimeNamespace() ? 1U : 0U);
            } else if (info.operands[i] == 'a') {
                pops += static_cast<Op>(instruction.op) == Op::newobject ? value * 2 : value;
            }
        }
        m_state.stack.resize(m_state.stack.size() - pops);
        for (std::size_t i = 0; i < info.pushes; ++i) push(type);
    }

    /// A class that code names has to be one that somebody defines.
    void checkClass(std::uint32_t multiname)
    {
        const abc::MultinameInfo& info = m_abc.multinames[multiname];
        if (info.kind == abc::MultinameKind::TypeName) {
            for (const std::uint32_t parameter : info.parameters) {
                if (m_abc.multinames[parameter].kind != abc::MultinameKind::TypeName) checkClass(parameter);
            }
            return;
        }
        const Multiname& name = m_unit.multiname(multiname);
        Value ignored;
        if (multiname == 0 || name.name.isNull() || name.name.view() == u"void" || isOfPlayer(name) ||
            m_unit.domain()->defines(name) || m_vm.findNative(name, ignored))
            return;
        fault(1014, u"Class " + m_vm.nameText(name) + u" could not be found.");
    }

    [[nodiscard]] Type typeNamed(std::uint32_t multiname) const
    {
        bool known = false;
        Traits* traits = settledType(m_vm, m_unit, multiname, known);
        return known ? typeOfTraits(traits) : Type();
    }

    /// Slots and methods by number: only where it is known whose they are.
    void checkSlot(const Type& holder, std::uint32_t id)
    {
        if (holder.kind != Kind::Instance) return;
        const Traits& traits = *holder.traits;
        // A class that is not made yet has no slots to be counted.
        if (traits.cls == nullptr && &traits != m_code.activation) return;
        if (id == 0 || id > traits.slotTypes.size())
            fault(1026, u"Slot " + numberText(id) + u" exceeds slotCount=" +
                            numberText(static_cast<double>(traits.slotTypes.size())) + u" of " +
                            (&traits == m_code.activation ? u"activation" : traits.qualifiedName()) + u".");
    }

    void checkMethod(const Type& holder, std::uint32_t id)
    {
        if (id == 0) fault(1072, u"Disp_id 0 is illegal.");
        if (holder.kind != Kind::Instance || holder.traits->cls == nullptr) return;
        if (id > holder.traits->methods.size())
            fault(1028, u"Disp_id " + numberText(id) + u" exceeds max_disp_id=" +
                            numberText(static_cast<double>(holder.traits->methods.size())) + u" of " +
                            holder.traits->qualifiedName() + u".");
    }

    void checkSuper(bool needsBase)
    {
        const Traits* owner = m_env.role == MethodEnv::Role::Function ? nullptr : m_env.owner;
        if (owner == nullptr || (needsBase && owner->base == nullptr))
            fault(1035,
                  u"Illegal super expression found in method " + std::u16string(m_env.name.view()) + u".");
    }

    [[nodiscard]] bool hasGlobalScope() const { return m_env.scope != nullptr || !m_state.scopes.empty(); }

    void setLocal(std::uint32_t local, Type type, bool& isTouched)
    {
        m_state.locals[local] = type;
        isTouched = true;
    }

    void step(const abc::Instruction& instruction, bool& isTouched)
    {
        const auto op = static_cast<Op>(instruction.op);
        const auto operand = static_cast<std::uint32_t>(instruction.operands[0]);
        switch (op) {
        case Op::getlocal: push(m_state.locals[operand]); break;
        case Op::getlocal_0:
        case Op::getlocal_1:
        case Op::getlocal_2:
        case Op::getlocal_3: push(m_state.locals[instruction.op & 3U]); break;
        case Op::setlocal: setLocal(operand, pop(), isTouched); break;
        case Op::setlocal_0:
        case Op::setlocal_1:
        case Op::setlocal_2:
        case Op::setlocal_3: setLocal(instruction.op & 3U, pop(), isTouched); break;
        case Op::kill: setLocal(operand, Type::of(Kind::Undefined), isTouched); break;
        case Op::inclocal:
        case Op::declocal: setLocal(operand, Type::of(Kind::Number), isTouched); break;
        case Op::inclocal_i:
        case Op::declocal_i: setLocal(operand, Type::of(Kind::Int), isTouched); break;
        case Op::hasnext2:
            setLocal(operand, {}, isTouched);
            setLocal(static_cast<std::uint32_t>(instruction.operands[1]), Type::of(Kind::Int), isTouched);
            push(Kind::Boolean);
            break;
        case Op::dup: push(m_state.stack.back()); break;
        case Op::swap: std::swap(m_state.stack.back(), m_state.stack[m_state.stack.size() - 2]); break;
        case Op::pushscope:
        case Op::pushwith: m_state.scopes.push_back({pop(), op == Op::pushwith}); break;
        case Op::popscope: m_state.scopes.pop_back(); break;
        case Op::getscopeobject: push(m_state.scopes[operand].type); break;
        case Op::getslot: {
            const Type holder = pop();
            checkSlot(holder, operand);
            push(holder.kind == Kind::Instance && holder.traits->cls == nullptr && operand != 0
                     ? typeOfSlot(m_vm, *holder.traits, operand - 1)
                     : Type());
            break;
        }
        case Op::setslot:
            pop();
            checkSlot(pop(), operand);
            break;
        case Op::getglobalslot:
        case Op::setglobalslot:
            if (!hasGlobalScope())
                fault(1114, u"OP_getglobalslot or OP_setglobalslot used with no global scope.");
            replace(instruction);
            break;
        case Op::callmethod: {
            const auto count = static_cast<std::size_t>(instruction.operands[1]);
            checkMethod(m_state.stack[m_state.stack.size() - count - 1], operand);
            replace(instruction);
            break;
        }
        case Op::getsuper:
        case Op::setsuper:
        case Op::callsuper:
        case Op::callsupervoid:
            checkSuper(true);
            replace(instruction);
            break;
        case Op::constructsuper:
            checkSuper(false);
            replace(instruction);
            break;
        case Op::newactivation:
            if (m_code.activation == nullptr)
                fault(1113, u"OP_newactivation used in method without NEED_ACTIVATION flag.");
            push(Type::instance(m_code.activation, true));
            break;
        case Op::coerce:
        case Op::astype:
            checkClass(operand);
            replace(instruction, typeNamed(operand));
            break;
        case Op::istype:
            checkClass(operand);
            replace(instruction, Type::of(Kind::Boolean));
            break;
        default: replace(instruction, resultTypeOf(m_vm, op)); break;
        }
    }

    Vm& m_vm;
    const MethodEnv& m_env;
    const Code& m_code;
    const Decoded& m_decoded;
    Unit& m_unit;
    const abc::Abc& m_abc;
    const abc::Body& m_body;
    VerifyFault m_fault;
    std::map<std::uint32_t, Head> m_heads; ///< by offset
    std::vector<std::uint32_t> m_pending;
    State m_state; ///< while going through
};

} // namespace

VerifyFault verifyTypes(Vm& vm, const MethodEnv& env, const Code& code, const Decoded& decoded)
{
    return TypeVerifier(vm, env, code, decoded).run();
}

} // namespace flash::avm2
