#include "flash/avm2/classes/Library.h"

namespace flash::avm2::classes
{

namespace
{

Namespace* byUri(Vm& vm, std::u16string_view uri) { return vm.ns(Namespace::Kind::Public, vm.name(uri)); }

Value constructNamespace(Call& call)
{
    Vm& vm = call.vm;
    auto& made = selfAs<NamespaceObject>(call, "Namespace");
    made.ns = vm.publicNs();
    made.prefix = Value(vm.common().empty.string());
    const Value uri = call.arg(call.count >= 2 ? 1 : 0);
    if (call.count == 0) return {};
    if (auto* other = as<NamespaceObject>(uri)) {
        made.ns = other->ns;
        made.prefix = other->prefix;
    } else if (auto* name = as<QNameObject>(uri); name != nullptr && name->ns != nullptr) {
        made.ns = name->ns;
        made.prefix = Value();
    } else {
        made.ns = byUri(vm, vm.text(uri));
        made.prefix = made.ns->uri.view().empty() ? Value(vm.common().empty.string()) : Value();
    }
    if (call.count >= 2) {
        String* prefix = vm.toString(call.arg(0));
        if (call.arg(0).isNullish() && !made.ns->uri.view().empty()) {
            made.prefix = Value();
        } else {
            if (made.ns->uri.view().empty() && !prefix->isEmpty())
                vm.throwError(ErrorClass::Type, 1098,
                              u"Illegal prefix " + std::u16string(prefix->view()) + u" for no namespace.");
            bool isName = true;
            for (const char16_t unit : prefix->view()) isName = isName && unit != u' ' && unit != u':';
            made.prefix = isName ? Value(prefix) : Value();
        }
    }
    return {};
}

Value convertNamespace(Call& call)
{
    if (call.count == 1 && as<NamespaceObject>(call.arg(0)) != nullptr) return call.arg(0);
    return call.callee->construct(call.vm, call.rest(0));
}

Value namespacePrefix(Call& call) { return selfAs<NamespaceObject>(call, "Namespace").prefix; }
Value namespaceUri(Call& call) { return selfAs<NamespaceObject>(call, "Namespace").ns->uri.string(); }

Object* allocateNamespace(Vm& vm, ClassObject& cls)
{
    auto* made = vm.heap().make<NamespaceObject>(cls.instances, cls.prototype);
    made->ns = vm.publicNs();
    return made;
}

Value constructQName(Call& call)
{
    Vm& vm = call.vm;
    auto& made = selfAs<QNameObject>(call, "QName");
    const auto setName = [&](Value value) {
        if (value.isUndefined()) {
            made.name = vm.common().empty;
            return;
        }
        made.name = vm.names().intern(vm.toString(value));
        if (made.name.view() == u"*") made.name = {};
    };
    made.ns = vm.defaultXmlNs;
    if (call.count == 0) {
        made.name = vm.common().empty;
        return {};
    }
    const Value last = call.arg(call.count >= 2 ? 1 : 0);
    if (auto* other = as<QNameObject>(last)) {
        made.name = other->name;
        made.ns = other->ns;
        made.prefix = other->prefix;
        if (call.count < 2) return {};
    } else {
        setName(last);
        if (made.name.isNull()) made.ns = nullptr;
        if (call.count < 2) return {};
    }
    const Value first = call.arg(0);
    made.prefix = Value();
    if (first.isNull()) {
        made.ns = nullptr;
    } else if (first.isUndefined()) {
        made.ns = made.name.isNull() ? nullptr : vm.defaultXmlNs;
    } else if (auto* ns = as<NamespaceObject>(first)) {
        made.ns = ns->ns;
        made.prefix = ns->prefix;
    } else if (auto* name = as<QNameObject>(first); name != nullptr && name->ns != nullptr) {
        made.ns = name->ns;
        made.prefix = name->prefix;
    } else {
        made.ns = byUri(vm, vm.text(first));
    }
    return {};
}

Value convertQName(Call& call)
{
    if (call.count == 1 && as<QNameObject>(call.arg(0)) != nullptr) return call.arg(0);
    return call.callee->construct(call.vm, call.rest(0));
}

Value localName(Call& call)
{
    auto& name = selfAs<QNameObject>(call, "QName");
    return name.name.isNull() ? Value(call.vm.name("*").string()) : Value(name.name.string());
}
Value qnameUri(Call& call)
{
    auto& name = selfAs<QNameObject>(call, "QName");
    return name.ns != nullptr ? Value(name.ns->uri.string()) : Value::null();
}
Value qnameToString(Call& call)
{
    auto* name = as<QNameObject>(call.self);
    if (name == nullptr) return call.vm.common().empty.string();
    const std::u16string local = name->name.isNull() ? u"*" : std::u16string(name->name.view());
    if (name->ns == nullptr) return call.vm.string(u"*::" + local);
    return call.vm.string(qualified(name->ns, name->name));
}
Value valueOf(Call& call) { return call.self; }

constexpr NativeMember kNamespaceMembers[] = {
    {"prefix", Kind::Getter, &namespacePrefix},
    {"uri", Kind::Getter, &namespaceUri, 0, 0, nullptr, "String"},
    {"toString", Kind::As3, &namespaceUri, 0, -1},
    {"valueOf", Kind::As3, &namespaceUri, 0, -1},
};
constexpr NativeMember kQNameMembers[] = {
    {"localName", Kind::Getter, &localName, 0, 0, nullptr, "String"},
    {"uri", Kind::Getter, &qnameUri},
    {"toString", Kind::As3, &qnameToString, 0, -1},
    {"valueOf", Kind::As3, &valueOf, 0, -1},
};
constexpr NativeConstant kLengthTwo[] = {{"length", 2}};

} // namespace

constinit const NativeClass kNamespace{.package = {},
                                       .name = "Namespace",
                                       .base = {},
                                       .flags = NativeClass::Sealed | NativeClass::Final,
                                       .constructor = &constructNamespace,
                                       .minArguments = 0,
                                       .maxArguments = 2,
                                       .allocate = &allocateNamespace,
                                       .conversion = &convertNamespace,
                                       .members = kNamespaceMembers,
                                       .constants = kLengthTwo};
constinit const NativeClass kQName{.package = {},
                                   .name = "QName",
                                   .base = {},
                                   .flags = NativeClass::Sealed | NativeClass::Final,
                                   .constructor = &constructQName,
                                   .minArguments = 0,
                                   .maxArguments = 2,
                                   .allocate = &allocateNative<QNameObject>,
                                   .conversion = &convertQName,
                                   .members = kQNameMembers,
                                   .constants = kLengthTwo};

} // namespace flash::avm2::classes
