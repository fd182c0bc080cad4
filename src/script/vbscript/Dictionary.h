#pragma once

#include "script/vbscript/Engine.h"
#include "script/vbscript/KeyTable.h"

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
    Result<Value> readItem(const Value& key);
    Result<Value> writeItem(const Value& key, const Value& value);
    Result<Value> add(const Value& key, const Value& value);
    Result<Value> rename(const Value& from, const Value& to);
    Result<Value> remove(const Value& key);
    Result<Value> setCompareMode(const Value& mode);
    Result<void> insert(const KeyTable::Probe& missed, const Value& key, const Value& item);

    KeyTable m_table;
};

} // namespace script::vbscript
