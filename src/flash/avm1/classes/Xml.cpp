#include "flash/avm1/classes/XmlMembers.h"
#include "flash/avm1/interpreter/ArrayNative.h"

#include <algorithm>
#include <optional>

namespace flash::avm1
{
namespace
{

using xml::nodeOf;
using xml::nullable;

/// Trees deeper than this are not copied to the end: recursion must stay bounded.
constexpr int kDeepestClone = 4000;

Object* xmlNodePrototype(Vm& vm)
{
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view("XMLNode"))).asObject();
    return constructor == nullptr ? nullptr : vm.prototypeOf(constructor);
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
        Object* array = call.vm.newArray(*children);
        // Assigning to the list changes no document.
        array->native<ArrayNative>()->flagElements(call.vm, *array, Name(), kReadOnly, 0);
        node->childArray = array;
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
    xml::detach(child);
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
    if (nodeOf(call.self) != nullptr) xml::detach(call.self.object());
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
    {"prefix", 0, &xml::getPrefix, nullptr},
    {"localName", 0, &xml::getLocalName, nullptr},
    {"namespaceURI", 0, &xml::getNamespaceUri, nullptr},
};

constexpr MemberInfo kNodeMembers[] = {
    {"cloneNode", 0, 0, &cloneNode, 1},
    {"removeNode", 0, 0, &removeNode, 2},
    {"insertBefore", 0, 0, &insertBefore, 3},
    {"appendChild", 0, 0, &appendChild, 4},
    {"hasChildNodes", 0, 0, &hasChildNodes, 5},
    {"toString", 0, 0, &nodeToString, 6},
    {"getNamespaceForPrefix", 0, 0, &xml::getNamespaceForPrefix, 7},
    {"getPrefixForNamespace", 0, 0, &xml::getPrefixForNamespace, 8},
};
constexpr int kNodeTable = 253;

/// ASnative(100, 5): the text with the names of its special characters.
Value escapeText(Call& call)
{
    if (call.count() == 0) return {};
    return call.vm.string(escapeXmlText(toText(call.vm, call.arg(0))));
}

Value constructNode(Call& call)
{
    Object* self = call.self.asObject();
    if (self == nullptr || !call.isConstruct || call.count() < 2) return {};
    const int type = toInt32(call.vm, call.arg(0));
    xml::makeNode(call.vm, self, type, toString(call.vm, call.arg(1)));
    return {};
}

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

namespace xml
{

void makeNode(Vm& vm, Object* object, int type, String* nameOrValue)
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

} // namespace xml

Object* newXmlNode(Vm& vm, int type, String* nameOrValue)
{
    Object* object = vm.newObject(xmlNodePrototype(vm));
    object->define(vm, vm.common().constructor, vm.global()->get(vm, vm.name(std::string_view("XMLNode"))),
                   kBuiltIn);
    xml::makeNode(vm, object, type, nameOrValue);
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
            object->define(vm, member.name, vm.newFunction(member.function, member.minArguments), 0);
            if (table >= 0)
                vm.registerNative(table, member.nativeIndex, member.function, member.minArguments);
        }
    };
    Function* nodeClass = vm.defineClass("XMLNode", &constructNode, {}, 0, kNodeTable);
    Object* nodePrototype = vm.prototypeOf(nodeClass);
    addPlain(nodePrototype, kNodeMembers, kNodeTable);
    vm.addAccessors(nodePrototype, kNodeProperties, 0);
    xml::installDocument(vm, nodeClass);
    vm.registerNative(100, 5, &escapeText);
}

} // namespace flash::avm1
