#include "script/vbscript/FunctionCompiler.h"

#include "script/vbscript/Errors.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

constexpr std::size_t kMaxCount = 60000; // slots and arguments, which instructions hold in 16 bits

} // namespace

Failed failAt(int number, Position position)
{
    auto failed = fault(number);
    failed.value()->line = position.line;
    failed.value()->column = position.column;
    return failed;
}

Result<void> FunctionCompiler::procedure(const Procedure& procedure)
{
    m_function.byReference.clear();
    for (const Parameter& parameter : procedure.parameters) {
        m_function.names[parameter.name] = {newSlot(), false, -1};
        m_function.byReference.push_back(parameter.byReference);
    }
    if (procedure.kind == Procedure::Kind::Function || procedure.kind == Procedure::Kind::PropertyGet) {
        m_function.returnSlot = static_cast<int>(newSlot());
    }
    CHECK_RESULT(declareLocals(procedure.body));
    CHECK_RESULT(block(procedure.body));
    mark();
    emit(Op::Return, 0);
    nameSlots();
    return checkCount(m_function.slots, procedure.position);
}

Result<void> FunctionCompiler::main(const Tree& tree)
{
    if (isExecuted()) CHECK_RESULT(declareLocals(tree.body));
    CHECK_RESULT(block(tree.body));
    mark();
    emit(Op::Return, 0);
    nameSlots();
    return checkCount(m_function.slots, {1, 1});
}

void FunctionCompiler::nameSlots()
{
    m_function.slotNames.assign(m_function.slots, m_function.name);
    for (const auto& [name, local] : m_function.names) {
        if (local.constant < 0 && !local.implicit) m_function.slotNames[local.slot] = name;
    }
}

Result<void> FunctionCompiler::checkCount(std::size_t count, Position position) const
{
    if (count > kMaxCount) return failAt(error::kTooComplex, position);
    return {};
}

// ---- names

bool FunctionCompiler::isReturnName(Symbol name) const
{
    return m_function.returnSlot >= 0 && name == m_function.name;
}

FunctionCompiler::Place FunctionCompiler::global(Symbol name, bool known) const
{
    return {Place::Kind::Global, name, nullptr, known};
}

std::optional<FunctionCompiler::Outside> FunctionCompiler::outside(Symbol name) const
{
    std::uint32_t depth = 0;
    for (const Function* around : m_outer.functions) {
        if (const auto found = around->names.find(name); found != around->names.end()) {
            const LocalName& local = found->second;
            if (local.constant >= 0)
                return Outside{depth, -1, &around->constants[static_cast<std::size_t>(local.constant)],
                               false};
            const std::uint32_t slot = local.implicit ? around->implicitNames[local.slot].slot : local.slot;
            return Outside{depth, static_cast<int>(slot), nullptr, local.implicit};
        }
        if (around->returnSlot >= 0 && name == around->name)
            return Outside{depth, around->returnSlot, nullptr, false};
        ++depth;
    }
    if (m_outer.declared && m_outer.declared->count(name) != 0) return Outside{depth - 1, -1, nullptr, false};
    return std::nullopt;
}

FunctionCompiler::Place FunctionCompiler::place(Symbol name)
{
    if (const auto found = m_function.names.find(name); found != m_function.names.end()) {
        const LocalName& local = found->second;
        if (local.constant >= 0)
            return {Place::Kind::Constant, static_cast<std::uint32_t>(local.constant), nullptr, false};
        if (local.implicit) return {Place::Kind::Implicit, local.slot, nullptr, false};
        return {Place::Kind::Local, local.slot, nullptr, true};
    }
    if (isReturnName(name))
        return {Place::Kind::Local, static_cast<std::uint32_t>(m_function.returnSlot), nullptr, true};
    const auto around = isExecuted() ? outside(name) : std::nullopt;
    if (around && around->constant)
        return {Place::Kind::Constant, constant(*around->constant), nullptr, false};
    if (around && !around->implicit) {
        const std::uint32_t slot = newSlot();
        m_function.captures.push_back({slot, around->slot, name, around->depth});
        m_function.names[name] = {slot, false, -1};
        return {Place::Kind::Local, slot, nullptr, true};
    }
    if (m_function.owner) {
        const auto found = m_function.owner->members.find(name);
        if (found != m_function.owner->members.end()) {
            const ClassMember& member = found->second;
            if (member.field >= 0)
                return {Place::Kind::Field, static_cast<std::uint32_t>(member.field), nullptr, true};
            return {Place::Kind::Own, 0, &member, false};
        }
    }
    const bool ofProgram = std::binary_search(m_programGlobals.begin(), m_programGlobals.end(), name);
    if ((m_function.isMain && !isExecuted()) || ofProgram || m_function.optionExplicit)
        return global(name, false);
    return implicit(name, around);
}

// A global if there is one when the code runs, else a local of its own.
FunctionCompiler::Place FunctionCompiler::implicit(Symbol name, const std::optional<Outside>& around)
{
    const std::uint32_t slot = newSlot();
    if (isExecuted()) {
        const auto procedure = static_cast<std::uint32_t>(m_outer.functions.size() - 1);
        const Outside held = around ? *around : Outside{procedure, -1, nullptr, true};
        m_function.captures.push_back({slot, held.slot, name, held.depth});
    }
    const auto index = static_cast<std::uint32_t>(m_function.implicitNames.size());
    m_function.implicitNames.push_back({name, slot});
    // Found again by the index; executed text finds the slot through implicitNames.
    m_function.names[name] = {index, true, -1};
    return {Place::Kind::Implicit, index, nullptr, false};
}

FunctionCompiler::Place FunctionCompiler::assignedPlace(Symbol name)
{
    const Place found = place(name);
    if (found.kind == Place::Kind::Global && m_function.isMain) m_program.assigned.push_back(name);
    return found;
}

std::uint32_t FunctionCompiler::newSlot() { return m_function.slots++; }

std::uint32_t FunctionCompiler::constant(const Value& value)
{
    m_function.constants.push_back(value);
    return static_cast<std::uint32_t>(m_function.constants.size() - 1);
}

std::uint32_t FunctionCompiler::site(Symbol name, const Expression* object)
{
    MemberSite& made = m_function.sites.emplace_back();
    made.name = name;
    if (object && object->kind == Expression::Kind::Name) made.object = object->name;
    return static_cast<std::uint32_t>(m_function.sites.size() - 1);
}

std::uint32_t FunctionCompiler::callee(Function* function)
{
    m_function.callees.push_back(function);
    return static_cast<std::uint32_t>(m_function.callees.size() - 1);
}

// ---- emission

void FunctionCompiler::emit(Op op, int effect, std::uint32_t a, std::size_t count, std::uint8_t flags)
{
    m_function.code.push_back({op, flags, static_cast<std::uint16_t>(count), a});
    m_depth += effect;
    assert(m_depth >= 0 && "an instruction takes more than there is");
    m_function.maxStack = std::max(m_function.maxStack, static_cast<std::uint32_t>(m_depth));
}

std::size_t FunctionCompiler::emitJump(Op op, int effect)
{
    emit(op, effect);
    return m_function.code.size() - 1;
}

std::size_t FunctionCompiler::mark(Position position)
{
    assert(m_depth == 0 && "statements begin with an empty stack");
    m_function.statements.push_back({here(), position});
    return m_function.statements.size() - 1;
}

} // namespace script::vbscript
