#pragma once

#include <string>
#include <string_view>

namespace platform
{

// The user's list of default applications, mimeapps.list: groups of lines
// "type=first.desktop;second.desktop;", where the first application that is installed wins. Whatever else the
// list holds stays byte for byte.

/// @returns the list with `application` before all others that open `type`
std::string withDefaultApplication(std::string_view list, std::string_view type,
                                   std::string_view application);

/// @returns the list without `application` among the defaults for `type`, and without the line and the group
///          that this leaves empty
std::string withoutDefaultApplication(std::string_view list, std::string_view type,
                                      std::string_view application);

/// @returns whether the list names any default for `type`
bool namesDefaultApplication(std::string_view list, std::string_view type);

} // namespace platform
