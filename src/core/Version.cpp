#include "core/Version.h"

// The build defines the macros from the project's name and version.

namespace core
{

const char* const kProductName = ZORVEX_PRODUCT_NAME;
const int kVersionMajor = ZORVEX_VERSION_MAJOR;
const int kVersionMinor = ZORVEX_VERSION_MINOR;
const int kVersionBuild = ZORVEX_VERSION_BUILD;
const int kVersionRevision = ZORVEX_VERSION_REVISION;
const char* const kLegalCopyright = "© Авторы " ZORVEX_PRODUCT_NAME;
const char* const kLegalTrademarks = "Macromedia, Flash и Shockwave - товарные знаки их владельцев.";
// ".example" is reserved: the addresses lead nowhere until the project has a place of its own.
const char* const kHomeAddress = "https://zorvex.example/";
const char* const kUpdateAddress = "https://zorvex.example/update";

} // namespace core
