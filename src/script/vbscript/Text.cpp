#include "script/vbscript/Text.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace script::vbscript
{

char16_t lowerCase(char16_t c)
{
    if (c < 0x80) return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
    if (c >= 0xC0 && c <= 0xDE) return c == 0xD7 ? c : static_cast<char16_t>(c + 32);
    if (c >= 0x100 && c <= 0x17F) {
        if (c == 0x178) return 0xFF;
        if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) {
            return (c & 1) != 0 ? static_cast<char16_t>(c + 1) : c;
        }
        if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
        return static_cast<char16_t>(c | 1);
    }
    if (c >= 0x391 && c <= 0x3A9 && c != 0x3A2) return static_cast<char16_t>(c + 32);
    if (c >= 0x400 && c <= 0x40F) return static_cast<char16_t>(c + 80);
    if (c >= 0x410 && c <= 0x42F) return static_cast<char16_t>(c + 32);
    if ((c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) || (c >= 0x4D0 && c <= 0x52F)) {
        return static_cast<char16_t>(c | 1);
    }
    return c;
}

char16_t upperCase(char16_t c)
{
    if (c < 0x80) return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
    if (c >= 0xE0 && c <= 0xFE) return c == 0xF7 ? c : static_cast<char16_t>(c - 32);
    if (c == 0xFF) return 0x178;
    if (c >= 0x100 && c <= 0x17F) {
        if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) {
            return (c & 1) == 0 ? static_cast<char16_t>(c - 1) : c;
        }
        if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x178 || c == 0x17F) return c;
        return static_cast<char16_t>(c & ~1);
    }
    if (c >= 0x3B1 && c <= 0x3C9) return c == 0x3C2 ? char16_t{0x3A3} : static_cast<char16_t>(c - 32);
    if (c >= 0x430 && c <= 0x44F) return static_cast<char16_t>(c - 32);
    if (c >= 0x450 && c <= 0x45F) return static_cast<char16_t>(c - 80);
    if ((c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) || (c >= 0x4D0 && c <= 0x52F)) {
        return static_cast<char16_t>(c & ~1);
    }
    return c;
}

std::u16string folded(std::u16string_view text)
{
    std::u16string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowerCase);
    return result;
}

bool sameText(std::u16string_view left, std::u16string_view right)
{
    return left.size() == right.size() && compareText(left, right, true) == 0;
}

int compareText(std::u16string_view left, std::u16string_view right, bool ignoreCase)
{
    if (!ignoreCase) return left.compare(right);
    const std::size_t shared = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < shared; ++i) {
        const int difference = lowerCase(left[i]) - lowerCase(right[i]);
        if (difference != 0) return difference;
    }
    if (left.size() == right.size()) return 0;
    return left.size() < right.size() ? -1 : 1;
}

namespace
{

// Up to this length of what is looked for, comparing at each place is fast whatever the texts hold.
constexpr std::size_t kShort = 16;

// Knuth, Morris and Pratt: the table holds, for each beginning of `what`, the length of the longest shorter
// beginning that it ends in, so that no character of the text is looked at again.
template <class Iterator, class Same>
Iterator searchLinear(Iterator text, Iterator end, Iterator what, std::size_t length, Same same)
{
    const auto at = [&](std::size_t index) { return what[static_cast<std::ptrdiff_t>(index)]; };
    std::vector<std::uint32_t> border(length, 0);
    for (std::size_t i = 1, matched = 0; i < length; ++i) {
        while (matched > 0 && !same(at(i), at(matched))) matched = border[matched - 1];
        if (same(at(i), at(matched))) ++matched;
        border[i] = static_cast<std::uint32_t>(matched);
    }
    std::size_t matched = 0;
    for (; text != end; ++text) {
        while (matched > 0 && !same(*text, at(matched))) matched = border[matched - 1];
        if (same(*text, at(matched))) ++matched;
        if (matched == length) return text - static_cast<std::ptrdiff_t>(length - 1);
    }
    return end;
}

template <class Iterator>
Iterator search(Iterator text, Iterator end, Iterator what, Iterator whatEnd, bool ignoreCase)
{
    const auto length = static_cast<std::size_t>(whatEnd - what);
    const auto exact = [](auto a, auto b) { return a == b; };
    const auto alike = [](char16_t a, char16_t b) { return lowerCase(a) == lowerCase(b); };
    if (length <= kShort) {
        return ignoreCase ? std::search(text, end, what, whatEnd, alike)
                          : std::search(text, end, what, whatEnd);
    }
    return ignoreCase ? searchLinear(text, end, what, length, alike)
                      : searchLinear(text, end, what, length, exact);
}

} // namespace

std::size_t findText(std::u16string_view text, std::u16string_view what, std::size_t from, bool ignoreCase)
{
    if (from > text.size() || what.size() > text.size() - from) return std::u16string_view::npos;
    if (!ignoreCase && what.size() <= kShort) return text.find(what, from);
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
    const auto found = search(begin, text.end(), what.begin(), what.end(), ignoreCase);
    if (found == text.end() && !what.empty()) return std::u16string_view::npos;
    return static_cast<std::size_t>(found - text.begin());
}

std::size_t findLastText(std::u16string_view text, std::u16string_view what, bool ignoreCase)
{
    if (what.empty()) return text.size();
    if (what.size() > text.size()) return std::u16string_view::npos;
    const auto found = search(text.rbegin(), text.rend(), what.rbegin(), what.rend(), ignoreCase);
    if (found == text.rend()) return std::u16string_view::npos;
    return static_cast<std::size_t>(text.rend() - found) - what.size();
}

std::size_t findBytes(std::string_view text, std::string_view what, std::size_t from)
{
    if (from > text.size() || what.size() > text.size() - from) return std::string_view::npos;
    if (what.size() <= kShort) return text.find(what, from);
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
    const auto found = search(begin, text.end(), what.begin(), what.end(), false);
    return found == text.end() ? std::string_view::npos : static_cast<std::size_t>(found - text.begin());
}

bool isSpace(char16_t c) { return c == u' ' || (c >= 9 && c <= 13) || c == 0xA0 || c == 0x202F; }

std::u16string_view trimmed(std::u16string_view text)
{
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

int hexDigit(char16_t c)
{
    if (isDigit(c)) return c - u'0';
    const char16_t lower = lowerCase(c);
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

std::u16string widened(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

} // namespace script::vbscript
