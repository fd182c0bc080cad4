#pragma once

#include "swfc/actionscript/Script.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace swfc::source
{

/// Writes the list of handlers of a placed clip, all of it. Reports events that clips do not have.
std::vector<std::uint8_t> encodeClipHandlers(const std::vector<actionscript::CompiledHandler>& handlers,
                                             int version, Diagnostics& diagnostics);

/// Writes the list of handlers of a button, all of it; empty when there are none.
std::vector<std::uint8_t> encodeButtonHandlers(const std::vector<actionscript::CompiledHandler>& handlers,
                                               bool menu, Diagnostics& diagnostics);

} // namespace swfc::source
