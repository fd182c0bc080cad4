#include "flash/avm2/classes/DescribeType.h"

#include "flash/avm2/classes/Xml.h"

#include <algorithm>
#include <set>

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

std::u16string attribute(std::u16string_view name, std::u16string_view value)
{
    return u" " + std::u16string(name) + u"=\"" + escapeXml(value, true) + u"\"";
}

std::u16string flag(bool value) { return value ? u"true" : u"false"; }

std::u16string parameters(Vm& vm, const Signature& signature)
{
    std::u16string text;
    for (std::size_t i = 0; i < signature.parameters.size(); ++i) {
        text += u"<parameter" + attribute(u"index", numberText(static_cast<double>(i) + 1)) +
                attribute(u"type", vm.signatureType(signature.parameters[i].type)) +
                attribute(u"optional", flag(signature.parameters[i].isOptional)) + u"/>";
    }
    return text;
}

const Signatures::Class* signaturesOf(Vm& vm, const Traits& traits)
{
    return vm.signatures().of(toUtf8(traits.qualifiedName()));
}

/// What is told of a member of a built-in class; null where there is nothing.
const Signature* signatureOf(Vm& vm, const Traits::Entry& entry)
{
    if (entry.source != nullptr || entry.declaredBy == nullptr) return nullptr;
    const Traits& owner = *entry.declaredBy;
    const bool isStatic = owner.cls == nullptr && owner.base == vm.classes().cls->instances;
    const Signatures::Class* told = signaturesOf(vm, owner);
    return told == nullptr ? nullptr : told->find(toUtf8(entry.name.view()), isStatic);
}

std::u16string accessor(std::u16string_view name, bool reads, bool writes, std::u16string_view type,
                        std::u16string_view rest)
{
    return u"<accessor" + std::u16string(name) +
           attribute(u"access", reads && writes ? u"readwrite"
                                : reads         ? u"readonly"
                                                : u"writeonly") +
           attribute(u"type", type) + std::u16string(rest);
}

/// A member of a built-in class, as its signature has it: how it is kept here is nobody's business.
std::u16string member(Vm& vm, const Signature& known, std::u16string_view name, std::u16string_view declared)
{
    const std::u16string type = vm.signatureType(known.type);
    switch (known.kind) {
    case Signature::Kind::Accessor:
        return accessor(name, known.canRead, known.canWrite, type, std::u16string(declared) + u"/>");
    case Signature::Kind::Variable:
        return u"<variable" + std::u16string(name) + attribute(u"type", type) + u"/>";
    case Signature::Kind::Method:
        return u"<method" + std::u16string(name) + std::u16string(declared) + attribute(u"returnType", type) +
               u">" + parameters(vm, known) + u"</method>";
    case Signature::Kind::Constructor: break;
    }
    return {};
}

std::u16string parameters(Vm& vm, const MethodEnv& method)
{
    std::u16string text;
    if (method.unit == nullptr) return text;
    const abc::MethodInfo& info = method.info();
    const std::size_t required = info.parameterTypes.size() - info.optionals.size();
    for (std::size_t i = 0; i < info.parameterTypes.size(); ++i) {
        text += u"<parameter" + attribute(u"index", numberText(static_cast<double>(i) + 1)) +
                attribute(u"type", typeText(vm, method.unit, info.parameterTypes[i])) +
                attribute(u"optional", flag(i >= required)) + u"/>";
    }
    return text;
}

std::u16string metadataOf(const Traits::Entry& entry)
{
    std::u16string text;
    if (entry.source == nullptr || entry.unit == nullptr) return text;
    const abc::Abc& abc = entry.unit->abc();
    for (const std::uint32_t index : entry.source->metadata) {
        const abc::Metadata& data = abc.metadata[index];
        text += u"<metadata" + attribute(u"name", fromUtf8(abc.strings[data.name])) + u">";
        for (const auto& [key, value] : data.items)
            text += u"<arg" + attribute(u"key", fromUtf8(abc.strings[key])) +
                    attribute(u"value", fromUtf8(abc.strings[value])) + u"/>";
        text += u"</metadata>";
    }
    return text;
}

std::u16string member(Vm& vm, const Traits& traits, const Traits::Entry& entry)
{
    const std::u16string uri = entry.ns->uri.view().empty() ? u"" : attribute(u"uri", entry.ns->uri.view());
    const std::u16string name = attribute(u"name", entry.name.view());
    const std::u16string declared =
        attribute(u"declaredBy", entry.declaredBy != nullptr ? entry.declaredBy->qualifiedName() : u"");
    if (const Signature* known = signatureOf(vm, entry);
        known != nullptr && entry.binding.kind != Binding::Kind::Const)
        return member(vm, *known, name, declared);
    const std::u16string metadata = metadataOf(entry);
    const auto method = [&](std::int32_t id) -> const MethodEnv& {
        return *traits.methods[static_cast<std::size_t>(id)];
    };
    switch (entry.binding.kind) {
    case Binding::Kind::Slot:
    case Binding::Kind::Const: {
        std::u16string type = u"*";
        if (entry.source != nullptr) {
            type = typeText(vm, entry.unit, entry.source->type);
        } else if (const Traits* known =
                       traits.slotTypes[static_cast<std::size_t>(entry.binding.id)].resolved) {
            type = known->qualifiedName();
        } else if (traits.slotInitials[static_cast<std::size_t>(entry.binding.id)].isNumber()) {
            type = u"int";
        }
        const char16_t* tag = entry.binding.kind == Binding::Kind::Slot ? u"variable" : u"constant";
        return u"<" + std::u16string(tag) + name + attribute(u"type", type) + uri + u">" + metadata + u"</" +
               tag + u">";
    }
    case Binding::Kind::Accessor: {
        const bool reads = entry.binding.id >= 0, writes = entry.binding.setter >= 0;
        std::u16string type = u"*";
        if (reads && method(entry.binding.id).unit != nullptr) {
            type = typeText(vm, method(entry.binding.id).unit, method(entry.binding.id).info().returnType);
        } else if (!reads && method(entry.binding.setter).unit != nullptr) {
            const auto& types = method(entry.binding.setter).info().parameterTypes;
            if (!types.empty()) type = typeText(vm, method(entry.binding.setter).unit, types[0]);
        }
        return accessor(name, reads, writes, type, declared + uri + u">" + metadata + u"</accessor>");
    }
    case Binding::Kind::Method: {
        const MethodEnv& own = method(entry.binding.id);
        std::u16string type = u"*";
        if (own.unit != nullptr) type = typeText(vm, own.unit, own.info().returnType);
        return u"<method" + name + declared + attribute(u"returnType", type) + uri + u">" +
               parameters(vm, own) + metadata + u"</method>";
    }
    case Binding::Kind::None: break;
    }
    return {};
}

/// Whether a script's class among these has members in a namespace.
bool hasScripted(const Traits* traits, const Namespace* ns)
{
    return traits != nullptr && std::ranges::any_of(traits->entries(), [&](const Traits::Entry& entry) {
               return entry.ns == ns && entry.source != nullptr;
           });
}

std::u16string bodyOf(Vm& vm, const Traits& traits)
{
    std::u16string text;
    for (const Traits* base = traits.base; base != nullptr; base = base->base)
        text += u"<extendsClass" + attribute(u"type", base->qualifiedName()) + u"/>";
    for (const Traits* interface : traits.interfaces)
        text += u"<implementsInterface" + attribute(u"type", interface->qualifiedName()) + u"/>";
    if (traits.cls != nullptr && traits.cls->constructor != nullptr) {
        const Signatures::Class* told =
            traits.cls->constructor->unit == nullptr ? signaturesOf(vm, traits) : nullptr;
        const Signature* known = told != nullptr ? told->constructor() : nullptr;
        const std::u16string list =
            known != nullptr ? parameters(vm, *known) : parameters(vm, *traits.cls->constructor);
        if (!list.empty()) text += u"<constructor>" + list + u"</constructor>";
    }
    std::set<std::pair<const Atom*, std::int32_t>> seen;
    for (const Traits::Entry& entry : traits.entries()) {
        // Members in a namespace are told of the first script's class that has some in it, of no other.
        const bool hasUri = entry.ns == vm.as3Ns() || entry.ns->kind == Namespace::Kind::Explicit;
        const bool isOwn =
            entry.declaredBy == &traits && entry.source != nullptr && !hasScripted(traits.base, entry.ns);
        if ((entry.ns->isPublic() || (hasUri && isOwn)) &&
            seen.emplace(entry.name.cell(), entry.binding.id).second)
            text += member(vm, traits, entry);
    }
    // Interfaces of the player have no bodies that would be bound to anything.
    if (traits.isInterface && traits.entries().empty()) {
        if (const Signatures::Class* told = signaturesOf(vm, traits)) {
            for (const Signature& one : told->members)
                text += member(vm, one, attribute(u"name", fromUtf8(one.name)),
                               attribute(u"declaredBy", traits.qualifiedName()));
        }
    }
    return text;
}

std::u16string head(std::u16string_view name, const Traits* base, bool isDynamic, bool isFinal, bool isStatic)
{
    return u"<type" + attribute(u"name", name) +
           (base != nullptr ? attribute(u"base", base->qualifiedName()) : u"") +
           attribute(u"isDynamic", flag(isDynamic)) + attribute(u"isFinal", flag(isFinal)) +
           attribute(u"isStatic", flag(isStatic)) + u">";
}

Value describeType(Call& call)
{
    Vm& vm = call.vm;
    const Value value = call.arg(0);
    std::u16string text;
    if (value.isNullish()) {
        text = head(value.isNull() ? u"null" : u"void", nullptr, false, true, false) + u"</type>";
    } else if (auto* cls = as<ClassObject>(value)) {
        text = head(cls->instances->qualifiedName(), vm.classes().cls->instances, true, true, true) +
               bodyOf(vm, *cls->traits()) + u"<factory" +
               attribute(u"type", cls->instances->qualifiedName()) + u">" + bodyOf(vm, *cls->instances) +
               u"</factory></type>";
    } else {
        const Traits& traits = *vm.traitsOf(value);
        text = head(vm.className(value), traits.base, !traits.isSealed, traits.isFinal, false) +
               bodyOf(vm, traits) + u"</type>";
    }
    TracedList<XmlNode*> nodes;
    parseXml(vm, text, nodes);
    return nodes.empty() ? Value() : xmlValue(vm, nodes[0]);
}

constexpr NativeFunctionInfo kFunctions[] = {{"flash.utils", "describeType", &describeType, 1, 1}};

} // namespace

std::span<const NativeFunctionInfo> describeFunctions() { return kFunctions; }

} // namespace flash::avm2::classes
