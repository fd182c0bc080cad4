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

} // namespace flash::avm2
