#include "script/vbscript/RegExpObject.h"

#include "script/vbscript/Convert.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <array>

namespace script::vbscript
{

namespace
{

enum Member { kPattern = 1, kGlobal, kIgnoreCase, kMultiline, kTest, kExecute, kReplace };
constexpr std::array<std::u16string_view, 7> kNames = {u"pattern", u"global",  u"ignorecase", u"multiline",
                                                       u"test",    u"execute", u"replace"};
constexpr std::size_t kMaxMatches = 1U << 22;

// Count, Item(index) by default and For Each: Matches and SubMatches.
class FixedCollection final : public Dispatch
{
public:
    FixedCollection(std::u16string typeName, std::vector<Value> items)
        : m_typeName(std::move(typeName)), m_items(std::move(items))
    {
    }
    [[nodiscard]] std::u16string typeName() const override { return m_typeName; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override
    {
        if (sameText(name, u"item")) return kDefaultMember;
        if (sameText(name, u"count")) return 1;
        return std::nullopt;
    }
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override
    {
        if (access == Access::Put || access == Access::PutRef) return fault(error::kNoSuchMember);
        if (member == 1) {
            if (!arguments.empty()) return fault(error::kWrongArguments);
            return Value::longInteger(static_cast<std::int32_t>(m_items.size()));
        }
        if (arguments.size() != 1) return fault(error::kWrongArguments);
        const std::int32_t index = TRY_RESULT(toLong(arguments[0], Locale::english()));
        if (index < 0 || static_cast<std::size_t>(index) >= m_items.size()) return fault(error::kInvalidCall);
        return m_items[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] Ref<Enumerator> enumerate() override
    {
        return Ref<Enumerator>(new ListEnumerator(m_items));
    }

private:
    std::u16string m_typeName;
    std::vector<Value> m_items;
};

class Match final : public Dispatch
{
public:
    Match(Value text, std::int32_t firstIndex, Value subMatches)
        : m_text(std::move(text)), m_subMatches(std::move(subMatches)), m_firstIndex(firstIndex)
    {
    }
    [[nodiscard]] std::u16string typeName() const override { return u"IMatch2"; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override
    {
        if (sameText(name, u"value")) return kDefaultMember;
        if (sameText(name, u"firstindex")) return 1;
        if (sameText(name, u"length")) return 2;
        if (sameText(name, u"submatches")) return 3;
        return std::nullopt;
    }
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override
    {
        if (access == Access::Put || access == Access::PutRef) return fault(error::kNoSuchMember);
        if (member == 3 && !arguments.empty()) {
            return m_subMatches.asObject()->invoke(kDefaultMember, access, arguments);
        }
        if (!arguments.empty()) return fault(error::kWrongArguments);
        switch (member) {
        case 1: return Value::longInteger(m_firstIndex);
        case 2: return Value::longInteger(static_cast<std::int32_t>(m_text.text().size()));
        case 3: return m_subMatches;
        default: return m_text;
        }
    }

private:
    Value m_text;
    Value m_subMatches;
    std::int32_t m_firstIndex;
};

std::u16string_view part(std::u16string_view text, const RegExp::Captures& captures, std::size_t group)
{
    if (captures[2 * group] < 0 || captures[2 * group + 1] < 0) return {};
    return text.substr(static_cast<std::size_t>(captures[2 * group]),
                       static_cast<std::size_t>(captures[2 * group + 1] - captures[2 * group]));
}

// $1 to $99, $&, $`, $' and $$
void appendExpanded(std::u16string& result, std::u16string_view with, std::u16string_view text,
                    const RegExp::Captures& captures)
{
    const std::size_t groups = captures.size() / 2 - 1;
    for (std::size_t i = 0; i < with.size(); ++i) {
        if (with[i] != u'$' || i + 1 == with.size()) {
            result += with[i];
            continue;
        }
        const char16_t next = with[i + 1];
        if (next == u'$') {
            result += u'$';
        } else if (next == u'&') {
            result += part(text, captures, 0);
        } else if (next == u'`') {
            result += text.substr(0, static_cast<std::size_t>(captures[0]));
        } else if (next == u'\'') {
            result += text.substr(static_cast<std::size_t>(captures[1]));
        } else if (isDigit(next)) {
            std::size_t group = static_cast<std::size_t>(next - u'0');
            std::size_t digits = 1;
            if (i + 2 < with.size() && isDigit(with[i + 2]) &&
                group * 10 + static_cast<std::size_t>(with[i + 2] - u'0') <= groups) {
                group = group * 10 + static_cast<std::size_t>(with[i + 2] - u'0');
                digits = 2;
            }
            if (group == 0 || group > groups) {
                result += u'$';
                continue;
            }
            result += part(text, captures, group);
            i += digits;
            continue;
        } else {
            result += u'$';
            continue;
        }
        ++i;
    }
}

} // namespace

std::optional<Dispatch::MemberId> RegExpObject::memberId(std::u16string_view name) const
{
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        if (sameText(name, kNames[i])) return static_cast<MemberId>(i) + 1;
    }
    return std::nullopt;
}

Result<void> RegExpObject::prepare()
{
    if (!m_compiled) m_compiled = TRY_RESULT(RegExp::compile(m_pattern, {m_ignoreCase, m_multiline}));
    return {};
}

Result<std::optional<RegExp::Captures>> RegExpObject::search(std::u16string_view text, std::size_t from)
{
    return m_compiled->search(text, from, [this] { return m_engine->checkTime(); });
}

Result<Value> RegExpObject::put(MemberId member, const Value& value)
{
    const Locale& locale = m_engine->locale();
    m_compiled.reset();
    switch (member) {
    case kPattern: m_pattern = TRY_RESULT(toText(value, locale)); break;
    case kGlobal: m_global = TRY_RESULT(toBoolean(value, locale)); break;
    case kIgnoreCase: m_ignoreCase = TRY_RESULT(toBoolean(value, locale)); break;
    case kMultiline: m_multiline = TRY_RESULT(toBoolean(value, locale)); break;
    default: return fault(error::kNoSuchMember);
    }
    return Value();
}

Result<Value> RegExpObject::invoke(MemberId member, Access access, Arguments arguments)
{
    if (!m_engine || member == kDefaultMember) return fault(error::kNoSuchMember);
    const std::size_t wanted = member == kReplace ? 2 : member >= kTest ? 1 : 0;
    if (access == Access::Put) {
        if (arguments.size() != 1) return fault(error::kWrongArguments);
        const Value value = TRY_RESULT(m_engine->plain(arguments[0]));
        return put(member, value);
    }
    if (access == Access::PutRef) return fault(error::kNoSuchMember);
    if (arguments.size() != wanted) return fault(error::kWrongArguments);
    std::vector<Value> texts;
    for (const Value& argument : arguments) {
        const Value value = TRY_RESULT(m_engine->plain(argument));
        texts.push_back(TRY_RESULT(toStringValue(value, m_engine->locale())));
    }
    switch (member) {
    case kPattern: return Value::string(m_pattern);
    case kGlobal: return Value::boolean(m_global);
    case kIgnoreCase: return Value::boolean(m_ignoreCase);
    case kMultiline: return Value::boolean(m_multiline);
    case kTest: {
        CHECK_RESULT(prepare());
        const auto found = TRY_RESULT(search(texts[0].text(), 0));
        return Value::boolean(found.has_value());
    }
    case kExecute: return execute(texts[0]);
    default: return replace(texts[0], texts[1]);
    }
}

Result<Value> RegExpObject::execute(const Value& kept)
{
    CHECK_RESULT(prepare());
    const auto text = kept.text();
    std::vector<Value> matches;
    std::size_t from = 0;
    while (from <= text.size()) {
        const auto found = TRY_RESULT(search(text, from));
        if (!found) break;
        std::vector<Value> groups;
        for (std::size_t group = 1; group < found->size() / 2; ++group) {
            groups.push_back((*found)[2 * group] < 0 ? Value() : Value::string(part(text, *found, group)));
        }
        const Value subMatches = Value::object(new FixedCollection(u"ISubMatches", std::move(groups)));
        matches.push_back(Value::object(new Match(Value::string(part(text, *found, 0)),
                                                  static_cast<std::int32_t>((*found)[0]), subMatches)));
        CHECK_RESULT(m_engine->reserve(matches.size() * 256));
        if (!m_global || matches.size() >= kMaxMatches) break;
        const auto end = static_cast<std::size_t>((*found)[1]);
        // An empty match would be found again at the same place.
        from = (*found)[1] > (*found)[0] ? end : end + 1;
    }
    return Value::object(new FixedCollection(u"IMatchCollection2", std::move(matches)));
}

Result<Value> RegExpObject::replace(const Value& kept, const Value& with)
{
    CHECK_RESULT(prepare());
    const auto text = kept.text();
    std::u16string result;
    std::size_t copied = 0;
    std::size_t from = 0;
    while (from <= text.size()) {
        const auto found = TRY_RESULT(search(text, from));
        if (!found) break;
        const auto begin = static_cast<std::size_t>((*found)[0]);
        const auto end = static_cast<std::size_t>((*found)[1]);
        result.append(text, copied, begin - copied);
        appendExpanded(result, with.text(), text, *found);
        if (result.size() > Value::kMaxStringLength) return fault(error::kOutOfStringSpace);
        CHECK_RESULT(m_engine->reserve(result.size() * 2));
        copied = end;
        if (!m_global) break;
        from = end > begin ? end : end + 1;
    }
    result.append(text, copied);
    return Value::string(result);
}

} // namespace script::vbscript
