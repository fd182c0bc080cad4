#pragma once

#include "flash/avm2/classes/Library.h"

namespace flash::avm2::classes
{

/// One node of a tree of markup. Nodes live as long as anything of their tree is held.
class XmlNode final : public Cell
{
public:
    enum class Kind : std::uint8_t { Element, Text, Comment, Instruction, Attribute };
    explicit XmlNode(Kind kind) : kind(kind) {}
    void trace(Tracer& tracer) override;
    struct Declaration {
        Value prefix; ///< undefined: to be chosen
        Namespace* ns = nullptr;
    };
    Kind kind;
    Name name;               ///< of an element, attribute or instruction
    Namespace* ns = nullptr; ///< never null for elements and attributes
    Value prefix;            ///< as it was read
    std::u16string text;
    XmlNode* parent = nullptr;
    TracedList<XmlNode*> children, attributes;
    std::vector<Declaration, vm::TracedAllocator<Declaration>> declarations;
    bool isCdata = false;           ///< of a text: stands in a CDATA section
    Object* value = nullptr;        ///< the one object that scripts have for it
    Value listener = Value::null(); ///< hears of changes in it and below
};

class XmlObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    XmlObject(Traits* traits, Object* proto) : Object(traits, proto) { m_exotic = Exotic::First; }
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(node);
    }
    [[nodiscard]] bool isXml() const override { return true; }
    [[nodiscard]] std::string_view typeOf() const override { return "xml"; }
    bool getExotic(Vm& vm, const Multiname& name, Value& result) override;
    bool setExotic(Vm& vm, const Multiname& name, Value value) override;
    bool hasExotic(Vm& vm, const Multiname& name) override;
    bool deleteExotic(Vm& vm, const Multiname& name, bool& deleted) override;
    bool callExotic(Vm& vm, const Multiname& name, std::span<const Value> args, Value& result) override;
    std::uint32_t nextIndex(Vm&, std::uint32_t after) override { return after == 0 ? 1 : 0; }
    Value nextName(Vm&, std::uint32_t) override { return 0; }
    Value nextValue(Vm&, std::uint32_t) override { return Value(this); }
    Value descendants(Vm& vm, const Multiname& name) override;
    XmlNode* node = nullptr;
};

class XmlListObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    XmlListObject(Traits* traits, Object* proto) : Object(traits, proto) { m_exotic = Exotic::First; }
    void trace(Tracer& tracer) override;
    [[nodiscard]] bool isXml() const override { return true; }
    [[nodiscard]] std::string_view typeOf() const override { return "xml"; }
    bool getExotic(Vm& vm, const Multiname& name, Value& result) override;
    bool setExotic(Vm& vm, const Multiname& name, Value value) override;
    bool hasExotic(Vm& vm, const Multiname& name) override;
    bool deleteExotic(Vm& vm, const Multiname& name, bool& deleted) override;
    bool callExotic(Vm& vm, const Multiname& name, std::span<const Value> args, Value& result) override;
    std::uint32_t nextIndex(Vm&, std::uint32_t after) override
    {
        return after < nodes.size() ? after + 1 : 0;
    }
    Value nextName(Vm&, std::uint32_t index) override { return index == 0 ? Value() : Value(index - 1); }
    Value nextValue(Vm& vm, std::uint32_t index) override;
    Value descendants(Vm& vm, const Multiname& name) override;
    /// The first node. Where there is none it is made, with the elements that lead to it.
    /// @returns null where nothing tells what and where it would be
    XmlNode* firstOrMade(Vm& vm);
    TracedList<XmlNode*> nodes;
    XmlNode* target = nullptr;     ///< where what is appended goes
    XmlListObject* from = nullptr; ///< the list that this one is a property of, when that was empty
    Name targetName;
    Namespace* targetNs = nullptr;
    bool targetIsAttribute = false;
};

using XmlSettings = Vm::XmlSettings;
inline XmlSettings& xmlSettings(Vm& vm) { return vm.xmlSettings; }

Value xmlValue(Vm& vm, XmlNode* node);
XmlListObject* newXmlList(Vm& vm);
XmlNode* nodeOf(Value value); ///< of an XML, or of a list of one; null else
XmlNode* copyOf(Vm& vm, const XmlNode& node);
/// Reads markup. @returns the nodes at its top. @throws 1085 and its like
void parseXml(Vm& vm, std::u16string_view text, TracedList<XmlNode*>& out);
bool isXmlNameText(std::u16string_view text);
std::u16string_view trimmedXml(std::u16string_view text); ///< without blanks at either end
std::u16string toMarkup(Vm& vm, const XmlNode& node, bool pretty, int indent = 0);
std::u16string contentText(Vm& vm, const XmlNode& node);
bool hasSimpleContent(const XmlNode& node);
bool matches(const Multiname& name, const XmlNode& node);
void collect(const Multiname& name, XmlNode& node, TracedList<XmlNode*>& out);
std::u16string escapeXml(std::u16string_view text, bool attribute);
bool xmlEquals(const XmlNode& a, const XmlNode& b);
/// What a value becomes as content: a node of its own.
XmlNode* contentNode(Vm& vm, Value value);
bool isWithin(const XmlNode* node, const XmlNode* ancestor);

/// Puts content in the place of what is there, or behind everything.
void putChild(Vm& vm, XmlNode& parent, std::size_t index, Value value);
void setAttribute(Vm& vm, XmlNode& element, const Multiname& name, Value value);
/// The children of that name become the one value.
void setElement(Vm& vm, XmlNode& parent, const Multiname& name, Value value);

/// Tells the functions that listen at an element and around it what was changed there. They may change the
/// document again: to be called when all is done.
/// @param change `nodeAdded`, `attributeChanged` and so on
/// @param value what is there now: a node, a text, a namespace, or the name of an attribute
/// @param detail what was there before; of a new attribute its text
void notifyXml(Vm& vm, XmlNode& target, std::string_view change, Value value, Value detail = {});
/// The same of each of a list of nodes.
void notifyXml(Vm& vm, XmlNode& target, std::string_view change, const TracedList<XmlNode*>& nodes);
/// Of children, or of attributes, that are gone.
void notifyXmlRemoved(Vm& vm, XmlNode& element, const TracedList<XmlNode*>& gone);

} // namespace flash::avm2::classes
