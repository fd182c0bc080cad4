#pragma once

#include "flash/avm2/interpreter/Value.h"

#include <string>

namespace flash::avm2
{

/// A namespace. Those of one kind and address are one cell; private ones are all different.
class Namespace final : public Cell
{
public:
    enum class Kind : std::uint8_t { Public, Private, Internal, Protected, StaticProtected, Explicit };
    Namespace(Kind kind, Name uri) : kind(kind), uri(uri) {}
    void trace(Tracer& tracer) override { tracer(uri); }
    [[nodiscard]] bool isPublic() const { return kind == Kind::Public && uri.view().empty(); }

    const Kind kind;
    const Name uri;
};

/// A name as code uses it: one text, sought in several namespaces.
struct Multiname {
    Name name;                        ///< null: any
    Namespace* const* list = nullptr; ///< belongs to the unit whose code asks
    std::uint32_t count = 0;
    Namespace* single = nullptr; ///< in place of the list
    bool attribute = false, anyNamespace = false;
    bool runtime = false; ///< the text comes from a value
    Value key{};          ///< the object that stands for a name, for those that take them as such
    std::uint32_t index = vm::Atom::kNotIndex; ///< of an element, when the name was a number; `name` is null

    [[nodiscard]] std::uint32_t size() const { return single != nullptr ? 1 : count; }
    [[nodiscard]] Namespace* at(std::uint32_t i) const { return single != nullptr ? single : list[i]; }
    [[nodiscard]] bool isAnyName() const { return name.isNull() && index == vm::Atom::kNotIndex; }
    [[nodiscard]] bool contains(const Namespace* ns) const
    {
        for (std::uint32_t i = 0; i < size(); ++i) {
            if (at(i) == ns) return true;
        }
        return false;
    }
    /// Whether what has no namespace is meant, too.
    [[nodiscard]] bool hasPublic() const
    {
        if (anyNamespace) return true;
        for (std::uint32_t i = 0; i < size(); ++i) {
            if (at(i)->isPublic()) return true;
        }
        return false;
    }
    /// @returns the one name that a member found by this would have; null when it is not just one
    static Multiname of(Name name, Namespace* ns)
    {
        Multiname result;
        result.name = name;
        result.single = ns;
        return result;
    }
};

/// `flash.display::Sprite`
inline std::u16string qualified(Namespace* ns, Name name)
{
    std::u16string text;
    if (ns != nullptr && !ns->uri.view().empty()) text = std::u16string(ns->uri.view()) + u"::";
    return text + (name.isNull() ? std::u16string(u"*") : std::u16string(name.view()));
}

} // namespace flash::avm2
