#pragma once

#include "script/vbscript/Text.h"

#include <cstdint>
#include <deque>
#include <unordered_map>

namespace script::vbscript
{

/// A name's number; names that differ only in case have the same one.
using Symbol = std::uint32_t;

/// All names that the code of one engine mentions.
class Names
{
public:
    Symbol intern(std::u16string_view name)
    {
        std::u16string key = folded(name);
        if (const auto found = m_symbols.find(key); found != m_symbols.end()) return found->second;
        const auto symbol = static_cast<Symbol>(m_spellings.size());
        m_spellings.emplace_back(name);
        m_symbols.emplace(std::move(key), symbol);
        return symbol;
    }
    [[nodiscard]] Symbol count() const { return static_cast<Symbol>(m_spellings.size()); }
    /// As the code spelled it first.
    [[nodiscard]] const std::u16string& spelling(Symbol symbol) const { return m_spellings[symbol]; }

private:
    std::deque<std::u16string> m_spellings;
    std::unordered_map<std::u16string, Symbol> m_symbols;
};

} // namespace script::vbscript
