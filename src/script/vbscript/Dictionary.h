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
        bool removed = false;
    };

    /// Equal keys have the same form: numbers by value whatever their type, texts by characters.
    Result<std::u16string> keyForm(const Value& key) const;
    Result<Value> readItem(const Value& key);
    Result<Value> writeItem(const Value& key, const Value& value);
    Result<Value> add(const Value& key, const Value& value);
    Result<Value> rename(const Value& from, const Value& to);
    Result<Value> remove(const Value& key);
    Result<Value> setCompareMode(const Value& mode);
    [[nodiscard]] std::vector<Value> all(Value Entry::*part) const;
    void insert(std::u16string form, const Value& key, const Value& item);

    std::vector<Entry> m_entries; // removed ones leave gaps until there are many
    std::unordered_map<std::u16string, std::size_t> m_places;
    bool m_ignoreCase = false;
};

} // namespace script::vbscript
