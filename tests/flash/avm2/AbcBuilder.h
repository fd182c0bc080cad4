#pragma once

#include "flash/avm2/abc/Opcodes.h"

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace flash::avm2::test
{

/// Writes a block with one script. Method 0 is its initialiser; what is written goes into the method begun
/// last. Names are public, or of the language's own namespace.
class AbcBuilder
{
public:
    using Bytes = std::vector<std::uint8_t>;

    AbcBuilder() { m_methods.emplace_back(); }

    // ---- pools ----
    std::uint32_t string(std::string_view text)
    {
        for (std::size_t i = 0; i < m_strings.size(); ++i) {
            if (m_strings[i] == text) return static_cast<std::uint32_t>(i) + 1;
        }
        m_strings.emplace_back(text);
        return static_cast<std::uint32_t>(m_strings.size());
    }
    std::uint32_t number(double value)
    {
        m_doubles.push_back(value);
        return static_cast<std::uint32_t>(m_doubles.size());
    }
    /// A name that is public or of the namespace AS3.
    std::uint32_t name(std::string_view text) { return add({0x09, {string(text), 1}}); }
    /// A public name, as definitions have it.
    std::uint32_t qname(std::string_view text) { return add({0x07, {1, string(text)}}); }
    /// The type Vector.<element>
    std::uint32_t vectorOf(std::uint32_t element)
    {
        return add({0x1D, {add({0x07, {3, string("Vector")}}), 1, element}});
    }
    /// The one whose text comes from the stack.
    static constexpr std::uint32_t kRuntimeName = 1;

    // ---- methods and classes ----
    struct Handler {
        std::uint32_t from, to, target;
    };
    struct Method {
        Bytes code;
        std::vector<std::uint32_t> parameters; ///< types
        std::uint32_t maxStack = 16, locals = 12, maxScopes = 8;
        std::uint8_t flags = 0;
        std::vector<Handler> handlers;
        std::map<std::string, std::size_t, std::less<>> labels;
        std::vector<std::pair<std::size_t, std::string>> branches;
    };
    std::uint32_t begin(std::vector<std::uint32_t> parameters = {})
    {
        m_methods.emplace_back().parameters = std::move(parameters);
        return static_cast<std::uint32_t>(m_methods.size()) - 1;
    }
    Method& method() { return m_methods.back(); }
    struct Trait {
        std::uint32_t name = 0;
        std::uint8_t kind = 0;   ///< 0 slot, 1 method, 4 class
        std::uint32_t index = 0; ///< type, method or class
    };
    struct Class {
        std::uint32_t name = 0, super = 0, constructor = 0, initializer = 0;
        std::vector<Trait> traits;
    };
    std::vector<Class> classes;
    std::vector<Trait> globals;

    // ---- code ----
    template <class... Operands>
    AbcBuilder& op(abc::Op op, Operands... operands)
    {
        code().push_back(static_cast<std::uint8_t>(op));
        (u30(code(), static_cast<std::uint32_t>(operands)), ...);
        return *this;
    }
    AbcBuilder& byte(int value)
    {
        code().push_back(static_cast<std::uint8_t>(abc::Op::pushbyte));
        code().push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    /// To a place before or behind, in bytes from the end of the instruction.
    AbcBuilder& jump(abc::Op op, int offset)
    {
        code().push_back(static_cast<std::uint8_t>(op));
        for (int i = 0; i < 3; ++i) code().push_back(static_cast<std::uint8_t>(offset >> 8 * i));
        return *this;
    }
    AbcBuilder& branch(abc::Op op, std::string_view target)
    {
        method().branches.emplace_back(code().size(), target);
        return jump(op, 0);
    }
    AbcBuilder& label(std::string_view here)
    {
        method().labels.emplace(here, code().size());
        return *this;
    }
    AbcBuilder& raw(std::initializer_list<int> bytes)
    {
        for (const int byte : bytes) code().push_back(static_cast<std::uint8_t>(byte));
        return *this;
    }
    /// Prints what lies on top of the stack.
    AbcBuilder& trace()
    {
        const std::uint32_t traceName = name("trace");
        op(abc::Op::findpropstrict, traceName);
        op(abc::Op::swap);
        return op(abc::Op::callpropvoid, traceName, 1);
    }
    [[nodiscard]] std::size_t position() { return code().size(); }

    [[nodiscard]] Bytes build() const
    {
        Bytes out = {16, 0, 46, 0};
        u30(out, 0);
        u30(out, 0);
        u30(out, count(m_doubles) + (m_doubles.empty() ? 0 : 1));
        for (const double value : m_doubles) {
            const auto bits = std::bit_cast<std::uint64_t>(value);
            for (unsigned i = 0; i < 8; ++i) out.push_back(static_cast<std::uint8_t>(bits >> 8U * i));
        }
        std::vector<std::string> strings = m_strings;
        for (const char* text : {"http://adobe.com/AS3/2006/builtin", "", "__AS3__.vec"})
            strings.emplace_back(text);
        u30(out, count(strings) + 1);
        for (const std::string& text : strings) {
            u30(out, count(text));
            out.insert(out.end(), text.begin(), text.end());
        }
        u30(out, 4);
        out.push_back(0x16);
        u30(out, count(strings) - 1);
        out.push_back(0x08);
        u30(out, count(strings) - 2);
        out.push_back(0x16);
        u30(out, count(strings));
        u30(out, 2);
        u30(out, 2);
        u30(out, 1);
        u30(out, 2);
        u30(out, count(m_names) + 2);
        out.push_back(0x1B);
        u30(out, 1);
        for (const NameEntry& entry : m_names) {
            out.push_back(entry.kind);
            for (const std::uint32_t part : entry.parts) u30(out, part);
        }
        u30(out, count(m_methods));
        for (const Method& method : m_methods) {
            u30(out, count(method.parameters));
            u30(out, 0);
            for (const std::uint32_t type : method.parameters) u30(out, type);
            u30(out, 0);
            out.push_back(method.flags);
        }
        u30(out, 0); // metadata
        u30(out, count(classes));
        for (const Class& cls : classes) {
            u30(out, cls.name);
            u30(out, cls.super);
            out.push_back(1); // sealed
            u30(out, 0);
            u30(out, cls.constructor);
            writeTraits(out, cls.traits);
        }
        for (const Class& cls : classes) {
            u30(out, cls.initializer);
            u30(out, 0);
        }
        u30(out, 1); // scripts
        u30(out, 0);
        writeTraits(out, globals);
        u30(out, count(m_methods)); // bodies
        for (std::size_t i = 0; i < m_methods.size(); ++i) writeBody(out, static_cast<std::uint32_t>(i));
        return out;
    }

private:
    struct NameEntry {
        std::uint8_t kind;
        std::vector<std::uint32_t> parts;
        friend bool operator==(const NameEntry&, const NameEntry&) = default;
    };
    std::uint32_t add(NameEntry entry)
    {
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            if (m_names[i] == entry) return static_cast<std::uint32_t>(i) + 2;
        }
        m_names.push_back(std::move(entry));
        return count(m_names) + 1; // the first is the runtime name
    }
    Bytes& code() { return m_methods.back().code; }
    template <class List>
    static std::uint32_t count(const List& list)
    {
        return static_cast<std::uint32_t>(list.size());
    }
    static void writeTraits(Bytes& out, const std::vector<Trait>& traits)
    {
        u30(out, count(traits));
        for (const Trait& trait : traits) {
            u30(out, trait.name);
            out.push_back(trait.kind);
            u30(out, 0); // place, to be given
            u30(out, trait.index);
            if (trait.kind == 0) u30(out, 0); // no initial value
        }
    }
    void writeBody(Bytes& out, std::uint32_t index) const
    {
        const Method& method = m_methods[index];
        Bytes code = method.code;
        for (const auto& [at, target] : method.branches) {
            const auto offset =
                static_cast<std::int64_t>(method.labels.at(target)) - static_cast<std::int64_t>(at) - 4;
            for (std::size_t i = 0; i < 3; ++i) code[at + 1 + i] = static_cast<std::uint8_t>(offset >> 8 * i);
        }
        u30(out, index);
        u30(out, method.maxStack);
        u30(out, method.locals);
        u30(out, 0);
        u30(out, method.maxScopes);
        u30(out, count(code));
        out.insert(out.end(), code.begin(), code.end());
        u30(out, count(method.handlers));
        for (const Handler& handler : method.handlers) {
            u30(out, handler.from);
            u30(out, handler.to);
            u30(out, handler.target);
            u30(out, 0);
            u30(out, 0);
        }
        u30(out, 0);
    }
    static void u30(Bytes& out, std::uint32_t value)
    {
        while (value >= 0x80) {
            out.push_back(static_cast<std::uint8_t>(value | 0x80U));
            value >>= 7U;
        }
        out.push_back(static_cast<std::uint8_t>(value));
    }
    std::vector<std::string> m_strings;
    std::vector<double> m_doubles;
    std::vector<NameEntry> m_names;
    std::vector<Method> m_methods;
};

} // namespace flash::avm2::test
