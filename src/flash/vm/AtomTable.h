#pragma once

#include "flash/vm/String.h"

#include <unordered_map>

namespace flash::vm
{

/// The table of interned names. Holds them weakly: a name that no shape, code block or stack mentions goes
/// away with the next collection, so that a movie counting through millions of keys does not fill the memory.
class AtomTable
{
public:
    explicit AtomTable(Heap& heap);
    AtomTable(const AtomTable&) = delete;
    AtomTable& operator=(const AtomTable&) = delete;

    Name intern(std::u16string_view text);
    Name intern(std::string_view latin1);
    Name intern(String* string);
    Name fromIndex(std::uint32_t index);
    /// The text of one UTF-16 unit.
    Name fromUnit(char16_t unit);

    /// Some instance of the stage got this name: what looks names up among them must do so from now on.
    /// @returns whether the name was known already as something else: caches may hold that nothing has it
    bool noteNodeName(std::u16string_view text);
    /// @returns whether an instance may ever have had the name, in whatever case.
    [[nodiscard]] bool mayBeNodeName(Name name) const
    {
        return m_anyMayBeNodeName || name.cell()->m_folded->m_isNodeName;
    }

    /// @returns the text in lower case, as names are folded: letters of Latin, Greek and Cyrillic.
    static std::u16string fold(std::u16string_view text);

    /// AtomTable the engine itself looks up. Never collected.
    struct Common {
        Name empty, proto, prototype, constructor, constructorInternal, resolve, length, toString, valueOf,
            callee, caller, arguments, self, super, root, parent, global, undefined, null, trueText,
            falseText, onUnload, name, message, string;
    };
    [[nodiscard]] const Common& common() const { return m_common; }

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::u16string_view text) const
        {
            return std::hash<std::u16string_view>{}(text);
        }
    };
    void dropUnmarked();
    static constexpr std::size_t kMaxNodeNames = 50000;
    static constexpr std::size_t kKeptUnits = 256;

    Heap& m_heap;
    std::unordered_map<std::u16string_view, Atom*> m_table; // the views point into the names' own text
    Common m_common;
    RootedList<Name> m_nodeNames;
    bool m_anyMayBeNodeName = false; // too many to remember
    RootedList<Name> m_units;        // texts of one unit, the first 256
};

} // namespace flash::vm
