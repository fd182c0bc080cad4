#include "swfc/actionscript3/CodeWriter.h"

#include <algorithm>
#include <array>

namespace swfc::actionscript3
{
namespace
{

consteval std::array<abc::OpInfo, 256> makeTable()
{
    std::array<abc::OpInfo, 256> table{};
#define AVM2_ROW(code, name, operands, pops, pushes) table[code] = {#name, operands, pops, pushes};
    AVM2_OPCODES(AVM2_ROW)
#undef AVM2_ROW
    return table;
}
constexpr auto kOps = makeTable();

constexpr std::int64_t kLongestJump = (1 << 23) - 1;

} // namespace

void CodeWriter::u30(std::uint32_t value)
{
    for (; value >= 0x80; value >>= 7U) m_code.push_back(static_cast<std::uint8_t>(value | 0x80U));
    m_code.push_back(static_cast<std::uint8_t>(value));
}

void CodeWriter::emit(Op op, std::initializer_list<std::uint32_t> operands, int names)
{
    if (!m_reachable) return;
    const abc::OpInfo& info = kOps[static_cast<std::size_t>(op)];
    int pops = info.pops + names;
    m_code.push_back(static_cast<std::uint8_t>(op));
    std::size_t i = 0;
    for (const std::uint32_t operand : operands) {
        if (info.operands[i] == 'b')
            m_code.push_back(static_cast<std::uint8_t>(operand));
        else if (info.operands[i] == 'h')
            u30(operand & 0x3FFFFFFFU);
        else
            u30(operand);
        if (info.operands[i] == 'a') pops += static_cast<int>(operand) * (op == Op::newobject ? 2 : 1);
        ++i;
    }
    m_stack = m_stack - pops + info.pushes;
    m_maxStack = std::max(m_maxStack, m_stack);
    if (op == Op::pushscope || op == Op::pushwith) m_maxScopes = std::max(m_maxScopes, ++m_scopes);
    if (op == Op::popscope) --m_scopes;
    if (op == Op::returnvoid || op == Op::returnvalue || op == Op::throw_) m_reachable = false;
}

void CodeWriter::getLocal(std::uint32_t number)
{
    if (number < 4)
        op(static_cast<Op>(static_cast<std::uint32_t>(Op::getlocal_0) + number));
    else
        op(Op::getlocal, number);
}

void CodeWriter::setLocal(std::uint32_t number)
{
    if (number < 4)
        op(static_cast<Op>(static_cast<std::uint32_t>(Op::setlocal_0) + number));
    else
        op(Op::setlocal, number);
}

void CodeWriter::pushInt(std::int32_t value, std::uint32_t poolIndex)
{
    if (value >= -128 && value <= 127)
        op(Op::pushbyte, static_cast<std::uint32_t>(value));
    else if (value >= 0 && value <= 32767)
        op(Op::pushshort, static_cast<std::uint32_t>(value));
    else
        op(Op::pushint, poolIndex);
}

CodeWriter::Label CodeWriter::newLabel()
{
    m_labels.emplace_back();
    return m_labels.size() - 1;
}

void CodeWriter::reach(Label label)
{
    LabelState& state = m_labels[label];
    if (state.stack >= 0) return;
    state.stack = m_stack;
    state.scopes = m_scopes;
}

void CodeWriter::offset(std::size_t base, Label target)
{
    m_fixups.push_back({m_code.size(), base, target});
    m_code.insert(m_code.end(), 3, 0);
}

void CodeWriter::jump(Op op, Label target)
{
    if (!m_reachable) return;
    m_stack -= kOps[static_cast<std::size_t>(op)].pops;
    m_code.push_back(static_cast<std::uint8_t>(op));
    offset(m_code.size() + 3, target);
    reach(target);
    if (op == Op::jump) m_reachable = false;
}

void CodeWriter::lookupSwitch(Label otherwise, const std::vector<Label>& targets)
{
    if (!m_reachable) return;
    --m_stack;
    const std::size_t base = m_code.size();
    m_code.push_back(static_cast<std::uint8_t>(Op::lookupswitch));
    offset(base, otherwise);
    u30(static_cast<std::uint32_t>(targets.size()) - 1);
    for (const Label target : targets) offset(base, target);
    reach(otherwise);
    for (const Label target : targets) reach(target);
    m_reachable = false;
}

void CodeWriter::mark(Label label)
{
    LabelState& state = m_labels[label];
    state.at = static_cast<std::int64_t>(m_code.size());
    if (!m_reachable && state.stack >= 0) {
        m_reachable = true;
        m_stack = state.stack;
        m_scopes = state.scopes;
    }
    if (m_reachable) reach(label);
}

void CodeWriter::markLoop(Label label)
{
    mark(label);
    op(Op::label);
}

void CodeWriter::addException(Label from, Label to, Label target, std::uint32_t type, std::uint32_t name)
{
    m_exceptions.push_back({from, to, target, type, name});
}

void CodeWriter::markHandler(Label label)
{
    LabelState& state = m_labels[label];
    state.at = static_cast<std::int64_t>(m_code.size());
    m_reachable = true;
    state.stack = m_stack = 1;
    state.scopes = m_scopes = 0;
    m_maxStack = std::max(m_maxStack, 1);
}

bool CodeWriter::finish(abc::Body& body, std::vector<std::uint8_t>& code)
{
    if (m_reachable) op(Op::returnvoid);
    for (const Fixup& fixup : m_fixups) {
        const std::int64_t distance = m_labels[fixup.target].at - static_cast<std::int64_t>(fixup.base);
        if (distance > kLongestJump || distance < -kLongestJump) return false;
        for (unsigned i = 0; i < 3; ++i)
            m_code[fixup.at + i] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(distance) >> 8U * i);
    }
    for (const Exception& exception : m_exceptions) {
        const auto at = [&](Label label) { return static_cast<std::uint32_t>(m_labels[label].at); };
        body.exceptions.push_back(
            {at(exception.from), at(exception.to), at(exception.target), exception.type, exception.name});
    }
    body.maxStack = static_cast<std::uint32_t>(m_maxStack);
    body.maxScopeDepth = body.initScopeDepth + static_cast<std::uint32_t>(m_maxScopes);
    code = std::move(m_code);
    return true;
}

} // namespace swfc::actionscript3
