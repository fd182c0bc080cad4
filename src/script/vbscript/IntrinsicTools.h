#pragma once

#include "script/vbscript/Convert.h"
#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

namespace script::vbscript
{

// What the files of intrinsic functions share: reading arguments.

using ArgumentList = std::span<Value>;

inline bool given(ArgumentList arguments, std::size_t index)
{
    return index < arguments.size() && !arguments[index].isMissing();
}

inline Result<std::int32_t> longArgument(Engine& engine, ArgumentList arguments, std::size_t index,
                                         std::int32_t preset)
{
    if (!given(arguments, index)) return preset;
    return toLong(arguments[index], engine.locale());
}

/// A comparison mode: 0 binary, 1 text.
inline Result<bool> ignoresCase(Engine& engine, ArgumentList arguments, std::size_t index)
{
    const std::int32_t mode = TRY_RESULT(longArgument(engine, arguments, index, 0));
    if (mode != 0 && mode != 1) return fault(error::kInvalidCall);
    return mode == 1;
}

/// A new string of that many characters may be made.
inline Result<void> roomFor(Engine& engine, std::size_t characters)
{
    if (characters > Value::kMaxStringLength) return fault(error::kOutOfStringSpace);
    return engine.reserve(characters * sizeof(char16_t));
}

} // namespace script::vbscript
