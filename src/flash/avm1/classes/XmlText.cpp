#include "flash/avm1/classes/XmlNode.h"

#include <algorithm>
#include <array>

namespace flash::avm1
{
namespace
{

constexpr auto kKnownEntities = net::XmlEntities::HardBlank;
constexpr std::size_t kMaxNesting = 2000; ///< elements within elements; deeper ones are hung on the deepest

struct Entity {
    std::u16string_view text;
    char16_t character;
};
constexpr std::array<Entity, 6> kEntities = {{{u"&lt;", u'<'},
                                              {u"&gt;", u'>'},
                                              {u"&amp;", u'&'},
                                              {u"&quot;", u'"'},
                                              {u"&apos;", u'\''},
                                              {u"&nbsp;", u'\u00A0'}}};

void appendEscaped(std::u16string& out, std::u16string_view text)
{
    for (const char16_t c : text) {
        const auto* entity = std::find_if(kEntities.begin(), kEntities.end(),
                                          [&](const Entity& e) { return e.character == c; });
        if (entity != kEntities.end()) {
            out += entity->text;
        } else {
            out += c;
        }
    }
}

class Parser
{
public:
    Parser(Vm& vm, Object* document, std::u16string_view text)
        : m_vm(vm), m_scanner(text), m_document(document), m_open{document}, m_kept(vm.heap())
    {
    }

    XmlParseResult run()
    {
        m_ignoresWhite = ignoresWhite();
        while (m_result.status == XmlStatus::Ok && !m_vm.isUnwinding()) {
            const Token token = m_scanner.next();
            if (token.kind == Token::Kind::Finish) break;
            step(token);
        }
        if (m_result.status == XmlStatus::Ok && m_open.size() > 1)
            m_result.status = XmlStatus::StartWithoutEnd;
        return std::move(m_result);
    }

private:
    using Token = net::XmlToken;

    void step(const Token& token)
    {
        switch (token.kind) {
        case Token::Kind::Text:
            if (m_ignoresWhite && net::isXmlSpace(token.text)) return;
            return append(
                newXmlNode(m_vm, XmlNode::kText, m_vm.string(net::decodeXml(token.text, kKnownEntities))));
        case Token::Kind::Cdata: return append(newXmlNode(m_vm, XmlNode::kText, m_vm.string(token.text)));
        case Token::Kind::Instruction: m_result.declaration += token.whole; return;
        case Token::Kind::Doctype: m_result.doctype = token.whole; return;
        case Token::Kind::Start: return open(element(token.text));
        case Token::Kind::Empty: {
            Object* node = element(token.text);
            append(node);
            return noteId(node);
        }
        case Token::Kind::End: return end(token.text);
        case Token::Kind::Damage: m_result.status = m_scanner.status(); return;
        case Token::Kind::Comment:
        case Token::Kind::Finish: return;
        }
    }

    void end(std::u16string_view name)
    {
        if (m_tooDeep > 0) {
            --m_tooDeep;
            return;
        }
        if (m_open.size() < 2) {
            m_result.status = XmlStatus::EndWithoutStart;
        } else if (isNamed(m_open.back(), name)) {
            m_open.pop_back();
            m_kept->pop_back();
        } else {
            // The end of one further out leaves this one without; the end of none has no start.
            const bool isOpen = std::any_of(m_open.begin() + 1, m_open.end(),
                                            [&](const Object* open) { return isNamed(open, name); });
            m_result.status = isOpen ? XmlStatus::StartWithoutEnd : XmlStatus::EndWithoutStart;
        }
    }

    static bool isNamed(const Object* object, std::u16string_view name)
    {
        const auto* node = object->native<XmlNode>();
        return node != nullptr && node->name != nullptr && node->name->view() == name;
    }

    /// As it is when the text begins: setters that run meanwhile come too late.
    [[nodiscard]] bool ignoresWhite()
    {
        // Asked of the object: a movie may have set it for all documents, on the class.
        return toBoolean(m_vm, m_document->get(m_vm, m_vm.name(std::string_view("ignoreWhite"))));
    }

    /// Before version 8 the elements are properties of the document, later of an object `idMap` of its own.
    void noteId(Object* node)
    {
        Value id;
        Object* attributes = node->native<XmlNode>()->attributes;
        if (!attributes->getPlain(m_vm, m_vm.name(std::string_view("id")), attributes, id) || !id.isString())
            return;
        const Name name = toName(m_vm, id);
        if (m_vm.version() < 8) return m_document->put(m_vm, name, node);
        const Name mapName = m_vm.name(std::string_view("idMap"));
        Value map;
        // What a script has put there stays, even where it can take no elements.
        if (m_document->getPlain(m_vm, mapName, m_document, map)) {
            if (!map.isObject()) return;
        } else {
            map = m_vm.newObject(nullptr);
            m_document->define(m_vm, mapName, map);
        }
        map.object()->put(m_vm, name, node);
    }

    Object* element(std::u16string_view name)
    {
        Object* node = newXmlNode(m_vm, XmlNode::kElement, m_vm.string(name));
        Object* attributes = node->native<XmlNode>()->attributes;
        // The last one is made first, so that loops over the names see them as they stand in the text. Of two
        // of one name the first holds.
        const auto& given = m_scanner.attributes();
        for (auto at = given.rbegin(); at != given.rend(); ++at)
            attributes->define(m_vm, m_vm.name(at->name),
                               m_vm.string(net::decodeXml(at->value, kKnownEntities)));
        return node;
    }

    void append(Object* node)
    {
        if (m_open.back()->native<XmlNode>() != nullptr) appendXmlChild(m_open.back(), node);
    }
    void open(Object* node)
    {
        append(node);
        noteId(node);
        if (m_open.size() < kMaxNesting) {
            m_kept.push_back(node);
            m_open.push_back(node);
        } else {
            ++m_tooDeep;
        }
    }

    Vm& m_vm;
    net::XmlScanner m_scanner;
    Object* m_document;
    TracedList<Object*> m_open;
    // All but the document, which the caller holds: scripts may take elements out of the tree meanwhile.
    RootedValues m_kept;
    std::size_t m_tooDeep = 0;
    bool m_ignoresWhite = false;
    XmlParseResult m_result;
};

void appendAttributes(Vm& vm, std::u16string& out, Object* attributes)
{
    // A copy: turning a value into text may run script, which may change the attributes.
    RootedNames names(vm.heap());
    const std::vector<Shape::Property>& properties = attributes->shape()->properties();
    for (auto at = properties.rbegin(); at != properties.rend(); ++at)
        if (const Shape::Property& property = *at;
            !property.name.isNull() && (property.flags & (kDontEnum | kAccessor)) == 0)
            names.push_back(property.name);
    for (const Name name : names) {
        Value value;
        if (!attributes->getPlain(vm, name, attributes, value)) continue;
        out += u' ';
        out += name.view();
        out += u"=\"";
        appendEscaped(out, toText(vm, value));
        out += u'"';
    }
}

void appendNode(Vm& vm, std::u16string& out, Object* object, std::size_t depth)
{
    const auto* node = object->native<XmlNode>();
    if (node == nullptr || depth > 2 * kMaxNesting) return;
    if (node->type != XmlNode::kElement) {
        if (node->value != nullptr) appendEscaped(out, node->value->view());
        return;
    }
    const bool isNamed = node->name != nullptr;
    const std::u16string name = isNamed ? std::u16string(node->name->view()) : std::u16string();
    if (isNamed) {
        out += u'<';
        out += name;
        appendAttributes(vm, out, node->attributes);
        out += node->children.empty() ? u" />" : u">";
    }
    for (Object* child : node->children) appendNode(vm, out, child, depth + 1);
    if (isNamed && !node->children.empty()) {
        out += u"</";
        out += name;
        out += u'>';
    }
}

} // namespace

XmlParseResult parseXml(Vm& vm, Object* document, std::u16string_view text)
{
    return Parser(vm, document, text).run();
}

std::u16string escapeXmlText(std::u16string_view text)
{
    std::u16string out;
    for (const char16_t unit : text) {
        // The hard blank has a name in documents only.
        if (unit == u'\u00A0')
            out += unit;
        else
            appendEscaped(out, {&unit, 1});
    }
    return out;
}

std::u16string xmlText(Vm& vm, Object* node)
{
    std::u16string out;
    appendNode(vm, out, node, 0);
    return out;
}

} // namespace flash::avm1
