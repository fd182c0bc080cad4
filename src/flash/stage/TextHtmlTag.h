#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The letters of HTML: tags with their attributes, and characters that are written by name or number.
namespace flash::stage::html
{

[[nodiscard]] inline bool isSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }

struct Attribute {
    std::u16string name; ///< lower case
    std::u16string value;
};

struct Tag {
    std::u16string name; ///< lower case
    bool closes = false; ///< </name>
    bool empty = false;  ///< <name/>
    std::vector<Attribute> attributes;
    [[nodiscard]] const std::u16string* find(std::u16string_view name) const
    {
        for (const Attribute& attribute : attributes)
            if (attribute.name == name) return &attribute.value;
        return nullptr;
    }
};

/// @param rest begins with a tag, which is taken off. @returns nothing when the rest holds no whole tag
[[nodiscard]] std::optional<Tag> takeTag(std::u16string_view& rest);

/// @returns where the entity that begins at `at` has its semicolon, or npos. None is so long that a text of
/// ampersands would have to be gone through again for each of them.
[[nodiscard]] std::size_t endOfEntity(std::u16string_view text, std::size_t at);
/// @param name between ampersand and semicolon
[[nodiscard]] std::optional<char16_t> entity(std::u16string_view name);

} // namespace flash::stage::html
