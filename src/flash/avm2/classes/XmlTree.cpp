#include "flash/avm2/classes/Xml.h"

#include <algorithm>
#include <ranges>

namespace flash::avm2::classes
{

namespace
{

constexpr int kDeepest = 500;

bool isSpace(char16_t unit) { return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r'; }

std::u16string_view trimmed(std::u16string_view text)
{
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

class Parser
{
public:
    Parser(Vm& vm, std::u16string_view text) : m_vm(vm), m_text(text), m_settings(xmlSettings(vm)) {}

    void run(TracedList<XmlNode*>& out)
    {
        auto* top = m_vm.heap().make<XmlNode>(XmlNode::Kind::Element);
        content(*top, 0);
        if (m_at < m_text.size())
            fail(1085, "The element type \"\" must be terminated by the matching end-tag \"</>\".");
        for (XmlNode* child : top->children) {
            child->parent = nullptr;
            out.push_back(child);
        }
    }

private:
    [[noreturn]] void fail(int number, std::string_view what)
    {
        m_vm.throwError(ErrorClass::Type, number, what);
    }
    bool starts(std::u16string_view with) const { return m_text.substr(m_at, with.size()) == with; }
    std::u16string_view until(std::u16string_view end, int number, std::string_view what)
    {
        const auto found = m_text.find(end, m_at);
        if (found == std::u16string_view::npos) fail(number, what);
        const auto part = m_text.substr(m_at, found - m_at);
        m_at = found + end.size();
        return part;
    }
    void addText(XmlNode& parent, std::u16string text)
    {
        if (m_settings.ignoreWhitespace) {
            const auto kept = trimmed(text);
            if (kept.empty()) return;
            text = std::u16string(kept);
        }
        if (text.empty()) return;
        auto* node = m_vm.heap().make<XmlNode>(XmlNode::Kind::Text);
        node->text = std::move(text);
        append(parent, node);
    }
    static void append(XmlNode& parent, XmlNode* child)
    {
        child->parent = &parent;
        parent.children.push_back(child);
    }
    void content(XmlNode& parent, int depth)
    {
        if (depth > kDeepest) m_vm.throwError(ErrorClass::Error, 1023, "Stack overflow occurred.");
        while (m_at < m_text.size()) {
            if (m_text[m_at] != u'<') {
                const auto end = std::min(m_text.find(u'<', m_at), m_text.size());
                addText(parent, decoded(m_text.substr(m_at, end - m_at)));
                m_at = end;
            } else if (starts(u"</")) {
                return;
            } else if (starts(u"<!--")) {
                m_at += 4;
                const auto text = until(u"-->", 1094, "XML parser failure: Unterminated comment.");
                if (m_settings.ignoreComments) continue;
                auto* node = m_vm.heap().make<XmlNode>(XmlNode::Kind::Comment);
                node->text = text;
                append(parent, node);
            } else if (starts(u"<![CDATA[")) {
                m_at += 9;
                const auto text = until(u"]]>", 1091, "XML parser failure: Unterminated CDATA section.");
                auto* node = m_vm.heap().make<XmlNode>(XmlNode::Kind::Text);
                node->text = text;
                append(parent, node);
            } else if (starts(u"<?")) {
                m_at += 2;
                const auto text =
                    until(u"?>", 1097, "XML parser failure: Unterminated processing instruction.");
                const auto space = std::min(text.find_first_of(u" \t\r\n"), text.size());
                if (text.substr(0, space) == u"xml" || m_settings.ignoreProcessingInstructions) continue;
                auto* node = m_vm.heap().make<XmlNode>(XmlNode::Kind::Instruction);
                node->name = m_vm.name(text.substr(0, space));
                node->text = text.substr(std::min(text.size(), space + 1));
                append(parent, node);
            } else if (starts(u"<!")) {
                until(u">", 1093, "XML parser failure: Unterminated DOCTYPE declaration.");
            } else {
                element(parent, depth);
            }
            m_vm.check();
        }
    }
    std::u16string_view readName()
    {
        const std::size_t from = m_at;
        while (m_at < m_text.size() && !isSpace(m_text[m_at]) && m_text[m_at] != u'>' &&
               m_text[m_at] != u'/' && m_text[m_at] != u'=' && m_text[m_at] != u'<')
            ++m_at;
        return m_text.substr(from, m_at - from);
    }
    void skip()
    {
        while (m_at < m_text.size() && isSpace(m_text[m_at])) ++m_at;
    }
    struct Attribute {
        std::u16string name, value;
    };
    void element(XmlNode& parent, int depth)
    {
        ++m_at;
        auto* node = m_vm.heap().make<XmlNode>(XmlNode::Kind::Element);
        const std::u16string name(readName());
        if (name.empty()) fail(1090, "XML parser failure: element is malformed.");
        std::vector<Attribute> attributes;
        bool isEmpty = false;
        for (;;) {
            skip();
            if (m_at >= m_text.size()) fail(1095, "XML parser failure: Unterminated attribute.");
            if (m_text[m_at] == u'>') {
                ++m_at;
                break;
            }
            if (starts(u"/>")) {
                m_at += 2;
                isEmpty = true;
                break;
            }
            Attribute attribute{std::u16string(readName()), {}};
            skip();
            if (attribute.name.empty() || m_at >= m_text.size() || m_text[m_at] != u'=')
                fail(1090, "XML parser failure: element is malformed.");
            ++m_at;
            skip();
            if (m_at >= m_text.size() || (m_text[m_at] != u'"' && m_text[m_at] != u'\''))
                fail(1095, "XML parser failure: Unterminated attribute.");
            const char16_t quote = m_text[m_at++];
            attribute.value = decoded(
                until(std::u16string_view(&quote, 1), 1095, "XML parser failure: Unterminated attribute."));
            for (const Attribute& other : attributes) {
                if (other.name == attribute.name)
                    m_vm.throwError(ErrorClass::Type, 1104,
                                    u"Attribute \"" + attribute.name +
                                        u"\" was already specified for element \"" + name + u"\".");
            }
            attributes.push_back(std::move(attribute));
        }
        append(parent, node);
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
        if (isEmpty) return;
        content(*node, depth + 1);
        if (!starts(u"</"))
            m_vm.throwError(ErrorClass::Type, 1085,
                            u"The element type \"" + name +
                                u"\" must be terminated by the matching end-tag \"</" + name + u">\".");
        m_at += 2;
        const auto closing = readName();
        if (closing != name)
            m_vm.throwError(ErrorClass::Type, 1085,
                            u"The element type \"" + name +
                                u"\" must be terminated by the matching end-tag \"</" + name + u">\".");
        skip();
        if (m_at < m_text.size() && m_text[m_at] == u'>') ++m_at;
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
    static std::u16string decoded(std::u16string_view text)
    {
        std::u16string result;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto end = text[i] == u'&' ? text.find(u';', i) : std::u16string_view::npos;
            if (end == std::u16string_view::npos || end - i > 10) {
                result += text[i];
                continue;
            }
            const auto entity = text.substr(i + 1, end - i - 1);
            if (entity == u"lt")
                result += u'<';
            else if (entity == u"gt")
                result += u'>';
            else if (entity == u"amp")
                result += u'&';
            else if (entity == u"quot")
                result += u'"';
            else if (entity == u"apos")
                result += u'\'';
            else if (entity.size() > 1 && entity[0] == u'#') {
                const bool isHex = entity[1] == u'x';
                const double code = isHex ? textNumber(u"0" + std::u16string(entity.substr(1)))
                                          : textNumber(entity.substr(1));
                if (!(code > 0 && code < 0x110000)) {
                    result += text[i];
                    continue;
                }
                const auto unit = static_cast<std::uint32_t>(code);
                if (unit >= 0x10000) {
                    result += static_cast<char16_t>(0xD800 + ((unit - 0x10000) >> 10U));
                    result += static_cast<char16_t>(0xDC00 + ((unit - 0x10000) & 0x3FFU));
                } else
                    result += static_cast<char16_t>(unit);
            } else {
                result += text[i];
                continue;
            }
            i = end;
        }
        return result;
    }

    Vm& m_vm;
    std::u16string_view m_text;
    XmlSettings m_settings;
    std::size_t m_at = 0;
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

namespace
{

/// The prefix that an element or attribute is written with.
std::u16string prefixOf(const XmlNode& node)
{
    if (node.ns == nullptr || node.ns->uri.view().empty()) return {};
    const bool isElement = node.kind == XmlNode::Kind::Element;
    for (const XmlNode* at = isElement ? &node : node.parent; at != nullptr; at = at->parent) {
        for (const XmlNode::Declaration& declaration : at->declarations) {
            if (declaration.ns == node.ns && declaration.prefix.isString())
                return std::u16string(declaration.prefix.string()->view());
        }
    }
    return node.prefix.isString() ? std::u16string(node.prefix.string()->view()) : std::u16string();
}

bool isDeclared(const XmlNode& node)
{
    if (node.ns == nullptr) return true;
    for (const XmlNode* at = &node; at != nullptr; at = at->parent) {
        for (const XmlNode::Declaration& declaration : at->declarations) {
            if (declaration.ns == node.ns) return true;
        }
        if (at != &node && at->ns == node.ns) return true;
    }
    return node.ns->uri.view().empty();
}

} // namespace

std::u16string toMarkup(Vm& vm, const XmlNode& node, bool pretty, int indent)
{
    const std::u16string margin =
        pretty ? std::u16string(static_cast<std::size_t>(std::max(0, indent)), u' ') : std::u16string();
    switch (node.kind) {
    case XmlNode::Kind::Text:
        return margin + escapeXml(pretty ? trimmed(node.text) : std::u16string_view(node.text), false);
    case XmlNode::Kind::Attribute: return margin + escapeXml(node.text, true);
    case XmlNode::Kind::Comment: return margin + u"<!--" + node.text + u"-->";
    case XmlNode::Kind::Instruction:
        return margin + u"<?" + std::u16string(node.name.view()) + u" " + node.text + u"?>";
    case XmlNode::Kind::Element: break;
    }
    const std::u16string prefix = prefixOf(node);
    const std::u16string name = (prefix.empty() ? u"" : prefix + u":") + std::u16string(node.name.view());
    std::u16string text = margin + u"<" + name;
    for (const XmlNode* attribute : node.attributes) {
        const std::u16string own = prefixOf(*attribute);
        text += u" " + (own.empty() ? u"" : own + u":") + std::u16string(attribute->name.view()) + u"=\"" +
                escapeXml(attribute->text, true) + u"\"";
    }
    for (const XmlNode::Declaration& declaration : node.declarations) {
        const auto own =
            declaration.prefix.isString() ? declaration.prefix.string()->view() : std::u16string_view();
        text += (own.empty() ? u" xmlns" : u" xmlns:" + std::u16string(own)) + u"=\"" +
                escapeXml(declaration.ns->uri.view(), true) + u"\"";
    }
    if (!isDeclared(node))
        text += (prefix.empty() ? u" xmlns" : u" xmlns:" + prefix) + u"=\"" +
                escapeXml(node.ns->uri.view(), true) + u"\"";
    if (node.children.empty()) return text + u"/>";
    text += u">";
    const bool isNested =
        pretty && (node.children.size() > 1 || node.children[0]->kind != XmlNode::Kind::Text);
    for (const XmlNode* child : node.children) {
        if (isNested) text += u'\n';
        text += toMarkup(vm, *child, pretty && isNested, indent + xmlSettings(vm).prettyIndent);
    }
    if (isNested) text += u'\n' + margin;
    return text + u"</" + name + u">";
}

bool matches(const Multiname& name, const XmlNode& node)
{
    if (name.attribute != (node.kind == XmlNode::Kind::Attribute)) return false;
    const bool isNamed = node.kind == XmlNode::Kind::Element || node.kind == XmlNode::Kind::Attribute;
    if (name.isAnyName() && !isNamed) return true;
    if (!isNamed) return false;
    if (!name.name.isNull() && !(name.name == node.name)) return false;
    if (name.anyNamespace || name.isAnyName()) return true;
    for (std::uint32_t i = 0; i < name.size(); ++i)
        if (name.at(i) == node.ns) return true;
    return false;
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
