#pragma once

#include "swfc/actionscript3/AbcFile.h"

#include <optional>
#include <string_view>
#include <vector>

namespace swfc::actionscript3
{

/// @returns the multiname that a text of the assembler stands for; nothing when it is none
std::optional<std::uint32_t> assembleName(AbcFile& abc, std::string_view text, int depth = 0);
std::optional<std::uint32_t> assembleNamespace(AbcFile& abc, std::string_view text);

/// Parts between commas that stand in no brackets.
std::vector<std::string_view> splitNames(std::string_view text);

} // namespace swfc::actionscript3
