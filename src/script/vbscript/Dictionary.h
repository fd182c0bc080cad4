#pragma once

#include "script/vbscript/Engine.h"

namespace script::vbscript
{

/// Scripting.Dictionary: items by key, walked in the order in which they were added.
class Dictionary final : public EngineObject
{
public:
    using EngineObject::EngineObject;
    [[nodiscard]] std::u16string typeName() const override { return u"Dictionary"; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override;
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override;
    [[nodiscard]] Ref<Enumerator> enumerate() override;
    [[nodiscard]] const void* layout() const override;
    void clear() override;

private:
    struct Entry {
        Value key;
        Value item;
        std::uint32_t hash = 0;
        bool removed = false;
    };
    static constexpr std::uint32_t kNone = UINT32_MAX;

    /// Equal keys have the same hash: numbers by value whatever their type, texts by characters.
    /// @errors 5 for arrays, which are no keys
    [[nodiscard]] Result<std::uint32_t> hashOf(const Value& key) const;
    [[nodiscard]] bool isSame(const Value& left, const Value& right) const;
    /// @returns the entry's place, or kNone
    [[nodiscard]] std::uint32_t find(const Value& key, std::uint32_t hash) const;
    [[nodiscard]] std::size_t freeSlot(std::uint32_t hash) const;
    void insert(std::uint32_t hash, const Value& key, const Value& item);
    void rehash(std::size_t slots);

    Result<Value> readItem(const Value& key);
    Result<Value> writeItem(const Value& key, const Value& value);
    Result<Value> add(const Value& key, const Value& value);
    Result<Value> rename(const Value& from, const Value& to);
    Result<Value> remove(const Value& key);
    Result<Value> setCompareMode(const Value& mode);
    [[nodiscard]] std::vector<Value> all(Value Entry::*part) const;

    std::vector<Entry> m_entries; // removed ones leave gaps until there are many
    // Places in m_entries, found by the low bits of the hash and then one after the other. At most half of
    // the slots are taken; their number is a power of two, or 0.
    std::vector<std::uint32_t> m_slots;
    std::size_t m_count = 0; // entries that are not removed
    std::size_t m_taken = 0; // slots of entries, removed ones included
    bool m_ignoreCase = false;
};

} // namespace script::vbscript
