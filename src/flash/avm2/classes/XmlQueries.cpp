#include "flash/avm2/classes/XmlMethods.h"

#include <algorithm>

namespace flash::avm2::classes
{

/// The nodes that a method works on: of an XML itself, of a list all.
TracedList<XmlNode*> nodesOf(Call& call)
{
    TracedList<XmlNode*> nodes;
    if (auto* xml = as<XmlObject>(call.self))
        nodes.push_back(xml->node);
    else if (auto* list = as<XmlListObject>(call.self))
        nodes = list->nodes;
    else
        call.vm.throwError(ErrorClass::Type, 1004, "Method XML was invoked on an incompatible object.");
    return nodes;
}

XmlNode& one(Call& call)
{
    auto nodes = nodesOf(call);
    if (nodes.size() != 1)
        call.vm.throwError(ErrorClass::Type, 1086,
                           u"The " + std::u16string(call.vm.currentCall().view()) +
                               u" method only works on lists containing one item.");
    return *nodes[0];
}

Multiname nameArg(Call& call, std::uint32_t i, bool attribute)
{
    Multiname base = Multiname::of({}, call.vm.defaultXmlNs);
    base.attribute = attribute;
    Multiname name = call.vm.runtimeName(base, call.arg(i));
    if (!name.name.isNull() && name.name.view() == u"*") {
        name.name = {};
    }
    return name;
}

std::u16string markup(Vm& vm, const TracedList<XmlNode*>& nodes)
{
    std::u16string text;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (i > 0) text += u'\n';
        text += toMarkup(vm, *nodes[i], xmlSettings(vm).prettyPrinting);
    }
    return text;
}

bool isSimple(const TracedList<XmlNode*>& nodes)
{
    if (nodes.size() == 1) return hasSimpleContent(*nodes[0]);
    return std::ranges::none_of(nodes,
                                [](const XmlNode* node) { return node->kind == XmlNode::Kind::Element; });
}

namespace xml
{

Value toString(Call& call)
{
    if (!call.self.isObject() || !call.self.object()->isXml()) return call.vm.common().empty.string();
    const auto nodes = nodesOf(call);
    if (nodes.size() == 1) return call.vm.string(contentText(call.vm, *nodes[0]));
    if (!isSimple(nodes)) return call.vm.string(markup(call.vm, nodes));
    std::u16string text;
    for (const XmlNode* node : nodes) {
        if (node->kind != XmlNode::Kind::Comment && node->kind != XmlNode::Kind::Instruction)
            text += contentText(call.vm, *node);
    }
    return call.vm.string(std::move(text));
}
Value toXmlString(Call& call) { return call.vm.string(markup(call.vm, nodesOf(call))); }
Value valueOf(Call& call) { return call.self; }

namespace
{
template <class Use>
Value gather(Call& call, Use&& use)
{
    auto* list = newXmlList(call.vm);
    for (XmlNode* node : nodesOf(call)) use(*node, list->nodes);
    return Value(list);
}
} // namespace

Value child(Call& call)
{
    const Multiname name = nameArg(call, 0);
    return gather(call, [&](XmlNode& node, TracedList<XmlNode*>& out) {
        if (name.index != Atom::kNotIndex) {
            if (name.index < node.children.size()) out.push_back(node.children[name.index]);
        } else
            collect(name, node, out);
    });
}
Value children(Call& call)
{
    return gather(call, [](XmlNode& node, TracedList<XmlNode*>& out) {
        out.insert(out.end(), node.children.begin(), node.children.end());
    });
}
Value attribute(Call& call)
{
    const Multiname name = nameArg(call, 0, true);
    return gather(call, [&](XmlNode& node, TracedList<XmlNode*>& out) { collect(name, node, out); });
}
Value attributes(Call& call)
{
    return gather(call, [](XmlNode& node, TracedList<XmlNode*>& out) {
        out.insert(out.end(), node.attributes.begin(), node.attributes.end());
    });
}
namespace
{
template <XmlNode::Kind kind>
Value ofKind(Call& call)
{
    const bool all = !call.has(0) || call.arg(0).isUndefined() ||
                     (call.arg(0).isString() && call.arg(0).string()->view() == u"*");
    const Multiname name = all ? Multiname() : nameArg(call, 0);
    return gather(call, [&](XmlNode& node, TracedList<XmlNode*>& out) {
        for (XmlNode* inner : node.children) {
            if (inner->kind != kind) continue;
            if (kind == XmlNode::Kind::Element && !all && !matches(name, *inner)) continue;
            if (kind == XmlNode::Kind::Instruction && !all && !(name.name == inner->name)) continue;
            out.push_back(inner);
        }
    });
}
} // namespace
Value elements(Call& call) { return ofKind<XmlNode::Kind::Element>(call); }
Value comments(Call& call) { return ofKind<XmlNode::Kind::Comment>(call); }
Value text(Call& call) { return ofKind<XmlNode::Kind::Text>(call); }
Value processingInstructions(Call& call) { return ofKind<XmlNode::Kind::Instruction>(call); }
Value descendants(Call& call)
{
    return call.self.object()->descendants(call.vm, call.has(0) ? nameArg(call, 0) : Multiname());
}
Value length(Call& call) { return static_cast<double>(nodesOf(call).size()); }
Value nodeKind(Call& call)
{
    static constexpr const char* kKinds[] = {"element", "text", "comment", "processing-instruction",
                                             "attribute"};
    return call.vm.name(kKinds[static_cast<int>(one(call).kind)]).string();
}
Value parent(Call& call)
{
    const auto nodes = nodesOf(call);
    if (nodes.empty()) return {};
    for (const XmlNode* node : nodes) {
        if (node->parent != nodes[0]->parent) return {};
    }
    return nodes[0]->parent != nullptr ? xmlValue(call.vm, nodes[0]->parent) : Value();
}
Value childIndex(Call& call)
{
    XmlNode& node = one(call);
    if (node.parent == nullptr || node.kind == XmlNode::Kind::Attribute) return -1;
    return static_cast<double>(std::ranges::find(node.parent->children, &node) -
                               node.parent->children.begin());
}
Value copy(Call& call)
{
    if (as<XmlObject>(call.self) != nullptr) return xmlValue(call.vm, copyOf(call.vm, one(call)));
    auto* list = newXmlList(call.vm);
    for (const XmlNode* node : nodesOf(call)) list->nodes.push_back(copyOf(call.vm, *node));
    return Value(list);
}
Value contains(Call& call)
{
    XmlNode* wanted = nodeOf(call.arg(0));
    // Of one XML it is asked whether it is the same as another; only lists look at contents.
    if (auto* own = as<XmlObject>(call.self)) {
        auto* other = as<XmlObject>(call.arg(0));
        return other != nullptr && xmlEquals(*own->node, *other->node);
    }
    for (const XmlNode* node : nodesOf(call)) {
        if (wanted != nullptr && xmlEquals(*node, *wanted)) return true;
        // What is no markup is compared by the content.
        if (wanted == nullptr && !call.arg(0).isNullish() && !as<XmlListObject>(call.arg(0)) &&
            hasSimpleContent(*node) && contentText(call.vm, *node) == call.vm.text(call.arg(0)))
            return true;
    }
    return false;
}
Value hasSimple(Call& call) { return isSimple(nodesOf(call)); }
Value hasComplex(Call& call)
{
    const auto nodes = nodesOf(call);
    if (nodes.size() == 1 && nodes[0]->kind != XmlNode::Kind::Element) return false;
    return !nodes.empty() && !isSimple(nodes);
}

Value hasOwnProperty(Call& call)
{
    return call.self.isObject() &&
           call.vm.hasOwn(call.self, call.vm.runtimeName(Multiname::of({}, call.vm.publicNs()), call.arg(0)));
}
/// Of an XML it is its only index, of a list the indices within.
Value propertyIsEnumerable(Call& call)
{
    const Multiname name = nameArg(call, 0);
    return name.index != Atom::kNotIndex
               ? name.index < nodesOf(call).size()
               : !name.name.isNull() && name.name.arrayIndex() < nodesOf(call).size();
}
Value toJson(Call& call)
{
    return call.vm.string(std::string_view(as<XmlObject>(call.self) != nullptr ? "XML" : "XMLList"));
}

} // namespace xml

} // namespace flash::avm2::classes
