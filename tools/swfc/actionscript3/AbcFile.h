#pragma once

#include "flash/avm2/abc/Abc.h"

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace swfc::actionscript3
{

namespace abc = flash::avm2::abc;

/// A block of ActionScript 3 while it is made: equal constants are kept once.
class AbcFile
{
public:
    using Index = std::uint32_t;

    AbcFile();
    Index integer(std::int32_t value);
    Index uinteger(std::uint32_t value);
    Index number(double value);
    Index string(const std::string& text);
    Index ns(abc::NamespaceKind kind, const std::string& name);
    Index nsSet(const std::vector<Index>& namespaces);
    /// Any kind of name; what the kind does not have is 0.
    Index multiname(abc::MultinameKind kind, Index name, Index nsOrSet);
    Index qname(Index ns, const std::string& name)
    {
        return multiname(abc::MultinameKind::QName, string(name), ns);
    }
    Index typeName(Index base, const std::vector<Index>& parameters);
    Index addMethod(abc::MethodInfo info);
    /// @returns the index of the body; `code` is kept.
    Index addBody(abc::Body body, std::vector<std::uint8_t> code);
    Index addMetadata(abc::Metadata metadata);

    abc::Abc data;
    /// @returns the block as it stands in a movie.
    [[nodiscard]] std::vector<std::uint8_t> bytes() const;

private:
    std::deque<std::vector<std::uint8_t>> m_codes; // the bodies' code points here
    std::map<std::int32_t, Index> m_ints;
    std::map<std::uint32_t, Index> m_uints;
    std::map<std::uint64_t, Index> m_doubles; // by their bits
    std::map<std::string, Index> m_strings;
    std::map<std::pair<abc::NamespaceKind, Index>, Index> m_namespaces;
    std::map<std::vector<Index>, Index> m_sets;
    std::map<std::tuple<abc::MultinameKind, Index, Index, std::vector<Index>>, Index> m_multinames;
};

} // namespace swfc::actionscript3
