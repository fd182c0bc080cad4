#include "swfc/actionscript3/AbcFile.h"

#include <bit>

namespace swfc::actionscript3
{
namespace
{

using abc::MultinameKind;

/// Writes the parts of a block in the order of the format.
class Writer
{
public:
    explicit Writer(const abc::Abc& abc) : m_abc(abc) {}

    std::vector<std::uint8_t> run()
    {
        m_out = {16, 0, 46, 0};
        pools();
        u30(m_abc.methods.size());
        for (const abc::MethodInfo& info : m_abc.methods) method(info);
        u30(m_abc.metadata.size());
        for (const abc::Metadata& entry : m_abc.metadata) {
            u30(entry.name);
            u30(entry.items.size());
            for (const auto& item : entry.items) u30(item.first);
            for (const auto& item : entry.items) u30(item.second);
        }
        u30(m_abc.instances.size());
        for (const abc::InstanceInfo& info : m_abc.instances) {
            u30(info.name);
            u30(info.superName);
            u8(info.flags);
            if ((info.flags & abc::InstanceInfo::ProtectedNs) != 0) u30(info.protectedNs);
            u30(info.interfaces.size());
            for (const std::uint32_t interface : info.interfaces) u30(interface);
            u30(info.initializer);
            traits(info.traits);
        }
        for (const abc::ClassInfo& info : m_abc.classes) {
            u30(info.initializer);
            traits(info.traits);
        }
        u30(m_abc.scripts.size());
        for (const abc::ScriptInfo& info : m_abc.scripts) {
            u30(info.initializer);
            traits(info.traits);
        }
        u30(m_abc.bodies.size());
        for (const abc::Body& body : m_abc.bodies) this->body(body);
        return std::move(m_out);
    }

private:
    void u8(std::size_t value) { m_out.push_back(static_cast<std::uint8_t>(value)); }
    void u30(std::size_t wide)
    {
        auto value = static_cast<std::uint32_t>(wide);
        for (; value >= 0x80; value >>= 7U) u8(value | 0x80U);
        u8(value);
    }
    /// Pools do not hold their first entry; one with nothing else says 0.
    template <class Pool, class Write>
    void pool(const Pool& entries, Write write)
    {
        u30(entries.size() <= 1 ? 0 : entries.size());
        for (std::size_t i = 1; i < entries.size(); ++i) write(entries[i]);
    }

    void pools()
    {
        pool(m_abc.ints, [&](std::int32_t value) { u30(static_cast<std::uint32_t>(value)); });
        pool(m_abc.uints, [&](std::uint32_t value) { u30(value); });
        pool(m_abc.doubles, [&](double value) {
            const auto bits = std::bit_cast<std::uint64_t>(value);
            for (unsigned i = 0; i < 64; i += 8) u8(bits >> i & 0xFFU);
        });
        pool(m_abc.strings, [&](const std::string& text) {
            u30(text.size());
            m_out.insert(m_out.end(), text.begin(), text.end());
        });
        pool(m_abc.namespaces, [&](const abc::NamespaceInfo& info) {
            u8(static_cast<std::size_t>(info.kind));
            u30(info.name);
        });
        pool(m_abc.namespaceSets, [&](const std::vector<std::uint32_t>& set) {
            u30(set.size());
            for (const std::uint32_t ns : set) u30(ns);
        });
        pool(m_abc.multinames, [&](const abc::MultinameInfo& info) { multiname(info); });
    }

    void multiname(const abc::MultinameInfo& info)
    {
        u8(static_cast<std::size_t>(info.kind));
        switch (info.kind) {
        case MultinameKind::QName:
        case MultinameKind::QNameA:
            u30(info.ns);
            u30(info.name);
            break;
        case MultinameKind::RtqName:
        case MultinameKind::RtqNameA: u30(info.name); break;
        case MultinameKind::RtqNameL:
        case MultinameKind::RtqNameLA: break;
        case MultinameKind::Multiname:
        case MultinameKind::MultinameA:
            u30(info.name);
            u30(info.ns);
            break;
        case MultinameKind::MultinameL:
        case MultinameKind::MultinameLA: u30(info.ns); break;
        case MultinameKind::TypeName:
            u30(info.name);
            u30(info.parameters.size());
            for (const std::uint32_t parameter : info.parameters) u30(parameter);
            break;
        }
    }

    void method(const abc::MethodInfo& info)
    {
        u30(info.parameterTypes.size());
        u30(info.returnType);
        for (const std::uint32_t type : info.parameterTypes) u30(type);
        u30(info.name);
        u8(info.flags);
        if ((info.flags & abc::MethodInfo::HasOptional) == 0) return;
        u30(info.optionals.size());
        for (const abc::Constant& value : info.optionals) {
            u30(value.index);
            u8(value.kind);
        }
    }

    void traits(const std::vector<abc::Trait>& list)
    {
        using Kind = abc::Trait::Kind;
        u30(list.size());
        for (const abc::Trait& trait : list) {
            u30(trait.name);
            u8(static_cast<std::size_t>(trait.kind) | static_cast<std::size_t>(trait.attributes) << 4U);
            u30(trait.id);
            if (trait.kind == Kind::Slot || trait.kind == Kind::Const) {
                u30(trait.type);
                // Constants without a pool of their own are their own index; 0 would mean that there is none.
                const std::uint32_t index = trait.value.index == 0 ? trait.value.kind : trait.value.index;
                u30(index);
                if (index != 0) u8(trait.value.kind);
            } else {
                u30(trait.index);
            }
            if ((trait.attributes & abc::Trait::HasMetadata) == 0) continue;
            u30(trait.metadata.size());
            for (const std::uint32_t entry : trait.metadata) u30(entry);
        }
    }

    void body(const abc::Body& body)
    {
        u30(body.method);
        u30(body.maxStack);
        u30(body.localCount);
        u30(body.initScopeDepth);
        u30(body.maxScopeDepth);
        u30(body.code.size());
        m_out.insert(m_out.end(), body.code.begin(), body.code.end());
        u30(body.exceptions.size());
        for (const abc::ExceptionInfo& info : body.exceptions) {
            u30(info.from);
            u30(info.to);
            u30(info.target);
            u30(info.type);
            u30(info.name);
        }
        traits(body.traits);
    }

    const abc::Abc& m_abc;
    std::vector<std::uint8_t> m_out;
};

template <class Key, class Entry>
std::uint32_t intern(std::map<Key, std::uint32_t>& known, const Key& key, std::vector<Entry>& pool,
                     Entry entry)
{
    const auto [place, isNew] = known.try_emplace(key, static_cast<std::uint32_t>(pool.size()));
    if (isNew) pool.push_back(std::move(entry));
    return place->second;
}

} // namespace

AbcFile::AbcFile()
{
    data.ints.resize(1);
    data.uints.resize(1);
    data.doubles.resize(1);
    data.strings.resize(1);
    data.namespaces.resize(1);
    data.namespaceSets.resize(1);
    data.multinames.resize(1);
}

AbcFile::Index AbcFile::integer(std::int32_t value) { return intern(m_ints, value, data.ints, value); }
AbcFile::Index AbcFile::uinteger(std::uint32_t value) { return intern(m_uints, value, data.uints, value); }
AbcFile::Index AbcFile::number(double value)
{
    return intern(m_doubles, std::bit_cast<std::uint64_t>(value), data.doubles, value);
}
AbcFile::Index AbcFile::string(const std::string& text)
{
    return intern(m_strings, text, data.strings, text);
}

AbcFile::Index AbcFile::ns(abc::NamespaceKind kind, const std::string& name)
{
    const Index text = string(name);
    return intern(m_namespaces, {kind, text}, data.namespaces, abc::NamespaceInfo{kind, text});
}

AbcFile::Index AbcFile::nsSet(const std::vector<Index>& namespaces)
{
    return intern(m_sets, namespaces, data.namespaceSets, namespaces);
}

AbcFile::Index AbcFile::multiname(MultinameKind kind, Index name, Index nsOrSet)
{
    return intern(m_multinames, {kind, name, nsOrSet, {}}, data.multinames,
                  abc::MultinameInfo{kind, name, nsOrSet, {}});
}

AbcFile::Index AbcFile::typeName(Index base, const std::vector<Index>& parameters)
{
    return intern(m_multinames, {MultinameKind::TypeName, base, 0, parameters}, data.multinames,
                  abc::MultinameInfo{MultinameKind::TypeName, base, 0, parameters});
}

AbcFile::Index AbcFile::addMethod(abc::MethodInfo info)
{
    data.methods.push_back(std::move(info));
    return static_cast<Index>(data.methods.size()) - 1;
}

AbcFile::Index AbcFile::addBody(abc::Body body, std::vector<std::uint8_t> code)
{
    m_codes.push_back(std::move(code));
    body.code = m_codes.back();
    data.bodies.push_back(std::move(body));
    return static_cast<Index>(data.bodies.size()) - 1;
}

AbcFile::Index AbcFile::addMetadata(abc::Metadata metadata)
{
    data.metadata.push_back(std::move(metadata));
    return static_cast<Index>(data.metadata.size()) - 1;
}

std::vector<std::uint8_t> AbcFile::bytes() const { return Writer(data).run(); }

} // namespace swfc::actionscript3
