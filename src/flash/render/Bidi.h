#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

// The order in which texts that run both ways are seen: the Unicode bidirectional algorithm.
namespace flash::render
{

/// The levels of a text's characters: what has an even one runs to the right, an odd one to the left, and a
/// higher one lies within what is around it. What only steers has that of the character before it.
/// @param base of the paragraph; what separates paragraphs has it as well
/// @returns one for each UTF-16 unit
/// @source Unicode Standard Annex 9, rules X1 to L1 but for blanks at the end of lines
std::vector<std::uint8_t> bidiLevels(std::u16string_view text, std::uint8_t base);

/// Which of the parts of a line are seen from left to right.
/// @returns indices into `levels`
/// @source Unicode Standard Annex 9, rule L2
std::vector<std::size_t> visualOrder(std::span<const std::uint8_t> levels);

} // namespace flash::render
