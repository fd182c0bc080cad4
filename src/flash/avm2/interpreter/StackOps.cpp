#include "flash/avm2/interpreter/Interpreter.h"

#include "flash/avm2/interpreter/Unit.h"

#include <cstring>

// Instructions that work on the operand stack, as the file has it.
namespace flash::avm2
{

void Interpreter::stackOp(const Ins& ins, Value* sp)
{
    Frame& f = *m_frame;
    Vm& vm = m_vm;
    const auto a = static_cast<std::uint32_t>(ins.a);
    using R = RegisterOp;
    switch (ins.op) {
    case R::pushnamespace: sp[0] = pushNamespace(a); return;
    case R::convert_s: sp[-1] = vm.toString(sp[-1]); return;
    case R::convert_o:
        if (sp[-1].isNullish()) vm.traitsOf(sp[-1]);
        return;
    case R::typeof_: sp[-1] = vm.typeOf(sp[-1]); return;
    case R::instanceof_: sp[-2] = vm.instanceOf(sp[-2], sp[-1]); return;
    case R::istype: sp[-1] = vm.isType(sp[-1], f.unit->type(vm, a)); return;
    case R::istypelate: sp[-2] = vm.isType(sp[-2], lateType(sp[-1])); return;
    case R::astype:
        if (!vm.isType(sp[-1], f.unit->type(vm, a))) sp[-1] = Value::null();
        return;
    case R::astypelate:
        if (!vm.isType(sp[-2], lateType(sp[-1]))) sp[-2] = Value::null();
        return;
    case R::in: sp[-2] = isIn(sp[-2], sp[-1]); return;
    case R::checkfilter:
        vm.traitsOf(sp[-1]); // null and undefined are no filters
        if (!sp[-1].isObject() || !sp[-1].object()->isXml())
            vm.throwError(ErrorClass::Type, 1123,
                          u"Filter operator not supported on type " + vm.className(sp[-1]) + u".");
        return;
    case R::esc_xelem: sp[-1] = escape(sp[-1], false); return;
    case R::esc_xattr: sp[-1] = escape(sp[-1], true); return;
    case R::dxns: setDefaultNamespace(Value(f.unit->name(a).string())); return;
    case R::dxnslate: setDefaultNamespace(sp[-1]); return;
    case R::pushwith: pushScope(sp[-1], true); return;
    case R::getouterscope: sp[0] = outerScope(a); return;
    case R::getglobalscope: sp[0] = globalScope(); return;
    case R::getglobalslot: sp[0] = getSlot(globalScope(), a); return;
    case R::setglobalslot: setSlot(globalScope(), a, sp[-1]); return;
    case R::getslot: sp[-1] = getSlot(sp[-1], a); return;
    case R::setslot: setSlot(sp[-2], a, sp[-1]); return;
    case R::newactivation: sp[0] = vm.newActivation(*f.env); return;
    case R::newcatch: sp[0] = vm.newCatchScope(*f.code, a); return;
    case R::newfunction: {
        MethodEnv* method = f.unit->method(vm, a, captured());
        sp[0] = vm.heap().make<FunctionObject>(vm, method);
        return;
    }
    case R::newclass: {
        const Value made = newClass(a, sp[-1]);
        sp[-1] = made;
        return;
    }
    case R::newobject: {
        Value* const first = sp - std::size_t{a} * 2;
        const Value made = newObject({first, std::size_t{a} * 2});
        *first = made;
        return;
    }
    case R::newarray: {
        Value* const first = sp - a;
        const Value made = vm.newArray({first, a});
        *first = made;
        return;
    }
    case R::applytype: {
        Value* const first = sp - a;
        const Value made = applyType(first[-1], {first, a});
        first[-1] = made;
        return;
    }
    case R::finddef: sp[0] = find(multiname(ins, sp), ins, true); return;
    case R::getproperty: {
        if (ins.parts == 1 && getElement(sp)) return;
        const Multiname name = multiname(ins, sp);
        const Value result = vm.get(sp[-1], name);
        sp[-1] = result;
        return;
    }
    case R::setproperty:
    case R::initproperty: {
        const Value value = *--sp;
        const Multiname name = multiname(ins, sp);
        vm.set(sp[-1], name, value);
        return;
    }
    case R::deleteproperty: {
        const Multiname name = multiname(ins, sp);
        const Value result = vm.remove(sp[-1], name);
        sp[-1] = result;
        return;
    }
    case R::getdescendants: {
        const Multiname name = multiname(ins, sp);
        vm.traitsOf(sp[-1]);
        if (!sp[-1].isObject())
            vm.throwError(ErrorClass::Type, 1016,
                          u"Descendants operator (..) not supported on type " + vm.className(sp[-1]));
        const Value result = sp[-1].object()->descendants(vm, name);
        sp[-1] = result;
        return;
    }
    case R::throw_: vm.throwValue(sp[-1]);
    case R::hasnext: {
        const std::uint32_t after = vm.toUint(sp[-1]);
        sp[-2] = sp[-2].isObject() ? sp[-2].object()->nextIndex(vm, after) : 0U;
        return;
    }
    case R::hasnext2: sp[0] = hasNext(f.locals[ins.a], f.locals[ins.b]); return;
    case R::nextname: {
        const std::uint32_t index = vm.toUint(sp[-1]);
        const Value result = sp[-2].isObject() ? sp[-2].object()->nextName(vm, index) : Value();
        sp[-2] = result;
        return;
    }
    case R::nextvalue: {
        const std::uint32_t index = vm.toUint(sp[-1]);
        const Value result = sp[-2].isObject() ? sp[-2].object()->nextValue(vm, index) : Value();
        sp[-2] = result;
        return;
    }
    case R::getsuper:
    case R::setsuper:
    case R::callmethod:
    case R::callstatic:
    case R::callsuper:
    case R::constructsuper: callStackOp(ins, sp); return;
    default: memoryOp(ins, sp); return;
    }
}

void Interpreter::callStackOp(const Ins& ins, Value* sp)
{
    Vm& vm = m_vm;
    const auto a = static_cast<std::uint32_t>(ins.a), b = static_cast<std::uint32_t>(ins.b);
    switch (ins.op) {
    case RegisterOp::getsuper: {
        const Multiname name = multiname(ins, sp);
        const Value result = vm.getSuper(sp[-1], superTraits(), name);
        sp[-1] = result;
        return;
    }
    case RegisterOp::setsuper: {
        const Value value = *--sp;
        const Multiname name = multiname(ins, sp);
        vm.setSuper(sp[-1], superTraits(), name, value);
        return;
    }
    case RegisterOp::callmethod: {
        Value* const args = sp - b;
        const Value result = callMethod(args[-1], a, {args, b});
        args[-1] = result;
        return;
    }
    case RegisterOp::callstatic: {
        Value* const args = sp - b;
        MethodEnv* method = m_frame->unit->method(vm, a, m_frame->env->scope);
        const Value result = vm.invoke(*method, args[-1], {args, b});
        args[-1] = result;
        return;
    }
    case RegisterOp::callsuper: {
        Value* const args = sp - b;
        Value* base = args;
        const Multiname name = multiname(ins, base);
        const Value result = vm.callSuper(base[-1], superTraits(), name, {args, b});
        base[-1] = result;
        return;
    }
    default: {
        Value* const args = sp - a;
        constructSuper(args[-1], {args, a});
        return;
    }
    }
}

/// Reads and writes of the domain's memory.
void Interpreter::memoryOp(const Ins& ins, Value* sp)
{
    const auto load = [&]<class T>(T value, Value at) {
        std::memcpy(&value, memory(at, sizeof(T)), sizeof(T));
        return value;
    };
    const auto store = [&](auto value, Value at) {
        std::memcpy(memory(at, sizeof value), &value, sizeof value);
    };
    switch (ins.op) {
    case RegisterOp::li8: sp[-1] = static_cast<double>(load(std::uint8_t{}, sp[-1])); return;
    case RegisterOp::li16: sp[-1] = static_cast<double>(load(std::uint16_t{}, sp[-1])); return;
    case RegisterOp::li32: sp[-1] = load(std::int32_t{}, sp[-1]); return;
    case RegisterOp::lf32: sp[-1] = static_cast<double>(load(float{}, sp[-1])); return;
    case RegisterOp::lf64: sp[-1] = load(double{}, sp[-1]); return;
    case RegisterOp::si8: store(static_cast<std::uint8_t>(m_vm.toInt(sp[-2])), sp[-1]); return;
    case RegisterOp::si16: store(static_cast<std::uint16_t>(m_vm.toInt(sp[-2])), sp[-1]); return;
    case RegisterOp::si32: store(m_vm.toInt(sp[-2]), sp[-1]); return;
    case RegisterOp::sf32: store(static_cast<float>(m_vm.toNumber(sp[-2])), sp[-1]); return;
    case RegisterOp::sf64: store(m_vm.toNumber(sp[-2]), sp[-1]); return;
    default: m_vm.throwError(ErrorClass::Verify, 1011, "Method contained illegal opcode.");
    }
}

} // namespace flash::avm2
