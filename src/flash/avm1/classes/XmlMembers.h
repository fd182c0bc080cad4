#pragma once

#include "flash/avm1/classes/XmlNode.h"

// What the parts of XMLNode and XML share.
namespace flash::avm1::xml
{

/// @returns null for what is no node.
[[nodiscard]] inline XmlNode* nodeOf(Value value)
{
    const Object* object = value.asObject();
    return object == nullptr ? nullptr : object->native<XmlNode>();
}

[[nodiscard]] inline Value nullable(Object* object)
{
    return object == nullptr ? Value::null() : Value(object);
}
[[nodiscard]] inline Value nullable(String* string)
{
    return string == nullptr ? Value::null() : Value(string);
}

/// Makes an object a node.
void makeNode(Vm& vm, Object* object, int type, String* nameOrValue);
/// Takes a node from its parent, if it has one.
void detach(Object* object);

// ---- names and their namespaces ----
Value getPrefix(Call& call);
Value getLocalName(Call& call);
Value getNamespaceUri(Call& call);
Value getNamespaceForPrefix(Call& call);
Value getPrefixForNamespace(Call& call);

/// Puts the class XML on the global object; that of nodes is there already.
void installDocument(Vm& vm, Function* nodeClass);

} // namespace flash::avm1::xml
