#pragma once

#include "script/Value.h"

namespace script::vbscript
{

/// Puts the value itself where a reference to it stands.
inline void dereference(Value& value)
{
    if (!value.isReference()) return;
    Value copy = value.resolved();
    value = std::move(copy);
}

inline void dereference(Value* values, std::size_t count)
{
    for (; count > 0; --count, ++values) dereference(*values);
}

} // namespace script::vbscript
