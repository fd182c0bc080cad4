#include "flash/avm1/classes/XmlMembers.h"

#include <optional>

// Names of nodes with a prefix, and the addresses that prefixes stand for.
namespace flash::avm1::xml
{
namespace
{

constexpr std::u16string_view kDeclaration = u"xmlns";

/// The prefix that an attribute declares, if it is a declaration. Whatever begins with "xmlns" is one, as in
/// the genuine player: without a colon right after it stands for the default namespace.
std::optional<std::u16string_view> declaredPrefix(std::u16string_view attribute)
{
    if (!attribute.starts_with(kDeclaration)) return {};
    attribute.remove_prefix(kDeclaration.size());
    if (!attribute.starts_with(u':')) return std::u16string_view();
    return attribute.substr(1);
}

/// Calls found(prefix, uri) for each declaration that is seen from a node, the nearest first, until it
/// answers true.
template <class Found>
void forEachDeclaration(const Object* object, Found found)
{
    for (; object != nullptr; object = object->native<XmlNode>()->parent) {
        const Object* attributes = object->native<XmlNode>()->attributes;
        const std::vector<Shape::Property>& properties = attributes->shape()->properties();
        for (auto at = properties.rbegin(); at != properties.rend(); ++at) {
            const Shape::Property& property = *at;
            if (property.name.isNull()) continue; // removed
            const auto prefix = declaredPrefix(property.name.view());
            const Value uri = attributes->slot(property.slot);
            // A script may have put anything there; only texts count, so that nothing runs meanwhile.
            if (prefix && uri.isString() && found(*prefix, uri.string())) return;
        }
    }
}

String* uriFor(const Object* object, std::u16string_view prefix)
{
    String* answer = nullptr;
    forEachDeclaration(object, [&](std::u16string_view declared, String* uri) {
        if (declared == prefix) answer = uri;
        return answer != nullptr;
    });
    return answer;
}

/// The part of a qualified name before its colon; empty when there is none.
std::u16string_view prefixOf(std::u16string_view name)
{
    const auto colon = name.find(u':');
    return colon == name.npos ? std::u16string_view() : name.substr(0, colon);
}

} // namespace

Value getPrefix(Call& call)
{
    const auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    return node->name == nullptr ? Value::null() : Value(call.vm.string(prefixOf(node->name->view())));
}
Value getLocalName(Call& call)
{
    const auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    if (node->name == nullptr) return Value::null();
    const std::u16string_view name = node->name->view();
    return call.vm.string(name.substr(name.find(u':') + 1)); // npos + 1 is 0
}
Value getNamespaceUri(Call& call)
{
    const auto* node = nodeOf(call.self);
    if (node == nullptr) return {};
    if (node->name == nullptr) return Value::null();
    String* uri = uriFor(call.self.object(), prefixOf(node->name->view()));
    return uri == nullptr ? Value(call.vm.string(std::string_view())) : Value(uri);
}

Value getNamespaceForPrefix(Call& call)
{
    if (nodeOf(call.self) == nullptr) return {};
    return nullable(uriFor(call.self.object(), toText(call.vm, call.arg(0))));
}

Value getPrefixForNamespace(Call& call)
{
    if (nodeOf(call.self) == nullptr) return {};
    const std::u16string wanted = toText(call.vm, call.arg(0));
    Value answer = Value::null();
    forEachDeclaration(call.self.object(), [&](std::u16string_view prefix, String* uri) {
        if (uri->view() != wanted) return false;
        answer = call.vm.string(prefix);
        return true;
    });
    return answer;
}

} // namespace flash::avm1::xml
