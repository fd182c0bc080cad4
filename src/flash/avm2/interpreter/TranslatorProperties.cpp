#include "flash/avm2/interpreter/Translator.h"
#include "flash/avm2/interpreter/Unit.h"
#include "flash/avm2/interpreter/Vm.h"

// What has to do with names: types, scopes, properties, calls.

namespace flash::avm2
{

using abc::Op;
using Kind = Type::Kind;
using R = RegisterOp;

void Translator::coerce(const abc::Instruction& instruction)
{
    const auto multiname = static_cast<std::uint32_t>(instruction.operands[0]);
    if (multiname == 0) return;
    bool known = false;
    Traits* wanted = settledType(m_vm, *m_code.unit, multiname, known);
    const Type result = known ? typeOfTraits(wanted) : Type();
    const Operand& top = m_stack.back();
    if (known) {
        if (wanted == nullptr) return;
        if (result.kind == Kind::Int || result.kind == Kind::Uint) return toInt(result.kind);
        if (result.kind == Kind::Number) return toNumber();
        if (result.kind == Kind::Instance &&
            (top.type.kind == Kind::Null ||
             (top.type.kind == Kind::Instance && top.type.traits->isA(wanted))))
            return;
        if (result.kind == top.type.kind && (result.kind == Kind::String || result.kind == Kind::Boolean))
            return;
    }
    const std::int32_t from = boxed(depth() - 1);
    pop();
    define(R::CoerceType, result, Rep::Boxed, from, 0, static_cast<std::int32_t>(multiname));
}

void Translator::pushScope(bool isWith)
{
    const Type type = m_stack.back().type;
    spill(static_cast<std::int32_t>(m_code.locals + m_scopes.size()));
    if (isWith) {
        place(depth() - 1);
        emit(R::pushwith, reg(depth()));
    } else {
        emit(R::PushScope, 0, 0, boxed(depth() - 1));
    }
    pop();
    m_scopes.push_back({type.kind == Kind::Instance ? Type::instance(type.traits, true) : Type(), isWith});
}

/// What a name means for a receiver of a known class, when that cannot be otherwise at run time.
const Binding* Translator::binding(const Type& receiver, std::uint32_t multiname)
{
    if (receiver.kind != Kind::Instance || receiver.traits->isInterface || parts(multiname) != 0)
        return nullptr;
    const BuiltIns& classes = m_vm.classes();
    for (ClassObject* cls : {classes.xml, classes.xmlList}) {
        if (cls != nullptr && receiver.traits->isA(cls->instances)) return nullptr;
    }
    const Multiname& name = m_code.unit->multiname(multiname);
    return name.attribute ? nullptr : receiver.traits->find(name);
}

bool Translator::getProperty(std::uint32_t multiname)
{
    const std::uint16_t runtime = parts(multiname);
    const std::size_t top = depth() - 1;
    if (runtime == 1) {
        const Type index = m_stack[top].type;
        if (index.kind != Kind::Int && index.kind != Kind::Uint) return false;
        const Type receiver = m_stack[top - 1].type;
        Type result;
        if (receiver.kind == Kind::Instance && receiver.traits->isVector)
            result = typeOfTraits(receiver.traits->element);
        const std::int32_t base = boxed(top - 1), at = raw(top);
        pop(2);
        const bool isInt = result.kind == Kind::Int;
        define(isInt ? R::GetElemI : R::GetElem, result, isInt ? Rep::Int : Rep::Boxed, base, at,
               static_cast<std::int32_t>(multiname))
            .parts = index.kind == Kind::Uint ? 1 : 0;
        return true;
    }
    if (runtime != 0) return false;
    const Type receiver = m_stack[top].type;
    const Binding* found = binding(receiver, multiname);
    const std::int32_t base = boxed(top);
    if (found != nullptr && (found->kind == Binding::Kind::Slot || found->kind == Binding::Kind::Const)) {
        const Type type = typeOfSlot(m_vm, *receiver.traits, static_cast<std::uint32_t>(found->id));
        pop();
        const bool isInt = type.kind == Kind::Int;
        define(isInt ? R::GetSlotI : R::GetSlot, type, isInt ? Rep::Int : Rep::Boxed, base, found->id,
               static_cast<std::int32_t>(multiname));
    } else if (found != nullptr && found->kind == Binding::Kind::Accessor && found->id >= 0) {
        pop();
        const std::int32_t window = reg(depth());
        define(R::GetAccessor, {}, Rep::Boxed, base, found->id, static_cast<std::int32_t>(multiname)).cache =
            window;
    } else {
        pop();
        const std::int32_t site = cache();
        define(R::GetProp, {}, Rep::Boxed, base, 0, static_cast<std::int32_t>(multiname)).cache = site;
    }
    return true;
}

bool Translator::setElement(std::uint32_t multiname)
{
    const std::size_t value = depth() - 1, index = depth() - 2, base = depth() - 3;
    const Kind kind = m_stack[index].type.kind;
    if (kind != Kind::Int && kind != Kind::Uint) return false;
    const std::int32_t object = boxed(base), at = raw(index), from = boxed(value);
    pop(3);
    Ins& ins = emit(R::SetElem, 0, from, object, at);
    ins.parts = kind == Kind::Uint ? 1 : 0;
    ins.cache = static_cast<std::int32_t>(multiname);
    return true;
}

bool Translator::setProperty(std::uint32_t multiname, bool isInit)
{
    const std::uint16_t runtime = parts(multiname);
    if (runtime == 1) return setElement(multiname);
    if (runtime != 0) return false;
    const std::size_t value = depth() - 1, base = depth() - 2;
    const Type receiver = m_stack[base].type;
    const Binding* found = binding(receiver, multiname);
    if (found != nullptr &&
        (found->kind == Binding::Kind::Slot || (found->kind == Binding::Kind::Const && isInit))) {
        const auto slot = static_cast<std::uint32_t>(found->id);
        const TypeRef& reference = receiver.traits->slotTypes[slot];
        bool known = reference.isFinal();
        Traits* wanted = reference.resolved;
        if (reference.unit != nullptr) wanted = settledType(m_vm, *reference.unit, reference.name, known);
        const Type type = typeOfTraits(wanted), given = m_stack[value].type;
        bool fits = known && wanted == nullptr;
        if (known && wanted != nullptr) {
            switch (type.kind) {
            case Kind::Int:
            case Kind::Uint:
                fits = given.isNumeric();
                if (fits && given.kind != type.kind) toInt(type.kind);
                break;
            case Kind::Number: fits = given.isNumeric(); break;
            case Kind::Boolean:
            case Kind::String: fits = given.kind == type.kind; break;
            case Kind::Instance:
                fits =
                    given.kind == Kind::Null || (given.kind == Kind::Instance && given.traits->isA(wanted));
                break;
            default: break;
            }
        }
        const std::int32_t object = boxed(base);
        const bool isRaw = fits && type.kind == Kind::Int && m_stack[value].rep == Rep::Int;
        const std::int32_t from = isRaw ? m_stack[value].at : boxed(value);
        pop(2);
        emit(isRaw  ? R::SetSlotI
             : fits ? R::SetSlot
                    : R::SetSlotTyped,
             0, from, object, found->id)
            .cache = static_cast<std::int32_t>(multiname);
        return true;
    }
    const std::int32_t object = boxed(base), from = boxed(value);
    pop(2);
    const std::int32_t site = cache();
    Ins& ins = emit(R::SetProp, 0, static_cast<std::int32_t>(multiname), object, from);
    ins.parts = isInit ? 1 : 0;
    ins.cache = site;
    return true;
}

/// A name that the classes of the frame's own scopes tell the place of.
bool Translator::findInScopes(std::uint32_t multiname)
{
    if (parts(multiname) != 0) return false;
    for (std::size_t i = m_scopes.size(); i-- > 0;) {
        const Scope& scope = m_scopes[i];
        if (scope.isWith || scope.type.kind != Kind::Instance) return false;
        if (binding(scope.type, multiname) != nullptr) {
            const auto at = static_cast<std::int32_t>(m_code.locals + i);
            m_stack.push_back({Operand::Where::Register, Rep::Boxed, at, scope.type});
            return true;
        }
        // Only activations and the like are sure to be nothing more than that.
        if (scope.type.traits->cls != nullptr || !scope.type.traits->isSealed) return false;
    }
    return false;
}

/// Puts the receiver and the arguments of a call in their places: boxed, but for ints that the method wants
/// as such. @returns a bit for each of those, counted from the receiver
std::uint16_t Translator::placeArguments(std::size_t base, const MethodEnv* method)
{
    constexpr std::size_t kBits = 16;
    const bool hasTypes = method != nullptr && method->native == nullptr;
    std::uint16_t raws = 0;
    const auto wantsInt = [&](std::size_t argument) {
        if (!hasTypes || argument == 0 || argument >= kBits) return false;
        const auto& types = method->info().parameterTypes;
        if (argument > types.size()) return false;
        bool known = false;
        const Traits* type = settledType(m_vm, *method->unit, types[argument - 1], known);
        return known && type != nullptr && type->special == Traits::Special::Int;
    };
    for (std::size_t i = base; i < depth(); ++i) {
        const Operand& operand = m_stack[i];
        const bool isInt = operand.where == Operand::Where::Register
                               ? operand.rep == Rep::Int
                               : operand.where == Operand::Where::IntConstant;
        if (operand.type.kind != Kind::Int || !isInt || !wantsInt(i - base)) {
            place(i);
            continue;
        }
        const std::int32_t from = raw(i);
        if (from != reg(i)) emit(R::Move, reg(i), 0, from);
        m_stack[i].at = reg(i);
        raws |= static_cast<std::uint16_t>(1U << (i - base));
    }
    return raws;
}

/// The kind of number that a method gives: those that override it have the same signature.
Type Translator::resultOf(const MethodEnv& method)
{
    if (method.native != nullptr) return {};
    bool known = false;
    const Type result = typeOfTraits(settledType(m_vm, *method.unit, method.info().returnType, known));
    return known && (result.isNumeric() || result.kind == Kind::Boolean) ? result : Type();
}

void Translator::call(const abc::Instruction& instruction)
{
    const auto op = static_cast<Op>(instruction.op);
    const auto multiname = static_cast<std::uint32_t>(instruction.operands[0]);
    const std::int32_t count = instruction.operands[1];
    const std::uint16_t runtime = parts(multiname);
    const std::size_t taken = static_cast<std::size_t>(count) + 1 + (runtime & 1U) + (runtime >> 1U & 1U);
    const std::size_t base = depth() - taken;
    const Type receiver = m_stack[base].type;
    const Binding* found = binding(receiver, multiname);
    const bool isEarly = found != nullptr && found->kind == Binding::Kind::Method;
    const MethodEnv* const method =
        isEarly ? receiver.traits->methods[static_cast<std::size_t>(found->id)] : nullptr;
    const bool isAlone = count == 0 && runtime == 0 && op != Op::callproplex;
    const std::int32_t alone = isAlone ? boxed(base) : 0;
    const std::uint16_t raws = isAlone ? 0 : placeArguments(base, method);
    if (isAlone) {
        emit(isEarly ? R::CallEarly0 : R::CallCached0, reg(base),
             isEarly ? found->id : instruction.operands[0], alone, instruction.operands[0])
            .cache = isEarly ? -1 : cache();
    } else if (isEarly) {
        emit(R::CallEarly, reg(depth()), found->id, count, instruction.operands[0]).parts = raws;
    } else {
        const std::int32_t site = cache();
        Ins& ins = emit(stackOp(op), reg(depth()), instruction.operands[0], count);
        ins.parts = runtime;
        ins.cache = site;
    }
    pop(taken);
    if (op != Op::callpropvoid) push(method != nullptr ? resultOf(*method) : Type());
}

bool Translator::properties(const abc::Instruction& instruction)
{
    const auto op = static_cast<Op>(instruction.op);
    const auto multiname = static_cast<std::uint32_t>(instruction.operands[0]);
    switch (op) {
    case Op::getproperty: return getProperty(multiname);
    case Op::setproperty:
    case Op::initproperty: return setProperty(multiname, op == Op::initproperty);
    case Op::callproperty:
    case Op::callproplex:
    case Op::callpropvoid: call(instruction); return true;
    case Op::findproperty:
    case Op::findpropstrict: return findInScopes(multiname);
    case Op::getlex:
        if (!findInScopes(multiname)) return false;
        return getProperty(multiname);
    case Op::getslot: {
        const std::size_t top = depth() - 1;
        const Type receiver = m_stack[top].type;
        const std::int32_t slot = instruction.operands[0] - 1;
        if (receiver.kind != Kind::Instance || slot < 0 ||
            static_cast<std::size_t>(slot) >= receiver.traits->slotTypes.size())
            return false;
        const std::int32_t base = boxed(top);
        const Type type = typeOfSlot(m_vm, *receiver.traits, static_cast<std::uint32_t>(slot));
        pop();
        const bool isInt = type.kind == Kind::Int;
        define(isInt ? R::GetSlotI : R::GetSlot, type, isInt ? Rep::Int : Rep::Boxed, base, slot);
        return true;
    }
    default: return false;
    }
}

} // namespace flash::avm2
