#include "flash/avm1/classes/XmlNode.h"

#include <algorithm>
#include <optional>

namespace flash::avm1
{
namespace
{

/// Trees deeper than this are not copied to the end: recursion must stay bounded.
constexpr int kDeepestClone = 4000;

XmlNode* nodeOf(Value value)
{
    const Object* object = value.asObject();
    return object == nullptr ? nullptr : object->native<XmlNode>();
}

Value nullable(Object* object) { return object == nullptr ? Value::null() : Value(object); }
Value nullable(String* string) { return string == nullptr ? Value::null() : Value(string); }

Object* xmlNodePrototype(Vm& vm)
{
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view("XMLNode"))).asObject();
    return constructor == nullptr ? nullptr : vm.prototypeOf(constructor);
}

void furnish(Vm& vm, Object* object, int type, String* nameOrValue)
{
    auto& node = object->attachNew<XmlNode>(type);
    node.attributes = vm.newObject(nullptr);
    (type == XmlNode::kElement ? node.name : node.value) = nameOrValue;
}

void detach(Object* object)
{
    auto* node = object->native<XmlNode>();
    if (node->parent == nullptr) return;
    auto* parent = node->parent->native<XmlNode>();
    std::erase(parent->children, object);
    parent->childArray = nullptr;
    node->parent = nullptr;
}

/// Whether `object` is `other` or lies above it.
bool holds(const Object* object, const Object* other)
{
    while (other != nullptr && other != object) other = other->native<XmlNode>()->parent;
    return other == object;
}

Object* sibling(const Object* object, std::ptrdiff_t step)
{
    const auto* node = object->native<XmlNode>();
    if (node->parent == nullptr) return nullptr;
    const auto& all = node->parent->native<XmlNode>()->children;
    const std::ptrdiff_t at = std::find(all.begin(), all.end(), object) - all.begin() + step;
    return at < 0 || at >= std::ssize(all) ? nullptr : all[static_cast<std::size_t>(at)];
}

Object* cloneTree(Vm& vm, const Object* object, bool deep, int depth)
{
    const auto* node = object->native<XmlNode>();
    Object* copy = newXmlNode(vm, node->type, node->type == XmlNode::kElement ? node->name : node->value);
    auto* made = copy->native<XmlNode>();
    for (const Shape::Property& property : node->attributes->shape()->properties()) {
        if (property.name.isNull()) continue; // removed
        made->attributes->define(vm, property.name, node->attributes->slot(property.slot), property.flags);
    }
    if (deep && depth < kDeepestClone)
        for (const Object* child : node->children)
            appendXmlChild(copy, cloneTree(vm, child, true, depth + 1));
    return copy;
}

// ---- namespaces -------------------------------------------------------------------------------------------

constexpr std::u16string_view kDeclaration = u"xmlns";

/// The prefix that an attribute declares, if it is a declaration. Whatever begins with "xmlns" is one, as in
/// the genuine player: without a colon right after it stands for the default namespace.
std::optional<std::u16string_view> declaredPrefix(std::u16string_view attribute)
{
    if (!attribute.starts_with(kDeclaration)) return {};
    attribute.remove_prefix(kDeclaration.size());
    if (!attribute.starts_with(u':')) return std::u16string_view();
    return attribute.substr(1);
}

/// Calls found(prefix, uri) for each declaration that is seen from a node, the nearest first, until it
/// answers true.
template <class Found>
void forEachDeclaration(const Object* object, Found found)
{
    for (; object != nullptr; object = object->native<XmlNode>()->parent) {
        const Object* attributes = object->native<XmlNode>()->attributes;
        const std::vector<Shape::Property>& properties = attributes->shape()->properties();
        for (auto at = properties.rbegin(); at != properties.rend(); ++at) {
            const Shape::Property& property = *at;
            if (property.name.isNull()) continue; // removed
            const auto prefix = declaredPrefix(property.name.view());
            const Value uri = attributes->slot(property.slot);
            // A script may have put anything there; only texts count, so that nothing runs meanwhile.
            if (prefix && uri.isString() && found(*prefix, uri.string())) return;
        }
    }
}

String* uriFor(const Object* object, std::u16string_view prefix)
{
    String* answer = nullptr;
    forEachDeclaration(object, [&](std::u16string_view declared, String* uri) {
        if (declared == prefix) answer = uri;
        return answer != nullptr;
    });
    return answer;
}

/// The part of a qualified name before its colon; empty when there is none.
std::u16string_view prefixOf(std::u16string_view name)
{
    const auto colon = name.find(u':');
    return colon == name.npos ? std::u16string_view() : name.substr(0, colon);
}

// ---- properties -------------------------------------------------------------------------------------------

Value getNodeType(Call& call)
{
    const auto* node = nodeOf(call.self);
    return node == nullptr ? Value() : Value(node->type);
}
Value getNodeName(Call& call)
{
    const auto* node = nodeOf(call.self);
    return node == nullptr ? Value() : nullable(node->name);
}
Value setNodeName(Call& call)
{
    if (call.arg(0).isUndefined()) return {};
    String* const name = toString(call.vm, call.arg(0));
    if (auto* node = nodeOf(call.self)) node->name = name;
    return {};
}
Value getNodeValue(Call& call)
{
    const auto* node = nodeOf(call.self);
    return node == nullptr ? Value() : nullable(node->value);
}
Value setNodeValue(Call& call)
{
    if (auto* node = nodeOf(call.self)) node->value = toString(call.vm, call.arg(0));
    return {};
}
Value getAttributes(Call& call)
{
    const auto* node = nodeOf(call.self);
    return node == nullptr ? Value() : Value(node->attributes);
}
Value getChildNodes(Call& call)
{
    auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    if (node->childArray == nullptr) {
        const RootedValues children(call.vm.heap(), node->children.begin(), node->children.end());
        node->childArray = call.vm.newArray(*children);
    }
    return node->childArray;
}
Value getFirstChild(Call& call)
{
    const auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    return node->children.empty() ? Value::null() : Value(node->children.front());
}
Value getLastChild(Call& call)
{
    const auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    return node->children.empty() ? Value::null() : Value(node->children.back());
}
Value getNextSibling(Call& call)
{
    return nodeOf(call.self) == nullptr ? Value() : nullable(sibling(call.self.object(), 1));
}
Value getPreviousSibling(Call& call)
{
    return nodeOf(call.self) == nullptr ? Value() : nullable(sibling(call.self.object(), -1));
}
Value getParentNode(Call& call)
{
    const auto* node = nodeOf(call.self);
    return node == nullptr ? Value() : nullable(node->parent);
}
Value getPrefix(Call& call)
{
    const auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    return node->name == nullptr ? Value::null() : Value(call.vm.string(prefixOf(node->name->view())));
}
Value getLocalName(Call& call)
{
    const auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    if (node->name == nullptr) return Value::null();
    const std::u16string_view name = node->name->view();
    return call.vm.string(name.substr(name.find(u':') + 1)); // npos + 1 is 0
}
Value getNamespaceUri(Call& call)
{
    const auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    if (node->name == nullptr) return Value::null();
    String* uri = uriFor(call.self.object(), prefixOf(node->name->view()));
    return uri == nullptr ? Value(call.vm.string(std::string_view())) : Value(uri);
}

constexpr AccessorInfo kNodeProperties[] = {
    {"nodeType", 0, &getNodeType, nullptr},
    {"nodeName", 0, &getNodeName, &setNodeName},
    {"nodeValue", 0, &getNodeValue, &setNodeValue},
    {"attributes", 0, &getAttributes, nullptr},
    {"childNodes", 0, &getChildNodes, nullptr},
    {"firstChild", 0, &getFirstChild, nullptr},
    {"lastChild", 0, &getLastChild, nullptr},
    {"nextSibling", 0, &getNextSibling, nullptr},
    {"previousSibling", 0, &getPreviousSibling, nullptr},
    {"parentNode", 0, &getParentNode, nullptr},
    {"prefix", 0, &getPrefix, nullptr},
    {"localName", 0, &getLocalName, nullptr},
    {"namespaceURI", 0, &getNamespaceUri, nullptr},
};

// ---- methods of nodes -------------------------------------------------------------------------------------

Value cloneNode(Call& call)
{
    if (nodeOf(call.self) == nullptr) return {};
    return cloneTree(call.vm, call.self.object(), toBoolean(call.vm, call.arg(0)), 0);
}

/// @param before null: at the end
void insert(Object* parent, Object* child, const Object* before)
{
    if (holds(child, parent)) return;
    detach(child);
    auto* node = parent->native<XmlNode>();
    auto at = before == nullptr ? node->children.end()
                                : std::find(node->children.begin(), node->children.end(), before);
    node->children.insert(at, child);
    node->childArray = nullptr;
    child->native<XmlNode>()->parent = parent;
}

Value appendChild(Call& call)
{
    const auto* child = nodeOf(call.arg(0));
    if (nodeOf(call.self) == nullptr || child == nullptr || child->parent == call.self.object()) return {};
    insert(call.self.object(), call.arg(0).object(), nullptr);
    return {};
}

Value insertBefore(Call& call)
{
    const auto* before = nodeOf(call.arg(1));
    if (nodeOf(call.self) == nullptr || nodeOf(call.arg(0)) == nullptr || before == nullptr) return {};
    if (before->parent != call.self.object() || call.arg(0).object() == call.arg(1).object()) return {};
    insert(call.self.object(), call.arg(0).object(), call.arg(1).object());
    return {};
}

Value removeNode(Call& call)
{
    if (nodeOf(call.self) != nullptr) detach(call.self.object());
    return {};
}

Value hasChildNodes(Call& call)
{
    const auto* node = nodeOf(call.self);
    return node == nullptr ? Value() : Value(!node->children.empty());
}

Value nodeToString(Call& call)
{
    if (nodeOf(call.self) == nullptr) return {};
    Vm& vm = call.vm;
    std::u16string text;
    // Documents carry their prologue in properties that scripts may change.
    for (const char* member : {"xmlDecl", "docTypeDecl"}) {
        const Value value = call.self.object()->get(vm, vm.name(std::string_view(member)));
        if (!value.isUndefined()) text += toText(vm, value);
    }
    return vm.string(text + xmlText(vm, call.self.object()));
}

Value getNamespaceForPrefix(Call& call)
{
    if (nodeOf(call.self) == nullptr) return {};
    return nullable(uriFor(call.self.object(), toText(call.vm, call.arg(0))));
}

Value getPrefixForNamespace(Call& call)
{
    if (nodeOf(call.self) == nullptr) return {};
    const std::u16string wanted = toText(call.vm, call.arg(0));
    Value answer = Value::null();
    forEachDeclaration(call.self.object(), [&](std::u16string_view prefix, String* uri) {
        if (uri->view() != wanted) return false;
        answer = call.vm.string(prefix);
        return true;
    });
    return answer;
}

constexpr MemberInfo kNodeMembers[] = {
    {"cloneNode", 0, 0, &cloneNode, 1},
    {"removeNode", 0, 0, &removeNode, 2},
    {"insertBefore", 0, 0, &insertBefore, 3},
    {"appendChild", 0, 0, &appendChild, 4},
    {"hasChildNodes", 0, 0, &hasChildNodes, 5},
    {"toString", 0, 0, &nodeToString, 6},
    {"getNamespaceForPrefix", 0, 0, &getNamespaceForPrefix, 7},
    {"getPrefixForNamespace", 0, 0, &getPrefixForNamespace, 8},
};
constexpr int kNodeTable = 253;

Value constructNode(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr || !call.isConstruct || call.count() < 2) return {};
    const int type = toInt32(call.vm, call.arg(0));
    furnish(call.vm, self, type, toString(call.vm, call.arg(1)));
    return {};
}

// ---- documents --------------------------------------------------------------------------------------------

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
    furnish(vm, self, XmlNode::kElement, nullptr);
    auto& document = self->native<XmlNode>()->document;
    document = std::make_unique<XmlNode::Document>();
    document->contentType = vm.string(std::string_view("application/x-www-form-urlencoded"));
    if (!call.arg(0).isUndefined()) parseInto(vm, self, call.arg(0));
    return {};
}

/// ASnative(100, 5): the text with the names of its special characters.
Value escapeText(Call& call)
{
    if (call.count() == 0) return {};
    return call.vm.string(escapeXmlText(toText(call.vm, call.arg(0))));
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

void XmlNode::trace(Tracer& tracer)
{
    tracer(name);
    tracer(value);
    tracer(attributes);
    tracer(parent);
    tracer(childArray);
    for (const Object* child : children) tracer(child);
    if (document == nullptr) return;
    tracer(document->declaration);
    tracer(document->doctype);
    tracer(document->loaded);
    tracer(document->contentType);
}

Object* newXmlNode(Vm& vm, int type, String* nameOrValue)
{
    Object* object = vm.newObject(xmlNodePrototype(vm));
    object->define(vm, vm.common().constructor, vm.global()->get(vm, vm.name(std::string_view("XMLNode"))),
                   kBuiltIn);
    furnish(vm, object, type, nameOrValue);
    return object;
}

void appendXmlChild(Object* parent, Object* child)
{
    auto* node = parent->native<XmlNode>();
    node->children.push_back(child);
    node->childArray = nullptr;
    child->native<XmlNode>()->parent = parent;
}

void installXml(Vm& vm)
{
    const auto addPlain = [&](Object* object, std::span<const MemberInfo> members, int table) {
        for (const MemberInfo& member : members) {
            object->define(vm, member.name, vm.newFunction(member.function, member.least), 0);
            if (table >= 0) vm.registerNative(table, member.nativeIndex, member.function, member.least);
        }
    };
    Function* nodeClass = vm.defineClass("XMLNode", &constructNode, {}, 0, kNodeTable);
    Object* nodePrototype = vm.prototypeOf(nodeClass);
    addPlain(nodePrototype, kNodeMembers, kNodeTable);
    vm.addAccessors(nodePrototype, kNodeProperties, 0);

    Function* documentClass = vm.newFunction(&constructDocument);
    Object* documentPrototype = vm.newObject(nodePrototype);
    documentPrototype->define(vm, vm.common().constructorInternal, nodeClass, kDontEnum | kFrom6);
    addPlain(documentPrototype, kDocumentMembers, -1);
    documentPrototype->define(vm, "onData", vm.newScriptLike(&onData), 0);
    documentPrototype->define(vm, "onLoad", vm.newScriptLike(&onLoad), 0);
    documentClass->define(vm, vm.common().prototype, documentPrototype, kBuiltIn);
    vm.global()->define(vm, "XML", documentClass, kDontEnum);
    vm.registerNative(100, 5, &escapeText);
}

} // namespace flash::avm1
