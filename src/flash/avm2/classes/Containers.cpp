#include "flash/avm2/classes/Library.h"

#include <unordered_map>

namespace flash::avm2::classes
{

namespace
{

/// Keys are texts, like those of all objects, or objects themselves.
class DictionaryObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    DictionaryObject(Traits* traits, Object* proto) : Object(traits, proto) { m_exotic = Exotic::First; }
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        // Weak keys are kept, too: what a movie sees is the same, but for the memory.
        for (const Entry& entry : m_entries) {
            tracer(entry.key);
            tracer(entry.value);
        }
    }
    /// The names of objects as keys come here before they become texts.
    bool getObject(Value key, Value& result)
    {
        const auto found = m_index.find(key.bits());
        if (found == m_index.end()) return false;
        result = m_entries[found->second].value;
        return true;
    }
    void setObject(Value key, Value value)
    {
        const auto [found, isNew] = m_index.try_emplace(key.bits(), m_entries.size());
        if (isNew)
            m_entries.push_back({key, value});
        else
            m_entries[found->second].value = value;
    }
    bool removeObject(Value key)
    {
        const auto found = m_index.find(key.bits());
        if (found == m_index.end()) return false;
        m_entries[found->second] = {};
        m_index.erase(found);
        return true;
    }
    bool getExotic(Vm&, const Multiname& name, Value& result) override
    {
        return name.key.isObject() && (getObject(name.key, result) || (result = Value(), true));
    }
    bool setExotic(Vm&, const Multiname& name, Value value) override
    {
        if (!name.key.isObject()) return false;
        setObject(name.key, value);
        return true;
    }
    bool hasExotic(Vm&, const Multiname& name) override
    {
        Value ignored;
        return name.key.isObject() && getObject(name.key, ignored);
    }
    bool deleteExotic(Vm&, const Multiname& name, bool& deleted) override
    {
        if (!name.key.isObject()) return false;
        deleted = removeObject(name.key);
        return true;
    }
    std::uint32_t nextIndex(Vm& vm, std::uint32_t after) override
    {
        for (std::size_t i = after; i < m_entries.size(); ++i) {
            if (!m_entries[i].key.isUndefined()) return static_cast<std::uint32_t>(i) + 1;
        }
        const auto own = static_cast<std::uint32_t>(m_entries.size());
        const std::uint32_t next = Object::nextIndex(vm, after > own ? after - own : 0);
        return next == 0 ? 0 : next + own;
    }
    Value nextName(Vm& vm, std::uint32_t index) override
    {
        const auto own = static_cast<std::uint32_t>(m_entries.size());
        if (index == 0) return {};
        return index <= own ? m_entries[index - 1].key : Object::nextName(vm, index - own);
    }
    Value nextValue(Vm& vm, std::uint32_t index) override
    {
        const auto own = static_cast<std::uint32_t>(m_entries.size());
        if (index == 0) return {};
        return index <= own ? m_entries[index - 1].value : Object::nextValue(vm, index - own);
    }

private:
    struct Entry {
        Value key, value;
    };
    std::vector<Entry, vm::TracedAllocator<Entry>> m_entries;
    std::unordered_map<std::uint64_t, std::size_t> m_index;
};

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
Value toJson(Call& call) { return call.vm.string(std::string_view("Dictionary")); }

constexpr NativeMember kDictionaryMembers[] = {{"toJSON", Kind::Prototype, &toJson, 0, 1}};
constexpr NativeMember kProxyMembers[] = {
    {"getProperty", Kind::Proxy, &refuse<0>},    {"setProperty", Kind::Proxy, &refuse<1>},
    {"callProperty", Kind::Proxy, &refuse<2>},   {"hasProperty", Kind::Proxy, &refuse<3>},
    {"deleteProperty", Kind::Proxy, &refuse<4>}, {"getDescendants", Kind::Proxy, &refuse<5>},
    {"nextNameIndex", Kind::Proxy, &refuse<6>},  {"nextName", Kind::Proxy, &refuse<7>},
    {"nextValue", Kind::Proxy, &refuse<8>},      {"isAttribute", Kind::Proxy, &isAttribute},
};

} // namespace

constinit const NativeClass kDictionary{.package = "flash.utils",
                                        .name = "Dictionary",
                                        .base = {},
                                        .constructor = &nothing,
                                        .minArguments = 0,
                                        .maxArguments = 1,
                                        .allocate = &allocateNative<DictionaryObject>,
                                        .members = kDictionaryMembers};
constinit const NativeClass kProxy{.package = "flash.utils",
                                   .name = "Proxy",
                                   .base = {},
                                   .constructor = &nothing,
                                   .minArguments = 0,
                                   .maxArguments = 0,
                                   .allocate = &allocateNative<ProxyObject>,
                                   .members = kProxyMembers};

} // namespace flash::avm2::classes
