#include "flash/avm2/classes/XmlMethods.h"

#include <algorithm>
#include <vector>

namespace flash::avm2::classes
{

bool isXmlNameText(std::u16string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool isStart = (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z' && unit < 0x80;
        const bool isMore = (unit >= u'0' && unit <= u'9') || unit == u'-' || unit == u'.';
        if (!(isStart || unit == u'_' || unit >= 0xC0 || (i > 0 && isMore))) return false;
    }
    return !text.empty();
}

namespace xml
{

namespace
{
bool hasName(const XmlNode& node)
{
    return node.kind != XmlNode::Kind::Text && node.kind != XmlNode::Kind::Comment;
}
/// A name given as a text. @throws 1117 for one that no document could have
Name nameTextArg(Call& call)
{
    const Name name = call.vm.names().intern(call.vm.toString(call.arg(0)));
    if (!isXmlNameText(name.view()))
        call.vm.throwError(ErrorClass::Type, 1117,
                           u"Invalid XML name: " + std::u16string(name.view()) + u".");
    return name;
}
} // namespace
Value localName(Call& call)
{
    const XmlNode& node = one(call);
    return hasName(node) ? Value(node.name.string()) : Value::null();
}
Value name(Call& call)
{
    const XmlNode& node = one(call);
    if (!hasName(node)) return Value::null();
    QNameObject* made = newQName(call.vm, node.ns != nullptr ? node.ns : call.vm.publicNs(), node.name);
    made->attribute = node.kind == XmlNode::Kind::Attribute;
    made->prefix = node.prefix;
    return Value(made);
}
namespace
{
XmlNode::Declaration declarationArg(Call& call)
{
    if (auto* given = as<NamespaceObject>(call.arg(0))) return {given->prefix, given->ns};
    return {Value(),
            call.vm.ns(Namespace::Kind::Public, call.vm.names().intern(call.vm.toString(call.arg(0))))};
}
std::u16string_view prefixOf(const XmlNode::Declaration& declaration)
{
    return declaration.prefix.isString() ? declaration.prefix.string()->view() : std::u16string_view();
}

/// Declares a namespace at an element. A prefix stands for one namespace: what bore it for another loses it.
void declare(XmlNode& element, const XmlNode::Declaration& declaration)
{
    // Without a prefix there is nothing to declare.
    if (element.kind != XmlNode::Kind::Element || !declaration.prefix.isString()) return;
    const std::u16string_view prefix = prefixOf(declaration);
    const auto release = [&](XmlNode& node) {
        if (node.ns != declaration.ns && node.prefix.isString() && node.prefix.string()->view() == prefix)
            node.prefix = {};
    };
    release(element);
    for (XmlNode* attribute : element.attributes) release(*attribute);
    for (auto& known : element.declarations) {
        if (known.prefix.isString() && prefixOf(known) == prefix) {
            known.ns = declaration.ns;
            return;
        }
    }
    element.declarations.push_back(declaration);
}

/// Has a node named by a namespace, which its element then declares.
void putInto(XmlNode& node, const XmlNode::Declaration& declaration)
{
    node.ns = declaration.ns;
    node.prefix = declaration.prefix;
    XmlNode* element = node.kind == XmlNode::Kind::Attribute ? node.parent : &node;
    if (element != nullptr && !declaration.ns->uri.view().empty()) declare(*element, declaration);
}

/// Takes a declaration from an element and all below it, but not from those that are named by it.
void withdraw(XmlNode& top, const XmlNode::Declaration& declaration)
{
    const auto isMeant = [&](const XmlNode::Declaration& known) {
        if (known.ns != declaration.ns) return false;
        return !declaration.prefix.isString() || prefixOf(known) == prefixOf(declaration);
    };
    // Documents may be as deep as they like: no recursion.
    std::vector<XmlNode*> open{&top};
    while (!open.empty()) {
        XmlNode& node = *open.back();
        open.pop_back();
        const auto isNamedByIt = [&](const XmlNode* named) { return named->ns == declaration.ns; };
        if (node.kind != XmlNode::Kind::Element || isNamedByIt(&node) ||
            std::ranges::any_of(node.attributes, isNamedByIt))
            continue;
        std::erase_if(node.declarations, isMeant);
        open.insert(open.end(), node.children.begin(), node.children.end());
    }
}
} // namespace
Value setName(Call& call)
{
    XmlNode& node = one(call);
    if (!hasName(node)) return {};
    const Value before = name(call);
    node.prefix = {};
    node.ns = node.kind == XmlNode::Kind::Element ? call.vm.defaultXmlNs : call.vm.publicNs();
    if (auto* qname = as<QNameObject>(call.arg(0))) {
        node.name = qname->name;
        if (qname->ns != nullptr && node.kind != XmlNode::Kind::Instruction)
            putInto(node, {qname->prefix, qname->ns});
    } else {
        node.name = nameTextArg(call);
    }
    notifyXml(call.vm, node, "nameSet", name(call), before);
    return {};
}
Value setLocalName(Call& call)
{
    XmlNode& node = one(call);
    if (!hasName(node)) return {};
    const Value before(node.name.string());
    auto* qname = as<QNameObject>(call.arg(0));
    node.name = qname != nullptr ? qname->name : nameTextArg(call);
    notifyXml(call.vm, node, "nameSet", Value(node.name.string()), before);
    return {};
}
namespace
{
Value namespaceValue(Vm& vm, const XmlNode::Declaration& declaration)
{
    auto* made = static_cast<NamespaceObject*>(vm.newNamespace(declaration.ns));
    made->prefix = declaration.prefix;
    return Value(made);
}
} // namespace
Value xmlNamespace(Call& call)
{
    XmlNode& node = one(call);
    if (!call.has(0)) {
        if (!hasName(node)) return Value::null();
        for (XmlNode* at = &node; at != nullptr; at = at->parent) {
            for (const auto& declaration : at->declarations) {
                if (declaration.ns == node.ns) return namespaceValue(call.vm, declaration);
            }
        }
        // A prefix that means something else by now is none.
        const bool isPlain = node.ns == nullptr || node.ns->uri.view().empty();
        return namespaceValue(call.vm, {isPlain ? Value(call.vm.common().empty.string()) : Value(),
                                        node.ns != nullptr ? node.ns : call.vm.publicNs()});
    }
    const auto wanted = call.vm.text(call.arg(0));
    for (XmlNode* at = &node; at != nullptr; at = at->parent) {
        for (const auto& declaration : at->declarations) {
            if (declaration.prefix.isString() && declaration.prefix.string()->view() == wanted)
                return namespaceValue(call.vm, declaration);
        }
    }
    return {};
}
Value inScopeNamespaces(Call& call)
{
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    std::vector<std::u16string_view> seen;
    for (XmlNode* at = &one(call); at != nullptr; at = at->parent) {
        for (const auto& declaration : at->declarations) {
            const auto prefix =
                declaration.prefix.isString() ? declaration.prefix.string()->view() : std::u16string_view();
            if (std::ranges::find(seen, prefix) != seen.end()) continue;
            seen.push_back(prefix);
            list->push(call.vm, namespaceValue(call.vm, declaration));
        }
    }
    if (list->length() == 0)
        list->push(call.vm,
                   namespaceValue(call.vm, {Value(call.vm.common().empty.string()), call.vm.publicNs()}));
    return Value(list);
}
Value namespaceDeclarations(Call& call)
{
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    for (const auto& declaration : one(call).declarations)
        list->push(call.vm, namespaceValue(call.vm, declaration));
    return Value(list);
}
Value addNamespace(Call& call)
{
    const auto declaration = declarationArg(call);
    declare(one(call), declaration);
    notifyXml(call.vm, one(call), "namespaceAdded", namespaceValue(call.vm, declaration));
    return call.self;
}
Value removeNamespace(Call& call)
{
    const auto declaration = declarationArg(call);
    withdraw(one(call), declaration);
    notifyXml(call.vm, one(call), "namespaceRemoved", namespaceValue(call.vm, declaration));
    return call.self;
}
Value setNamespace(Call& call)
{
    XmlNode& node = one(call);
    if (!hasName(node)) return {};
    const auto declaration = declarationArg(call);
    const Value before = namespaceValue(call.vm, {node.prefix, node.ns});
    putInto(node, declaration);
    notifyXml(call.vm, node, "namespaceSet", namespaceValue(call.vm, declaration), before);
    return {};
}
} // namespace xml

} // namespace flash::avm2::classes
