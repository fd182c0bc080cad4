#include "flash/avm2/classes/Description.h"

#include <algorithm>
#include <set>

// What describeType tells, gathered from the traits of movies' classes and the signatures of the player's
// own.
namespace flash::avm2::classes
{

namespace
{

std::u16string typeText(Vm& vm, Unit* unit, std::uint32_t multiname)
{
    if (unit == nullptr || multiname == 0) return u"*";
    Traits* type = unit->type(vm, multiname);
    return type == nullptr ? u"*" : type->qualifiedName();
}

std::vector<Parameter> parametersOf(Vm& vm, const Signature& signature)
{
    std::vector<Parameter> result;
    for (const Signature::Parameter& one : signature.parameters)
        result.push_back({vm.signatureType(one.type), one.isOptional});
    return result;
}

std::vector<Parameter> parametersOf(Vm& vm, const MethodEnv& method)
{
    std::vector<Parameter> result;
    if (method.unit == nullptr) return result;
    const abc::MethodInfo& info = method.info();
    const std::size_t required = info.parameterTypes.size() - info.optionals.size();
    for (std::size_t i = 0; i < info.parameterTypes.size(); ++i)
        result.push_back({typeText(vm, method.unit, info.parameterTypes[i]), i >= required});
    return result;
}

const Signatures::Class* signaturesOf(Vm& vm, const Traits& traits)
{
    if (traits.isVector) return vm.signatures().of("__AS3__.vec::Vector");
    return vm.signatures().of(toUtf8(traits.qualifiedName()));
}

/// What is told of a member of a built-in class; null where there is nothing.
const Signature* signatureOf(Vm& vm, const Traits::Entry& entry)
{
    if (entry.source != nullptr || entry.setterSource != nullptr || entry.declaredBy == nullptr)
        return nullptr;
    const Traits& owner = *entry.declaredBy;
    const bool isStatic = owner.cls == nullptr && owner.base == vm.classes().cls->instances;
    const Signatures::Class* told = signaturesOf(vm, owner);
    return told == nullptr ? nullptr : told->find(toUtf8(entry.name.view()), isStatic);
}

/// A member of a built-in class, as its signature has it: how it is kept here is nobody's business.
void fill(Vm& vm, const Signature& known, Member& made)
{
    made.type = vm.signatureType(known.type);
    made.reads = known.canRead;
    made.writes = known.canWrite;
    made.parameters = parametersOf(vm, known);
    made.kind = known.kind == Signature::Kind::Accessor   ? Member::Kind::Accessor
                : known.kind == Signature::Kind::Variable ? Member::Kind::Variable
                                                          : Member::Kind::Method;
}

void addMetadata(const abc::Trait* source, const Unit* unit, std::vector<MetadataText>& result)
{
    if (source == nullptr || unit == nullptr) return;
    const abc::Abc& abc = unit->abc();
    for (const std::uint32_t index : source->metadata) {
        const abc::Metadata& data = abc.metadata[index];
        MetadataText& made = result.emplace_back();
        made.name = fromUtf8(abc.strings[data.name]);
        for (const auto& [key, value] : data.items)
            made.items.emplace_back(fromUtf8(abc.strings[key]), fromUtf8(abc.strings[value]));
    }
}

Member memberOf(Vm& vm, const Traits& traits, const Traits::Entry& entry)
{
    Member made;
    made.name = entry.name.view();
    made.uri = entry.ns->uri.view();
    if (entry.declaredBy != nullptr) made.declaredBy = entry.declaredBy->qualifiedName();
    const auto id = static_cast<std::size_t>(entry.binding.id);
    if (const Signature* known = signatureOf(vm, entry);
        known != nullptr &&
        (known->kind == Signature::Kind::Accessor || entry.binding.kind != Binding::Kind::Const)) {
        fill(vm, *known, made);
        return made;
    }
    addMetadata(entry.source, entry.unit, made.metadata);
    if (entry.setterSource != entry.source) addMetadata(entry.setterSource, entry.setterUnit, made.metadata);
    made.type = u"*";
    switch (entry.binding.kind) {
    case Binding::Kind::Slot:
    case Binding::Kind::Const:
        made.kind =
            entry.binding.kind == Binding::Kind::Slot ? Member::Kind::Variable : Member::Kind::Constant;
        if (entry.source != nullptr)
            made.type = typeText(vm, entry.unit, entry.source->type);
        else if (const Traits* known = traits.slotTypes[id].resolved)
            made.type = known->qualifiedName();
        else if (traits.slotInitials[id].isNumber())
            made.type = u"int";
        break;
    case Binding::Kind::Accessor:
        made.kind = Member::Kind::Accessor;
        made.reads = entry.binding.id >= 0;
        made.writes = entry.binding.setter >= 0;
        if (made.reads && traits.methods[id]->unit != nullptr) {
            made.type = typeText(vm, traits.methods[id]->unit, traits.methods[id]->info().returnType);
        } else if (!made.reads) {
            const MethodEnv& setter = *traits.methods[static_cast<std::size_t>(entry.binding.setter)];
            if (setter.unit != nullptr && !setter.info().parameterTypes.empty())
                made.type = typeText(vm, setter.unit, setter.info().parameterTypes[0]);
        }
        break;
    case Binding::Kind::Method: {
        made.kind = Member::Kind::Method;
        const MethodEnv& own = *traits.methods[id];
        if (own.unit != nullptr) made.type = typeText(vm, own.unit, own.info().returnType);
        made.parameters = parametersOf(vm, own);
        break;
    }
    case Binding::Kind::None: break;
    }
    return made;
}

/// Whether a script's class among these has members in a namespace.
bool hasScripted(const Traits* traits, const Namespace* ns)
{
    return traits != nullptr && std::ranges::any_of(traits->entries(), [&](const Traits::Entry& entry) {
               return entry.ns == ns && entry.source != nullptr;
           });
}

/// Whether a member is told of.
bool isTold(Vm& vm, const Traits& traits, const Traits::Entry& entry, std::uint32_t flags)
{
    if (entry.binding.kind == Binding::Kind::None) return false;
    // What natives keep behind their accessors no script can name.
    if (entry.source == nullptr && entry.name.view().starts_with(u'@')) return false;
    const Traits* object = vm.classes().object->instances;
    if ((flags & HideObject) != 0 && entry.declaredBy == object && &traits != object) return false;
    const bool hasUri = entry.ns == vm.as3Ns() || entry.ns->kind == Namespace::Kind::Explicit;
    if (entry.ns->isPublic() && entry.ns != vm.as3Ns()) return true;
    if (!hasUri) return false;
    if ((flags & HideNamespaceMethods) == 0) return true;
    if (&traits == object && (flags & HideObject) == 0) return true;
    // Members in a namespace are told of the first script's class that has some in it, of no other.
    return entry.declaredBy == &traits && entry.source != nullptr && !hasScripted(traits.base, entry.ns);
}

} // namespace

Description describe(Vm& vm, const Traits& traits, std::uint32_t flags)
{
    Description made;
    for (const Traits* base = traits.base; base != nullptr; base = base->base)
        made.bases.push_back(base->qualifiedName());
    for (const Traits* interface : traits.interfaces) made.interfaces.push_back(interface->qualifiedName());
    if (traits.cls != nullptr && traits.cls->constructor != nullptr) {
        const Signatures::Class* told =
            traits.cls->constructor->unit == nullptr ? signaturesOf(vm, traits) : nullptr;
        const Signature* known = told != nullptr ? told->constructor() : nullptr;
        made.constructor =
            known != nullptr ? parametersOf(vm, *known) : parametersOf(vm, *traits.cls->constructor);
    }
    std::set<std::pair<const Atom*, std::int32_t>> seen;
    for (const Traits::Entry& entry : traits.entries()) {
        if (isTold(vm, traits, entry, flags) && seen.emplace(entry.name.cell(), entry.binding.id).second)
            made.members.push_back(memberOf(vm, traits, entry));
    }
    // Interfaces of the player have no bodies that would be bound to anything.
    if (traits.isInterface && traits.entries().empty()) {
        if (const Signatures::Class* told = signaturesOf(vm, traits)) {
            for (const Signature& one : told->members) {
                Member& member = made.members.emplace_back();
                member.name = fromUtf8(one.name);
                member.declaredBy = traits.qualifiedName();
                fill(vm, one, member);
            }
        }
    }
    return made;
}

} // namespace flash::avm2::classes
