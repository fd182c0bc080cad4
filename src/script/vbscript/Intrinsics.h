#pragma once

#include "script/Dispatch.h"

namespace script::vbscript
{

class Engine;

/// A function that the language brings along.
struct Intrinsic {
    enum class Kind : std::uint8_t {
        Plain, ///< objects among the arguments are replaced by their default values
        Raw,   ///< sees the arguments as they are
        Eval,  ///< the others need the engine's frames
        Execute,
        ExecuteGlobal,
    };
    std::u16string_view name;
    Result<Value> (*call)(Engine& engine, std::span<Value> arguments);
    int minArguments;
    int maxArguments; ///< -1: any number
    Kind kind = Kind::Plain;

    [[nodiscard]] constexpr bool takes(std::size_t count) const
    {
        const auto given = static_cast<int>(count);
        return given >= minArguments && (maxArguments < 0 || given <= maxArguments);
    }
};

struct IntrinsicConstant {
    std::u16string_view name;
    Value value;
};

std::span<const Intrinsic> stringIntrinsics();
std::span<const Intrinsic> searchIntrinsics();
std::span<const Intrinsic> numberIntrinsics();
std::span<const Intrinsic> dateIntrinsics();
std::span<const Intrinsic> formatIntrinsics();
std::span<const Intrinsic> variantIntrinsics();
std::vector<IntrinsicConstant> intrinsicConstants();

} // namespace script::vbscript
