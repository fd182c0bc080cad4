#pragma once

#include "flash/stage/TextContent.h"

#include <string>
#include <string_view>

// The HTML of text fields: the few tags they know, in and out, in the form that scripts have come to expect.
namespace flash::stage
{

class StyleSheet;

struct HtmlOptions {
    bool multiline = true;      ///< false: paragraphs, line breaks and list items do not break lines
    bool condenseWhite = false; ///< runs of white space become one space
    int version = 8;            ///< of the movie
    const StyleSheet* styles = nullptr;
    unsigned hoveredLink = 0; ///< TextFormat::link of the one under the pointer
    bool linkIsPressed = false;
};

/// A line feed in the HTML becomes an ordinary break, a carriage return one that scripts do not see.
/// Never fails: unknown tags are skipped, unclosed ones hold to the end, a cut one ends the text.
/// @param base of text that no tag says anything about
/// @param last set to what further text would look like: the base, in the fonts that are open at the end
TextContent contentFromHtml(std::u16string_view html, const TextFormat& base, const HtmlOptions& options,
                            TextFormat* last = nullptr);

/// Every paragraph spells out its format.
std::u16string htmlFromContent(const TextContent& content);

/// The first letters of `text` that are a number, with an optional sign.
/// @returns nothing when there is no digit
std::optional<int> leadingInteger(std::u16string_view text);

} // namespace flash::stage
