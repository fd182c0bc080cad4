#pragma once

#include <string>
#include <string_view>

namespace swfc::actionscript3
{

/// @returns whether the player has a class, function or constant of this name; the package is "" for the
/// language's own.
bool isInLibrary(std::string_view package, std::string_view name);
bool isLibraryPackage(std::string_view package);

/// @returns the address of a namespace of the player, empty when there is none of this name.
std::string_view libraryNamespace(std::string_view package, std::string_view name);

} // namespace swfc::actionscript3
