#pragma once

#include "script/vbscript/Engine.h"

namespace script::vbscript
{

/// The object Err: the last error, and Raise.
class ErrObject final : public EngineObject
{
public:
    using EngineObject::EngineObject;
    [[nodiscard]] std::u16string typeName() const override { return u"Object"; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override;
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override;

private:
    Result<Value> raise(Arguments arguments);
};

} // namespace script::vbscript
