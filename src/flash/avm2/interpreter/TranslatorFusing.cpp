#include "flash/avm2/interpreter/Translator.h"

#include <utility>

// Instructions that often stand together become one, in the place of the first. Those behind it stay: there
// may be jumps to them.

namespace flash::avm2
{

namespace
{

using R = RegisterOp;

/// A step of a local, and the jump that looks at it.
R stepAndBranch(const Ins& step, const Ins& branch)
{
    if (step.op != R::AddIK || step.d != step.b || branch.b != step.d) return step.op;
    switch (branch.op) {
    case R::JLtI: return R::StepLtI;
    case R::JLeI: return R::StepLeI;
    case R::JLtIK: return R::StepLtIK;
    case R::JLeIK: return R::StepLeIK;
    case R::JGtIK: return R::StepGtIK;
    case R::JGeIK: return R::StepGeIK;
    default: return step.op;
    }
}

/// A value, and the sum it goes into. Has the value on the right where the fused form wants it there, or on
/// the left.
R valueAndSum(const Ins& value, Ins& sum)
{
    const bool isLeft = sum.b == value.d, isRight = sum.c == value.d;
    if (isLeft == isRight) return value.op;
    if (value.op == R::GetElemI && sum.op == R::AddI) {
        if (isLeft) std::swap(sum.b, sum.c);
        return R::ElemAddI;
    }
    if (value.op == R::GetElem && sum.op == R::AddToI && isRight) return R::ElemAddToI;
    const bool isProduct = value.op == R::MulN, isScaled = value.op == R::MulNK;
    if (!isProduct && !isScaled) return value.op;
    if (sum.op == R::AddN) {
        if (isRight) std::swap(sum.b, sum.c);
        return isProduct ? R::MulAddN : R::MulAddNK;
    }
    if (sum.op == R::AddNI && isLeft) return isProduct ? R::MulAddNI : R::MulAddNKI;
    return value.op;
}

/// What a slot holds, a sum, and the slot again.
R stepSlot(const Ins& get, Ins& sum, const Ins& set, std::int32_t stackBase)
{
    if (get.op != R::GetSlotI || set.op != R::SetSlotI || get.d < stackBase) return get.op;
    if (set.b != get.b || set.c != get.c || set.a != sum.d || sum.d == get.b) return get.op;
    if (sum.op == R::AddIK) return sum.b == get.d ? R::SlotAddIK : get.op;
    if (sum.op != R::AddI || (sum.b == get.d) == (sum.c == get.d)) return get.op;
    if (sum.c == get.d) std::swap(sum.b, sum.c);
    return R::SlotAddI;
}

/// The slot of `this` that code reads, gives back and has nothing else to do; -1 otherwise.
std::int32_t slotRead(const std::vector<Ins>& code)
{
    std::size_t at = 0;
    if (at < code.size() && code[at].op == R::PushScope && code[at].b == 0) ++at;
    if (code.size() < at + 2 || code[at].b != 0) return -1;
    const Ins& get = code[at];
    const bool isInt = get.op == R::GetSlotI;
    if (get.op != R::GetSlot && !isInt) return -1;
    const Ins& end = code[at + 1];
    if (code.size() != at + 2 || end.op != (isInt ? R::ReturnI : R::Return) || end.b != get.d) return -1;
    return get.c;
}

} // namespace

/// What every call would begin with.
void Translator::takeEntry()
{
    constexpr std::uint32_t kBits = 64;
    const auto& code = m_code.code;
    std::uint32_t at = 0;
    while (at < m_code.declared && at + 1 < kBits && code[at].op == R::UnboxInt &&
           code[at].d == static_cast<std::int32_t>(code[at].b) && code[at].d > 0 &&
           static_cast<std::uint32_t>(code[at].d) <= m_code.declared &&
           static_cast<std::uint32_t>(code[at].d) < kBits) {
        m_code.rawParameters |= std::uint64_t{1} << static_cast<unsigned>(code[at].d);
        ++at;
    }
    m_code.startsWithThis =
        m_code.self != nullptr && at < code.size() && code[at].op == R::PushScope && code[at].b == 0;
    const bool setsNamespace = (m_abc.methods[m_body.method].flags & abc::MethodInfo::SetDxns) != 0;
    if (!m_code.takesMore && m_code.slotRead < 0 && !setsNamespace) m_code.directCount = m_code.declared;
    for (std::uint32_t i = 0; i < m_code.declared; ++i) {
        const bool isRaw = i + 1 < kBits && (m_code.rawParameters >> (i + 1) & 1U) != 0;
        if (m_code.parameterTypes[i] != nullptr && !isRaw) m_code.checksTypes = true;
    }
    m_code.registers = m_code.frameSize();
    m_code.entry = at + (m_code.startsWithThis ? 1 : 0);
}

void Translator::fuse()
{
    auto& code = m_code.code;
    m_code.slotRead =
        m_code.self != nullptr && m_code.declared == 0 && !m_code.takesMore && m_code.handlers.empty()
            ? slotRead(code)
            : -1;
    takeEntry();
    const auto base = static_cast<std::int32_t>(m_code.stackBase());
    for (std::size_t i = 0; i + 1 < code.size(); ++i) {
        Ins& first = code[i];
        if (first.op == R::AddIK)
            first.op = stepAndBranch(first, code[i + 1]);
        else if (first.op == R::GetSlotI && i + 2 < code.size())
            first.op = stepSlot(first, code[i + 1], code[i + 2], base);
        else
            first.op = valueAndSum(first, code[i + 1]);
    }
}

} // namespace flash::avm2
