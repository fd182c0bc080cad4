#pragma once

#include "flash/vm/String.h"

#include <functional>
#include <vector>

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
    Name intern(String* string)
    {
        return string->atom() != nullptr ? Name(string->atom()) : internNew(string);
    }
    Name fromIndex(std::uint32_t index);
    /// The text of one UTF-16 unit.
    Name fromUnit(char16_t unit);

    /// Some instance of the stage got this name: what looks names up among them must do so from now on.
    /// @returns whether the name was known already as something else: caches may hold that nothing has it
    bool noteNodeName(std::u16string_view text);
    /// @returns whether an instance may have the name, in whatever case.
    [[nodiscard]] bool mayBeNodeName(Name name) const
    {
        return m_anyMayBeNodeName || name.cell()->m_folded->m_isNodeName;
    }
    /// @returns whether so many names came that a look at which of them are still in use is worth its while.
    [[nodiscard]] bool hasManyNodeNames() const
    {
        return m_anyMayBeNodeName || m_nodeNames.size() >= m_manyNodeNames;
    }
    /// Forgets the names that instances had. To be called where all that has a name can be found.
    /// @param noteAll is to call noteNodeName() for each instance that there is
    void renewNodeNames(const std::function<void()>& noteAll);

    /// @returns the text in lower case, as names are folded: letters of Latin, Greek and Cyrillic.
    static std::u16string fold(std::u16string_view text);

    /// Names that the engine itself looks up. Never collected.
    struct Common {
        Name empty, proto, prototype, constructor, constructorInternal, resolve, length, toString, valueOf,
            callee, caller, arguments, self, super, root, parent, global, undefined, null, trueText,
            falseText, onUnload, name, message, string;
    };
    [[nodiscard]] const Common& common() const { return m_common; }

private:
    // Names are looked up in every frame, each with caches that have forgotten the table: a slot is found in
    // one step, and the text of no other name is looked at.
    struct Slot {
        std::size_t hash = 0;
        Atom* atom = nullptr; // null: free
    };
    [[nodiscard]] static std::size_t hashOf(std::u16string_view text)
    {
        return std::hash<std::u16string_view>{}(text);
    }
    /// The slot of a text, or the free one where it would go.
    [[nodiscard]] const Slot& slotOf(std::u16string_view text, std::size_t hash) const;
    void put(Slot slot);
    void place(Slot slot);
    void resize(std::size_t slots);
    Name internNew(String* string);
    void dropUnmarked();
    void clearNodeNames();
    static constexpr std::size_t kMaxNodeNames = 50000, kFewNodeNames = 2000;
    static constexpr std::size_t kKeptUnits = 256;

    Heap& m_heap;
    std::vector<Slot> m_slots; // a power of two; at most half of them taken
    std::size_t m_taken = 0;
    Common m_common;
    RootedList<Name> m_nodeNames;
    std::size_t m_manyNodeNames = kFewNodeNames;
    bool m_anyMayBeNodeName = false; // too many to remember
    RootedList<Name> m_units;        // texts of one unit, the first 256
};

} // namespace flash::vm
