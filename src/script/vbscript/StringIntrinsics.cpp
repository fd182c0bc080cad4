#include "base/TextCodes.h"
#include "script/vbscript/IntrinsicTools.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

Result<Value> mapped(Engine& engine, const Value& argument, char16_t (*change)(char16_t))
{
    if (argument.isNull()) return Value::null();
    std::u16string text = TRY_RESULT(toText(argument, engine.locale()));
    std::transform(text.begin(), text.end(), text.begin(), change);
    return Value::string(text);
}

Result<Value> lCase(Engine& engine, ArgumentList a) { return mapped(engine, a[0], lowerCase); }
Result<Value> uCase(Engine& engine, ArgumentList a) { return mapped(engine, a[0], upperCase); }

Result<Value> len(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return Value::null();
    if (a[0].isString()) return Value::longInteger(static_cast<std::int32_t>(a[0].text().size()));
    const auto text = TRY_RESULT(toText(a[0], engine.locale()));
    return Value::longInteger(static_cast<std::int32_t>(text.size()));
}

Result<Value> lenB(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return Value::null();
    const Value text = TRY_RESULT(toStringValue(a[0], engine.locale()));
    return Value::longInteger(static_cast<std::int32_t>(text.byteText().size()));
}

// What Left, Right, Mid and their byte twins count in.
struct Characters {
    static std::u16string_view of(const Value& text) { return text.text(); }
    static Value made(std::u16string_view part) { return Value::string(part); }
};
struct Bytes {
    static std::string_view of(const Value& text) { return text.byteText(); }
    static Value made(std::string_view part) { return Value::byteString(part); }
};

template <class Unit>
Result<Value> left(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return Value::null();
    const Value text = TRY_RESULT(toStringValue(a[0], engine.locale()));
    const std::int32_t count = TRY_RESULT(toLong(a[1], engine.locale()));
    if (count < 0) return fault(error::kInvalidCall);
    return Unit::made(Unit::of(text).substr(0, static_cast<std::size_t>(count)));
}

template <class Unit>
Result<Value> right(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return Value::null();
    const Value text = TRY_RESULT(toStringValue(a[0], engine.locale()));
    const std::int32_t count = TRY_RESULT(toLong(a[1], engine.locale()));
    if (count < 0) return fault(error::kInvalidCall);
    const auto all = Unit::of(text);
    const auto wanted = std::min(all.size(), static_cast<std::size_t>(count));
    return Unit::made(all.substr(all.size() - wanted));
}

template <class Unit>
Result<Value> mid(Engine& engine, ArgumentList a)
{
    if (a[0].isNull()) return Value::null();
    const Value text = TRY_RESULT(toStringValue(a[0], engine.locale()));
    const std::int32_t start = TRY_RESULT(toLong(a[1], engine.locale()));
    const std::int32_t count = TRY_RESULT(longArgument(engine, a, 2, INT32_MAX));
    if (start < 1 || count < 0) return fault(error::kInvalidCall);
    const auto from = static_cast<std::size_t>(start - 1);
    const auto all = Unit::of(text);
    if (from >= all.size()) return Value::string(u"");
    return Unit::made(all.substr(from, static_cast<std::size_t>(count)));
}

// Only blanks are trimmed, no tabs or line ends.
Result<Value> trim(Engine& engine, ArgumentList a, bool front, bool back)
{
    if (a[0].isNull()) return Value::null();
    const Value kept = TRY_RESULT(toStringValue(a[0], engine.locale()));
    auto text = kept.text();
    while (front && !text.empty() && text.front() == u' ') text.remove_prefix(1);
    while (back && !text.empty() && text.back() == u' ') text.remove_suffix(1);
    return Value::string(text);
}
Result<Value> lTrim(Engine& engine, ArgumentList a) { return trim(engine, a, true, false); }
Result<Value> rTrim(Engine& engine, ArgumentList a) { return trim(engine, a, false, true); }
Result<Value> trimBoth(Engine& engine, ArgumentList a) { return trim(engine, a, true, true); }

Result<Value> space(Engine& engine, ArgumentList a)
{
    const std::int32_t count = TRY_RESULT(toLong(a[0], engine.locale()));
    if (count < 0) return fault(error::kInvalidCall);
    CHECK_RESULT(roomFor(engine, static_cast<std::size_t>(count)));
    return Value::string(std::u16string(static_cast<std::size_t>(count), u' '));
}

char16_t characterOfCode(std::int32_t code)
{
    const char byte = static_cast<char>(code);
    return base::utf16FromAnsi(std::string_view(&byte, 1)).front();
}

Result<Value> string(Engine& engine, ArgumentList a)
{
    if (a[0].isNull() || a[1].isNull()) return Value::null();
    const std::int32_t count = TRY_RESULT(toLong(a[0], engine.locale()));
    if (count < 0) return fault(error::kInvalidCall);
    char16_t character = 0;
    if (a[1].isString()) {
        if (a[1].text().empty()) return fault(error::kInvalidCall);
        character = a[1].text().front();
    } else {
        const std::int32_t code = TRY_RESULT(toLong(a[1], engine.locale()));
        character = characterOfCode(code & 0xFF);
    }
    CHECK_RESULT(roomFor(engine, static_cast<std::size_t>(count)));
    return Value::string(std::u16string(static_cast<std::size_t>(count), character));
}

Result<Value> strReverse(Engine& engine, ArgumentList a)
{
    std::u16string text = TRY_RESULT(toText(a[0], engine.locale()));
    std::reverse(text.begin(), text.end());
    return Value::string(text);
}

Result<Value> asc(Engine& engine, ArgumentList a)
{
    const auto text = TRY_RESULT(toText(a[0], engine.locale()));
    if (text.empty()) return fault(error::kInvalidCall);
    const std::string ansi = base::ansiFromUtf16(std::u16string_view(text).substr(0, 1));
    return Value::integer(static_cast<std::uint8_t>(ansi.front()));
}

Result<Value> ascB(Engine& engine, ArgumentList a)
{
    const Value text = TRY_RESULT(toStringValue(a[0], engine.locale()));
    if (text.byteText().empty()) return fault(error::kInvalidCall);
    return Value::byte(static_cast<std::uint8_t>(text.byteText().front()));
}

Result<Value> ascW(Engine& engine, ArgumentList a)
{
    const auto text = TRY_RESULT(toText(a[0], engine.locale()));
    if (text.empty()) return fault(error::kInvalidCall);
    return Value::integer(static_cast<std::int16_t>(text.front()));
}

Result<Value> chr(Engine& engine, ArgumentList a)
{
    const std::int32_t code = TRY_RESULT(toLong(a[0], engine.locale()));
    if (code < 0 || code > 255) return fault(error::kInvalidCall);
    const char16_t character = characterOfCode(code);
    return Value::string(std::u16string_view(&character, 1));
}

Result<Value> chrB(Engine& engine, ArgumentList a)
{
    const auto code = TRY_RESULT(toByte(a[0], engine.locale())); // more than a byte is an overflow
    const char byte = static_cast<char>(code);
    return Value::byteString(std::string_view(&byte, 1));
}

Result<Value> chrW(Engine& engine, ArgumentList a)
{
    const std::int32_t code = TRY_RESULT(toLong(a[0], engine.locale()));
    if (code < INT16_MIN || code > UINT16_MAX) return fault(error::kInvalidCall);
    const auto character = static_cast<char16_t>(code);
    return Value::string(std::u16string_view(&character, 1));
}

// As the function of that name does for web addresses: %20, %u0416.
Result<Value> escape(Engine& engine, ArgumentList a)
{
    const auto text = TRY_RESULT(toText(a[0], engine.locale()));
    static constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    static constexpr std::u16string_view kPlain = u"@*_+-./";
    CHECK_RESULT(roomFor(engine, text.size() * 6));
    std::u16string result;
    for (const char16_t c : text) {
        const bool plain = isDigit(c) || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
        if (plain || kPlain.find(c) != std::u16string_view::npos) {
            result += c;
            continue;
        }
        result += c > 0xFF ? u"%u" : u"%";
        for (int shift = c > 0xFF ? 12 : 4; shift >= 0; shift -= 4) result += kDigits[(c >> shift) & 15];
    }
    return Value::string(result);
}

Result<Value> unescape(Engine& engine, ArgumentList a)
{
    const auto text = TRY_RESULT(toText(a[0], engine.locale()));
    std::u16string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool wide = text[i] == u'%' && i + 5 < text.size() && text[i + 1] == u'u';
        const std::size_t begin = i + (wide ? 2 : 1);
        const std::size_t count = wide ? 4 : 2;
        int code = text[i] == u'%' && begin + count <= text.size() ? 0 : -1;
        for (std::size_t k = begin; code >= 0 && k < begin + count; ++k) {
            const int digit = hexDigit(text[k]);
            code = digit < 0 ? -1 : code * 16 + digit;
        }
        if (code < 0) {
            result += text[i];
            continue;
        }
        result += static_cast<char16_t>(code);
        i = begin + count - 1;
    }
    return Value::string(result);
}

constexpr Intrinsic kTable[] = {
    {u"LCase", lCase, 1, 1},
    {u"UCase", uCase, 1, 1},
    {u"Len", len, 1, 1},
    {u"LenB", lenB, 1, 1},
    {u"Left", left<Characters>, 2, 2},
    {u"LeftB", left<Bytes>, 2, 2},
    {u"Right", right<Characters>, 2, 2},
    {u"RightB", right<Bytes>, 2, 2},
    {u"Mid", mid<Characters>, 2, 3},
    {u"MidB", mid<Bytes>, 2, 3},
    {u"LTrim", lTrim, 1, 1},
    {u"RTrim", rTrim, 1, 1},
    {u"Trim", trimBoth, 1, 1},
    {u"Space", space, 1, 1},
    {u"String", string, 2, 2},
    {u"StrReverse", strReverse, 1, 1},
    {u"Asc", asc, 1, 1},
    {u"AscB", ascB, 1, 1},
    {u"AscW", ascW, 1, 1},
    {u"Chr", chr, 1, 1},
    {u"ChrB", chrB, 1, 1},
    {u"ChrW", chrW, 1, 1},
    {u"Escape", escape, 1, 1},
    {u"Unescape", unescape, 1, 1},
};

} // namespace

std::span<const Intrinsic> stringIntrinsics() { return kTable; }

} // namespace script::vbscript
