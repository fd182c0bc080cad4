#include "flash/avm2/classes/DescribeType.h"

#include "flash/avm2/classes/Xml.h"

#include <algorithm>
#include <set>

namespace flash::avm2::classes
{

namespace
{

/// What a description has in it.
enum Flag : std::uint32_t {
    HideNamespaceMethods = 0x1,
    IncludeBases = 0x2,
    IncludeInterfaces = 0x4,
    IncludeVariables = 0x8,
    IncludeAccessors = 0x10,
    IncludeMethods = 0x20,
    IncludeMetadata = 0x40,
    IncludeConstructor = 0x80,
    IncludeTraits = 0x100,
    UseInstances = 0x200, ///< of a class: what its instances have
    HideObject = 0x400,   ///< what all objects have
    Usual = 0x5FF,
};

constexpr NativeValue kFlags[] = {
    {"avmplus", "HIDE_NSURI_METHODS", HideNamespaceMethods},
    {"avmplus", "INCLUDE_BASES", IncludeBases},
    {"avmplus", "INCLUDE_INTERFACES", IncludeInterfaces},
    {"avmplus", "INCLUDE_VARIABLES", IncludeVariables},
    {"avmplus", "INCLUDE_ACCESSORS", IncludeAccessors},
    {"avmplus", "INCLUDE_METHODS", IncludeMethods},
    {"avmplus", "INCLUDE_METADATA", IncludeMetadata},
    {"avmplus", "INCLUDE_CONSTRUCTOR", IncludeConstructor},
    {"avmplus", "INCLUDE_TRAITS", IncludeTraits},
    {"avmplus", "USE_ITRAITS", UseInstances},
    {"avmplus", "HIDE_OBJECT", HideObject},
    {"avmplus", "FLASH10_FLAGS", Usual},
};

struct Parameter {
    std::u16string type;
    bool isOptional = false;
};
struct MetadataText {
    std::u16string name;
    std::vector<std::pair<std::u16string, std::u16string>> items;
};
struct Member {
    enum class Kind : std::uint8_t { Variable, Constant, Accessor, Method };
    Kind kind = Kind::Variable;
    std::u16string name, uri, type, declaredBy; ///< the type of a method is that of its result
    bool reads = true, writes = true;           ///< of an accessor
    std::vector<Parameter> parameters;
    std::vector<MetadataText> metadata;
    [[nodiscard]] std::u16string_view access() const
    {
        return reads && writes ? u"readwrite" : reads ? u"readonly" : u"writeonly";
    }
};
struct Description {
    std::vector<std::u16string> bases, interfaces;
    std::vector<Parameter> constructor;
    std::vector<Member> members;
};

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
        known != nullptr && entry.binding.kind != Binding::Kind::Const) {
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

// ---- as XML ----

std::u16string attribute(std::u16string_view name, std::u16string_view value)
{
    return u" " + std::u16string(name) + u"=\"" + escapeXml(value, true) + u"\"";
}

std::u16string flagText(bool value) { return value ? u"true" : u"false"; }

std::u16string asXml(const std::vector<Parameter>& parameters)
{
    std::u16string text;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        text += u"<parameter" + attribute(u"index", numberText(static_cast<double>(i) + 1)) +
                attribute(u"type", parameters[i].type) +
                attribute(u"optional", flagText(parameters[i].isOptional)) + u"/>";
    }
    return text;
}

std::u16string asXml(const Member& member, std::uint32_t flags)
{
    std::u16string tag, head = attribute(u"name", member.name), body;
    const std::u16string declared = attribute(u"declaredBy", member.declaredBy);
    switch (member.kind) {
    case Member::Kind::Variable:
    case Member::Kind::Constant:
        if ((flags & IncludeVariables) == 0) return {};
        tag = member.kind == Member::Kind::Variable ? u"variable" : u"constant";
        head += attribute(u"type", member.type);
        break;
    case Member::Kind::Accessor:
        if ((flags & IncludeAccessors) == 0) return {};
        tag = u"accessor";
        head += attribute(u"access", member.access()) + attribute(u"type", member.type) + declared;
        break;
    case Member::Kind::Method:
        if ((flags & IncludeMethods) == 0) return {};
        tag = u"method";
        head += declared + attribute(u"returnType", member.type);
        body = asXml(member.parameters);
        break;
    }
    if (!member.uri.empty()) head += attribute(u"uri", member.uri);
    if ((flags & IncludeMetadata) != 0) {
        for (const MetadataText& data : member.metadata) {
            body += u"<metadata" + attribute(u"name", data.name) + u">";
            for (const auto& [key, value] : data.items)
                body += u"<arg" + attribute(u"key", key) + attribute(u"value", value) + u"/>";
            body += u"</metadata>";
        }
    }
    return u"<" + tag + head + u">" + body + u"</" + tag + u">";
}

std::u16string asXml(const Description& description, std::uint32_t flags)
{
    std::u16string text;
    if ((flags & IncludeBases) != 0) {
        for (const std::u16string& base : description.bases)
            text += u"<extendsClass" + attribute(u"type", base) + u"/>";
    }
    if ((flags & IncludeInterfaces) != 0) {
        for (const std::u16string& interface : description.interfaces)
            text += u"<implementsInterface" + attribute(u"type", interface) + u"/>";
    }
    if ((flags & IncludeConstructor) != 0 && !description.constructor.empty())
        text += u"<constructor>" + asXml(description.constructor) + u"</constructor>";
    for (const Member& member : description.members) text += asXml(member, flags);
    return text;
}

std::u16string headOf(std::u16string_view name, const Traits* base, bool isDynamic, bool isFinal,
                      bool isStatic)
{
    return u"<type" + attribute(u"name", name) +
           (base != nullptr ? attribute(u"base", base->qualifiedName()) : u"") +
           attribute(u"isDynamic", flagText(isDynamic)) + attribute(u"isFinal", flagText(isFinal)) +
           attribute(u"isStatic", flagText(isStatic)) + u">";
}

Value describeAsXml(Vm& vm, Value value, std::uint32_t flags)
{
    std::u16string text;
    if (value.isNullish()) {
        text = headOf(value.isNull() ? u"null" : u"void", nullptr, false, true, false) + u"</type>";
    } else if (auto* cls = as<ClassObject>(value)) {
        const std::u16string name = cls->instances->qualifiedName();
        text = headOf(name, vm.classes().cls->instances, true, true, true) +
               asXml(describe(vm, *cls->traits(), flags), flags) + u"<factory" + attribute(u"type", name) +
               u">" + asXml(describe(vm, *cls->instances, flags), flags) + u"</factory></type>";
    } else {
        const Traits& traits = *vm.traitsOf(value);
        text = headOf(vm.className(value), traits.base, !traits.isSealed, traits.isFinal, false) +
               asXml(describe(vm, traits, flags), flags) + u"</type>";
    }
    TracedList<XmlNode*> nodes;
    parseXml(vm, text, nodes);
    return nodes.empty() ? Value() : xmlValue(vm, nodes[0]);
}

Value describeType(Call& call) { return describeAsXml(call.vm, call.arg(0), Usual); }

Value describeTypeInPart(Call& call)
{
    return describeAsXml(call.vm, call.arg(0), call.vm.toUint(call.arg(1)));
}

// ---- as objects ----

/// Makes the objects of a description.
class ObjectWriter
{
public:
    ObjectWriter(Vm& vm, std::uint32_t flags) : m_vm(vm), m_flags(flags) {}

    Value write(const Description& description, std::u16string_view name, bool isDynamic, bool isFinal,
                bool isStatic)
    {
        Object* result = m_vm.newObject();
        set(result, "name", name);
        set(result, "isDynamic", Value(isDynamic));
        set(result, "isFinal", Value(isFinal));
        set(result, "isStatic", Value(isStatic));
        set(result, "traits", (m_flags & IncludeTraits) != 0 ? traits(description) : Value::null());
        return Value(result);
    }

private:
    void set(Object* to, std::string_view name, Value value) { m_vm.setPublic(Value(to), name, value); }
    void set(Object* to, std::string_view name, std::u16string_view text)
    {
        set(to, name, Value(m_vm.string(text)));
    }
    Value textOf(std::u16string_view text) { return Value(m_vm.string(text)); }
    template <class List, class Make>
    Value array(const List& list, Make&& make)
    {
        RootedList<Value> values(m_vm.heap());
        for (const auto& one : list) values.push_back(make(one));
        return Value(m_vm.newArray(std::span<const Value>(values->data(), values->size())));
    }
    Value parameters(const std::vector<Parameter>& list)
    {
        return array(list, [&](const Parameter& one) {
            Object* made = m_vm.newObject();
            set(made, "type", one.type);
            set(made, "optional", Value(one.isOptional));
            return Value(made);
        });
    }
    Value metadata(const std::vector<MetadataText>& list)
    {
        if ((m_flags & IncludeMetadata) == 0) return Value::null();
        return array(list, [&](const MetadataText& one) {
            Object* made = m_vm.newObject();
            set(made, "name", one.name);
            set(made, "value", array(one.items, [&](const auto& item) {
                    Object* pair = m_vm.newObject();
                    set(pair, "key", item.first);
                    set(pair, "value", item.second);
                    return Value(pair);
                }));
            return Value(made);
        });
    }
    Value member(const Member& one)
    {
        Object* made = m_vm.newObject();
        const bool isMethod = one.kind == Member::Kind::Method;
        set(made, "name", one.name);
        set(made, "uri", one.uri.empty() ? Value::null() : textOf(one.uri));
        set(made, isMethod ? "returnType" : "type", one.type);
        if (isMethod)
            set(made, "parameters", parameters(one.parameters));
        else
            set(made, "access", one.kind == Member::Kind::Constant ? u"readonly" : one.access());
        if (isMethod || one.kind == Member::Kind::Accessor) set(made, "declaredBy", one.declaredBy);
        set(made, "metadata", metadata(one.metadata));
        return Value(made);
    }
    Value members(const Description& description, std::uint32_t flag,
                  std::initializer_list<Member::Kind> kinds)
    {
        if ((m_flags & flag) == 0) return Value::null();
        std::vector<const Member*> chosen;
        for (const Member& one : description.members) {
            if (std::ranges::find(kinds, one.kind) != kinds.end()) chosen.push_back(&one);
        }
        return array(chosen, [&](const Member* one) { return member(*one); });
    }
    Value names(const std::vector<std::u16string>& list, std::uint32_t flag)
    {
        if ((m_flags & flag) == 0) return Value::null();
        return array(list, [&](const std::u16string& text) { return textOf(text); });
    }
    Value traits(const Description& description)
    {
        using Kind = Member::Kind;
        Object* made = m_vm.newObject();
        set(made, "bases", names(description.bases, IncludeBases));
        set(made, "interfaces", names(description.interfaces, IncludeInterfaces));
        set(made, "metadata", metadata({}));
        set(made, "accessors", members(description, IncludeAccessors, {Kind::Accessor}));
        set(made, "methods", members(description, IncludeMethods, {Kind::Method}));
        set(made, "variables", members(description, IncludeVariables, {Kind::Variable, Kind::Constant}));
        const bool hasConstructor = (m_flags & IncludeConstructor) != 0 && !description.constructor.empty();
        set(made, "constructor", hasConstructor ? parameters(description.constructor) : Value::null());
        return Value(made);
    }

    Vm& m_vm;
    const std::uint32_t m_flags;
};

Value describeTypeAsObject(Call& call)
{
    Vm& vm = call.vm;
    const Value value = call.arg(0);
    const std::uint32_t flags = vm.toUint(call.arg(1));
    auto* cls = as<ClassObject>(value);
    const bool ofInstances = (flags & UseInstances) != 0;
    if (value.isNullish() || (cls == nullptr && ofInstances)) return Value::null();
    const Traits& traits = ofInstances ? *cls->instances : *vm.traitsOf(value);
    const bool isStatic = cls != nullptr && !ofInstances;
    const std::u16string name =
        cls != nullptr ? cls->instances->qualifiedName() : std::u16string(vm.className(value));
    return ObjectWriter(vm, flags).write(describe(vm, traits, flags), name, isStatic || !traits.isSealed,
                                         isStatic || traits.isFinal, isStatic);
}

constexpr NativeFunctionInfo kFunctions[] = {
    {"flash.utils", "describeType", &describeType, 1, 1},
    {"avmplus", "describeType", &describeTypeInPart, 2, 2},
    {"avmplus", "describeTypeJSON", &describeTypeAsObject, 2, 2, true}};

} // namespace

std::span<const NativeFunctionInfo> describeFunctions() { return kFunctions; }
std::span<const NativeValue> describeFlags() { return kFlags; }

} // namespace flash::avm2::classes
