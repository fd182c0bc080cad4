#pragma once

#include "script/vbscript/Code.h"

#include <unordered_set>

namespace script::vbscript
{

/// Where a piece of code is executed.
struct Surroundings {
    /// Whose locals it sees, the nearest first: executed texts and at last their procedure. Empty for code
    /// outside procedures.
    std::vector<const Function*> functions;
    /// Names that texts executed earlier have declared in that procedure's frame; may be null.
    const std::unordered_set<Symbol>* declared = nullptr;
};

/// @errors compilation errors with line and column
Result<std::unique_ptr<Program>> compile(const Tree& tree, Names& names, const Surroundings& surroundings);

} // namespace script::vbscript
