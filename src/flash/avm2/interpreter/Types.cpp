#include "flash/avm2/interpreter/Types.h"

#include "flash/avm2/interpreter/Vm.h"

namespace flash::avm2
{

Type merge(const Type& a, const Type& b)
{
    using Kind = Type::Kind;
    if (a == b) return a;
    if (a.isNumeric() && b.isNumeric()) return Type::of(Kind::Number);
    const auto withNull = [](const Type& other) {
        if (other.kind == Kind::Instance) return Type::instance(other.traits, false);
        return other.kind == Kind::String ? other : Type();
    };
    if (a.kind == Kind::Null) return withNull(b);
    if (b.kind == Kind::Null) return withNull(a);
    if (a.kind == Kind::Instance && b.kind == Kind::Instance) {
        const bool isNonNull = a.isNonNull && b.isNonNull;
        for (Traits* at = a.traits; at != nullptr; at = at->base) {
            if (b.traits->isA(at)) return Type::instance(at, isNonNull);
        }
    }
    return {};
}

bool narrowBy(Type& known, const Type& other)
{
    const Type both = merge(known, other);
    if (both == known) return false;
    known = both;
    return true;
}

Type typeOfTraits(Traits* traits)
{
    using Kind = Type::Kind;
    if (traits == nullptr) return {};
    switch (traits->special) {
    case Traits::Special::Int: return Type::of(Kind::Int);
    case Traits::Special::Uint: return Type::of(Kind::Uint);
    case Traits::Special::Number: return Type::of(Kind::Number);
    case Traits::Special::Boolean: return Type::of(Kind::Boolean);
    case Traits::Special::String: return Type::of(Kind::String);
    // An object of any kind: a primitive, too.
    case Traits::Special::Object:
    case Traits::Special::Void: return {};
    case Traits::Special::None: break;
    }
    return Type::instance(traits, false);
}

Traits* settledType(Vm& vm, Unit& unit, std::uint32_t index, bool& known)
{
    known = true;
    if (index == 0) return nullptr;
    Traits* result = nullptr;
    known = unit.typeIfKnown(index, result);
    if (known) return result;
    const abc::MultinameInfo& info = unit.abc().multinames[index];
    if (info.kind == abc::MultinameKind::TypeName || info.hasRuntimeName() || info.hasRuntimeNamespace())
        return nullptr;
    // Classes of the player run nothing when they are made; their names cannot be taken by a movie's.
    Value found;
    if (!vm.findNative(unit.multiname(index), found))
        found = unit.domain()->madeAlready(unit.multiname(index));
    auto* cls = as<ClassObject>(found);
    known = cls != nullptr;
    return known ? cls->instances : nullptr;
}

Type typeOfSlot(Vm& vm, const Traits& traits, std::uint32_t slot)
{
    if (slot >= traits.slotTypes.size()) return {};
    const TypeRef& type = traits.slotTypes[slot];
    Traits* wanted = type.resolved;
    if (type.unit != nullptr) {
        bool known = false;
        wanted = settledType(vm, *type.unit, type.name, known);
        if (!known) return {};
    }
    // What a slot holds from the beginning nobody has converted.
    const Value initial = traits.slotInitials[slot];
    const Type result = typeOfTraits(wanted);
    switch (result.kind) {
    case Type::Kind::Int: return initial.isInt() ? result : Type();
    case Type::Kind::Uint: return initial.isNumber() && initial.number() >= 0 ? result : Type();
    case Type::Kind::Number: return initial.isNumber() ? result : Type();
    case Type::Kind::Boolean: return initial.isBoolean() ? result : Type();
    case Type::Kind::String: return initial.isString() || initial.isNull() ? result : Type();
    case Type::Kind::Instance: return initial.isNull() ? result : Type();
    default: return {};
    }
}

Type resultTypeOf(Vm& vm, abc::Op op)
{
    using abc::Op;
    using Kind = Type::Kind;
    switch (op) {
    case Op::pushbyte:
    case Op::pushshort:
    case Op::pushint:
    case Op::convert_i:
    case Op::coerce_i:
    case Op::add_i:
    case Op::subtract_i:
    case Op::multiply_i:
    case Op::negate_i:
    case Op::increment_i:
    case Op::decrement_i:
    case Op::bitnot:
    case Op::bitand_:
    case Op::bitor_:
    case Op::bitxor:
    case Op::lshift:
    case Op::rshift:
    case Op::li8:
    case Op::li16:
    case Op::li32:
    case Op::sxi1:
    case Op::sxi8:
    case Op::sxi16:
    case Op::hasnext: return Type::of(Kind::Int);
    case Op::pushuint:
    case Op::convert_u:
    case Op::coerce_u:
    case Op::urshift: return Type::of(Kind::Uint);
    case Op::pushdouble:
    case Op::pushnan:
    case Op::convert_d:
    case Op::coerce_d:
    case Op::subtract:
    case Op::multiply:
    case Op::divide:
    case Op::modulo:
    case Op::negate:
    case Op::increment:
    case Op::decrement:
    case Op::lf32:
    case Op::lf64: return Type::of(Kind::Number);
    case Op::pushtrue:
    case Op::pushfalse:
    case Op::convert_b:
    case Op::coerce_b:
    case Op::not_:
    case Op::equals:
    case Op::strictequals:
    case Op::lessthan:
    case Op::lessequals:
    case Op::greaterthan:
    case Op::greaterequals:
    case Op::instanceof_:
    case Op::istypelate:
    case Op::in:
    case Op::deleteproperty: return Type::of(Kind::Boolean);
    case Op::pushstring:
    case Op::convert_s:
    case Op::coerce_s:
    case Op::typeof_:
    case Op::esc_xattr:
    case Op::esc_xelem: return Type::of(Kind::String);
    case Op::pushnull: return Type::of(Kind::Null);
    case Op::pushundefined: return Type::of(Kind::Undefined);
    case Op::newarray: return Type::instance(vm.classes().array->instances, true);
    case Op::newfunction: return Type::instance(vm.classes().function->instances, true);
    default: return {};
    }
}

} // namespace flash::avm2
