#pragma once

#include "flash/stage/TextFormat.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flash::stage
{

/// What a style says, as scripts see it: property names in camel case, values as written.
using StyleProperties = std::vector<std::pair<std::u16string, std::u16string>>;

/// The rules of a style sheet: what elements and classes look like.
class StyleSheet
{
public:
    struct Rule {
        std::u16string selector; ///< as written: "p", ".heading", "a:link"
        StyleProperties properties;
    };
    /// @param version of the movie: up to 7 a rule must not consist of white space
    /// @returns the rules in the order of the text; nothing when it is no style sheet
    /// For parse(): rules and properties without a name count, too.
    static constexpr int kActionScript3 = 1000;
    static std::optional<std::vector<Rule>> parse(std::u16string_view css, int version = 8);

    /// A list of font families as the name of a font, in which several may stand. UTF-8.
    static std::string fontNames(std::u16string_view families);

    /// What properties say about characters. Unknown ones say nothing.
    static void apply(const StyleProperties& properties, TextFormat& format, bool& shown);

    void set(std::u16string_view selector, StyleProperties properties);
    void clear() { m_styles.clear(); }
    /// @param selector in lower case
    void applyTo(std::u16string_view selector, TextFormat& format, bool& shown) const;

    [[nodiscard]] bool has(std::u16string_view selector) const { return m_styles.contains(selector); }

private:
    std::map<std::u16string, StyleProperties, std::less<>> m_styles; ///< by the selector in lower case
};

} // namespace flash::stage
