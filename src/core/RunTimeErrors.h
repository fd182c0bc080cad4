#pragma once

#include "base/Failure.h"
#include "base/Result.h"

#include <QString>

namespace core
{

/// Numbers that handlers branch on and the journal shows; users of such programs know them by heart.
enum RunTimeError : int {
    kFileNotFound = 53,
    kDeviceError = 57,
    kDiskFull = 61,
    kPermissionDenied = 70,
    kPathAccess = 75,
    kPathNotFound = 76,
    kFlashNotCreated = 339, ///< the Flash control could not be created
};

/// @param systemError an errno value; its text follows the user's one in the description
base::Failure runTimeError(int systemError, const char* source);

/// The user's text for a failed operation on a file.
QString describe(base::ErrorCode code);
/// The same, but that a full disk is named as what it is.
QString describe(const base::Error& error);

/// The same as an exception. `what` stays for the log: callers that log it do so before they throw.
base::Failure runTimeError(const base::Error& error, const char* source);

} // namespace core
