#include "flash/avm2/interpreter/Interpreter.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace flash::avm2
{

using abc::Op;

namespace
{

std::int32_t fastInt(Vm& vm, Value value)
{
    if (value.isNumber()) {
        const double number = value.number();
        if (number >= -2147483648.0 && number <= 2147483647.0) return static_cast<std::int32_t>(number);
    }
    return vm.toInt(value);
}

double fastNumber(Vm& vm, Value value) { return value.isNumber() ? value.number() : vm.toNumber(value); }

bool fastLess(Vm& vm, Value a, Value b)
{
    if (a.isNumber() && b.isNumber()) return a.number() < b.number();
    return vm.compare(a, b) == Vm::Order::Less;
}

/// a >= b, which is not the contrary of a < b where there is not-a-number.
bool fastNotLess(Vm& vm, Value a, Value b)
{
    if (a.isNumber() && b.isNumber()) return a.number() >= b.number();
    return vm.compare(a, b) == Vm::Order::NotLess;
}

bool fastBoolean(Vm& vm, Value value) { return value.isBoolean() ? value.boolean() : vm.toBoolean(value); }

} // namespace

Value Interpreter::run()
{
    Frame& f = m_frame;
    Vm& vm = m_vm;
    const Ins* const code = f.code->code.data();
    const Ins* ip = code + f.resume;
    Value* sp = f.stack + f.stackDepth; // the first free place
    Value* const locals = f.locals;

#define CASE(name) case static_cast<std::uint16_t>(Op::name):
#define NEXT break
#define JUMP_IF(condition)                                                                                   \
    {                                                                                                        \
        const bool jumps = (condition);                                                                      \
        if (jumps) {                                                                                         \
            const Ins* target = code + ip->a;                                                                \
            if (target <= ip) vm.check();                                                                    \
            ip = target;                                                                                     \
            continue;                                                                                        \
        }                                                                                                    \
        break;                                                                                               \
    }
    for (;;) {
        f.at = ip;
        switch (ip->op) {
            CASE(bkpt) CASE(nop) CASE(label) CASE(debug) CASE(debugline) CASE(debugfile) CASE(coerce_a) NEXT;
            CASE(getlocal)* sp++ = locals[ip->a];
            NEXT;
            CASE(setlocal) locals[ip->a] = *--sp;
            NEXT;
            CASE(kill) locals[ip->a] = Value();
            NEXT;
            CASE(pushbyte) CASE(pushshort)* sp++ = ip->a;
            NEXT;
            CASE(pushint)* sp++ = f.abc->ints[static_cast<std::uint32_t>(ip->a)];
            NEXT;
            CASE(pushuint)* sp++ = f.abc->uints[static_cast<std::uint32_t>(ip->a)];
            NEXT;
            CASE(pushdouble)* sp++ = f.abc->doubles[static_cast<std::uint32_t>(ip->a)];
            NEXT;
            CASE(pushnan)* sp++ = std::nan("");
            NEXT;
            CASE(pushnull)* sp++ = Value::null();
            NEXT;
            CASE(pushundefined)* sp++ = Value();
            NEXT;
            CASE(pushtrue)* sp++ = true;
            NEXT;
            CASE(pushfalse)* sp++ = false;
            NEXT;
            CASE(pushstring)* sp++ =
                ip->a == 0 ? Value::null() : Value(f.unit->name(static_cast<std::uint32_t>(ip->a)).string());
            NEXT;
            CASE(pushnamespace)* sp++ = pushNamespace(static_cast<std::uint32_t>(ip->a));
            NEXT;
            CASE(pop)-- sp;
            NEXT;
            CASE(dup) sp[0] = sp[-1];
            ++sp;
            NEXT;
            CASE(swap) std::swap(sp[-1], sp[-2]);
            NEXT;

            CASE(jump) JUMP_IF(true) CASE(iftrue)-- sp;
            JUMP_IF(fastBoolean(vm, sp[0]))
            CASE(iffalse)-- sp;
            JUMP_IF(!fastBoolean(vm, sp[0]))
            CASE(iflt) sp -= 2;
            JUMP_IF(fastLess(vm, sp[0], sp[1]))
            CASE(ifnlt) sp -= 2;
            JUMP_IF(!fastLess(vm, sp[0], sp[1]))
            CASE(ifgt) sp -= 2;
            JUMP_IF(fastLess(vm, sp[1], sp[0]))
            CASE(ifngt) sp -= 2;
            JUMP_IF(!fastLess(vm, sp[1], sp[0]))
            CASE(ifge) sp -= 2;
            JUMP_IF(fastNotLess(vm, sp[0], sp[1]))
            CASE(ifnge) sp -= 2;
            JUMP_IF(!fastNotLess(vm, sp[0], sp[1]))
            CASE(ifle) sp -= 2;
            JUMP_IF(fastNotLess(vm, sp[1], sp[0]))
            CASE(ifnle) sp -= 2;
            JUMP_IF(!fastNotLess(vm, sp[1], sp[0]))
            CASE(ifeq) sp -= 2;
            JUMP_IF(vm.equals(sp[0], sp[1]))
            CASE(ifne) sp -= 2;
            JUMP_IF(!vm.equals(sp[0], sp[1]))
            CASE(ifstricteq) sp -= 2;
            JUMP_IF(vm.strictEquals(sp[0], sp[1]))
            CASE(ifstrictne) sp -= 2;
            JUMP_IF(!vm.strictEquals(sp[0], sp[1]))
            CASE(lookupswitch)
            {
                const auto& targets = f.code->switches[static_cast<std::uint32_t>(ip->a)];
                const auto index = static_cast<std::uint32_t>(fastInt(vm, *--sp));
                const Ins* target = code + (index < targets.size() - 1 ? targets[index] : targets.back());
                if (target <= ip) vm.check();
                ip = target;
                continue;
            }

            CASE(add)
            --sp;
            if (sp[-1].isNumber() && sp[0].isNumber()) [[likely]]
                sp[-1] = sp[-1].number() + sp[0].number();
            else
                sp[-1] = vm.add(sp[-1], sp[0]);
            NEXT;
            CASE(subtract)-- sp;
            {
                const double a = fastNumber(vm, sp[-1]);
                sp[-1] = a - fastNumber(vm, sp[0]);
            }
            NEXT;
            CASE(multiply)-- sp;
            {
                const double a = fastNumber(vm, sp[-1]);
                sp[-1] = a * fastNumber(vm, sp[0]);
            }
            NEXT;
            CASE(divide)-- sp;
            {
                const double a = fastNumber(vm, sp[-1]);
                sp[-1] = a / fastNumber(vm, sp[0]);
            }
            NEXT;
            CASE(modulo)-- sp;
            {
                const double a = fastNumber(vm, sp[-1]);
                sp[-1] = std::fmod(a, fastNumber(vm, sp[0]));
            }
            NEXT;
            CASE(negate) sp[-1] = -fastNumber(vm, sp[-1]);
            NEXT;
            CASE(increment) sp[-1] = fastNumber(vm, sp[-1]) + 1;
            NEXT;
            CASE(decrement) sp[-1] = fastNumber(vm, sp[-1]) - 1;
            NEXT;
            CASE(inclocal) locals[ip->a] = fastNumber(vm, locals[ip->a]) + 1;
            NEXT;
            CASE(declocal) locals[ip->a] = fastNumber(vm, locals[ip->a]) - 1;
            NEXT;
            CASE(add_i)-- sp;
            {
                const auto a = static_cast<std::uint32_t>(fastInt(vm, sp[-1]));
                sp[-1] = static_cast<std::int32_t>(a + static_cast<std::uint32_t>(fastInt(vm, sp[0])));
            }
            NEXT;
            CASE(subtract_i)-- sp;
            {
                const auto a = static_cast<std::uint32_t>(fastInt(vm, sp[-1]));
                sp[-1] = static_cast<std::int32_t>(a - static_cast<std::uint32_t>(fastInt(vm, sp[0])));
            }
            NEXT;
            CASE(multiply_i)-- sp;
            {
                const auto a = static_cast<std::uint32_t>(fastInt(vm, sp[-1]));
                sp[-1] = static_cast<std::int32_t>(a * static_cast<std::uint32_t>(fastInt(vm, sp[0])));
            }
            NEXT;
            CASE(negate_i)
            sp[-1] = static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(fastInt(vm, sp[-1])));
            NEXT;
            CASE(increment_i)
            sp[-1] = static_cast<std::int32_t>(static_cast<std::uint32_t>(fastInt(vm, sp[-1])) + 1U);
            NEXT;
            CASE(decrement_i)
            sp[-1] = static_cast<std::int32_t>(static_cast<std::uint32_t>(fastInt(vm, sp[-1])) - 1U);
            NEXT;
            CASE(inclocal_i)
            locals[ip->a] =
                static_cast<std::int32_t>(static_cast<std::uint32_t>(fastInt(vm, locals[ip->a])) + 1U);
            NEXT;
            CASE(declocal_i)
            locals[ip->a] =
                static_cast<std::int32_t>(static_cast<std::uint32_t>(fastInt(vm, locals[ip->a])) - 1U);
            NEXT;
            CASE(bitand_)-- sp;
            {
                const std::int32_t a = fastInt(vm, sp[-1]);
                sp[-1] = a & fastInt(vm, sp[0]);
            }
            NEXT;
            CASE(bitor_)-- sp;
            {
                const std::int32_t a = fastInt(vm, sp[-1]);
                sp[-1] = a | fastInt(vm, sp[0]);
            }
            NEXT;
            CASE(bitxor)-- sp;
            {
                const std::int32_t a = fastInt(vm, sp[-1]);
                sp[-1] = a ^ fastInt(vm, sp[0]);
            }
            NEXT;
            CASE(bitnot) sp[-1] = ~fastInt(vm, sp[-1]);
            NEXT;
            CASE(lshift)-- sp;
            {
                const auto a = static_cast<std::uint32_t>(fastInt(vm, sp[-1]));
                sp[-1] =
                    static_cast<std::int32_t>(a << (static_cast<std::uint32_t>(fastInt(vm, sp[0])) & 31U));
            }
            NEXT;
            CASE(rshift)-- sp;
            {
                const std::int32_t a = fastInt(vm, sp[-1]);
                sp[-1] = a >> (static_cast<std::uint32_t>(fastInt(vm, sp[0])) & 31U);
            }
            NEXT;
            CASE(urshift)-- sp;
            {
                const auto a = static_cast<std::uint32_t>(fastInt(vm, sp[-1]));
                sp[-1] = a >> (static_cast<std::uint32_t>(fastInt(vm, sp[0])) & 31U);
            }
            NEXT;

            CASE(lessthan)-- sp;
            sp[-1] = fastLess(vm, sp[-1], sp[0]);
            NEXT;
            CASE(greaterthan)-- sp;
            sp[-1] = fastLess(vm, sp[0], sp[-1]);
            NEXT;
            CASE(lessequals)-- sp;
            sp[-1] = fastNotLess(vm, sp[0], sp[-1]);
            NEXT;
            CASE(greaterequals)-- sp;
            sp[-1] = fastNotLess(vm, sp[-1], sp[0]);
            NEXT;
            CASE(equals)-- sp;
            sp[-1] = vm.equals(sp[-1], sp[0]);
            NEXT;
            CASE(strictequals)-- sp;
            sp[-1] = vm.strictEquals(sp[-1], sp[0]);
            NEXT;
            CASE(not_) sp[-1] = !fastBoolean(vm, sp[-1]);
            NEXT;
            CASE(typeof_) sp[-1] = vm.typeOf(sp[-1]);
            NEXT;
            CASE(instanceof_)-- sp;
            sp[-1] = vm.instanceOf(sp[-1], sp[0]);
            NEXT;
            CASE(istype) sp[-1] = vm.isType(sp[-1], f.unit->type(vm, static_cast<std::uint32_t>(ip->a)));
            NEXT;
            CASE(istypelate)-- sp;
            sp[-1] = vm.isType(sp[-1], lateType(sp[0]));
            NEXT;
            CASE(astype)
            if (!vm.isType(sp[-1], f.unit->type(vm, static_cast<std::uint32_t>(ip->a))))
                sp[-1] = Value::null();
            NEXT;
            CASE(astypelate)-- sp;
            if (!vm.isType(sp[-1], lateType(sp[0]))) sp[-1] = Value::null();
            NEXT;
            CASE(in)-- sp;
            sp[-1] = isIn(sp[-1], sp[0]);
            NEXT;

            CASE(convert_i) CASE(coerce_i) sp[-1] = fastInt(vm, sp[-1]);
            NEXT;
            CASE(convert_u) CASE(coerce_u) sp[-1] = static_cast<std::uint32_t>(fastInt(vm, sp[-1]));
            NEXT;
            CASE(convert_d) CASE(coerce_d) sp[-1] = fastNumber(vm, sp[-1]);
            NEXT;
            CASE(convert_b) CASE(coerce_b) sp[-1] = fastBoolean(vm, sp[-1]);
            NEXT;
            CASE(convert_s) sp[-1] = vm.toString(sp[-1]);
            NEXT;
            CASE(coerce_s) if (!sp[-1].isString()) sp[-1] = vm.coerceString(sp[-1]);
            NEXT;
            CASE(convert_o)
            if (sp[-1].isNullish()) vm.traitsOf(sp[-1]);
            NEXT;
            CASE(coerce_o) if (sp[-1].isUndefined()) sp[-1] = Value::null();
            NEXT;
            CASE(coerce) sp[-1] = vm.coerce(sp[-1], f.unit->type(vm, static_cast<std::uint32_t>(ip->a)));
            NEXT;
            CASE(checkfilter)
            if (!sp[-1].isObject() || !sp[-1].object()->isXml())
                vm.throwError(ErrorClass::Type, 1123,
                              u"Filter operator not supported on type " + vm.className(sp[-1]) + u".");
            NEXT;
            CASE(esc_xelem) sp[-1] = escape(sp[-1], false);
            NEXT;
            CASE(esc_xattr) sp[-1] = escape(sp[-1], true);
            NEXT;
            CASE(dxns) CASE(dxnslate) if (ip->op == static_cast<std::uint16_t>(Op::dxnslate))-- sp;
            setDefaultNamespace(ip->op == static_cast<std::uint16_t>(Op::dxnslate)
                                    ? sp[0]
                                    : Value(f.unit->name(static_cast<std::uint32_t>(ip->a)).string()));
            NEXT;

            CASE(pushscope) pushScope(*--sp, false);
            NEXT;
            CASE(pushwith) pushScope(*--sp, true);
            NEXT;
            CASE(popscope)-- f.scopeCount;
            f.scopes[f.scopeCount] = Value();
            f.chain = nullptr;
            NEXT;
            CASE(getscopeobject)* sp++ = f.scopes[ip->a];
            NEXT;
            CASE(getouterscope)* sp++ = outerScope(static_cast<std::uint32_t>(ip->a));
            NEXT;
            CASE(getglobalscope)* sp++ = globalScope();
            NEXT;
            CASE(getglobalslot)* sp++ = getSlot(globalScope(), static_cast<std::uint32_t>(ip->a));
            NEXT;
            CASE(setglobalslot) setSlot(globalScope(), static_cast<std::uint32_t>(ip->a), *--sp);
            NEXT;
            CASE(getslot) sp[-1] = getSlot(sp[-1], static_cast<std::uint32_t>(ip->a));
            NEXT;
            CASE(setslot) sp -= 2;
            setSlot(sp[0], static_cast<std::uint32_t>(ip->a), sp[1]);
            NEXT;
            CASE(newactivation)* sp++ = vm.newActivation(*f.env);
            NEXT;
            CASE(newcatch)* sp++ = vm.newCatchScope(*f.code, static_cast<std::uint32_t>(ip->a));
            NEXT;
            CASE(newfunction)
            *sp++ = vm.heap().make<FunctionObject>(
                vm, f.unit->method(vm, static_cast<std::uint32_t>(ip->a), captured()));
            NEXT;
            CASE(newclass) sp[-1] = newClass(static_cast<std::uint32_t>(ip->a), sp[-1]);
            NEXT;
            CASE(newobject)
            {
                const auto count = static_cast<std::size_t>(ip->a);
                sp -= count * 2;
                const Value made = newObject({sp, count * 2});
                *sp++ = made;
                NEXT;
            }
            CASE(newarray)
            {
                const auto count = static_cast<std::size_t>(ip->a);
                sp -= count;
                const Value made = vm.newArray({sp, count});
                *sp++ = made;
                NEXT;
            }
            CASE(applytype)
            {
                const auto count = static_cast<std::size_t>(ip->a);
                sp -= count;
                sp[-1] = applyType(sp[-1], {sp, count});
                NEXT;
            }

            CASE(findpropstrict) CASE(findproperty)
            {
                const Multiname name = multiname(*ip, sp);
                const Value found = find(name, *ip, ip->op == static_cast<std::uint16_t>(Op::findpropstrict));
                *sp++ = found;
                NEXT;
            }
            CASE(finddef)* sp++ = find(multiname(*ip, sp), *ip, true);
            NEXT;
            CASE(getlex)
            {
                const Multiname& name = f.unit->multiname(static_cast<std::uint32_t>(ip->a));
                *sp++ = vm.get(find(name, *ip, true), name);
                NEXT;
            }
            CASE(getproperty)
            if (ip->c == 0) {
                sp[-1] = getCached(sp[-1], *ip);
            } else if (ip->c == 1 && getElement(sp)) {
                --sp;
            } else {
                const Multiname name = multiname(*ip, sp);
                sp[-1] = vm.get(sp[-1], name);
            }
            NEXT;
            CASE(setproperty) CASE(initproperty)
            {
                const Value value = *--sp;
                if (ip->c == 0) {
                    setCached(*--sp, *ip, value);
                } else {
                    const Multiname name = multiname(*ip, sp);
                    vm.set(*--sp, name, value);
                }
                NEXT;
            }
            CASE(deleteproperty)
            {
                const Multiname name = multiname(*ip, sp);
                sp[-1] = vm.remove(sp[-1], name);
                NEXT;
            }
            CASE(getdescendants)
            {
                const Multiname name = multiname(*ip, sp);
                vm.traitsOf(sp[-1]);
                if (!sp[-1].isObject())
                    vm.throwError(ErrorClass::Type, 1016,
                                  u"Descendants operator (..) not supported on type " + vm.className(sp[-1]));
                sp[-1] = sp[-1].object()->descendants(vm, name);
                NEXT;
            }
            CASE(getsuper)
            {
                const Multiname name = multiname(*ip, sp);
                sp[-1] = vm.getSuper(sp[-1], superTraits(), name);
                NEXT;
            }
            CASE(setsuper)
            {
                const Value value = *--sp;
                const Multiname name = multiname(*ip, sp);
                vm.setSuper(*--sp, superTraits(), name, value);
                NEXT;
            }

            CASE(call)
            {
                const auto count = static_cast<std::size_t>(ip->a);
                sp -= count;
                const Value result = vm.call(sp[-2], sp[-1], std::span<const Value>(sp, count));
                --sp;
                sp[-1] = result;
                NEXT;
            }
            CASE(construct)
            {
                const auto count = static_cast<std::size_t>(ip->a);
                sp -= count;
                sp[-1] = vm.construct(sp[-1], {sp, count});
                NEXT;
            }
            CASE(callmethod)
            {
                const auto count = static_cast<std::size_t>(ip->b);
                sp -= count;
                sp[-1] = callMethod(sp[-1], static_cast<std::uint32_t>(ip->a), {sp, count});
                NEXT;
            }
            CASE(callstatic)
            {
                const auto count = static_cast<std::size_t>(ip->b);
                sp -= count;
                MethodEnv* method = f.unit->method(vm, static_cast<std::uint32_t>(ip->a), f.env->scope);
                sp[-1] = vm.invoke(*method, sp[-1], {sp, count});
                NEXT;
            }
            CASE(callproperty) CASE(callproplex) CASE(callpropvoid)
            {
                Value* const args = sp - ip->b;
                Value* base = args;
                if (ip->c == 0) {
                    sp[0] = callCached(args[-1], *ip, {args, static_cast<std::size_t>(ip->b)});
                } else {
                    const Multiname name = multiname(*ip, base);
                    sp[0] = vm.callProperty(base[-1], name, {args, static_cast<std::size_t>(ip->b)},
                                            ip->op == static_cast<std::uint16_t>(Op::callproplex));
                }
                const Value result = sp[0];
                sp = base - 1;
                if (ip->op != static_cast<std::uint16_t>(Op::callpropvoid)) *sp++ = result;
                NEXT;
            }
            CASE(constructprop)
            {
                Value* const args = sp - ip->b;
                Value* base = args;
                const Multiname name = multiname(*ip, base);
                const Value result =
                    vm.constructProperty(base[-1], name, {args, static_cast<std::size_t>(ip->b)});
                sp = base;
                sp[-1] = result;
                NEXT;
            }
            CASE(callsuper) CASE(callsupervoid)
            {
                Value* const args = sp - ip->b;
                Value* base = args;
                const Multiname name = multiname(*ip, base);
                const Value result =
                    vm.callSuper(base[-1], superTraits(), name, {args, static_cast<std::size_t>(ip->b)});
                sp = base - 1;
                if (ip->op == static_cast<std::uint16_t>(Op::callsuper)) *sp++ = result;
                NEXT;
            }
            CASE(constructsuper)
            {
                const auto count = static_cast<std::size_t>(ip->a);
                sp -= count;
                constructSuper(sp[-1], {sp, count});
                --sp;
                NEXT;
            }
            CASE(returnvoid)
            return f.code->returnType != nullptr ? vm.coerce(Value(), f.code->returnType) : Value();
            CASE(returnvalue)
            {
                const Value result = *--sp;
                return f.code->returnType != nullptr ? vm.coerce(result, f.code->returnType) : result;
            }
            CASE(throw_) vm.throwValue(*--sp);

            CASE(hasnext)
            {
                --sp;
                const auto after = static_cast<std::uint32_t>(fastInt(vm, sp[0]));
                sp[-1] = sp[-1].isObject() ? sp[-1].object()->nextIndex(vm, after) : 0U;
                NEXT;
            }
            CASE(hasnext2)* sp++ = hasNext(locals[ip->a], locals[ip->b]);
            NEXT;
            CASE(nextname)
            --sp;
            sp[-1] = sp[-1].isObject()
                         ? sp[-1].object()->nextName(vm, static_cast<std::uint32_t>(fastInt(vm, sp[0])))
                         : Value();
            NEXT;
            CASE(nextvalue)
            --sp;
            sp[-1] = sp[-1].isObject()
                         ? sp[-1].object()->nextValue(vm, static_cast<std::uint32_t>(fastInt(vm, sp[0])))
                         : Value();
            NEXT;

            CASE(li8) sp[-1] = static_cast<double>(*memory(sp[-1], 1));
            NEXT;
            CASE(li16)
            {
                std::uint16_t v;
                std::memcpy(&v, memory(sp[-1], 2), 2);
                sp[-1] = static_cast<double>(v);
            }
            NEXT;
            CASE(li32)
            {
                std::int32_t v;
                std::memcpy(&v, memory(sp[-1], 4), 4);
                sp[-1] = v;
            }
            NEXT;
            CASE(lf32)
            {
                float v;
                std::memcpy(&v, memory(sp[-1], 4), 4);
                sp[-1] = static_cast<double>(v);
            }
            NEXT;
            CASE(lf64)
            {
                double v;
                std::memcpy(&v, memory(sp[-1], 8), 8);
                sp[-1] = v;
            }
            NEXT;
            CASE(si8) sp -= 2;
            {
                const auto v = static_cast<std::uint8_t>(fastInt(vm, sp[0]));
                *memory(sp[1], 1) = v;
            }
            NEXT;
            CASE(si16) sp -= 2;
            {
                const auto v = static_cast<std::uint16_t>(fastInt(vm, sp[0]));
                std::memcpy(memory(sp[1], 2), &v, 2);
            }
            NEXT;
            CASE(si32) sp -= 2;
            {
                const std::int32_t v = fastInt(vm, sp[0]);
                std::memcpy(memory(sp[1], 4), &v, 4);
            }
            NEXT;
            CASE(sf32) sp -= 2;
            {
                const auto v = static_cast<float>(fastNumber(vm, sp[0]));
                std::memcpy(memory(sp[1], 4), &v, 4);
            }
            NEXT;
            CASE(sf64) sp -= 2;
            {
                const double v = fastNumber(vm, sp[0]);
                std::memcpy(memory(sp[1], 8), &v, 8);
            }
            NEXT;
            CASE(sxi1) sp[-1] = -(fastInt(vm, sp[-1]) & 1);
            NEXT;
            CASE(sxi8) sp[-1] = static_cast<std::int32_t>(static_cast<std::int8_t>(fastInt(vm, sp[-1])));
            NEXT;
            CASE(sxi16) sp[-1] = static_cast<std::int32_t>(static_cast<std::int16_t>(fastInt(vm, sp[-1])));
            NEXT;
        default: vm.throwError(ErrorClass::Verify, 1011, "Method contained illegal opcode.");
        }
        ++ip;
    }
#undef CASE
#undef NEXT
#undef JUMP_IF
}

} // namespace flash::avm2
