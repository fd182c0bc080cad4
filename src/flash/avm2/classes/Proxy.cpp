#include "flash/avm2/classes/Library.h"

namespace flash::avm2::classes
{

namespace
{

/// Asks functions of its own, in a namespace of their own, for everything that its traits do not name.
class ProxyObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ProxyObject(Traits* traits, Object* proto) : Object(traits, proto) { m_exotic = Exotic::Last; }
    static Multiname own(Vm& vm, std::string_view name)
    {
        return Multiname::of(vm.name(name), vm.ns(Namespace::Kind::Public,
                                                  "http://www.adobe.com/2006/actionscript/flash/proxy"));
    }
    static Value asName(Vm& vm, const Multiname& name)
    {
        if (name.runtime && !name.attribute && (name.index != Atom::kNotIndex || !name.name.isNull()) &&
            !name.anyNamespace && name.hasPublic())
            return name.index != Atom::kNotIndex ? Value(vm.names().fromIndex(name.index).string())
                                                 : Value(name.name.string());
        Namespace* ns = name.anyNamespace ? nullptr : name.size() == 1 ? name.at(0) : vm.publicNs();
        if (name.hasPublic() && !name.anyNamespace) ns = vm.publicNs();
        auto* made =
            newQName(vm, ns, name.index != Atom::kNotIndex ? vm.names().fromIndex(name.index) : name.name);
        made->attribute = name.attribute;
        return made;
    }
    Value ask(Vm& vm, std::string_view what, std::initializer_list<Value> args)
    {
        return vm.callProperty(Value(this), own(vm, what), std::span<const Value>(args.begin(), args.size()));
    }
    bool getExotic(Vm& vm, const Multiname& name, Value& result) override
    {
        result = ask(vm, "getProperty", {asName(vm, name)});
        return true;
    }
    bool setExotic(Vm& vm, const Multiname& name, Value value) override
    {
        ask(vm, "setProperty", {asName(vm, name), value});
        return true;
    }
    bool hasExotic(Vm& vm, const Multiname& name) override
    {
        // A name with a namespace is asked for as one text, even when it is one of the object's own.
        if (name.runtime && name.single != nullptr && !name.single->isPublic() && !name.name.isNull())
            return vm.toBoolean(
                ask(vm, "hasProperty", {Value(vm.string(qualified(name.single, name.name)))}));
        if (!name.name.isNull() && m_traits->find(name) != nullptr) return false;
        return vm.toBoolean(
            ask(vm, "hasProperty",
                {name.runtime || name.hasPublic()
                     ? Value(name.index != Atom::kNotIndex ? vm.names().fromIndex(name.index).string()
                                                           : name.name.string())
                     : asName(vm, name)}));
    }
    bool deleteExotic(Vm& vm, const Multiname& name, bool& deleted) override
    {
        deleted = vm.toBoolean(ask(vm, "deleteProperty", {asName(vm, name)}));
        return true;
    }
    bool callExotic(Vm& vm, const Multiname& name, std::span<const Value> args, Value& result) override
    {
        if (!name.name.isNull() && m_traits->find(name) != nullptr) return false;
        RootedList<Value> all(vm.heap());
        all.push_back(asName(vm, name));
        for (const Value arg : args) all.push_back(arg);
        result = vm.callProperty(Value(this), own(vm, "callProperty"), std::span<const Value>(*all));
        return true;
    }
    std::uint32_t nextIndex(Vm& vm, std::uint32_t after) override
    {
        return vm.toUint(ask(vm, "nextNameIndex", {Value(after)}));
    }
    Value nextName(Vm& vm, std::uint32_t index) override { return ask(vm, "nextName", {Value(index)}); }
    Value nextValue(Vm& vm, std::uint32_t index) override { return ask(vm, "nextValue", {Value(index)}); }
    Value descendants(Vm& vm, const Multiname& name) override
    {
        return ask(vm, "getDescendants", {asName(vm, name)});
    }
};

template <int number>
Value refuse(Call& call)
{
    static constexpr const char* kTexts[] = {"getProperty",   "setProperty",    "callProperty",
                                             "hasProperty",   "deleteProperty", "getDescendants",
                                             "nextNameIndex", "nextName",       "nextValue"};
    call.vm.throwError(ErrorClass::IllegalOperation, 2088 + number,
                       fromUtf8(std::string("The Proxy class does not implement ") + kTexts[number] +
                                ". It must be overridden by a subclass."));
}
Value isAttribute(Call& call)
{
    auto* name = as<QNameObject>(call.arg(0));
    return name != nullptr && name->attribute;
}
Value nothing(Call&) { return {}; }

constexpr NativeMember kProxyMembers[] = {
    {"getProperty", Kind::Proxy, &refuse<0>},    {"setProperty", Kind::Proxy, &refuse<1>},
    {"callProperty", Kind::Proxy, &refuse<2>},   {"hasProperty", Kind::Proxy, &refuse<3>},
    {"deleteProperty", Kind::Proxy, &refuse<4>}, {"getDescendants", Kind::Proxy, &refuse<5>},
    {"nextNameIndex", Kind::Proxy, &refuse<6>},  {"nextName", Kind::Proxy, &refuse<7>},
    {"nextValue", Kind::Proxy, &refuse<8>},      {"isAttribute", Kind::Proxy, &isAttribute},
};

} // namespace

constinit const NativeClass kProxy{.package = "flash.utils",
                                   .name = "Proxy",
                                   .base = {},
                                   .constructor = &nothing,
                                   .minArguments = 0,
                                   .maxArguments = 0,
                                   .allocate = &allocateNative<ProxyObject>,
                                   .members = kProxyMembers};

} // namespace flash::avm2::classes
