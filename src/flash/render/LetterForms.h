#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

// Which shapes letters take beside others: by the characters that Unicode keeps for such shapes, so that any
// face that has them can show them.
namespace flash::render
{

/// A shape in place of some characters.
struct LetterForm {
    std::size_t at = 0, length = 1; ///< UTF-16 units
    char32_t form = 0;
};

/// Arabic letters as they join their neighbours, and lam with an alef as one.
/// @returns ascending; characters that are not in it stay as they are
std::vector<LetterForm> joinedForms(std::u16string_view text);

/// Whether a text has anything for joinedForms().
bool hasJoiningLetters(std::u16string_view text);

enum class Ligatures { None, Common, Rare };
/// What the letters at the beginning of a text are drawn as at once: ff, fi, fl, ffi, ffl, rarely st.
/// @returns the longest one; length 0 where there is none
LetterForm ligatureAt(std::u16string_view text, Ligatures which);

/// How a mark is written in columns: brackets lie down. @returns the character itself where it stays
char32_t columnForm(char32_t character);

/// Whether a letter stands upright in columns: those of East Asia, and wide ones.
bool standsInColumns(char32_t character);

} // namespace flash::render
