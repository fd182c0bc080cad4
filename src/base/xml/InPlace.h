#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace base::xml
{

/// Carries the differences between two canonical texts of a document over to the text that it was read from,
/// so that everything else stays byte for byte: quotation marks, white space within tags, spellings of
/// references and of empty elements, line ends.
/// @param source what was read; in an encoding whose bytes below 0x80 are ASCII
/// @param before the document as read, written by the library
/// @param after  the document as changed, written by the library in the same encoding
/// @returns nothing when elements or attributes were added or removed, or when `source` cannot be followed
std::optional<std::string> updatedInPlace(std::string_view source, std::string_view before,
                                          std::string_view after);

} // namespace base::xml
