#pragma once

#include "flash/avm1/interpreter/Vm.h"
#include "flash/net/XmlScanner.h"

#include <memory>
#include <optional>
#include <vector>

namespace flash::avm1
{

/// The native side of an XMLNode, and of an XML document.
class XmlNode final : public Native
{
public:
    static inline const char kTag = 0;
    static constexpr int kElement = 1, kText = 3;

    explicit XmlNode(int type) : type(type) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    void trace(Tracer& tracer) override;

    int type;
    String* name = nullptr;       ///< null for texts and documents
    String* value = nullptr;      ///< texts only
    Object* attributes = nullptr; ///< always there once the node is made
    Object* parent = nullptr;
    TracedList<Object*> children; ///< objects with an XmlNode each
    Object* childArray = nullptr; ///< the script's view of the children; null while it is out of date
    /// What a document has besides, each read and written through an accessor of its own.
    struct Document {
        Value declaration, doctype, loaded, contentType;
        double status = 0;
        bool ignoreWhite = false;
    };
    std::unique_ptr<Document> document; ///< null for plain nodes
};

void installXml(Vm& vm);

/// @returns a new node object of the class XMLNode.
Object* newXmlNode(Vm& vm, int type, String* nameOrValue);

/// Writes the five characters that XML gives names to by their names.
std::u16string escapeXmlText(std::u16string_view text);

/// Puts a node at the end of another's children; it has no parent yet.
void appendXmlChild(Object* parent, Object* child);

using net::XmlStatus;

struct XmlParseResult {
    XmlStatus status = XmlStatus::Ok;
    std::u16string declaration, doctype; ///< as they stand in the text; empty: none
};
/// Parses a text into children of `document`; what came before an error stays. Elements with an attribute
/// `id` are noted under it, which may call script.
XmlParseResult parseXml(Vm& vm, Object* document, std::u16string_view text);

/// The text of a node with all below, without a prologue.
std::u16string xmlText(Vm& vm, Object* node);

} // namespace flash::avm1
