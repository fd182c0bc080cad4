#pragma once

#include "core/Text.h"

namespace core
{

// The program's version record. The numbers are the build's own; texts are UTF-8.
extern const char* const kProductName;
extern const int kVersionMajor;
extern const int kVersionMinor;
extern const int kVersionBuild;
extern const int kVersionRevision;
extern const Text kLegalCopyright;
extern const Text kLegalTrademarks;
// Empty while the project has no place of its own: commands that lead there are not shown then.
extern const char* const kHomeAddress;
extern const char* const kUpdateAddress;

} // namespace core
