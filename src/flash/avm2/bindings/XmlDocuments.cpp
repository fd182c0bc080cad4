#include "flash/avm2/bindings/XmlNodes.h"
#include "flash/net/XmlScanner.h"

#include <algorithm>
#include <optional>

namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

// ---- names with prefixes ----

constexpr std::u16string_view kDeclaration = u"xmlns";

/// The prefix that an attribute declares, if it is a declaration; the default namespace's is empty.
std::optional<std::u16string> declaredPrefix(std::u16string_view attribute)
{
    if (attribute == kDeclaration) return std::u16string();
    if (!attribute.starts_with(u"xmlns:")) return {};
    return std::u16string(attribute.substr(kDeclaration.size() + 1));
}

/// Calls found(prefix, uri) for each declaration that is seen from a node, the nearest first, until it
/// answers true.
template <class Found>
void forEachDeclaration(Vm& vm, const XmlNodeObject* node, Found found)
{
    for (; node != nullptr; node = node->parent) {
        Object* attributes = node->attributes.asObject();
        if (attributes == nullptr) continue;
        for (std::uint32_t at = attributes->nextIndex(vm, 0); at != 0; at = attributes->nextIndex(vm, at)) {
            const auto prefix = declaredPrefix(vm.text(attributes->nextName(vm, at)));
            const Value uri = attributes->nextValue(vm, at);
            // A script may have put anything there; only texts count, so that nothing runs meanwhile.
            if (prefix && uri.isString() && found(*prefix, uri)) return;
        }
    }
}

Value uriFor(Vm& vm, const XmlNodeObject& node, std::u16string_view wanted)
{
    Value answer = Value::null();
    forEachDeclaration(vm, &node, [&](const std::u16string& prefix, Value uri) {
        if (prefix != wanted) return false;
        answer = uri;
        return true;
    });
    return answer;
}

std::u16string prefixOf(std::u16string_view name)
{
    const auto colon = name.find(u':');
    return colon == std::u16string_view::npos ? std::u16string() : std::u16string(name.substr(0, colon));
}

Value prefix(Call& call)
{
    const auto& node = xmlNodeSelf(call);
    if (node.name.isNullish()) return Value::null();
    return Value(call.vm.string(prefixOf(call.vm.text(node.name))));
}
Value localName(Call& call)
{
    const auto& node = xmlNodeSelf(call);
    if (node.name.isNullish()) return Value::null();
    const std::u16string name(call.vm.text(node.name));
    const auto colon = name.find(u':');
    return colon == std::u16string::npos ? node.name : Value(call.vm.string(name.substr(colon + 1)));
}
Value namespaceUri(Call& call)
{
    const auto& node = xmlNodeSelf(call);
    if (node.name.isNullish()) return Value::null();
    return uriFor(call.vm, node, prefixOf(call.vm.text(node.name)));
}
Value namespaceForPrefix(Call& call)
{
    return uriFor(call.vm, xmlNodeSelf(call), std::u16string(call.vm.text(call.arg(0))));
}
Value prefixForNamespace(Call& call)
{
    const std::u16string wanted(call.vm.text(call.arg(0)));
    Value answer = Value::null();
    forEachDeclaration(call.vm, &xmlNodeSelf(call), [&](const std::u16string& declared, Value uri) {
        if (call.vm.text(uri) != wanted) return false;
        answer = Value(call.vm.string(declared));
        return true;
    });
    return answer;
}

constexpr NativeMember kNamespaces[] = {
    {"prefix", Kind::Getter, &prefix, 0, 0, nullptr, "String"},
    {"localName", Kind::Getter, &localName, 0, 0, nullptr, "String"},
    {"namespaceURI", Kind::Getter, &namespaceUri, 0, 0, nullptr, "String"},
    {"getNamespaceForPrefix", Kind::Method, &namespaceForPrefix, 1, 1},
    {"getPrefixForNamespace", Kind::Method, &prefixForNamespace, 1, 1},
};

// ---- documents ----

enum DocumentSlot : std::uint8_t { Declaration, Doctype, IdMap, IgnoreWhite };

[[noreturn]] void throwStatus(Vm& vm, net::XmlStatus status)
{
    struct Fault {
        net::XmlStatus status;
        int number;
        const char* text;
    };
    static constexpr Fault kFaults[] = {
        {net::XmlStatus::CdataNotEnded, 1091, "XML parser failure: Unterminated CDATA section."},
        {net::XmlStatus::DeclarationNotEnded, 1092, "XML parser failure: Unterminated XML declaration."},
        {net::XmlStatus::DoctypeNotEnded, 1093, "XML parser failure: Unterminated DOCTYPE declaration."},
        {net::XmlStatus::CommentNotEnded, 1094, "XML parser failure: Unterminated comment."},
        {net::XmlStatus::ElementMalformed, 1090, "XML parser failure: element is malformed."},
        {net::XmlStatus::StartWithoutEnd, 1085,
         "The element type must be terminated by the matching end-tag."},
        {net::XmlStatus::AttributeNotEnded, 1095, "XML parser failure: Unterminated attribute."},
    };
    const auto* fault = std::ranges::find(kFaults, status, &Fault::status);
    if (fault != std::end(kFaults)) vm.throwError(ErrorClass::Error, fault->number, fault->text);
    vm.throwError(ErrorClass::Error, 1088,
                  "The markup in the document following the root element must be well-formed.");
}

class Reader
{
public:
    Reader(Vm& vm, XmlNodeObject& document, std::u16string_view text)
        : m_vm(vm), m_document(document), m_scanner(text), m_open(&document),
          m_ignoresWhite(vm.toBoolean(document.slot(IgnoreWhite)))
    {
    }
    /// @returns how it ended
    net::XmlStatus run()
    {
        using Kind = net::XmlToken::Kind;
        for (;;) {
            m_vm.check();
            const net::XmlToken token = m_scanner.next();
            switch (token.kind) {
            case Kind::Text:
                if (!m_ignoresWhite || !net::isXmlSpace(token.text))
                    addText(net::decodeXml(token.text, net::XmlEntities::HardBlank));
                break;
            case Kind::Cdata: addText(std::u16string(token.text)); break;
            case Kind::Comment: break;
            case Kind::Instruction: m_declaration += token.whole; break;
            case Kind::Doctype: m_doctype = token.whole; break;
            case Kind::Start:
            case Kind::Empty: start(token); break;
            case Kind::End:
                if (m_tooDeep > 0)
                    --m_tooDeep;
                else if (m_open == &m_document)
                    return net::XmlStatus::EndWithoutStart;
                else if (m_vm.text(m_open->name) != token.text)
                    return net::XmlStatus::StartWithoutEnd;
                else
                    end();
                break;
            case Kind::Finish:
                return m_open == &m_document ? net::XmlStatus::Ok : net::XmlStatus::StartWithoutEnd;
            case Kind::Damage: return m_scanner.status();
            }
        }
    }
    [[nodiscard]] const std::u16string& declaration() const { return m_declaration; }
    [[nodiscard]] const std::u16string& doctype() const { return m_doctype; }

private:
    void addText(const std::u16string& text)
    {
        m_open->append(m_vm, *newXmlNode(m_vm, XmlNodeObject::kText, Value(m_vm.string(text))));
    }
    void start(const net::XmlToken& token)
    {
        constexpr int kMaxDepth = 2000; // what lies deeper is hung on the deepest
        XmlNodeObject* node = newXmlNode(m_vm, XmlNodeObject::kElement, Value(m_vm.string(token.text)));
        m_open->append(m_vm, *node);
        for (const net::XmlAttribute& attribute : m_scanner.attributes()) {
            const Multiname key = m_vm.publicName(m_vm.names().intern(attribute.name));
            if (m_vm.hasOwn(node->attributes, key)) continue;
            const Value value(m_vm.string(net::decodeXml(attribute.value, net::XmlEntities::HardBlank)));
            m_vm.set(node->attributes, key, value);
            if (attribute.name == u"id" && m_document.slot(IdMap).isObject())
                m_vm.set(m_document.slot(IdMap), m_vm.publicName(m_vm.names().intern(m_vm.toString(value))),
                         Value(node));
        }
        if (token.kind != net::XmlToken::Kind::Start) return;
        if (m_depth >= kMaxDepth) {
            ++m_tooDeep;
            return;
        }
        m_open = node;
        ++m_depth;
    }
    void end()
    {
        m_open = m_open->parent;
        --m_depth;
    }

    Vm& m_vm;
    XmlNodeObject& m_document;
    net::XmlScanner m_scanner;
    XmlNodeObject* m_open; ///< a part of the document
    std::u16string m_declaration, m_doctype;
    bool m_ignoresWhite;
    int m_depth = 0, m_tooDeep = 0;
};

Value parse(Call& call)
{
    auto& document = xmlNodeSelf(call);
    Vm& vm = call.vm;
    if (call.arg(0).isNullish()) throwNullParameter(vm, "value");
    const std::u16string text(vm.text(call.arg(0)));
    for (XmlNodeObject* child : document.children) child->parent = nullptr;
    document.children.clear();
    document.refreshList(vm);
    document.setSlot(IdMap, Value(vm.newObject()));
    Reader reader(vm, document, text);
    const net::XmlStatus status = reader.run();
    const auto found = [&](const std::u16string& part) {
        return part.empty() ? Value::null() : Value(vm.string(part));
    };
    document.setSlot(Declaration, found(reader.declaration()));
    document.setSlot(Doctype, found(reader.doctype()));
    if (status != net::XmlStatus::Ok) throwStatus(vm, status);
    return {};
}
Value construct(Call& call)
{
    auto& made = xmlNodeSelf(call);
    made.attributes = Value(call.vm.newObject());
    made.setSlot(IdMap, Value(call.vm.newObject()));
    return call.has(0) && !call.arg(0).isNullish() ? parse(call) : Value();
}
Value createElement(Call& call)
{
    return Value(newXmlNode(call.vm, XmlNodeObject::kElement, call.vm.coerceString(call.arg(0))));
}
Value createTextNode(Call& call)
{
    return Value(newXmlNode(call.vm, XmlNodeObject::kText, call.vm.coerceString(call.arg(0))));
}
Value documentText(Call& call)
{
    auto& document = xmlNodeSelf(call);
    std::u16string text;
    for (const DocumentSlot slot : {Declaration, Doctype}) {
        const Value part = document.slot(slot);
        if (!part.isNullish()) text += call.vm.text(part);
    }
    return call.vm.string(text + xmlNodeText(call.vm, document));
}

constexpr NativeMember kDocument[] = {
    {"parseXML", Kind::Method, &parse, 1, 1},
    {"createElement", Kind::Method, &createElement, 1, 1},
    {"createTextNode", Kind::Method, &createTextNode, 1, 1},
    {"toString", Kind::Method, &documentText, 0, 0},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.xml",
     .name = "XMLDocument",
     .base = "flash.xml::XMLNode",
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 1,
     .members = kDocument,
     .slots = "xmlDecl:* docTypeDecl:* idMap:* ignoreWhite:Boolean"},
};

} // namespace

std::span<const NativeMember> xmlNamespaceMembers() { return kNamespaces; }
std::span<const NativeClass> xmlDocumentClasses() { return kClasses; }

} // namespace flash::avm2
