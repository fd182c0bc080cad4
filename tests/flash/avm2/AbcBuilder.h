#pragma once

#include "flash/avm2/abc/Opcodes.h"

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace flash::avm2::test
{

/// Writes a block with one script, whose initialiser is the given code. Names are public, or of the
/// language's own namespace.
class AbcBuilder
{
public:
    using Bytes = std::vector<std::uint8_t>;

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
    std::uint32_t name(std::string_view text)
    {
        m_names.push_back(string(text));
        return static_cast<std::uint32_t>(m_names.size()) +
               1; // the first is the one whose text comes from the stack
    }
    static constexpr std::uint32_t kRuntimeName = 1;

    template <class... Operands>
    AbcBuilder& op(abc::Op op, Operands... operands)
    {
        m_code.push_back(static_cast<std::uint8_t>(op));
        (u30(m_code, static_cast<std::uint32_t>(operands)), ...);
        return *this;
    }
    AbcBuilder& byte(int value)
    {
        m_code.push_back(static_cast<std::uint8_t>(abc::Op::pushbyte));
        m_code.push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    /// To a place before or behind, in bytes from the end of the instruction.
    AbcBuilder& jump(abc::Op op, int offset)
    {
        m_code.push_back(static_cast<std::uint8_t>(op));
        for (int i = 0; i < 3; ++i) m_code.push_back(static_cast<std::uint8_t>(offset >> 8 * i));
        return *this;
    }
    AbcBuilder& raw(std::initializer_list<int> bytes)
    {
        for (const int byte : bytes) m_code.push_back(static_cast<std::uint8_t>(byte));
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
    [[nodiscard]] std::size_t position() const { return m_code.size(); }
    struct Handler {
        std::uint32_t from, to, target;
    };
    std::vector<Handler> handlers;
    std::uint32_t maxStack = 16, locals = 8, maxScopes = 8;

    [[nodiscard]] Bytes build() const
    {
        Bytes out = {16, 0, 46, 0};
        u30(out, 0);
        u30(out, 0);
        u30(out, static_cast<std::uint32_t>(m_doubles.size()) + (m_doubles.empty() ? 0 : 1));
        for (const double value : m_doubles) {
            const auto bits = std::bit_cast<std::uint64_t>(value);
            for (unsigned i = 0; i < 8; ++i) out.push_back(static_cast<std::uint8_t>(bits >> 8U * i));
        }
        std::vector<std::string> strings = m_strings;
        strings.emplace_back("http://adobe.com/AS3/2006/builtin");
        strings.emplace_back("");
        u30(out, static_cast<std::uint32_t>(strings.size()) + 1);
        for (const std::string& text : strings) {
            u30(out, static_cast<std::uint32_t>(text.size()));
            out.insert(out.end(), text.begin(), text.end());
        }
        u30(out, 3);
        out.push_back(0x16);
        u30(out, static_cast<std::uint32_t>(strings.size()));
        out.push_back(0x08);
        u30(out, static_cast<std::uint32_t>(strings.size()) - 1);
        u30(out, 2);
        u30(out, 2);
        u30(out, 1);
        u30(out, 2);
        u30(out, static_cast<std::uint32_t>(m_names.size()) + 2);
        out.push_back(0x1B);
        u30(out, 1);
        for (const std::uint32_t text : m_names) {
            out.push_back(0x09);
            u30(out, text);
            u30(out, 1);
        }
        u30(out, 1); // methods
        for (int i = 0; i < 3; ++i) u30(out, 0);
        out.push_back(0);
        u30(out, 0); // metadata
        u30(out, 0); // classes
        u30(out, 1); // scripts
        u30(out, 0);
        u30(out, 0);
        u30(out, 1); // bodies
        u30(out, 0);
        u30(out, maxStack);
        u30(out, locals);
        u30(out, 0);
        u30(out, maxScopes);
        u30(out, static_cast<std::uint32_t>(m_code.size()));
        out.insert(out.end(), m_code.begin(), m_code.end());
        u30(out, static_cast<std::uint32_t>(handlers.size()));
        for (const Handler& handler : handlers) {
            u30(out, handler.from);
            u30(out, handler.to);
            u30(out, handler.target);
            u30(out, 0);
            u30(out, 0);
        }
        u30(out, 0);
        return out;
    }

private:
    static void u30(Bytes& out, std::uint32_t value)
    {
        while (value >= 0x80) {
            out.push_back(static_cast<std::uint8_t>(value | 0x80U));
            value >>= 7U;
        }
        out.push_back(static_cast<std::uint8_t>(value));
    }
    Bytes m_code;
    std::vector<std::string> m_strings;
    std::vector<double> m_doubles;
    std::vector<std::uint32_t> m_names;
};

} // namespace flash::avm2::test
