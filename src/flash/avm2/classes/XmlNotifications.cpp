#include "flash/avm2/classes/XmlMethods.h"

// Whoever shows a document hears of what changes in it.
namespace flash::avm2::classes
{

void notifyXml(Vm& vm, XmlNode& target, std::string_view change, Value value, Value detail)
{
    if (!vm.xml.isListenedTo) return;
    RootedList<Value> hearers(vm.heap());
    for (XmlNode* at = &target; at != nullptr; at = at->parent) {
        if (!isFunction(at->listener)) continue;
        hearers.push_back(xmlValue(vm, at));
        hearers.push_back(at->listener);
    }
    if (hearers.empty()) return;
    const Value told(vm.string(change)), where = xmlValue(vm, &target);
    for (std::size_t i = 0; i + 1 < hearers.size(); i += 2)
        vm.call(hearers[i + 1], Value(), {hearers[i], told, where, value, detail});
}

void notifyXml(Vm& vm, XmlNode& target, std::string_view change, const TracedList<XmlNode*>& nodes)
{
    if (!vm.xml.isListenedTo) return;
    RootedList<Value> values(vm.heap());
    for (XmlNode* node : nodes) values.push_back(xmlValue(vm, node));
    for (std::size_t i = 0; i < values.size(); ++i) notifyXml(vm, target, change, values[i]);
}

void notifyXmlRemoved(Vm& vm, XmlNode& element, const TracedList<XmlNode*>& gone)
{
    if (!vm.xml.isListenedTo || gone.empty()) return;
    if (gone[0]->kind != XmlNode::Kind::Attribute) return notifyXml(vm, element, "nodeRemoved", gone);
    RootedList<Value> told(vm.heap());
    for (const XmlNode* node : gone) {
        told.push_back(Value(node->name.string()));
        told.push_back(Value(vm.string(node->text)));
    }
    for (std::size_t i = 0; i + 1 < told.size(); i += 2)
        notifyXml(vm, element, "attributeRemoved", told[i], told[i + 1]);
}

namespace xml
{

Value notification(Call& call) { return one(call).listener; }

Value setNotification(Call& call)
{
    XmlNode& node = one(call);
    if (!call.arg(0).isNullish() && !isFunction(call.arg(0)))
        call.vm.coerce(call.arg(0), call.vm.classes().function->instances);
    node.listener = call.arg(0).isNullish() ? Value::null() : call.arg(0);
    if (isFunction(node.listener)) call.vm.xml.isListenedTo = true;
    return {};
}

} // namespace xml

} // namespace flash::avm2::classes
