#include "flash/avm2/classes/Xml.h"

#include "flash/net/XmlScanner.h"

#include <algorithm>
#include <ranges>

namespace flash::avm2::classes
{

namespace
{

constexpr int kMaxNesting = 500;

/// What keeps a text from being a document, as scripts are told.
struct Damage {
    int number;
    std::string_view what;
};
Damage damageOf(net::XmlStatus status)
{
    switch (status) {
    case net::XmlStatus::CdataNotEnded: return {1091, "XML parser failure: Unterminated CDATA section."};
    case net::XmlStatus::DeclarationNotEnded:
        return {1097, "XML parser failure: Unterminated processing instruction."};
    case net::XmlStatus::DoctypeNotEnded:
        return {1093, "XML parser failure: Unterminated DOCTYPE declaration."};
    case net::XmlStatus::CommentNotEnded: return {1094, "XML parser failure: Unterminated comment."};
    case net::XmlStatus::AttributeNotEnded: return {1095, "XML parser failure: Unterminated attribute."};
    default: return {1090, "XML parser failure: element is malformed."};
    }
}

class Parser
{
public:
    Parser(Vm& vm, std::u16string_view text) : m_vm(vm), m_scanner(text), m_settings(xmlSettings(vm)) {}

    void run(TracedList<XmlNode*>& out)
    {
        auto* top = m_vm.heap().make<XmlNode>(XmlNode::Kind::Element);
        content(*top, {}, 0);
        for (XmlNode* child : top->children) {
            child->parent = nullptr;
            out.push_back(child);
        }
    }

private:
    using Token = net::XmlToken;

    [[noreturn]] void fail(net::XmlStatus status)
    {
        const Damage damage = damageOf(status);
        m_vm.throwError(ErrorClass::Type, damage.number, damage.what);
    }
    [[noreturn]] void unmatched(std::u16string_view name)
    {
        const std::u16string text(name);
        m_vm.throwError(ErrorClass::Type, 1085,
                        u"The element type \"" + text +
                            u"\" must be terminated by the matching end-tag \"</" + text + u">\".");
    }
    static std::u16string decoded(std::u16string_view text)
    {
        return net::decodeXml(text, net::XmlEntities::Numbers);
    }
    void addText(XmlNode& parent, std::u16string text)
    {
        if (m_settings.ignoreWhitespace) {
            const auto kept = trimmedXml(text);
            if (kept.empty()) return;
            text = std::u16string(kept);
        }
        if (!text.empty()) add(parent, XmlNode::Kind::Text, text);
    }
    XmlNode* add(XmlNode& parent, XmlNode::Kind kind, std::u16string_view text = {})
    {
        auto* node = m_vm.heap().make<XmlNode>(kind);
        node->text = text;
        node->parent = &parent;
        parent.children.push_back(node);
        return node;
    }
    /// Reads up to the end of the element that is called `name`; of the text when it has no name.
    void content(XmlNode& parent, std::u16string_view name, int depth)
    {
        if (depth > kMaxNesting) m_vm.throwError(ErrorClass::Error, 1023, "Stack overflow occurred.");
        for (;;) {
            m_vm.check();
            const Token token = m_scanner.next();
            switch (token.kind) {
            case Token::Kind::Text: addText(parent, decoded(token.text)); break;
            case Token::Kind::Cdata: add(parent, XmlNode::Kind::Text, token.text)->isCdata = true; break;
            case Token::Kind::Comment:
                if (!m_settings.ignoreComments) add(parent, XmlNode::Kind::Comment, token.text);
                break;
            case Token::Kind::Instruction: instruction(parent, token.text); break;
            case Token::Kind::Doctype: break;
            case Token::Kind::Start:
            case Token::Kind::Empty: element(parent, token, depth); break;
            case Token::Kind::End:
                if (depth == 0 || token.text != name) unmatched(name);
                return;
            case Token::Kind::Damage: fail(m_scanner.status());
            case Token::Kind::Finish:
                if (depth != 0) unmatched(name);
                return;
            }
        }
    }
    void instruction(XmlNode& parent, std::u16string_view text)
    {
        const auto space = std::min(text.find_first_of(u" \t\r\n"), text.size());
        if (text.substr(0, space) == u"xml" || m_settings.ignoreProcessingInstructions) return;
        XmlNode* node =
            add(parent, XmlNode::Kind::Instruction, text.substr(std::min(text.size(), space + 1)));
        node->name = m_vm.name(text.substr(0, space));
    }
    struct Attribute {
        std::u16string name, value;
    };
    void element(XmlNode& parent, const Token& token, int depth)
    {
        constexpr std::u16string_view kNotInNames = u"/=<";
        const std::u16string name(token.text);
        if (name.find_first_of(kNotInNames) != name.npos) fail(net::XmlStatus::ElementMalformed);
        std::vector<Attribute> attributes;
        for (const net::XmlAttribute& given : m_scanner.attributes()) {
            if (given.name.find_first_of(kNotInNames) != given.name.npos)
                fail(net::XmlStatus::ElementMalformed);
            for (const Attribute& other : attributes) {
                if (other.name == given.name)
                    m_vm.throwError(ErrorClass::Type, 1104,
                                    u"Attribute \"" + other.name +
                                        u"\" was already specified for element \"" + name + u"\".");
            }
            attributes.push_back({std::u16string(given.name), decoded(given.value)});
        }
        XmlNode* node = add(parent, XmlNode::Kind::Element);
        for (const Attribute& attribute : attributes) {
            const bool isDefault = attribute.name == u"xmlns";
            if (!isDefault && !attribute.name.starts_with(u"xmlns:")) continue;
            const Name prefix = m_vm.name(isDefault ? std::u16string() : attribute.name.substr(6));
            node->declarations.push_back(
                {Value(prefix.string()), m_vm.ns(Namespace::Kind::Public, m_vm.name(attribute.value))});
        }
        split(*node, *node, name, true);
        for (const Attribute& attribute : attributes) {
            if (attribute.name == u"xmlns" || attribute.name.starts_with(u"xmlns:")) continue;
            auto* made = m_vm.heap().make<XmlNode>(XmlNode::Kind::Attribute);
            made->text = attribute.value;
            made->parent = node;
            split(*made, *node, attribute.name, false);
            node->attributes.push_back(made);
        }
        if (token.kind == Token::Kind::Start) content(*node, name, depth + 1);
    }
    void split(XmlNode& node, XmlNode& scope, std::u16string_view name, bool isElement)
    {
        const auto colon = name.find(u':');
        const std::u16string_view prefix =
            colon == std::u16string_view::npos ? std::u16string_view() : name.substr(0, colon);
        node.name = m_vm.name(colon == std::u16string_view::npos ? name : name.substr(colon + 1));
        node.ns = isElement ? m_vm.defaultXmlNs : m_vm.publicNs();
        if (!prefix.empty()) node.prefix = Value(m_vm.string(prefix));
        if (prefix.empty() && !isElement) return;
        for (XmlNode* at = &scope; at != nullptr; at = at->parent) {
            for (const XmlNode::Declaration& declaration : at->declarations) {
                if (!declaration.prefix.isString() || declaration.prefix.string()->view() != prefix) continue;
                node.ns = declaration.ns;
                return;
            }
        }
        if (prefix == u"xml")
            node.ns = m_vm.ns(Namespace::Kind::Public, "http://www.w3.org/XML/1998/namespace");
        else if (!prefix.empty())
            m_vm.throwError(ErrorClass::Type, 1083,
                            u"The prefix \"" + std::u16string(prefix) + u"\" for element \"" +
                                std::u16string(node.name.view()) + u"\" is not bound.");
    }
    Vm& m_vm;
    net::XmlScanner m_scanner;
    XmlSettings m_settings;
};

} // namespace

void XmlNode::trace(Tracer& tracer)
{
    tracer(name);
    tracer(ns);
    tracer(prefix);
    tracer(parent);
    for (const XmlNode* node : children) tracer(node);
    for (const XmlNode* node : attributes) tracer(node);
    for (const Declaration& declaration : declarations) {
        tracer(declaration.prefix);
        tracer(declaration.ns);
    }
    tracer(value);
    tracer(listener);
    tracer.outside(text.capacity() * 2);
}

void parseXml(Vm& vm, std::u16string_view text, TracedList<XmlNode*>& out) { Parser(vm, text).run(out); }

XmlNode* copyOf(Vm& vm, const XmlNode& node)
{
    auto* made = vm.heap().make<XmlNode>(node.kind);
    made->name = node.name;
    made->ns = node.ns;
    made->prefix = node.prefix;
    made->text = node.text;
    made->isCdata = node.isCdata;
    made->declarations = node.declarations;
    for (const XmlNode* child : node.children) {
        XmlNode* copy = copyOf(vm, *child);
        copy->parent = made;
        made->children.push_back(copy);
    }
    for (const XmlNode* attribute : node.attributes) {
        XmlNode* copy = copyOf(vm, *attribute);
        copy->parent = made;
        made->attributes.push_back(copy);
    }
    return made;
}

std::u16string escapeXml(std::u16string_view text, bool attribute)
{
    std::u16string result;
    for (const char16_t unit : text) {
        if (unit == u'<')
            result += u"&lt;";
        else if (unit == u'&')
            result += u"&amp;";
        else if (unit == u'>' && !attribute)
            result += u"&gt;";
        else if (unit == u'"' && attribute)
            result += u"&quot;";
        else if (unit == u'\n' && attribute)
            result += u"&#xA;";
        else if (unit == u'\r' && attribute)
            result += u"&#xD;";
        else if (unit == u'\t' && attribute)
            result += u"&#x9;";
        else
            result += unit;
    }
    return result;
}

bool hasSimpleContent(const XmlNode& node)
{
    if (node.kind == XmlNode::Kind::Comment || node.kind == XmlNode::Kind::Instruction) return false;
    return std::ranges::none_of(node.children,
                                [](const XmlNode* child) { return child->kind == XmlNode::Kind::Element; });
}

std::u16string contentText(Vm& vm, const XmlNode& node)
{
    if (node.kind == XmlNode::Kind::Text || node.kind == XmlNode::Kind::Attribute) return node.text;
    if (!hasSimpleContent(node)) return toMarkup(vm, node, xmlSettings(vm).prettyPrinting);
    std::u16string text;
    for (const XmlNode* child : node.children) {
        if (child->kind == XmlNode::Kind::Text) text += child->text;
    }
    return text;
}

bool matches(const Multiname& name, const XmlNode& node)
{
    if (name.attribute != (node.kind == XmlNode::Kind::Attribute)) return false;
    const bool isNamed = node.kind == XmlNode::Kind::Element || node.kind == XmlNode::Kind::Attribute;
    if (name.isAnyName() && !isNamed) return true;
    if (!isNamed) return false;
    if (!name.name.isNull() && !(name.name == node.name)) return false;
    if (name.anyNamespace || name.isAnyName()) return true;
    bool knowsPublic = false;
    for (std::uint32_t i = 0; i < name.size(); ++i) {
        if (name.at(i) == node.ns) return true;
        knowsPublic = knowsPublic || name.at(i)->kind == Namespace::Kind::Public;
    }
    // Names that only code can have mean those without a namespace.
    return !knowsPublic && (node.ns == nullptr || node.ns->uri.view().empty());
}

void collect(const Multiname& name, XmlNode& node, TracedList<XmlNode*>& out)
{
    if (name.attribute) {
        for (XmlNode* attribute : node.attributes) {
            if (matches(name, *attribute)) out.push_back(attribute);
        }
    } else {
        for (XmlNode* child : node.children) {
            if (matches(name, *child)) out.push_back(child);
        }
    }
}

bool xmlEquals(const XmlNode& a, const XmlNode& b)
{
    if (a.kind != b.kind || !(a.name == b.name) || a.ns != b.ns || a.text != b.text ||
        a.children.size() != b.children.size() || a.attributes.size() != b.attributes.size())
        return false;
    for (const XmlNode* attribute : a.attributes) {
        if (std::ranges::none_of(b.attributes,
                                 [&](const XmlNode* other) { return xmlEquals(*attribute, *other); }))
            return false;
    }
    for (std::size_t i = 0; i < a.children.size(); ++i) {
        if (!xmlEquals(*a.children[i], *b.children[i])) return false;
    }
    return true;
}

bool isWithin(const XmlNode* node, const XmlNode* ancestor)
{
    for (; node != nullptr; node = node->parent) {
        if (node == ancestor) return true;
    }
    return false;
}

} // namespace flash::avm2::classes
