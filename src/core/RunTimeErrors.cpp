#include "core/RunTimeErrors.h"

#include "base/Files.h"
#include "core/Texts.h"

#include <cerrno>

namespace core
{
namespace
{

struct SystemError {
    int number; // errno
    RunTimeError error;
    Text description;
};
constexpr SystemError kSystemErrors[] = {
    {ENOENT, kFileNotFound, texts::kFileNotFound},
    {ENOTDIR, kPathNotFound, texts::kPathNotFound},
    {ENOSPC, kDiskFull, texts::kDiskFull},
    {EDQUOT, kDiskFull, texts::kDiskFull},
    {EFBIG, kDiskFull, texts::kDiskFull},
    {EACCES, kPermissionDenied, texts::kPermissionDenied},
    {EPERM, kPermissionDenied, texts::kPermissionDenied},
    {EROFS, kPathAccess, texts::kReadOnly},
    {ENAMETOOLONG, kPathAccess, texts::kNameTooLong},
    {EISDIR, kPathAccess, texts::kIsFolder},
};

} // namespace

base::Failure runTimeError(int systemError, const char* source)
{
    for (const SystemError& known : kSystemErrors)
        if (known.number == systemError) return {known.error, source, known.description.toStdString()};
    return {kDeviceError, source, texts::kDeviceError.toStdString()};
}

QString describe(base::ErrorCode code)
{
    switch (code) {
    case base::ErrorCode::NotFound: return texts::kFileNotFound;
    case base::ErrorCode::Denied: return texts::kPermissionDenied;
    case base::ErrorCode::LimitReached: return texts::kTooLarge;
    case base::ErrorCode::Truncated:
    case base::ErrorCode::Malformed:
    case base::ErrorCode::SyntaxError: return texts::kDamaged;
    case base::ErrorCode::Unsupported: return texts::kUnsupported;
    case base::ErrorCode::IoFailure: return texts::kDeviceError;
    }
    return {};
}

QString describe(const base::Error& error)
{
    return base::isDiskFull(error) ? QString(texts::kDiskFull) : describe(error.code);
}

base::Failure runTimeError(const base::Error& error, const char* source)
{
    if (base::isDiskFull(error)) return {kDiskFull, source, texts::kDiskFull.toStdString()};
    const int number = error.code == base::ErrorCode::NotFound ? kFileNotFound
                       : error.code == base::ErrorCode::Denied ? kPermissionDenied
                                                               : kDeviceError;
    return {number, source, describe(error).toStdString()};
}

} // namespace core
