#include "flash/avm2/abc/Abc.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace flash::avm2::abc
{

namespace
{

constexpr std::uint16_t kMajor = 46;
constexpr std::uint32_t kMaxLocals = 1 << 16;

/// Reads forward; after the first fault everything is 0 and `failed()` says so.
class Reader
{
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}
    [[nodiscard]] bool failed() const { return m_what != nullptr; }
    [[nodiscard]] const char* what() const { return m_what; }
    [[nodiscard]] base::ErrorCode code() const { return m_code; }
    [[nodiscard]] std::size_t position() const { return m_at; }

    std::uint32_t fail(const char* what, base::ErrorCode code = base::ErrorCode::Malformed)
    {
        if (m_what == nullptr) {
            m_what = what;
            m_code = code;
        }
        return 0;
    }
    std::uint8_t u8()
    {
        if (m_at >= m_bytes.size() || failed()) {
            fail("the block ends early", base::ErrorCode::Truncated);
            return 0;
        }
        return m_bytes[m_at++];
    }
    std::uint16_t u16()
    {
        const unsigned low = u8();
        return static_cast<std::uint16_t>(low | u8() << 8U);
    }
    std::uint32_t u32()
    {
        std::uint32_t value = 0;
        for (unsigned shift = 0; shift < 35; shift += 7) {
            const std::uint32_t byte = u8();
            value |= (byte & 0x7FU) << shift;
            if ((byte & 0x80U) == 0) break;
        }
        return value;
    }
    /// A number of things that take at least a byte each.
    std::uint32_t count()
    {
        const std::uint32_t value = u32();
        return value <= m_bytes.size() - m_at ? value : fail("more entries than bytes");
    }
    /// The pools count their default entry, and say 0 for none at all.
    std::uint32_t poolCount()
    {
        const std::uint32_t value = u32();
        if (value == 0) return 1;
        return value - 1 <= m_bytes.size() - m_at ? value : fail("more entries than bytes");
    }
    std::uint32_t index(std::size_t size, const char* what)
    {
        const std::uint32_t value = u32();
        return value < size ? value : fail(what);
    }
    double f64()
    {
        std::uint64_t bits = 0;
        for (unsigned i = 0; i < 8; ++i) bits |= std::uint64_t{u8()} << (8 * i);
        return std::bit_cast<double>(bits);
    }
    std::span<const std::uint8_t> take(std::uint32_t length)
    {
        if (failed() || length > m_bytes.size() - m_at) {
            fail("the block ends early", base::ErrorCode::Truncated);
            return {};
        }
        m_at += length;
        return m_bytes.subspan(m_at - length, length);
    }

private:
    std::span<const std::uint8_t> m_bytes;
    std::size_t m_at = 0;
    const char* m_what = nullptr;
    base::ErrorCode m_code = base::ErrorCode::Malformed;
};

class Parser
{
public:
    explicit Parser(Abc& abc) : m_abc(abc), m_in(abc.bytes) {}

    base::Result<void> run()
    {
        m_in.u16(); // minor
        if (m_in.u16() != kMajor) m_in.fail("unknown version");
        pools();
        methods();
        metadata();
        classes();
        const std::uint32_t scripts = m_in.count();
        for (std::uint32_t i = 0; i < scripts && !m_in.failed(); ++i) {
            ScriptInfo& script = m_abc.scripts.emplace_back();
            script.initializer = method();
            script.traits = traits();
        }
        bodies();
        if (m_in.failed())
            return base::fail(m_in.code(), std::string("ABC: ") + m_in.what(), m_in.position());
        return {};
    }

private:
    std::uint32_t string() { return m_in.index(m_abc.strings.size(), "no such string"); }
    std::uint32_t multiname() { return m_in.index(m_abc.multinames.size(), "no such multiname"); }
    std::uint32_t method() { return m_in.index(m_abc.methods.size(), "no such method"); }

    void pools()
    {
        const std::uint32_t ints = m_in.poolCount();
        m_abc.ints.assign(1, 0);
        for (std::uint32_t i = 1; i < ints && !m_in.failed(); ++i)
            m_abc.ints.push_back(static_cast<std::int32_t>(m_in.u32()));
        const std::uint32_t uints = m_in.poolCount();
        m_abc.uints.assign(1, 0);
        for (std::uint32_t i = 1; i < uints && !m_in.failed(); ++i) m_abc.uints.push_back(m_in.u32());
        const std::uint32_t doubles = m_in.poolCount();
        m_abc.doubles.assign(1, std::numeric_limits<double>::quiet_NaN());
        for (std::uint32_t i = 1; i < doubles && !m_in.failed(); ++i) m_abc.doubles.push_back(m_in.f64());
        const std::uint32_t strings = m_in.poolCount();
        m_abc.strings.assign(1, {});
        for (std::uint32_t i = 1; i < strings && !m_in.failed(); ++i) {
            const auto text = m_in.take(m_in.u32());
            m_abc.strings.emplace_back(text.begin(), text.end());
        }
        namespaces();
        const std::uint32_t multinames = m_in.poolCount();
        m_abc.multinames.assign(1, {});
        for (std::uint32_t i = 1; i < multinames && !m_in.failed(); ++i)
            m_abc.multinames.push_back(multinameInfo(multinames));
        // Names were checked against the count that was announced: all of them have to be there.
        if (m_in.failed()) return;
        // A generic may be named before its base; one that leads back to itself names nothing.
        for (const MultinameInfo& name : m_abc.multinames) {
            if (name.kind != MultinameKind::TypeName) continue;
            if (m_abc.multinames[name.name].kind == MultinameKind::TypeName)
                m_in.fail("generic of a generic");
        }
    }

    void namespaces()
    {
        const std::uint32_t count = m_in.poolCount();
        m_abc.namespaces.assign(1, {});
        for (std::uint32_t i = 1; i < count && !m_in.failed(); ++i) {
            NamespaceInfo info;
            const std::uint8_t kind = m_in.u8();
            if (kind != 0x05 && kind != 0x08 && (kind < 0x16 || kind > 0x1A)) m_in.fail("unknown namespace");
            info.kind = static_cast<NamespaceKind>(kind);
            info.name = string();
            m_abc.namespaces.push_back(info);
        }
        const std::uint32_t sets = m_in.poolCount();
        m_abc.namespaceSets.assign(1, {});
        for (std::uint32_t i = 1; i < sets && !m_in.failed(); ++i) {
            auto& set = m_abc.namespaceSets.emplace_back();
            const std::uint32_t members = m_in.count();
            for (std::uint32_t k = 0; k < members && !m_in.failed(); ++k)
                set.push_back(m_in.index(m_abc.namespaces.size(), "no such namespace"));
        }
    }

    MultinameInfo multinameInfo(std::uint32_t poolSize)
    {
        MultinameInfo info;
        info.kind = static_cast<MultinameKind>(m_in.u8());
        switch (info.kind) {
        case MultinameKind::QName:
        case MultinameKind::QNameA:
            info.ns = m_in.index(m_abc.namespaces.size(), "no such namespace");
            info.name = string();
            break;
        case MultinameKind::RtqName:
        case MultinameKind::RtqNameA: info.name = string(); break;
        case MultinameKind::RtqNameL:
        case MultinameKind::RtqNameLA: break;
        case MultinameKind::Multiname:
        case MultinameKind::MultinameA:
            info.name = string();
            info.ns = m_in.index(m_abc.namespaceSets.size(), "no such namespace set");
            break;
        case MultinameKind::MultinameL:
        case MultinameKind::MultinameLA:
            info.ns = m_in.index(m_abc.namespaceSets.size(), "no such namespace set");
            break;
        case MultinameKind::TypeName: {
            info.name = m_in.index(poolSize, "no such multiname");
            const std::uint32_t count = m_in.count();
            for (std::uint32_t i = 0; i < count && !m_in.failed(); ++i)
                info.parameters.push_back(m_in.index(poolSize, "no such multiname"));
            break;
        }
        default: m_in.fail("unknown multiname");
        }
        return info;
    }

    Constant constant(std::uint32_t index)
    {
        Constant value{m_in.u8(), index};
        std::size_t size = 0;
        switch (value.kind) {
        case 0x01: size = m_abc.strings.size(); break;
        case 0x03: size = m_abc.ints.size(); break;
        case 0x04: size = m_abc.uints.size(); break;
        case 0x06: size = m_abc.doubles.size(); break;
        case 0x00:
        case 0x0A:
        case 0x0B:
        case 0x0C: return value;
        case 0x05:
        case 0x08:
        case 0x16:
        case 0x17:
        case 0x18:
        case 0x19:
        case 0x1A: size = m_abc.namespaces.size(); break;
        default: m_in.fail("unknown constant");
        }
        if (index >= size) m_in.fail("no such constant");
        return value;
    }

    void methods()
    {
        const std::uint32_t count = m_in.count();
        for (std::uint32_t i = 0; i < count && !m_in.failed(); ++i) {
            MethodInfo& info = m_abc.methods.emplace_back();
            const std::uint32_t parameters = m_in.count();
            info.returnType = multiname();
            for (std::uint32_t k = 0; k < parameters && !m_in.failed(); ++k)
                info.parameterTypes.push_back(multiname());
            info.name = m_in.u32();
            if (info.name >= m_abc.strings.size()) info.name = 0;
            info.flags = m_in.u8();
            if ((info.flags & MethodInfo::HasOptional) != 0) {
                const std::uint32_t optionals = m_in.count();
                if (optionals > parameters) m_in.fail("more defaults than parameters");
                for (std::uint32_t k = 0; k < optionals && !m_in.failed(); ++k)
                    info.optionals.push_back(constant(m_in.u32()));
            }
            if ((info.flags & MethodInfo::HasParamNames) != 0) {
                for (std::uint32_t k = 0; k < parameters && !m_in.failed(); ++k) m_in.u32();
            }
        }
    }

    void metadata()
    {
        const std::uint32_t count = m_in.count();
        for (std::uint32_t i = 0; i < count && !m_in.failed(); ++i) {
            Metadata& data = m_abc.metadata.emplace_back();
            data.name = string();
            const std::uint32_t items = m_in.count();
            for (std::uint32_t k = 0; k < items && !m_in.failed(); ++k) data.items.emplace_back(string(), 0);
            for (auto& item : data.items) item.second = string();
        }
    }

    std::vector<Trait> traits()
    {
        std::vector<Trait> result;
        const std::uint32_t count = m_in.count();
        for (std::uint32_t i = 0; i < count && !m_in.failed(); ++i) {
            Trait& trait = result.emplace_back();
            trait.name = multiname();
            const auto kind = m_abc.multinames[trait.name].kind;
            if (kind != MultinameKind::QName && kind != MultinameKind::QNameA)
                m_in.fail("trait without a name");
            const std::uint8_t head = m_in.u8();
            if ((head & 0x0FU) > 6) m_in.fail("unknown trait");
            trait.kind = static_cast<Trait::Kind>(head & 0x0FU);
            trait.attributes = head >> 4U;
            trait.id = m_in.u32();
            switch (trait.kind) {
            case Trait::Kind::Slot:
            case Trait::Kind::Const: {
                trait.type = multiname();
                const std::uint32_t value = m_in.u32();
                if (value != 0) trait.value = constant(value);
                break;
            }
            case Trait::Kind::Class: trait.index = m_in.index(m_classCount, "no such class"); break;
            default: trait.index = method();
            }
            if ((trait.attributes & Trait::HasMetadata) != 0) {
                const std::uint32_t items = m_in.count();
                for (std::uint32_t k = 0; k < items && !m_in.failed(); ++k)
                    trait.metadata.push_back(m_in.index(m_abc.metadata.size(), "no such metadata"));
            }
        }
        return result;
    }

    void classes()
    {
        m_classCount = m_in.count();
        for (std::uint32_t i = 0; i < m_classCount && !m_in.failed(); ++i) {
            InstanceInfo& info = m_abc.instances.emplace_back();
            info.name = multiname();
            if (m_abc.multinames[info.name].kind != MultinameKind::QName) m_in.fail("class without a name");
            info.superName = multiname();
            info.flags = m_in.u8();
            if ((info.flags & InstanceInfo::ProtectedNs) != 0)
                info.protectedNs = m_in.index(m_abc.namespaces.size(), "no such namespace");
            const std::uint32_t interfaces = m_in.count();
            for (std::uint32_t k = 0; k < interfaces && !m_in.failed(); ++k)
                info.interfaces.push_back(multiname());
            info.initializer = method();
            info.traits = traits();
        }
        for (std::uint32_t i = 0; i < m_classCount && !m_in.failed(); ++i) {
            ClassInfo& info = m_abc.classes.emplace_back();
            info.initializer = method();
            info.traits = traits();
        }
    }

    void bodies()
    {
        const std::uint32_t count = m_in.count();
        for (std::uint32_t i = 0; i < count && !m_in.failed(); ++i) {
            Body& body = m_abc.bodies.emplace_back();
            body.method = method();
            body.maxStack = m_in.u32();
            body.localCount = m_in.u32();
            body.initScopeDepth = m_in.u32();
            body.maxScopeDepth = m_in.u32();
            if (body.maxStack > kMaxLocals || body.localCount > kMaxLocals ||
                body.initScopeDepth > body.maxScopeDepth || body.maxScopeDepth > kMaxLocals)
                m_in.fail("impossible frame");
            body.code = m_in.take(m_in.u32());
            const std::uint32_t exceptions = m_in.count();
            for (std::uint32_t k = 0; k < exceptions && !m_in.failed(); ++k) {
                ExceptionInfo& info = body.exceptions.emplace_back();
                info.from = m_in.u32();
                info.to = m_in.u32();
                info.target = m_in.u32();
                info.type = multiname();
                info.name = multiname();
            }
            body.traits = traits();
            if (m_in.failed()) return;
            MethodInfo& owner = m_abc.methods[body.method];
            if (owner.body >= 0) m_in.fail("a method with two bodies");
            owner.body = static_cast<std::int32_t>(i);
        }
    }

    Abc& m_abc;
    Reader m_in;
    std::uint32_t m_classCount = 0;
};

} // namespace

base::Result<std::shared_ptr<const Abc>> parseAbc(std::span<const std::uint8_t> bytes)
{
    auto abc = std::make_shared<Abc>();
    abc->bytes.assign(bytes.begin(), bytes.end());
    if (auto result = Parser(*abc).run(); !result) return tl::make_unexpected(result.error());
    return std::shared_ptr<const Abc>(std::move(abc));
}

} // namespace flash::avm2::abc
