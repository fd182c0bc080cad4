#include "flash/avm2/classes/Xml.h"

#include "flash/net/XmlScanner.h"

#include <algorithm>

namespace flash::avm2::classes
{

std::u16string_view trimmedXml(std::u16string_view text)
{
    while (!text.empty() && net::isXmlSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && net::isXmlSpace(text.back())) text.remove_suffix(1);
    return text;
}

namespace
{

/// Writes a tree, with declarations for the namespaces that nothing in it declares.
class Writer
{
public:
    explicit Writer(Vm& vm) : m_vm(vm) {}

    std::u16string write(const XmlNode& node, bool pretty, int indent)
    {
        const std::u16string margin =
            pretty ? std::u16string(static_cast<std::size_t>(std::max(0, indent)), u' ') : std::u16string();
        switch (node.kind) {
        case XmlNode::Kind::Text:
            if (node.isCdata) return margin + u"<![CDATA[" + node.text + u"]]>";
            return margin + escapeXml(pretty ? trimmedXml(node.text) : std::u16string_view(node.text), false);
        case XmlNode::Kind::Attribute: return margin + escapeXml(node.text, true);
        case XmlNode::Kind::Comment: return margin + u"<!--" + node.text + u"-->";
        case XmlNode::Kind::Instruction:
            return margin + u"<?" + std::u16string(node.name.view()) + u" " + node.text + u"?>";
        case XmlNode::Kind::Element: break;
        }
        const std::size_t outer = m_added.size();
        const std::u16string name = qualifiedName(node);
        std::u16string text = margin + u"<" + name;
        for (const XmlNode* attribute : node.attributes)
            text += u" " + qualifiedName(*attribute) + u"=\"" + escapeXml(attribute->text, true) + u"\"";
        for (const XmlNode::Declaration& declaration : node.declarations)
            text += declared(prefixOf(declaration), *declaration.ns);
        for (std::size_t i = outer; i < m_added.size(); ++i)
            text += declared(m_added[i].prefix, *m_added[i].ns);
        if (node.children.empty()) {
            text += u"/>";
        } else {
            text += u">";
            const bool isNested =
                pretty && (node.children.size() > 1 || node.children[0]->kind != XmlNode::Kind::Text);
            for (const XmlNode* child : node.children) {
                if (isNested) text += u'\n';
                text += write(*child, isNested, indent + xmlSettings(m_vm).prettyIndent);
            }
            if (isNested) text += u'\n' + margin;
            text += u"</" + name + u">";
        }
        m_added.resize(outer);
        return text;
    }

private:
    struct Added {
        std::u16string prefix;
        const Namespace* ns;
    };
    static std::u16string_view prefixOf(const XmlNode::Declaration& declaration)
    {
        return declaration.prefix.isString() ? declaration.prefix.string()->view() : std::u16string_view();
    }
    static std::u16string declared(std::u16string_view prefix, const Namespace& ns)
    {
        return (prefix.empty() ? u" xmlns" : u" xmlns:" + std::u16string(prefix)) + u"=\"" +
               escapeXml(ns.uri.view(), true) + u"\"";
    }
    std::u16string qualifiedName(const XmlNode& node)
    {
        const std::u16string prefix = prefixFor(node);
        return (prefix.empty() ? u"" : prefix + u":") + std::u16string(node.name.view());
    }
    /// By what is declared around it; declares it where it stands when nothing is.
    std::u16string prefixFor(const XmlNode& node)
    {
        if (node.ns == nullptr || node.ns->uri.view().empty()) return {};
        const XmlNode* scope = node.kind == XmlNode::Kind::Element ? &node : node.parent;
        for (const XmlNode* at = scope; at != nullptr; at = at->parent) {
            for (const XmlNode::Declaration& declaration : at->declarations)
                if (declaration.ns == node.ns) return std::u16string(prefixOf(declaration));
        }
        for (const Added& added : m_added)
            if (added.ns == node.ns) return added.prefix;
        if (node.ns->uri.view() == u"http://www.w3.org/XML/1998/namespace") return u"xml";
        std::u16string prefix;
        while (isTaken(scope, prefix)) advance(prefix);
        m_added.push_back({prefix, node.ns});
        return prefix;
    }
    bool isTaken(const XmlNode* scope, std::u16string_view prefix) const
    {
        for (const XmlNode* at = scope; at != nullptr; at = at->parent) {
            for (const XmlNode::Declaration& declaration : at->declarations)
                if (prefixOf(declaration) == prefix) return true;
        }
        return std::ranges::any_of(m_added, [&](const Added& added) { return added.prefix == prefix; });
    }
    /// None, then "aaa", "aab" and so on.
    static void advance(std::u16string& prefix)
    {
        if (prefix.empty()) {
            prefix = u"aaa";
            return;
        }
        std::size_t at = prefix.size();
        while (at > 0 && prefix[at - 1] == u'z') prefix[--at] = u'a';
        if (at > 0)
            ++prefix[at - 1];
        else
            prefix += u'a';
    }
    Vm& m_vm;
    std::vector<Added> m_added;
};

} // namespace

std::u16string toMarkup(Vm& vm, const XmlNode& node, bool pretty, int indent)
{
    return Writer(vm).write(node, pretty, indent);
}

} // namespace flash::avm2::classes
