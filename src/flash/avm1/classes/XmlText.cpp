#include "flash/avm1/classes/XmlNode.h"

#include <algorithm>
#include <array>

namespace flash::avm1
{
namespace
{

constexpr std::size_t kDeepest = 2000; ///< elements within elements; deeper ones are hung on the deepest

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

bool isSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

std::u16string decodeEntities(std::u16string_view text)
{
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto* entity = std::find_if(kEntities.begin(), kEntities.end(), [&](const Entity& e) {
            return text.substr(i).starts_with(e.text);
        });
        if (text[i] == u'&' && entity != kEntities.end()) {
            out += entity->character;
            i += entity->text.size();
        } else {
            out += text[i++];
        }
    }
    return out;
}

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
        : m_vm(vm), m_text(text), m_document(document), m_open{document}, m_kept(vm.heap())
    {
    }

    XmlParseResult run()
    {
        m_ignoresWhite = ignoresWhite();
        while (m_at < m_text.size() && m_result.status == XmlStatus::Ok && !m_vm.isUnwinding()) step();
        if (m_result.status == XmlStatus::Ok && m_open.size() > 1)
            m_result.status = XmlStatus::StartWithoutEnd;
        return std::move(m_result);
    }

private:
    void step()
    {
        const std::u16string_view rest = m_text.substr(m_at);
        if (rest.front() != u'<') {
            text();
        } else if (rest.starts_with(u"<!--")) {
            upTo(u"-->", 4, XmlStatus::CommentNotEnded);
        } else if (rest.starts_with(u"<![CDATA[")) {
            const auto content = upTo(u"]]>", 9, XmlStatus::CdataNotEnded);
            if (content) append(newXmlNode(m_vm, XmlNode::kText, m_vm.string(*content)));
        } else if (rest.starts_with(u"<?")) {
            const std::size_t start = m_at;
            if (upTo(u"?>", 2, XmlStatus::DeclarationNotEnded))
                m_result.declaration += m_text.substr(start, m_at - start);
        } else if (rest.starts_with(u"<!")) {
            doctype();
        } else if (rest.starts_with(u"</")) {
            endTag();
        } else {
            startTag();
        }
    }

    /// Moves past the next `end`. @returns what stands before it, or nothing (status set, all consumed).
    std::optional<std::u16string_view> upTo(std::u16string_view end, std::size_t skip, XmlStatus missing)
    {
        const std::size_t start = std::min(m_at + skip, m_text.size());
        const std::size_t found = m_text.find(end, start);
        if (found == std::u16string_view::npos) {
            m_result.status = missing;
            m_at = m_text.size();
            return {};
        }
        m_at = found + end.size();
        return m_text.substr(start, found - start);
    }

    void text()
    {
        const std::size_t end = std::min(m_text.find(u'<', m_at), m_text.size());
        const std::u16string_view raw = m_text.substr(m_at, end - m_at);
        m_at = end;
        if (m_ignoresWhite && std::all_of(raw.begin(), raw.end(), isSpace)) return;
        append(newXmlNode(m_vm, XmlNode::kText, m_vm.string(decodeEntities(raw))));
    }

    /// A document type may hold declarations of its own in angle brackets.
    void doctype()
    {
        int depth = 0;
        for (std::size_t i = m_at; i < m_text.size(); ++i) {
            if (m_text[i] == u'<') ++depth;
            if (m_text[i] == u'>' && --depth == 0) {
                m_result.doctype = m_text.substr(m_at, i + 1 - m_at);
                m_at = i + 1;
                return;
            }
        }
        m_result.status = XmlStatus::DoctypeNotEnded;
    }

    void endTag()
    {
        const auto content = upTo(u">", 2, XmlStatus::ElementMalformed);
        if (!content) return;
        std::u16string_view name = *content;
        while (!name.empty() && isSpace(name.back())) name.remove_suffix(1);
        if (name.ends_with(u'/')) name.remove_suffix(1);
        if (name.empty() || name.find(u' ') != name.npos) return malformed(XmlStatus::ElementMalformed);
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

    void startTag()
    {
        std::size_t at = m_at + 1;
        const auto skipSpace = [&] {
            while (at < m_text.size() && isSpace(m_text[at])) ++at;
        };
        const auto word = [&](std::u16string_view stops) {
            const std::size_t start = at;
            while (at < m_text.size() && !isSpace(m_text[at]) && stops.find(m_text[at]) == stops.npos) ++at;
            return m_text.substr(start, at - start);
        };
        // A slash belongs to the name unless the element ends with it.
        std::u16string_view name = word(u">");
        if (name.ends_with(u'/') && at < m_text.size() && m_text[at] == u'>') {
            name.remove_suffix(1);
            --at;
        }
        if (name.empty()) return malformed(XmlStatus::ElementMalformed);
        Object* node = newXmlNode(m_vm, XmlNode::kElement, m_vm.string(name));
        RootedNames keys(m_vm.heap());
        RootedValues values(m_vm.heap());
        // The last one is made first, so that loops over the names see them as they stand in the text. Of two
        // of one name the first holds.
        const auto giveAttributes = [&] {
            Object* attributes = node->native<XmlNode>()->attributes;
            for (std::size_t i = keys.size(); i-- > 0;) attributes->define(m_vm, keys[i], values[i]);
        };
        for (;;) {
            skipSpace();
            if (at >= m_text.size()) return malformed(XmlStatus::ElementMalformed);
            if (m_text[at] == u'>') {
                m_at = at + 1;
                giveAttributes();
                return open(node);
            }
            if (m_text[at] == u'/') {
                if (at + 1 >= m_text.size() || m_text[at + 1] != u'>')
                    return malformed(XmlStatus::ElementMalformed);
                m_at = at + 2;
                giveAttributes();
                append(node);
                return noteId(node);
            }
            const std::u16string_view key = word(u"=/>");
            skipSpace();
            if (key.empty() || at >= m_text.size() || m_text[at] != u'=')
                return malformed(XmlStatus::ElementMalformed);
            ++at;
            skipSpace();
            if (at >= m_text.size() || (m_text[at] != u'"' && m_text[at] != u'\''))
                return malformed(XmlStatus::ElementMalformed);
            const char16_t quote = m_text[at++];
            const std::size_t end = m_text.find(quote, at);
            if (end == std::u16string_view::npos) return malformed(XmlStatus::AttributeNotEnded);
            const Name attribute = m_vm.name(key);
            keys.push_back(attribute);
            values.push_back(m_vm.string(decodeEntities(m_text.substr(at, end - at))));
            at = end + 1;
        }
    }

    void malformed(XmlStatus status)
    {
        m_result.status = status;
        m_at = m_text.size();
    }

    void append(Object* node)
    {
        if (m_open.back()->native<XmlNode>() != nullptr) appendXmlChild(m_open.back(), node);
    }
    void open(Object* node)
    {
        append(node);
        noteId(node);
        if (m_open.size() < kDeepest) {
            m_kept.push_back(node);
            m_open.push_back(node);
        } else {
            ++m_tooDeep;
        }
    }

    Vm& m_vm;
    std::u16string_view m_text; // the caller's
    Object* m_document;
    TracedList<Object*> m_open;
    // All but the document, which the caller holds: scripts may take elements out of the tree meanwhile.
    RootedValues m_kept;
    std::size_t m_at = 0;
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
    if (node == nullptr || depth > 2 * kDeepest) return;
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
