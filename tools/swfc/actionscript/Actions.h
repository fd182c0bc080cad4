#pragma once

#include "flash/swf/ActionCodes.h"

namespace swfc::actionscript
{

using Action = flash::swf::ActionCode;

} // namespace swfc::actionscript
