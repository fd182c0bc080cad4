#pragma once

#include "script/vbscript/Code.h"

namespace script::vbscript
{

/// Where a piece of code is executed: the procedure whose locals it sees, or none.
struct Surroundings {
    const Function* function = nullptr;
};

/// @errors compilation errors with line and column
Result<std::unique_ptr<Program>> compile(const Tree& tree, Names& names, Surroundings surroundings);

} // namespace script::vbscript
