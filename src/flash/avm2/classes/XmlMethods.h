#pragma once

#include "flash/avm2/classes/Xml.h"

// The methods that XML and XMLList share.
namespace flash::avm2::classes
{

/// The nodes that a method works on: of an XML itself, of a list all. @throws 1004
TracedList<XmlNode*> nodesOf(Call& call);
/// The only one of them. @throws 1086
XmlNode& one(Call& call);
/// An argument as the name of content.
Multiname nameArg(Call& call, std::uint32_t i, bool attribute = false);
std::u16string markup(Vm& vm, const TracedList<XmlNode*>& nodes);
bool isSimple(const TracedList<XmlNode*>& nodes);

namespace xml
{

// Texts and questions.
Value toString(Call& call);
Value toXmlString(Call& call);
Value valueOf(Call& call);
Value child(Call& call);
Value children(Call& call);
Value attribute(Call& call);
Value attributes(Call& call);
Value elements(Call& call);
Value comments(Call& call);
Value text(Call& call);
Value processingInstructions(Call& call);
Value descendants(Call& call);
Value length(Call& call);
Value nodeKind(Call& call);
Value parent(Call& call);
Value childIndex(Call& call);
Value copy(Call& call);
Value contains(Call& call);
Value hasSimple(Call& call);
Value hasComplex(Call& call);
Value hasOwnProperty(Call& call);
Value propertyIsEnumerable(Call& call);
Value toJson(Call& call);

// Changes.
Value appendChild(Call& call);
Value prependChild(Call& call);
Value insertChildBefore(Call& call);
Value insertChildAfter(Call& call);
Value setChildren(Call& call);
Value replace(Call& call);
Value normalize(Call& call);
Value notification(Call& call);
Value setNotification(Call& call);

// Names and namespaces.
Value localName(Call& call);
Value name(Call& call);
Value setName(Call& call);
Value setLocalName(Call& call);
Value xmlNamespace(Call& call);
Value inScopeNamespaces(Call& call);
Value namespaceDeclarations(Call& call);
Value addNamespace(Call& call);
Value removeNamespace(Call& call);
Value setNamespace(Call& call);

} // namespace xml

} // namespace flash::avm2::classes
