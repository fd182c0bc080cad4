#pragma once

#include "flash/avm2/bindings/Fields.h"

namespace flash::avm2
{

/// A node of the older of the two ways to handle XML: an element, a text, or (XMLDocument) a whole document.
class XmlNodeObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    XmlNodeObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override;
    static constexpr int kElement = 1, kText = 3;

    int type = kElement;
    Value name = Value::null();  ///< elements only
    Value value = Value::null(); ///< texts only
    Value attributes = Value::null();
    XmlNodeObject* parent = nullptr;
    TracedList<XmlNodeObject*> children;
    Value list; ///< of the children, once asked for

    [[nodiscard]] bool holds(const XmlNodeObject* other) const
    {
        while (other != nullptr && other != this) other = other->parent;
        return other == this;
    }
    void detach(Vm& vm);
    void append(Vm& vm, XmlNodeObject& child);
    /// Scripts that hold the list of children see how it changes.
    void refreshList(Vm& vm);
};

XmlNodeObject* newXmlNode(Vm& vm, int type, Value nameOrValue);
XmlNodeObject& xmlNodeSelf(Call& call);
/// The text of a node with all below it.
std::u16string xmlNodeText(Vm& vm, XmlNodeObject& node);

/// Names with a prefix, and the addresses that prefixes stand for.
std::span<const NativeMember> xmlNamespaceMembers();
std::span<const NativeClass> xmlDocumentClasses();

} // namespace flash::avm2
