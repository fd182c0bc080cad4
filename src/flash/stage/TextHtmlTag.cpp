#include "flash/stage/TextHtmlTag.h"

#include "base/Ascii.h"

#include <cstdint>
#include <utility>

namespace flash::stage::html
{

namespace
{

std::optional<char16_t> namedEntity(std::u16string_view name)
{
    if (name == u"lt") return u'<';
    if (name == u"gt") return u'>';
    if (name == u"amp") return u'&';
    if (name == u"quot") return u'"';
    if (name == u"apos") return u'\'';
    if (name == u"nbsp") return u'\u00A0';
    return {};
}

std::optional<char16_t> numericEntity(std::u16string_view digits)
{
    const bool hex = !digits.empty() && base::asciiLower(digits[0]) == u'x';
    if (hex) digits.remove_prefix(1);
    if (digits.empty()) return {};
    std::uint32_t code = 0;
    const int radix = hex ? 16 : 10;
    for (const char16_t unit : digits) {
        const int digit = base::hexDigit(unit);
        if (digit < 0 || digit >= radix) return {};
        code = (code * static_cast<std::uint32_t>(radix) + static_cast<std::uint32_t>(digit)) & 0xFFFF;
    }
    return static_cast<char16_t>(code);
}

} // namespace

std::size_t endOfEntity(std::u16string_view text, std::size_t at)
{
    constexpr std::size_t kMax = 64;
    const std::size_t found = text.substr(at, kMax).find(u';');
    return found == std::u16string_view::npos ? found : at + found;
}

std::optional<char16_t> entity(std::u16string_view name)
{
    if (!name.empty() && name[0] == u'#') return numericEntity(name.substr(1));
    return namedEntity(base::asciiLowered(name));
}

namespace
{

std::u16string decoded(std::u16string_view raw)
{
    std::u16string text;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const std::size_t semicolon = raw[i] == u'&' ? endOfEntity(raw, i) : std::u16string_view::npos;
        if (semicolon != std::u16string_view::npos) {
            if (const auto c = entity(raw.substr(i + 1, semicolon - i - 1))) {
                text += *c;
                i = semicolon;
                continue;
            }
        }
        text += raw[i];
    }
    return text;
}

bool takeAttribute(std::u16string_view rest, Tag& tag, std::size_t& i)
{
    const std::size_t begin = i;
    while (i < rest.size() && !isSpace(rest[i]) && rest[i] != u'=' && rest[i] != u'>') ++i;
    Attribute found{base::asciiLowered(rest.substr(begin, i - begin)), {}};
    while (i < rest.size() && isSpace(rest[i])) ++i;
    if (i < rest.size() && rest[i] == u'=') {
        ++i;
        while (i < rest.size() && isSpace(rest[i])) ++i;
        if (i >= rest.size()) return false;
        const char16_t quote = rest[i];
        if (quote == u'"' || quote == u'\'') {
            const std::size_t end = rest.find(quote, i + 1);
            if (end == std::u16string_view::npos) return false;
            found.value = decoded(rest.substr(i + 1, end - i - 1));
            i = end + 1;
        } else {
            const std::size_t valueBegin = i;
            while (i < rest.size() && !isSpace(rest[i]) && rest[i] != u'>') ++i;
            found.value = decoded(rest.substr(valueBegin, i - valueBegin));
        }
    }
    tag.attributes.push_back(std::move(found));
    return true;
}

} // namespace

std::optional<Tag> takeTag(std::u16string_view& rest)
{
    std::size_t i = 1;
    Tag tag;
    if (i < rest.size() && rest[i] == u'/') {
        tag.closes = true;
        ++i;
    }
    const std::size_t nameBegin = i;
    while (i < rest.size() && !isSpace(rest[i]) && rest[i] != u'>' && rest[i] != u'/') ++i;
    tag.name = base::asciiLowered(rest.substr(nameBegin, i - nameBegin));
    while (i < rest.size() && rest[i] != u'>') {
        if (isSpace(rest[i])) {
            ++i;
        } else if (rest[i] == u'/') {
            tag.empty = true;
            ++i;
        } else if (!takeAttribute(rest, tag, i)) {
            return {};
        }
    }
    if (i >= rest.size()) return {};
    rest.remove_prefix(i + 1);
    return tag;
}

} // namespace flash::stage::html
