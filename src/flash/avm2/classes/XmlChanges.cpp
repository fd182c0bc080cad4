#include "flash/avm2/classes/XmlMethods.h"

#include "flash/net/XmlScanner.h"

#include <algorithm>
#include <utility>

namespace flash::avm2::classes
{

namespace xml
{

namespace
{
/// The first version in which what is inserted leaves the place where it was, and a text stays one.
constexpr int kMovesNodes = 21;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

void insertAt(Call& call, XmlNode& parent, std::size_t index, Value value)
{
    TracedList<XmlNode*> added;
    if (auto* list = as<XmlListObject>(value))
        added = list->nodes;
    else
        added.push_back(contentNode(call.vm, value));
    for (XmlNode*& node : added) {
        // An attribute gives its text, and stays where it is.
        if (node->kind == XmlNode::Kind::Attribute)
            node = contentNode(call.vm, Value(call.vm.string(node->text)));
        if (isWithin(&parent, node))
            call.vm.throwError(ErrorClass::Type, 1118, "Illegal cyclical loop between nodes.");
        if (node->parent != nullptr && call.vm.apiVersion() >= kMovesNodes) {
            const auto at = std::ranges::find(node->parent->children, node);
            if (node->parent == &parent && at - parent.children.begin() < static_cast<std::ptrdiff_t>(index))
                --index;
            if (at != node->parent->children.end()) node->parent->children.erase(at);
        }
        node->parent = &parent;
    }
    parent.children.insert(parent.children.begin() +
                               static_cast<std::ptrdiff_t>(std::min(index, parent.children.size())),
                           added.begin(), added.end());
    notifyXml(call.vm, parent, "nodeAdded", added);
}

/// What is assigned rather than moved: markup as a copy of its own.
Value copied(Vm& vm, Value value)
{
    if (auto* list = as<XmlListObject>(value)) {
        auto* copy = newXmlList(vm);
        for (const XmlNode* node : list->nodes) copy->nodes.push_back(copyOf(vm, *node));
        return Value(copy);
    }
    const XmlNode* node = nodeOf(value);
    return node != nullptr ? xmlValue(vm, copyOf(vm, *node)) : value;
}

} // namespace

Value appendChild(Call& call)
{
    XmlNode& node = one(call);
    if (node.kind != XmlNode::Kind::Element) return call.self;
    const bool isMarkup = call.arg(0).isObject() && call.arg(0).object()->isXml();
    if (!isMarkup && call.vm.apiVersion() < kMovesNodes && !node.children.empty() &&
        node.children.back()->kind == XmlNode::Kind::Element) {
        // In old movies a text behind an element becomes one more such element.
        const XmlNode& last = *node.children.back();
        auto* made = call.vm.heap().make<XmlNode>(XmlNode::Kind::Element);
        made->name = last.name;
        made->ns = last.ns;
        made->prefix = last.prefix;
        XmlNode* content = contentNode(call.vm, call.arg(0));
        content->parent = made;
        made->children.push_back(content);
        insertAt(call, node, node.children.size(), xmlValue(call.vm, made));
    } else {
        insertAt(call, node, node.children.size(), call.arg(0));
    }
    return call.self;
}
Value prependChild(Call& call)
{
    XmlNode& node = one(call);
    if (node.kind == XmlNode::Kind::Element) insertAt(call, node, 0, call.arg(0));
    return call.self;
}
namespace
{
template <int offset>
Value insertChild(Call& call)
{
    XmlNode& node = one(call);
    if (node.kind != XmlNode::Kind::Element) return {};
    if (call.arg(0).isNull()) {
        insertAt(call, node, offset == 0 ? node.children.size() : 0, call.arg(1));
        return call.self;
    }
    XmlNode* mark = nodeOf(call.arg(0));
    const auto at = std::ranges::find(node.children, mark);
    if (mark == nullptr || at == node.children.end()) return {};
    insertAt(call, node, static_cast<std::size_t>(at - node.children.begin()) + offset, call.arg(1));
    return call.self;
}
} // namespace
Value insertChildBefore(Call& call) { return insertChild<0>(call); }
Value insertChildAfter(Call& call) { return insertChild<1>(call); }
Value setChildren(Call& call)
{
    XmlNode& node = one(call);
    const Value content = copied(call.vm, call.arg(0));
    const TracedList<XmlNode*> old = std::exchange(node.children, {});
    for (XmlNode* child : old) child->parent = nullptr;
    notifyXml(call.vm, node, "nodeRemoved", old);
    insertAt(call, node, 0, content);
    return call.self;
}
Value replace(Call& call)
{
    XmlNode& node = one(call);
    if (node.kind != XmlNode::Kind::Element) return call.self;
    const Multiname name = nameArg(call, 0);
    // A text of digits is an index, too. One behind the end appends; a name that nothing has changes nothing.
    std::uint32_t index = name.index;
    if (index == Atom::kNotIndex && !name.name.isNull()) index = name.name.arrayIndex();
    const bool isIndex = index != Atom::kNotIndex;
    const Value content = copied(call.vm, call.arg(1));
    std::size_t first = isIndex ? node.children.size() : kNone;
    TracedList<XmlNode*> removed;
    for (std::size_t i = node.children.size(); i-- > 0;) {
        if (isIndex ? i != index : !matches(name, *node.children[i])) continue;
        node.children[i]->parent = nullptr;
        removed.push_back(node.children[i]);
        node.children.erase(node.children.begin() + static_cast<std::ptrdiff_t>(i));
        first = i;
    }
    notifyXml(call.vm, node, "nodeRemoved", removed);
    if (first != kNone) insertAt(call, node, first, content);
    return call.self;
}

namespace
{
/// Texts that stand side by side become one; `isIdle` tells which are then dropped.
using IsIdle = bool (*)(const XmlNode&);
bool isBlank(const XmlNode& node) { return net::isXmlSpace(node.text); }
void joinTexts(TracedList<XmlNode*>& nodes, IsIdle isIdle)
{
    for (std::size_t i = 0; i < nodes.size();) {
        XmlNode* at = nodes[i];
        const auto next = nodes.begin() + static_cast<std::ptrdiff_t>(i);
        if (at->kind != XmlNode::Kind::Text) {
            joinTexts(at->children, &isBlank);
            ++i;
        } else if (i + 1 < nodes.size() && nodes[i + 1]->kind == XmlNode::Kind::Text) {
            at->text += nodes[i + 1]->text;
            nodes.erase(next + 1);
        } else if (isIdle(*at)) {
            nodes.erase(next);
        } else {
            ++i;
        }
    }
}
} // namespace
Value normalize(Call& call)
{
    if (auto* list = as<XmlListObject>(call.self)) {
        joinTexts(list->nodes, [](const XmlNode& node) { return node.text.empty(); });
        return call.self;
    }
    joinTexts(one(call).children, &isBlank);
    return call.self;
}

} // namespace xml

} // namespace flash::avm2::classes
