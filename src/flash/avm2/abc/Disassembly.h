#pragma once

#include "flash/avm2/abc/Abc.h"

#include <string>

namespace flash::avm2::abc
{

/// A multiname as people write it: `flash.display::Sprite`, `{a,b}::name`, `*`.
std::string nameOf(const Abc& abc, std::uint32_t multiname);

/// Classes, scripts and the code of all methods, one instruction to a line with its byte offset.
std::string disassemble(const Abc& abc);

} // namespace flash::avm2::abc
