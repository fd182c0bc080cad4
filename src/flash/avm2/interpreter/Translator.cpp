#include "flash/avm2/interpreter/Translator.h"

#include "flash/avm2/interpreter/Interpreter.h"
#include "flash/avm2/interpreter/Unit.h"
#include "flash/avm2/interpreter/Vm.h"
#include "flash/vm/Numbers.h"

#include <algorithm>

namespace flash::avm2
{

namespace
{

constexpr std::uint32_t kNowhere = 0xFFFF'FFFF;
/// Types kept at the places where ways meet, for one method. Above it values are of any type.
constexpr std::size_t kMaxTypes = std::size_t{1} << 21;

bool isWritten(RegisterOp op) { return op >= RegisterOp::Jump && op <= RegisterOp::Switch; }

} // namespace

Translator::Translator(Vm& vm, const Decoded& decoded, Code& code)
    : m_vm(vm), m_decoded(decoded), m_code(code), m_abc(code.unit->abc()), m_body(m_abc.bodies[code.body]),
      m_headAt(m_body.code.size() + 1, -1), m_index(m_body.code.size() + 1, kNowhere)
{
}

void Translator::run()
{
    findHeads();
    std::size_t types = 0;
    for (const Head& head : m_heads)
        types += m_code.locals + static_cast<std::size_t>(m_decoded.states[head.offset].stack);
    m_isTyped = types <= kMaxTypes;
    const std::size_t locals = m_isTyped ? m_code.locals : 0;
    m_forms.assign(m_code.locals, Rep::Boxed);
    m_maybeInt.assign(m_code.locals, m_isTyped);
    m_maybeUint.assign(m_code.locals, m_isTyped);
    m_locals.assign(locals, Type::of(Type::Kind::Undefined));
    enter();
    meet(0);
    followAll();
    m_pass = Pass::ChooseForms;
    enter();
    for (std::size_t i = 0; i < m_heads.size(); ++i) simulate(i);
    for (std::size_t i = 0; i < locals; ++i)
        m_forms[i] = m_maybeInt[i] ? Rep::Int : m_maybeUint[i] ? Rep::Uint : Rep::Boxed;
    m_pass = Pass::Write;
    m_code.code.clear();
    m_code.caches.clear();
    m_code.constants.clear();
    m_code.switches.clear();
    // Arguments come boxed.
    for (std::uint32_t i = 1; i <= m_code.declared && i < locals; ++i) {
        if (m_forms[i] == Rep::Boxed) continue;
        const auto local = static_cast<std::int32_t>(i);
        emit(RegisterOp::UnboxInt, local, 0, local);
    }
    for (std::size_t i = 0; i < m_heads.size(); ++i) simulate(i);
    finish();
}

void Translator::findHeads()
{
    const auto head = [&](std::int64_t offset) { m_headAt[static_cast<std::size_t>(offset)] = 0; };
    head(0);
    for (const auto& instruction : m_decoded.instructions) {
        if (!instruction) continue;
        const std::string_view operands = abc::opInfo(instruction->op).operands;
        if (operands != "j" && operands != "L") continue;
        head(instruction->operands[0]);
        for (const std::int32_t target : instruction->cases) head(target);
    }
    for (const abc::ExceptionInfo& info : m_body.exceptions) {
        if (m_decoded.states[info.target].stack >= 0) head(info.target);
    }
    for (std::uint32_t offset = 0; offset < m_body.code.size(); ++offset) {
        if (m_headAt[offset] < 0) continue;
        m_headAt[offset] = static_cast<std::int32_t>(m_heads.size());
        m_heads.emplace_back().offset = offset;
    }
}

/// The state that a method begins with.
void Translator::enter()
{
    m_stack.clear();
    m_scopes.clear();
    if (!m_isTyped) return;
    std::ranges::fill(m_locals, Type::of(Type::Kind::Undefined));
    writeLocal(0, Type::instance(m_code.self, true));
    for (std::uint32_t i = 0; i < m_code.declared; ++i)
        writeLocal(i + 1, typeOfTraits(m_code.parameterTypes[i]));
    if (m_code.takesMore)
        writeLocal(m_code.declared + 1, Type::instance(m_vm.classes().array->instances, true));
}

void Translator::followAll()
{
    while (!m_pending.empty()) {
        const std::size_t head = m_pending.back();
        m_pending.pop_back();
        m_heads[head].isPending = false;
        simulate(head);
    }
}

/// Goes from a head to the end of the stretch that begins there.
void Translator::simulate(std::size_t index)
{
    {
        const Head& head = m_heads[index];
        if (!head.isReached) return;
        m_locals = head.locals;
        m_scopes = head.scopes;
        m_stack.clear();
        for (const Type& type : head.stack) push(type);
    }
    m_last = 0;
    m_isTouched = true;
    if (m_pass != Pass::Write) {
        m_code.code.clear();
        m_code.caches.clear();
        m_code.switches.clear();
        m_code.constants.clear();
    }
    for (std::uint32_t at = m_heads[index].offset;;) {
        const abc::Instruction& instruction = *m_decoded.instructions[at];
        m_index[at] = static_cast<std::uint32_t>(m_code.code.size());
        meetHandlers(at);
        const bool goesOn = step(instruction);
        if (m_isTouched) meetHandlers(at);
        if (!goesOn) return;
        m_isTouched = false;
        m_before = at;
        at = instruction.next;
        if (m_headAt[at] < 0) continue;
        flush();
        meet(at);
        return;
    }
}

/// Joins the present state to what is known of a head.
void Translator::meet(std::uint32_t offset)
{
    if (m_pass != Pass::FindTypes) return;
    const auto index = static_cast<std::size_t>(m_headAt[offset]);
    Head& head = m_heads[index];
    bool changed = !head.isReached;
    if (!head.isReached) {
        head.isReached = true;
        head.locals = m_locals;
        for (const Operand& operand : m_stack) head.stack.push_back(m_isTyped ? operand.type : Type());
        head.scopes = m_scopes;
    } else {
        const auto join = [&changed](Type& known, const Type& other) { changed |= narrowBy(known, other); };
        for (std::size_t i = 0; i < head.locals.size(); ++i) join(head.locals[i], m_locals[i]);
        for (std::size_t i = 0; i < head.stack.size(); ++i) {
            if (m_isTyped) join(head.stack[i], m_stack[i].type);
        }
        for (std::size_t i = 0; i < head.scopes.size(); ++i) {
            join(head.scopes[i].type, m_scopes[i].type);
            if (m_scopes[i].isWith && !head.scopes[i].isWith) head.scopes[i].isWith = changed = true;
        }
    }
    if (!changed || head.isPending) return;
    head.isPending = true;
    m_pending.push_back(index);
}

/// Anything may throw: what the locals are then, handlers find.
void Translator::meetHandlers(std::uint32_t offset)
{
    if (m_pass != Pass::FindTypes) return;
    for (const abc::ExceptionInfo& info : m_body.exceptions) {
        if (offset < info.from || offset >= info.to || m_headAt[info.target] < 0) continue;
        if (!m_isTouched && m_before >= info.from) continue;
        std::vector<Operand> stack;
        std::vector<Scope> scopes;
        stack.swap(m_stack);
        scopes.swap(m_scopes);
        push({});
        meet(info.target);
        m_stack.swap(stack);
        m_scopes.swap(scopes);
    }
}

/// Turns offsets in the file into instructions.
void Translator::finish()
{
    const auto end = static_cast<std::uint32_t>(m_code.code.size());
    m_index[m_body.code.size()] = end;
    const auto place = [&](std::int32_t offset) { return m_index[static_cast<std::size_t>(offset)]; };
    for (std::uint32_t i = 0; i < end; ++i) {
        Ins& ins = m_code.code[i];
        if (isWritten(ins.op) && ins.op != RegisterOp::Switch)
            ins.d = static_cast<std::int32_t>(place(ins.d)) - static_cast<std::int32_t>(i);
    }
    for (auto& targets : m_code.switches) {
        for (std::uint32_t& target : targets) target = m_index[target];
    }
    const auto next = [&](std::uint32_t offset) {
        while (m_index[offset] == kNowhere) ++offset;
        return m_index[offset];
    };
    for (const abc::ExceptionInfo& info : m_body.exceptions) {
        Code::Handler handler{next(info.from), next(info.to), 0, info.type, info.name};
        // A handler that nothing leads to guards nothing that runs.
        if (m_index[info.target] == kNowhere)
            handler.from = handler.to = 0;
        else
            handler.target = m_index[info.target];
        m_code.handlers.push_back(handler);
    }
    m_code.catches.resize(m_body.exceptions.size());
    fuse();
    const void* const* const labels = Interpreter(m_vm).labels();
    for (Ins& ins : m_code.code) ins.label = labels[static_cast<std::size_t>(ins.op)];
}

Ins& Translator::emit(RegisterOp op, std::int32_t d, std::int32_t a, std::int32_t b, std::int32_t c)
{
    Ins& ins = m_code.code.emplace_back();
    ins.op = op;
    ins.d = d;
    ins.a = a;
    ins.b = b;
    ins.c = c;
    return ins;
}

std::int32_t Translator::cache()
{
    m_code.caches.emplace_back();
    return static_cast<std::int32_t>(m_code.caches.size()) - 1;
}

std::int32_t Translator::constant(Value value)
{
    for (std::size_t i = 0; i < m_code.constants.size() && i < 64; ++i) {
        if (m_code.constants[i].bits() == value.bits()) return static_cast<std::int32_t>(i);
    }
    m_code.constants.push_back(value);
    return static_cast<std::int32_t>(m_code.constants.size()) - 1;
}

/// Of a constant.
Value Translator::valueOf(const Operand& operand) const
{
    if (operand.where == Operand::Where::Constant)
        return m_code.constants[static_cast<std::size_t>(operand.at)];
    if (operand.type.kind == Type::Kind::Uint) return static_cast<std::uint32_t>(operand.at);
    return operand.at;
}

void Translator::pushConstant(Value value, Type type)
{
    m_stack.push_back({Operand::Where::Constant, Rep::Boxed, constant(value), type});
}

/// @returns the register that has the value boxed, wherever that is.
std::int32_t Translator::boxed(std::size_t at)
{
    Operand& operand = m_stack[at];
    if (operand.where == Operand::Where::Register && operand.rep == Rep::Boxed) return operand.at;
    place(at);
    return reg(at);
}

/// Puts a value boxed into its own place.
void Translator::place(std::size_t at)
{
    Operand& operand = m_stack[at];
    const std::int32_t own = reg(at);
    if (operand.where != Operand::Where::Register) {
        emit(RegisterOp::LoadConst, own, constant(valueOf(operand)));
    } else if (operand.rep == Rep::Int) {
        emit(RegisterOp::BoxInt, own, 0, operand.at);
    } else if (operand.rep == Rep::Uint) {
        emit(RegisterOp::BoxUint, own, 0, operand.at);
    } else if (operand.at != own) {
        emit(RegisterOp::Move, own, 0, operand.at);
    }
    operand = {Operand::Where::Register, Rep::Boxed, own, operand.type};
}

void Translator::flush()
{
    for (std::size_t i = 0; i < m_stack.size(); ++i) place(i);
}

/// @returns the register that has the value as 32 bits; converts what is none.
std::int32_t Translator::raw(std::size_t at)
{
    Operand& operand = m_stack[at];
    const std::int32_t own = reg(at);
    if (operand.where != Operand::Where::Register) {
        const Value value = valueOf(operand);
        if (value.isNumber()) {
            emit(RegisterOp::LoadInt, own, vm::toInt32(value.number()));
            operand = {Operand::Where::Register, Rep::Int, own, operand.type};
            return own;
        }
        place(at);
    }
    if (operand.rep != Rep::Boxed) return operand.at;
    emit(operand.type.isNumeric() ? RegisterOp::UnboxInt : RegisterOp::ToIntV, own, 0, operand.at);
    operand = {Operand::Where::Register, Rep::Int, own, Type::of(Type::Kind::Int)};
    return own;
}

/// @returns the register that has the value as a number; converts what is none.
std::int32_t Translator::number(std::size_t at)
{
    Operand& operand = m_stack[at];
    if (operand.type.isNumeric()) return boxed(at);
    const std::int32_t from = boxed(at);
    emit(RegisterOp::ToNumberV, reg(at), 0, from);
    operand = {Operand::Where::Register, Rep::Boxed, reg(at), Type::of(Type::Kind::Number)};
    return reg(at);
}

Ins& Translator::define(RegisterOp op, Type type, Rep rep, std::int32_t b, std::int32_t c, std::int32_t a)
{
    Ins& ins = emit(op, reg(depth()), a, b, c);
    m_stack.push_back({Operand::Where::Register, rep, reg(depth()), type});
    m_last = m_code.code.size();
    return ins;
}

/// Whether the value on top was made by the instruction written last, for nobody else.
bool Translator::isFresh(const Operand& operand) const
{
    return operand.where == Operand::Where::Register && m_last != 0 && m_last == m_code.code.size() &&
           m_code.code.back().d == operand.at && operand.at >= static_cast<std::int32_t>(m_code.stackBase());
}

/// Before a local is overwritten, values that stand for it get a place of their own.
bool Translator::spill(std::int32_t local)
{
    bool any = false;
    for (std::size_t i = 0; i < m_stack.size(); ++i) {
        if (m_stack[i].where != Operand::Where::Register || m_stack[i].at != local) continue;
        place(i);
        any = true;
    }
    return any;
}

void Translator::readLocal(std::size_t local)
{
    const Type::Kind kind = localType(local).kind;
    if (m_pass == Pass::Write && (kind == Type::Kind::Any || kind == Type::Kind::Undefined))
        m_code.clearedLocals = std::max(m_code.clearedLocals, static_cast<std::uint32_t>(local) + 1);
    if (m_pass != Pass::ChooseForms) return;
    if (kind != Type::Kind::Int) m_maybeInt[local] = false;
    if (kind != Type::Kind::Uint) m_maybeUint[local] = false;
}

void Translator::writeLocal(std::size_t local, Type type, bool hasToBeBoxed)
{
    if (m_isTyped) m_locals[local] = type;
    m_isTouched = true;
    if (m_pass != Pass::ChooseForms) return;
    if (hasToBeBoxed || type.kind != Type::Kind::Int) m_maybeInt[local] = false;
    if (hasToBeBoxed || type.kind != Type::Kind::Uint) m_maybeUint[local] = false;
}

void Translator::getLocal(std::int32_t local)
{
    const auto index = static_cast<std::size_t>(local);
    readLocal(index);
    m_stack.push_back({Operand::Where::Register, m_forms[index], local, localType(index)});
}

/// Pops into a local.
void Translator::setLocal(std::int32_t local)
{
    const auto index = static_cast<std::size_t>(local);
    const Operand value = m_stack.back();
    const bool isFreshValue = isFresh(value) && value.at == reg(depth() - 1);
    pop();
    const bool spilled = spill(local);
    writeLocal(index, value.type);
    const Rep wanted = m_forms[index];
    if (isFreshValue && !spilled && value.rep == wanted) {
        m_code.code.back().d = local;
    } else if (value.where != Operand::Where::Register) {
        const Value known = valueOf(value);
        if (wanted == Rep::Boxed || !known.isNumber())
            emit(RegisterOp::LoadConst, local, constant(known));
        else
            emit(RegisterOp::LoadInt, local, vm::toInt32(known.number()));
    } else if (value.rep == wanted) {
        if (value.at != local) emit(RegisterOp::Move, local, 0, value.at);
    } else if (wanted == Rep::Boxed) {
        emit(value.rep == Rep::Int ? RegisterOp::BoxInt : RegisterOp::BoxUint, local, 0, value.at);
    } else {
        // Only of its own type: the same 32 bits.
        emit(value.rep == Rep::Boxed ? RegisterOp::UnboxInt : RegisterOp::Move, local, 0, value.at);
    }
    m_last = 0;
}

} // namespace flash::avm2
