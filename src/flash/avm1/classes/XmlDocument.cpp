#include "flash/avm1/classes/XmlMembers.h"

#include <optional>

// The class XML: a node that is parsed from a text, and loaded.
namespace flash::avm1::xml
{
namespace
{

void parseInto(Vm& vm, Object* document, Value text)
{
    auto* node = document->native<XmlNode>();
    while (!node->children.empty()) detach(node->children.back());
    const std::u16string source = toText(vm, text);
    if (node->document == nullptr) node->document = std::make_unique<XmlNode::Document>();
    const XmlParseResult result = parseXml(vm, document, source);
    // A script that an element's id called may have made another document of it.
    node = document->native<XmlNode>();
    if (node == nullptr || node->document == nullptr) return;
    const auto prologue = [&](std::u16string_view found) {
        return found.empty() ? Value() : Value(vm.string(found));
    };
    node->document->declaration = prologue(result.declaration);
    node->document->doctype = prologue(result.doctype);
    node->document->status = static_cast<int>(result.status);
}

XmlNode::Document* documentOf(const Call& call)
{
    auto* node = nodeOf(call.self);
    return node == nullptr ? nullptr : node->document.get();
}

template <auto Member>
Value getText(Call& call)
{
    const auto* document = documentOf(call);
    return document == nullptr ? Value() : document->*Member;
}
/// What a document is given is made text first, whatever it is wanted as; undefined leaves things as they
/// are.
std::optional<Value> assigned(Call& call)
{
    if (call.arg(0).isUndefined()) return {};
    return Value(toString(call.vm, call.arg(0)));
}
template <auto Member>
Value setText(Call& call)
{
    const std::optional<Value> text = assigned(call);
    if (auto* document = documentOf(call); document != nullptr && text) document->*Member = *text;
    return {};
}
Value getStatus(Call& call)
{
    const auto* document = documentOf(call);
    return document == nullptr ? Value() : Value(document->status);
}
Value setStatus(Call& call)
{
    if (!assigned(call)) return {};
    const double status = toInt32(call.vm, call.arg(0));
    if (auto* document = documentOf(call)) document->status = status;
    return {};
}
Value getIgnoreWhite(Call& call)
{
    const auto* document = documentOf(call);
    return document == nullptr ? Value() : Value(document->ignoreWhite);
}
Value setIgnoreWhite(Call& call)
{
    if (!assigned(call)) return {};
    const bool ignore = toBoolean(call.vm, call.arg(0));
    if (auto* document = documentOf(call)) document->ignoreWhite = ignore;
    return {};
}
Value getLoaded(Call& call)
{
    const auto* document = documentOf(call);
    return document == nullptr ? Value() : document->loaded;
}
Value setLoaded(Call& call)
{
    if (!assigned(call)) return {};
    const Value loaded(toBoolean(call.vm, call.arg(0)));
    if (auto* document = documentOf(call)) document->loaded = loaded;
    return {};
}

using D = XmlNode::Document;
constexpr AccessorInfo kDocumentProperties[] = {
    {"ignoreWhite", 0, &getIgnoreWhite, &setIgnoreWhite},
    {"contentType", 0, &getText<&D::contentType>, &setText<&D::contentType>},
    {"docTypeDecl", 0, &getText<&D::doctype>, &setText<&D::doctype>},
    {"xmlDecl", 0, &getText<&D::declaration>, &setText<&D::declaration>},
    {"loaded", 0, &getLoaded, &setLoaded},
    {"status", 0, &getStatus, &setStatus},
};

Value constructDocument(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr || !call.isConstruct) return {};
    Vm& vm = call.vm;
    // The prototype of the class gets the properties of documents with the first of them.
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view("XML"))).asObject();
    Object* prototype = constructor == nullptr ? nullptr : vm.prototypeOf(constructor);
    if (prototype != nullptr && !prototype->hasPlain(vm, vm.name(std::string_view("docTypeDecl")))) {
        for (const AccessorInfo& accessor : kDocumentProperties) {
            // What a movie has put there already stays.
            if (!prototype->hasPlain(vm, vm.name(std::string_view(accessor.name))))
                vm.addAccessors(prototype, {&accessor, 1}, 0);
        }
    }
    makeNode(vm, self, XmlNode::kElement, nullptr);
    auto& document = self->native<XmlNode>()->document;
    document = std::make_unique<XmlNode::Document>();
    document->contentType = vm.string(std::string_view("application/x-www-form-urlencoded"));
    if (!call.arg(0).isUndefined()) parseInto(vm, self, call.arg(0));
    return {};
}

Value parseXmlMethod(Call& call)
{
    // What is undefined leaves the document as it is.
    if (nodeOf(call.self) != nullptr && !call.arg(0).isUndefined())
        parseInto(call.vm, call.self.object(), call.arg(0));
    return {};
}

Value onData(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr) return {};
    Vm& vm = call.vm;
    const bool arrived = !call.arg(0).isUndefined();
    if (arrived) {
        vm.callMethod(self, "parseXML", {call.arg(0)});
        self->put(vm, vm.name(std::string_view("loaded")), Value(true));
    }
    vm.callMethod(self, "onLoad", {Value(arrived)});
    return {};
}
Value onLoad(Call&) { return {}; }

Value createElement(Call& call)
{
    if (call.arg(0).isUndefined()) return {};
    return newXmlNode(call.vm, XmlNode::kElement, toString(call.vm, call.arg(0)));
}
Value createTextNode(Call& call)
{
    if (call.arg(0).isUndefined()) return {};
    return newXmlNode(call.vm, XmlNode::kText, toString(call.vm, call.arg(0)));
}

constexpr MemberInfo kDocumentMembers[] = {
    {"createElement", 0, 0, &createElement, 1},
    {"createTextNode", 0, 0, &createTextNode, 2},
    {"parseXML", 0, 0, &parseXmlMethod, 3},
};

} // namespace

void installDocument(Vm& vm, Function* nodeClass)
{
    Function* documentClass = vm.newFunction(&constructDocument);
    Object* documentPrototype = vm.newObject(vm.prototypeOf(nodeClass));
    documentPrototype->define(vm, vm.common().constructorInternal, nodeClass, kDontEnum | kFrom6);
    for (const MemberInfo& member : kDocumentMembers)
        documentPrototype->define(vm, member.name, vm.newFunction(member.function, member.minArguments), 0);
    documentPrototype->define(vm, "onData", vm.newScriptLike(&onData), 0);
    documentPrototype->define(vm, "onLoad", vm.newScriptLike(&onLoad), 0);
    documentClass->define(vm, vm.common().prototype, documentPrototype, kBuiltIn);
    vm.global()->define(vm, "XML", documentClass, kDontEnum);
}

} // namespace flash::avm1::xml
