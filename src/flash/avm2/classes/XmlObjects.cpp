#include "flash/avm2/classes/Xml.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace flash::avm2::classes
{

namespace
{

std::uint32_t indexOf(const Multiname& name)
{
    if (name.index != Atom::kNotIndex) return name.index;
    return name.attribute || name.name.isNull() ? Atom::kNotIndex : name.name.arrayIndex();
}

void descend(const Multiname& name, XmlNode& node, TracedList<XmlNode*>& out, Vm& vm)
{
    if (name.attribute) collect(name, node, out);
    for (XmlNode* child : node.children) {
        // In any namespace there is only what can have one.
        const bool fits = !(name.anyNamespace && name.isAnyName()) || child->kind == XmlNode::Kind::Element;
        if (!name.attribute && fits && matches(name, *child)) out.push_back(child);
        descend(name, *child, out, vm);
    }
}

/// Methods are asked before the content is, in calls only.
bool callMethod(Vm& vm, Object& self, const Multiname& name, std::span<const Value> args, Value& result)
{
    if (name.name.isNull()) return false;
    Multiname inAs3 = Multiname::of(name.name, vm.as3Ns());
    if (const Binding* binding = self.traits()->find(inAs3);
        binding != nullptr && binding->kind == Binding::Kind::Method && name.hasPublic()) {
        result =
            vm.invoke(*self.traits()->methods[static_cast<std::size_t>(binding->id)], Value(&self), args);
        return true;
    }
    for (Object* at = self.proto(); at != nullptr; at = at->proto()) {
        if (at->tableIfAny() == nullptr || !name.hasPublic()) continue;
        const std::uint32_t position = at->tableIfAny()->find(name.name);
        if (position == PropertyTable::kMissing) continue;
        result = vm.call(at->tableIfAny()->at(position).value, Value(&self), args);
        return true;
    }
    return false;
}

} // namespace

bool XmlObject::getExotic(Vm& vm, const Multiname& name, Value& result)
{
    if (!name.attribute && name.size() == 1 && name.at(0) == vm.as3Ns()) return false;
    if (const std::uint32_t index = indexOf(name); index != Atom::kNotIndex) {
        result = index == 0 ? Value(this) : Value();
        return true;
    }
    auto* list = newXmlList(vm);
    list->target = node;
    list->targetName = name.name;
    list->targetNs = name.size() == 1 ? name.at(0) : nullptr;
    list->targetIsAttribute = name.attribute;
    collect(name, *node, list->nodes);
    result = Value(list);
    return true;
}

bool XmlObject::setExotic(Vm& vm, const Multiname& name, Value value)
{
    if (indexOf(name) != Atom::kNotIndex)
        vm.throwError(ErrorClass::Type, 1087, "Assignment to indexed XML is not allowed.");
    if (node->kind != XmlNode::Kind::Element) return true;
    if (name.attribute)
        setAttribute(vm, *node, name, value);
    else
        setElement(vm, *node, name, value);
    return true;
}

bool XmlObject::hasExotic(Vm&, const Multiname& name)
{
    if (const std::uint32_t index = indexOf(name); index != Atom::kNotIndex) return index == 0;
    TracedList<XmlNode*> found;
    collect(name, *node, found);
    return !found.empty();
}

bool XmlObject::deleteExotic(Vm& vm, const Multiname& name, bool& deleted)
{
    deleted = true;
    if (indexOf(name) != Atom::kNotIndex) return true;
    auto& list = name.attribute ? node->attributes : node->children;
    TracedList<XmlNode*> gone;
    std::erase_if(list, [&](XmlNode* child) {
        if (!matches(name, *child)) return false;
        child->parent = nullptr;
        gone.push_back(child);
        return true;
    });
    notifyXmlRemoved(vm, *node, gone);
    return true;
}

bool XmlObject::callExotic(Vm& vm, const Multiname& name, std::span<const Value> args, Value& result)
{
    if (callMethod(vm, *this, name, args, result)) return true;
    if (name.name.isNull()) return false;
    const Value property = vm.get(Value(this), name);
    if (isFunction(property)) {
        result = property.object()->call(vm, Value(this), args);
        return true;
    }
    // What holds nothing but text answers as a text would.
    if (hasSimpleContent(*node)) {
        result = vm.callProperty(Value(vm.string(contentText(vm, *node))), name, args);
        return true;
    }
    return false;
}

Value XmlObject::descendants(Vm& vm, const Multiname& name)
{
    auto* list = newXmlList(vm);
    descend(name, *node, list->nodes, vm);
    return Value(list);
}

void XmlListObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    for (const XmlNode* node : nodes) tracer(node);
    tracer(target);
    tracer(from);
    tracer(targetName);
    tracer(targetNs);
}

XmlNode* XmlListObject::firstOrMade(Vm& vm)
{
    // Scripts may ask for a property of a property as often as they like: no recursion.
    std::vector<XmlListObject*> way;
    for (XmlListObject* list = this; list != nullptr && list->nodes.empty(); list = list->from)
        way.push_back(list);
    for (auto step = way.rbegin(); step != way.rend(); ++step) {
        XmlListObject& list = **step;
        if (list.from != nullptr) list.target = list.from->nodes[0];
        if (list.target == nullptr || list.targetName.isNull() || list.targetIsAttribute) return nullptr;
        auto* made = vm.heap().make<XmlNode>(XmlNode::Kind::Element);
        made->name = list.targetName;
        made->ns = list.targetNs != nullptr && list.targetNs->kind == Namespace::Kind::Public
                       ? list.targetNs
                       : vm.defaultXmlNs;
        made->parent = list.target;
        list.target->children.push_back(made);
        list.nodes.push_back(made);
    }
    return nodes[0];
}

bool XmlListObject::getExotic(Vm& vm, const Multiname& name, Value& result)
{
    if (!name.attribute && name.size() == 1 && name.at(0) == vm.as3Ns()) return false;
    if (const std::uint32_t index = indexOf(name); index != Atom::kNotIndex) {
        result = index < nodes.size() ? xmlValue(vm, nodes[index]) : Value();
        return true;
    }
    auto* list = newXmlList(vm);
    for (XmlNode* node : nodes) collect(name, *node, list->nodes);
    if (nodes.size() == 1) list->target = nodes[0];
    if (nodes.empty()) list->from = this;
    list->targetName = name.name;
    list->targetNs = name.size() == 1 ? name.at(0) : nullptr;
    list->targetIsAttribute = name.attribute;
    result = Value(list);
    return true;
}

bool XmlListObject::setExotic(Vm& vm, const Multiname& name, Value value)
{
    const std::uint32_t index = indexOf(name);
    if (index == Atom::kNotIndex) {
        if (nodes.size() > 1)
            vm.throwError(ErrorClass::Type, 1089,
                          "Assignment to lists with more than one item is not supported.");
        if (firstOrMade(vm) == nullptr) return true;
        vm.set(xmlValue(vm, nodes[0]), name, value);
        return true;
    }
    if (index >= nodes.size()) {
        if (target == nullptr && from != nullptr) target = from->firstOrMade(vm);
        if (target == nullptr) {
            nodes.push_back(contentNode(vm, value));
            return true;
        }
        XmlNode* made = nullptr;
        if (targetIsAttribute) {
            setAttribute(vm, *target,
                         Multiname::of(targetName, targetNs != nullptr ? targetNs : vm.publicNs()), value);
            return true;
        }
        if (XmlNode* given = nodeOf(value); given != nullptr && given->kind == XmlNode::Kind::Element) {
            made = given;
            if (isWithin(target, made))
                vm.throwError(ErrorClass::Type, 1118, "Illegal cyclical loop between nodes.");
        } else {
            made =
                vm.heap().make<XmlNode>(targetName.isNull() ? XmlNode::Kind::Text : XmlNode::Kind::Element);
            if (targetName.isNull()) {
                made->text = vm.text(value);
            } else {
                made->name = targetName;
                made->ns = targetNs != nullptr && targetNs->kind == Namespace::Kind::Public ? targetNs
                                                                                            : vm.defaultXmlNs;
                XmlNode* text = contentNode(vm, value);
                text->parent = made;
                made->children.push_back(text);
            }
        }
        made->parent = target;
        target->children.push_back(made);
        nodes.push_back(made);
        notifyXml(vm, *target, "nodeAdded", xmlValue(vm, made));
        return true;
    }
    XmlNode* old = nodes[index];
    if (old->kind == XmlNode::Kind::Attribute) {
        const Value before(vm.string(old->text));
        old->text = vm.text(value);
        if (old->parent != nullptr)
            notifyXml(vm, *old->parent, "attributeChanged", Value(old->name.string()), before);
        return true;
    }
    if (XmlNode* parent = old->parent; parent != nullptr) {
        const auto at =
            static_cast<std::size_t>(std::ranges::find(parent->children, old) - parent->children.begin());
        const bool isText = !(value.isObject() && value.object()->isXml());
        if (isText && old->kind == XmlNode::Kind::Element) {
            old->children.clear();
            putChild(vm, *old, 0, value);
            return true;
        }
        putChild(vm, *parent, at, value);
        if (index < nodes.size() && at < parent->children.size()) nodes[index] = parent->children[at];
        return true;
    }
    nodes[index] = contentNode(vm, value);
    return true;
}

bool XmlListObject::hasExotic(Vm&, const Multiname& name)
{
    if (const std::uint32_t index = indexOf(name); index != Atom::kNotIndex) return index < nodes.size();
    TracedList<XmlNode*> found;
    for (XmlNode* node : nodes) collect(name, *node, found);
    return !found.empty();
}

bool XmlListObject::deleteExotic(Vm& vm, const Multiname& name, bool& deleted)
{
    deleted = true;
    if (const std::uint32_t index = indexOf(name); index != Atom::kNotIndex) {
        if (index >= nodes.size()) return true;
        XmlNode* node = nodes[index];
        if (node->parent != nullptr) {
            XmlNode& parent = *std::exchange(node->parent, nullptr);
            std::erase(parent.children, node);
            std::erase(parent.attributes, node);
            nodes.erase(nodes.begin() + index);
            notifyXmlRemoved(vm, parent, {node});
            return true;
        }
        nodes.erase(nodes.begin() + index);
        return true;
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) vm.remove(xmlValue(vm, nodes[i]), name);
    return true;
}

bool XmlListObject::callExotic(Vm& vm, const Multiname& name, std::span<const Value> args, Value& result)
{
    if (callMethod(vm, *this, name, args, result)) return true;
    if (nodes.size() == 1) {
        result = vm.callProperty(xmlValue(vm, nodes[0]), name, args);
        return true;
    }
    return false;
}

Value XmlListObject::nextValue(Vm& vm, std::uint32_t index)
{
    return index == 0 || index > nodes.size() ? Value() : xmlValue(vm, nodes[index - 1]);
}

Value XmlListObject::descendants(Vm& vm, const Multiname& name)
{
    auto* list = newXmlList(vm);
    for (XmlNode* node : nodes) descend(name, *node, list->nodes, vm);
    return Value(list);
}

Value xmlValue(Vm& vm, XmlNode* node)
{
    if (node->value == nullptr) {
        ClassObject* cls = vm.classes().xml;
        auto* made = vm.heap().make<XmlObject>(cls->instances, cls->prototype);
        made->node = node;
        node->value = made;
    }
    return Value(node->value);
}

XmlListObject* newXmlList(Vm& vm)
{
    ClassObject* cls = vm.classes().xmlList;
    return vm.heap().make<XmlListObject>(cls->instances, cls->prototype);
}

XmlNode* nodeOf(Value value)
{
    if (auto* xml = as<XmlObject>(value)) return xml->node;
    if (auto* list = as<XmlListObject>(value); list != nullptr && list->nodes.size() == 1)
        return list->nodes[0];
    return nullptr;
}

XmlNode* contentNode(Vm& vm, Value value)
{
    if (XmlNode* node = nodeOf(value)) return node;
    const std::u16string text(vm.text(value));
    auto* node = vm.heap().make<XmlNode>(XmlNode::Kind::Text);
    node->text = text;
    return node;
}

} // namespace flash::avm2::classes
