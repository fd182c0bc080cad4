#include "flash/avm2/classes/Xml.h"

#include <algorithm>
#include <utility>

// What becomes of a document when something is assigned to a part of it.
namespace flash::avm2::classes
{

void putChild(Vm& vm, XmlNode& parent, std::size_t index, Value value)
{
    TracedList<XmlNode*> added;
    if (auto* list = as<XmlListObject>(value))
        added = list->nodes;
    else
        added.push_back(contentNode(vm, value));
    for (XmlNode*& node : added) {
        if (node->kind == XmlNode::Kind::Attribute) node = contentNode(vm, Value(vm.string(node->text)));
        if (isWithin(&parent, node))
            vm.throwError(ErrorClass::Type, 1118, "Illegal cyclical loop between nodes.");
    }
    XmlNode* old = nullptr;
    if (index < parent.children.size()) {
        old = parent.children[index];
        old->parent = nullptr;
        parent.children.erase(parent.children.begin() + static_cast<std::ptrdiff_t>(index));
    } else {
        index = parent.children.size();
    }
    for (XmlNode* node : added) node->parent = &parent;
    parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(index), added.begin(),
                           added.end());
    if (old != nullptr && added.size() == 1)
        notifyXml(vm, parent, "nodeChanged", xmlValue(vm, added[0]), xmlValue(vm, old));
    else
        notifyXml(vm, parent, "nodeAdded", added);
}

void setAttribute(Vm& vm, XmlNode& element, const Multiname& name, Value value)
{
    std::u16string text;
    if (auto* list = as<XmlListObject>(value)) {
        for (std::size_t i = 0; i < list->nodes.size(); ++i)
            text += (i > 0 ? u" " : u"") + contentText(vm, *list->nodes[i]);
    } else {
        text = vm.text(value);
    }
    XmlNode* found = nullptr;
    for (std::size_t i = 0; i < element.attributes.size();) {
        if (!matches(name, *element.attributes[i])) {
            ++i;
        } else if (found == nullptr) {
            found = element.attributes[i++];
        } else {
            element.attributes.erase(element.attributes.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    const bool isNew = found == nullptr;
    if (isNew && !name.name.isNull()) {
        found = vm.heap().make<XmlNode>(XmlNode::Kind::Attribute);
        found->name = name.name;
        found->ns = name.size() == 1 ? name.at(0) : vm.publicNs();
        if (found->ns->kind != Namespace::Kind::Public) found->ns = vm.publicNs();
        found->parent = &element;
        element.attributes.push_back(found);
    }
    if (found == nullptr) return;
    std::swap(found->text, text);
    if (!vm.xml.isListenedTo) return;
    notifyXml(vm, element, isNew ? "attributeAdded" : "attributeChanged", Value(found->name.string()),
              Value(vm.string(isNew ? found->text : text)));
}

void setElement(Vm& vm, XmlNode& parent, const Multiname& name, Value value)
{
    const bool isContent = value.isObject() && value.object()->isXml() &&
                           !(nodeOf(value) != nullptr && (nodeOf(value)->kind == XmlNode::Kind::Text ||
                                                          nodeOf(value)->kind == XmlNode::Kind::Attribute));
    std::size_t first = parent.children.size();
    for (std::size_t i = parent.children.size(); i-- > 0;) {
        if (!matches(name, *parent.children[i])) continue;
        if (first < parent.children.size())
            parent.children.erase(parent.children.begin() + static_cast<std::ptrdiff_t>(first));
        first = i;
    }
    if (isContent) {
        TracedList<XmlNode*> copies;
        if (auto* list = as<XmlListObject>(value)) {
            auto* copy = newXmlList(vm);
            for (const XmlNode* node : list->nodes) copy->nodes.push_back(copyOf(vm, *node));
            putChild(vm, parent, first, Value(copy));
        } else {
            putChild(vm, parent, first, xmlValue(vm, copyOf(vm, *nodeOf(value))));
        }
        return;
    }
    if (name.isAnyName() && name.index == Atom::kNotIndex) {
        parent.children.clear();
        putChild(vm, parent, 0, value);
        return;
    }
    const std::u16string text(vm.text(value));
    XmlNode* element = nullptr;
    const bool isNew = first >= parent.children.size();
    if (!isNew) {
        element = parent.children[first];
    } else {
        element = vm.heap().make<XmlNode>(XmlNode::Kind::Element);
        element->name = name.name;
        element->ns =
            name.size() == 1 && name.at(0)->kind == Namespace::Kind::Public ? name.at(0) : vm.defaultXmlNs;
        element->parent = &parent;
        parent.children.push_back(element);
    }
    const Value before =
        vm.xml.isListenedTo && !isNew ? Value(vm.string(contentText(vm, *element))) : Value();
    element->children.clear();
    if (!text.empty()) {
        auto* node = vm.heap().make<XmlNode>(XmlNode::Kind::Text);
        node->text = text;
        node->parent = element;
        element->children.push_back(node);
    }
    if (!vm.xml.isListenedTo) return;
    if (isNew)
        notifyXml(vm, parent, "nodeAdded", xmlValue(vm, element));
    else
        notifyXml(vm, *element, "textSet", Value(vm.string(text)), before);
}

} // namespace flash::avm2::classes
