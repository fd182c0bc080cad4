#include "script/vbscript/IntrinsicTools.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

constexpr std::size_t kNone = std::u16string_view::npos;
constexpr std::size_t kCharactersBetweenChecks = 1U << 22;

// InStr([start,] text, what [, compare]); InStrB counts bytes
template <bool kBytes>
Result<Value> inStr(Engine& engine, ArgumentList a)
{
    // With three arguments the first is the start; with two there is none.
    const std::size_t first = a.size() > 2 ? 1 : 0;
    std::int32_t start = 1;
    if (first == 1) {
        if (a[0].isNull()) return fault(error::kInvalidNull);
        start = TRY_RESULT(toLong(a[0], engine.locale()));
    }
    const bool ignoreCase = TRY_RESULT(ignoresCase(engine, a, 3));
    if (start < 1) return fault(error::kInvalidCall);
    if (a[first].isNull() || a[first + 1].isNull()) return Value::null();
    const Value text = TRY_RESULT(toStringValue(a[first], engine.locale()));
    const Value what = TRY_RESULT(toStringValue(a[first + 1], engine.locale()));
    const std::size_t length = kBytes ? text.byteText().size() : text.text().size();
    const auto from = static_cast<std::size_t>(start - 1);
    if (from >= length) return Value::longInteger(0);
    if (kBytes ? what.byteText().empty() : what.text().empty()) return Value::longInteger(start);
    const std::size_t found = kBytes ? findBytes(text.byteText(), what.byteText(), from)
                                     : findText(text.text(), what.text(), from, ignoreCase);
    return Value::longInteger(found == kNone ? 0 : static_cast<std::int32_t>(found) + 1);
}

// InStrRev(text, what [, start [, compare]])
Result<Value> inStrRev(Engine& engine, ArgumentList a)
{
    const Value kept = TRY_RESULT(toStringValue(a[0], engine.locale()));
    const Value what = TRY_RESULT(toStringValue(a[1], engine.locale()));
    const std::int32_t start = TRY_RESULT(longArgument(engine, a, 2, -1));
    const bool ignoreCase = TRY_RESULT(ignoresCase(engine, a, 3));
    if (start == 0 || start < -1) return fault(error::kInvalidCall);
    const auto text = kept.text();
    if (text.empty() || start > static_cast<std::int32_t>(text.size())) return Value::longInteger(0);
    const std::size_t end = start == -1 ? text.size() : static_cast<std::size_t>(start);
    if (what.text().empty()) return Value::longInteger(static_cast<std::int32_t>(end));
    const std::size_t found = findLastText(text.substr(0, end), what.text(), ignoreCase);
    return Value::longInteger(found == kNone ? 0 : static_cast<std::int32_t>(found) + 1);
}

Result<Value> strComp(Engine& engine, ArgumentList a)
{
    const bool ignoreCase = TRY_RESULT(ignoresCase(engine, a, 2));
    if (a[0].isNull() || a[1].isNull()) return Value::null();
    const Value left = TRY_RESULT(toStringValue(a[0], engine.locale()));
    const Value right = TRY_RESULT(toStringValue(a[1], engine.locale()));
    const int order = compareText(left.text(), right.text(), ignoreCase);
    return Value::integer(static_cast<std::int16_t>(order < 0 ? -1 : order > 0 ? 1 : 0));
}

// Replace(text, what, with [, start [, count [, compare]]]); what stands before the start is cut off
Result<Value> replace(Engine& engine, ArgumentList a)
{
    for (std::size_t i = 0; i < 3; ++i) {
        if (a[i].isNull()) return fault(error::kInvalidNull);
    }
    const Value kept = TRY_RESULT(toStringValue(a[0], engine.locale()));
    const Value what = TRY_RESULT(toStringValue(a[1], engine.locale()));
    const Value with = TRY_RESULT(toStringValue(a[2], engine.locale()));
    const std::int32_t start = TRY_RESULT(longArgument(engine, a, 3, 1));
    std::int32_t count = TRY_RESULT(longArgument(engine, a, 4, -1));
    const bool ignoreCase = TRY_RESULT(ignoresCase(engine, a, 5));
    if (start < 1 || count < -1) return fault(error::kInvalidCall);
    if (static_cast<std::size_t>(start) > kept.text().size()) return Value::string(u"");
    const auto text = kept.text().substr(static_cast<std::size_t>(start - 1));
    if (what.text().empty() || count == 0) return Value::string(text);
    std::u16string result;
    std::size_t from = 0;
    for (;;) {
        const std::size_t found = count == 0 ? kNone : findText(text, what.text(), from, ignoreCase);
        if (found == kNone) break;
        result.append(text, from, found - from);
        result += with.text();
        CHECK_RESULT(roomFor(engine, result.size() + text.size()));
        from = found + what.text().size();
        if (count > 0) --count;
    }
    result.append(text, from);
    return Value::string(result);
}

// Split(text [, separator [, count [, compare]]])
Result<Value> split(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return fault(error::kInvalidNull);
    const Value kept = TRY_RESULT(toStringValue(a[0], engine.locale()));
    const Value separator =
        given(a, 1) ? TRY_RESULT(toStringValue(a[1], engine.locale())) : Value::string(u" ");
    std::int32_t count = TRY_RESULT(longArgument(engine, a, 2, -1));
    const bool ignoreCase = TRY_RESULT(ignoresCase(engine, a, 3));
    if (count < -1) return fault(error::kInvalidCall);
    const auto text = kept.text();
    std::vector<Value> parts;
    if (text.empty() || count == 0) return Value::array(std::move(parts));
    std::size_t from = 0;
    for (;;) {
        const bool last = separator.text().empty() || count == 1;
        const std::size_t found = last ? kNone : findText(text, separator.text(), from, ignoreCase);
        if (found == kNone) break;
        parts.push_back(Value::string(text.substr(from, found - from)));
        from = found + separator.text().size();
        if (count > 0) --count;
        if (parts.size() % 4096 == 0) CHECK_RESULT(engine.reserve(parts.size() * 2 * sizeof(Value)));
    }
    parts.push_back(Value::string(text.substr(from)));
    return Value::array(std::move(parts));
}

Result<Value> join(Engine& engine, ArgumentList a)
{
    if (!a[0].isArray() || a[0].asArray()->bounds.size() > 1) return fault(error::kTypeMismatch);
    const Value separator =
        given(a, 1) ? TRY_RESULT(toStringValue(a[1], engine.locale())) : Value::string(u" ");
    const Value kept = a[0];
    std::u16string result;
    bool first = true;
    for (const Value& element : kept.asArray()->elements) {
        if (!first) result += separator.text();
        first = false;
        const Value value = TRY_RESULT(engine.plain(element));
        if (value.isNull()) return fault(error::kTypeMismatch);
        const Value text = TRY_RESULT(toStringValue(value, engine.locale()));
        CHECK_RESULT(roomFor(engine, result.size() + text.text().size()));
        result += text.text();
    }
    return Value::string(result);
}

// Filter(array, what [, include [, compare]])
Result<Value> filter(Engine& engine, ArgumentList a)
{
    if (!a[0].isArray() || a[0].asArray()->bounds.size() != 1) return fault(error::kTypeMismatch);
    const Value what = TRY_RESULT(toStringValue(a[1], engine.locale()));
    const bool include = given(a, 2) ? TRY_RESULT(toBoolean(a[2], engine.locale())) : true;
    const bool ignoreCase = TRY_RESULT(ignoresCase(engine, a, 3));
    const Value kept = a[0];
    std::vector<Value> found;
    std::size_t searched = 0; // characters since the clock was looked at
    for (const Value& element : kept.asArray()->elements) {
        const Value value = TRY_RESULT(engine.plain(element));
        const Value text = TRY_RESULT(toStringValue(value, engine.locale()));
        searched += text.text().size();
        if (searched > kCharactersBetweenChecks) {
            CHECK_RESULT(engine.checkTime());
            searched = 0;
        }
        const bool contains = findText(text.text(), what.text(), 0, ignoreCase) != kNone;
        if (contains == include) found.push_back(text);
    }
    return Value::array(std::move(found));
}

constexpr Intrinsic kTable[] = {
    {u"InStr", inStr<false>, 2, 4}, {u"InStrB", inStr<true>, 2, 4}, {u"InStrRev", inStrRev, 2, 4},
    {u"StrComp", strComp, 2, 3},    {u"Replace", replace, 3, 6},    {u"Split", split, 1, 4},
    {u"Join", join, 1, 2},          {u"Filter", filter, 2, 4},
};

} // namespace

std::span<const Intrinsic> searchIntrinsics() { return kTable; }

} // namespace script::vbscript
