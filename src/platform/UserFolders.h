#pragma once

#include <QString>

namespace platform
{

enum class UserFolder {
    Settings, ///< what the user has chosen
    Cache,    ///< what can be made again
    State,    ///< journals: worth keeping, not worth backing up
    Data,     ///< what belongs to the user, applications and file types among it
};

/// Where programs keep such things for the user who runs them; nothing is created.
/// @returns an absolute path that ends in a separator
/// @source XDG Base Directory Specification 0.8: a variable that holds a relative path counts as not set
QString userFolder(UserFolder folder);

/// Where users keep films: their folder of videos when there is one, else their home. Ends in a separator.
QString userMediaFolder();

} // namespace platform
