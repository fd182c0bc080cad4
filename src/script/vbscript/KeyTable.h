#pragma once

#include "script/Value.h"

#include <array>
#include <cstdlib>
#include <memory>

namespace script::vbscript
{

/// The table behind a dictionary: entries in the order in which they were added, in one array, and beside it
/// slots that hold an entry's hash and place. Looking a key up reads one line of slots and one entry, whose
/// key of a few characters stands in it; growing reads neither keys nor entries.
class KeyTable
{
public:
    /// What looking a key up has found. Valid until something is inserted, removed or renamed.
    struct Probe {
        [[nodiscard]] bool isThere() const { return place != kNone; }
        std::uint32_t hash = 0;
        std::uint32_t place = kNone; // of the entry
        std::size_t slot = 0;        // the entry's, or the free one where the search ended
    };

    KeyTable() = default;
    ~KeyTable() { destroy(); }
    KeyTable(KeyTable&& other) noexcept { swap(other); }
    KeyTable& operator=(KeyTable&& other) noexcept
    {
        KeyTable taken(std::move(other));
        swap(taken);
        return *this;
    }

    /// Whether texts that differ in case only are the same key. To be set while the table is empty.
    void setIgnoreCase(bool ignores) { m_ignoreCase = ignores; }
    [[nodiscard]] bool ignoresCase() const { return m_ignoreCase; }
    /// How many keys there are.
    [[nodiscard]] std::size_t count() const { return m_count; }

    /// @param key no array
    [[nodiscard]] Probe find(const Value& key) const;
    [[nodiscard]] const Value& item(const Probe& found) const { return m_entries[found.place].item; }
    /// @returns what was there before. What releasing it runs may come back to the table.
    [[nodiscard]] Value setItem(const Probe& found, Value item)
    {
        return std::exchange(m_entries[found.place].item, std::move(item));
    }
    /// @param missed what find() answered for the key
    void insert(const Probe& missed, const Value& key, const Value& item);
    /// The entry keeps its place among the others. @param to a key that is not there, or the entry's own
    /// @returns the key of before, whose release may come back to the table
    [[nodiscard]] Value rename(const Probe& found, const Value& to);
    /// @returns key and item, whose release may come back to the table
    [[nodiscard]] std::pair<Value, Value> remove(const Probe& found);

    /// How many more bytes the table may take up when its present number of keys has doubled.
    [[nodiscard]] std::size_t bytesToGrow() const;

    [[nodiscard]] std::vector<Value> keys() const;
    [[nodiscard]] std::vector<Value> items() const;

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    /// The longest text that an entry holds itself, in characters.
    static constexpr std::size_t kShortText = 15;
    enum class KeyKind : std::uint8_t { Gap, Variant, Text };

    struct Entry {
        Entry(const Value& key, const Value& value);
        ~Entry();
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        [[nodiscard]] std::u16string_view text() const { return {shortText.data(), length}; }
        [[nodiscard]] Value key() const;
        void setKey(const Value& key);
        Value takeKey();

        Value item;
        union {
            Value variant;
            std::array<char16_t, kShortText> shortText;
        };
        KeyKind kind;
        std::uint8_t length;
    };
    struct Slot {
        std::uint32_t hash;
        std::uint32_t next; // the entry's place plus one; 0: free, kDeleted: passed by
    };
    static constexpr std::uint32_t kDeleted = UINT32_MAX;
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };

    /// Equal keys have the same hash: numbers by value whatever their type, texts by characters.
    [[nodiscard]] std::uint32_t hashOf(const Value& key) const;
    template <class Same>
    [[nodiscard]] Probe search(std::uint32_t hash, Same same) const;
    void occupy(std::uint32_t hash, std::uint32_t place);
    bool makeRoomForSlot();
    void resizeSlots(std::size_t wanted);
    void closeGaps();
    void resizeEntries(std::size_t wanted);
    void destroy();
    void swap(KeyTable& other) noexcept;

    // Raw memory that grows where it stands: a Value may be moved by its bits.
    std::unique_ptr<Entry[], Free> m_entries;
    std::size_t m_used = 0; // entries, gaps of removed ones included
    std::size_t m_capacity = 0;
    // Found by the low bits of the hash and then one after the other. At most half of them are taken; their
    // number is a power of two, or 0.
    std::unique_ptr<Slot[], Free> m_slots;
    std::size_t m_slotCount = 0;
    std::size_t m_taken = 0; // slots that are not free, deleted ones included
    std::size_t m_count = 0;
    bool m_ignoreCase = false;
};

} // namespace script::vbscript
