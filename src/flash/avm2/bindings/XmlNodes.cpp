#include "flash/avm2/bindings/XmlNodes.h"

#include "flash/avm2/bindings/Library.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

void XmlNodeObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    tracer(name);
    tracer(value);
    tracer(attributes);
    tracer(parent);
    tracer(list);
    for (const XmlNodeObject* child : children) tracer(child);
}

void XmlNodeObject::refreshList(Vm& vm)
{
    auto* array = as<ArrayObject>(list);
    if (array == nullptr) return;
    array->setLength(0);
    for (XmlNodeObject* child : children) array->push(vm, Value(child));
}

void XmlNodeObject::detach(Vm& vm)
{
    if (parent == nullptr) return;
    XmlNodeObject* before = std::exchange(parent, nullptr);
    std::erase(before->children, this);
    before->refreshList(vm);
}

void XmlNodeObject::append(Vm& vm, XmlNodeObject& child)
{
    children.push_back(&child);
    child.parent = this;
    if (auto* array = as<ArrayObject>(list)) array->push(vm, Value(&child));
}

XmlNodeObject& xmlNodeSelf(Call& call) { return selfAs<XmlNodeObject>(call, "flash.xml.XMLNode"); }

XmlNodeObject* newXmlNode(Vm& vm, int type, Value nameOrValue)
{
    auto* made = as<XmlNodeObject>(Value(vm.instantiate(vm.nativeClass("flash.xml::XMLNode"))));
    Root<Object> keep(vm.heap(), made);
    made->type = type;
    (type == XmlNodeObject::kElement ? made->name : made->value) = nameOrValue;
    made->attributes = Value(vm.newObject());
    return made;
}

namespace
{

/// Trees deeper than this are not walked to the end: recursion must stay bounded.
constexpr int kMaxDepth = 4000;

XmlNodeObject& self(Call& call) { return xmlNodeSelf(call); }
XmlNodeObject* nodeArg(Call& call, std::uint32_t i)
{
    return as<XmlNodeObject>(Value(objectArg(call, i, "flash.xml::XMLNode")));
}

void appendEscaped(std::u16string& out, std::u16string_view text)
{
    for (const char16_t c : text) {
        switch (c) {
        case u'<': out += u"&lt;"; break;
        case u'>': out += u"&gt;"; break;
        case u'&': out += u"&amp;"; break;
        case u'"': out += u"&quot;"; break;
        case u'\'': out += u"&apos;"; break;
        default: out += c;
        }
    }
}

void appendNode(Vm& vm, std::u16string& out, XmlNodeObject& node, int depth)
{
    vm.check();
    if (depth > kMaxDepth) return;
    if (node.type != XmlNodeObject::kElement) {
        if (!node.value.isNullish()) appendEscaped(out, std::u16string(vm.text(node.value)));
        return;
    }
    const std::u16string name = node.name.isNullish() ? std::u16string() : std::u16string(vm.text(node.name));
    if (!name.empty()) {
        out += u'<' + name;
        if (Object* attributes = node.attributes.asObject()) {
            for (std::uint32_t at = attributes->nextIndex(vm, 0); at != 0;
                 at = attributes->nextIndex(vm, at)) {
                const std::u16string key(vm.text(attributes->nextName(vm, at)));
                const std::u16string value(vm.text(attributes->nextValue(vm, at)));
                out += u' ' + key + u"=\"";
                appendEscaped(out, value);
                out += u'"';
            }
        }
        out += node.children.empty() ? u" />" : u">";
    }
    RootedList<XmlNodeObject*> children(vm.heap(), node.children.begin(), node.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) appendNode(vm, out, *children[i], depth + 1);
    if (!name.empty() && !children.empty()) out += u"</" + name + u'>';
}

Value construct(Call& call)
{
    auto& made = self(call);
    const int type = call.vm.toInt(call.arg(0));
    const Value text = call.vm.coerceString(call.arg(1));
    made.type = type;
    made.attributes = Value(call.vm.newObject());
    (type == XmlNodeObject::kElement ? made.name : made.value) = text;
    return {};
}

Value nodeType(Call& call) { return self(call).type; }
Value setNodeType(Call& call)
{
    self(call).type = call.vm.toInt(call.arg(0));
    return {};
}
Value nodeName(Call& call) { return self(call).name; }
Value setNodeName(Call& call)
{
    const Value value = call.vm.coerceString(call.arg(0));
    self(call).name = value;
    return {};
}
Value nodeValue(Call& call) { return self(call).value; }
Value setNodeValue(Call& call)
{
    const Value value = call.vm.coerceString(call.arg(0));
    self(call).value = value;
    return {};
}
Value attributes(Call& call) { return self(call).attributes; }
Value setAttributes(Call& call)
{
    self(call).attributes = call.arg(0);
    return {};
}
Value childNodes(Call& call)
{
    auto& node = self(call);
    if (!node.list.isObject()) {
        node.list = Value(call.vm.newArray());
        node.refreshList(call.vm);
    }
    return node.list;
}
Value nullable(XmlNodeObject* node) { return node != nullptr ? Value(node) : Value::null(); }
Value firstChild(Call& call)
{
    auto& children = self(call).children;
    return children.empty() ? Value::null() : Value(children.front());
}
Value lastChild(Call& call)
{
    auto& children = self(call).children;
    return children.empty() ? Value::null() : Value(children.back());
}
template <int step>
Value sibling(Call& call)
{
    auto& node = self(call);
    if (node.parent == nullptr) return Value::null();
    const auto& all = node.parent->children;
    const std::ptrdiff_t at = std::ranges::find(all, &node) - all.begin() + step;
    return at < 0 || at >= std::ssize(all) ? Value::null() : Value(all[static_cast<std::size_t>(at)]);
}
Value parentNode(Call& call) { return nullable(self(call).parent); }
Value hasChildNodes(Call& call) { return !self(call).children.empty(); }

Value appendChild(Call& call)
{
    XmlNodeObject* child = nodeArg(call, 0);
    auto& node = self(call);
    if (child == nullptr || child->holds(&node)) return {};
    child->detach(call.vm);
    node.append(call.vm, *child);
    return {};
}
Value insertBefore(Call& call)
{
    XmlNodeObject* child = nodeArg(call, 0);
    XmlNodeObject* before = nodeArg(call, 1);
    auto& node = self(call);
    if (child == nullptr || child == before || child->holds(&node)) return {};
    if (before == nullptr) {
        child->detach(call.vm);
        node.append(call.vm, *child);
        return {};
    }
    if (before->parent != &node) return {};
    child->detach(call.vm);
    node.children.insert(std::ranges::find(node.children, before), child);
    child->parent = &node;
    node.refreshList(call.vm);
    return {};
}
Value removeNode(Call& call)
{
    self(call).detach(call.vm);
    return {};
}

XmlNodeObject* cloneTree(Vm& vm, XmlNodeObject& node, bool isDeep, int depth)
{
    vm.check();
    XmlNodeObject* copy =
        newXmlNode(vm, node.type, node.type == XmlNodeObject::kElement ? node.name : node.value);
    Root<Object> keep(vm.heap(), copy);
    if (Object* from = node.attributes.asObject()) {
        for (std::uint32_t at = from->nextIndex(vm, 0); at != 0; at = from->nextIndex(vm, at)) {
            const Name key = vm.names().intern(vm.toString(from->nextName(vm, at)));
            vm.set(copy->attributes, vm.publicName(key), from->nextValue(vm, at));
        }
    }
    if (!isDeep || depth > kMaxDepth) return copy;
    RootedList<XmlNodeObject*> children(vm.heap(), node.children.begin(), node.children.end());
    for (std::size_t i = 0; i < children.size(); ++i)
        copy->append(vm, *cloneTree(vm, *children[i], true, depth + 1));
    return copy;
}
Value cloneNode(Call& call)
{
    return Value(cloneTree(call.vm, self(call), call.vm.toBoolean(call.arg(0)), 0));
}
Value toText(Call& call) { return call.vm.string(xmlNodeText(call.vm, self(call))); }

constexpr NativeMember kNode[] = {
    {"nodeType", Kind::Getter, &nodeType, 0, 0, &setNodeType, "uint"},
    {"nodeName", Kind::Getter, &nodeName, 0, 0, &setNodeName, "String"},
    {"nodeValue", Kind::Getter, &nodeValue, 0, 0, &setNodeValue, "String"},
    {"attributes", Kind::Getter, &attributes, 0, 0, &setAttributes, "Object"},
    {"childNodes", Kind::Getter, &childNodes, 0, 0, nullptr, "Array"},
    {"firstChild", Kind::Getter, &firstChild, 0, 0, nullptr, "flash.xml::XMLNode"},
    {"lastChild", Kind::Getter, &lastChild, 0, 0, nullptr, "flash.xml::XMLNode"},
    {"nextSibling", Kind::Getter, &sibling<1>, 0, 0, nullptr, "flash.xml::XMLNode"},
    {"previousSibling", Kind::Getter, &sibling<-1>, 0, 0, nullptr, "flash.xml::XMLNode"},
    {"parentNode", Kind::Getter, &parentNode, 0, 0, nullptr, "flash.xml::XMLNode"},
    {"hasChildNodes", Kind::Method, &hasChildNodes, 0, 0},
    {"appendChild", Kind::Method, &appendChild, 1, 1},
    {"insertBefore", Kind::Method, &insertBefore, 2, 2},
    {"removeNode", Kind::Method, &removeNode, 0, 0},
    {"cloneNode", Kind::Method, &cloneNode, 1, 1},
    {"toString", Kind::Method, &toText, 0, 0},
};
constexpr NativeConstant kTypes[] = {{"CDATA_NODE", 4},
                                     {"COMMENT_NODE", 8},
                                     {"DOCUMENT_TYPE_NODE", 10},
                                     {"ELEMENT_NODE", 1},
                                     {"PROCESSING_INSTRUCTION_NODE", 7},
                                     {"TEXT_NODE", 3},
                                     {"XML_DECLARATION", 13}};

} // namespace

std::u16string xmlNodeText(Vm& vm, XmlNodeObject& node)
{
    std::u16string out;
    appendNode(vm, out, node, 0);
    return out;
}

NativeLibrary xmlNodeLibrary()
{
    static const auto kMembers = [] {
        std::vector<NativeMember> all(std::begin(kNode), std::end(kNode));
        const auto names = xmlNamespaceMembers();
        all.insert(all.end(), names.begin(), names.end());
        return all;
    }();
    static const auto kClasses = [] {
        std::vector<NativeClass> all = {
            NativeClass{.package = "flash.xml",
                        .name = "XMLNode",
                        .base = {},
                        .flags = NativeClass::Sealed,
                        .constructor = &construct,
                        .minArguments = 2,
                        .maxArguments = 2,
                        .allocate = &allocateNative<XmlNodeObject>,
                        .members = kMembers},
            constantsOf("flash.xml", "XMLNodeType", kTypes),
        };
        const auto documents = xmlDocumentClasses();
        all.insert(all.end(), documents.begin(), documents.end());
        return all;
    }();
    return {kClasses, {}};
}

} // namespace flash::avm2
