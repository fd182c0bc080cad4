#include "flash/avm2/classes/DescribeType.h"

#include "flash/avm2/classes/Description.h"
#include "flash/avm2/classes/Xml.h"

#include <algorithm>

namespace flash::avm2::classes
{

namespace
{

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
