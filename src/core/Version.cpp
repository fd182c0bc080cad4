#include "core/Version.h"

// The build defines the macros from the project's name and version.

namespace core
{

const char* const kProductName = ZORVEX_PRODUCT_NAME;
const int kVersionMajor = ZORVEX_VERSION_MAJOR;
const int kVersionMinor = ZORVEX_VERSION_MINOR;
const int kVersionBuild = ZORVEX_VERSION_BUILD;
const int kVersionRevision = ZORVEX_VERSION_REVISION;
const Text kLegalCopyright = QT_TRANSLATE_NOOP("zorvex", "© Авторы Zorvex");
const Text kLegalTrademarks =
    QT_TRANSLATE_NOOP("zorvex", "Macromedia, Flash и Shockwave - товарные знаки их владельцев.");
const char* const kHomeAddress = ZORVEX_HOME_ADDRESS;
const char* const kUpdateAddress = *ZORVEX_HOME_ADDRESS == '\0' ? "" : ZORVEX_HOME_ADDRESS "update";

} // namespace core
