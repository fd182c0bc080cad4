#pragma once

#include "script/vbscript/Engine.h"
#include "script/vbscript/RegExp.h"

namespace script::vbscript
{

/// The object RegExp: Pattern, Global, IgnoreCase, Multiline; Test, Execute, Replace.
class RegExpObject final : public EngineObject
{
public:
    using EngineObject::EngineObject;
    [[nodiscard]] std::u16string typeName() const override { return u"IRegExp2"; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override;
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override;

private:
    Result<void> prepare();
    Result<std::optional<RegExp::Captures>> search(std::u16string_view text, std::size_t from);
    Result<Value> execute(const Value& text);
    Result<Value> replace(const Value& text, const Value& with);
    Result<Value> put(MemberId member, const Value& value);

    std::u16string m_pattern;
    bool m_global = false;
    bool m_ignoreCase = false;
    bool m_multiline = false;
    std::optional<RegExp> m_compiled; // until one of the above changes
};

} // namespace script::vbscript
