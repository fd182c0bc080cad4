#pragma once

#include "flash/avm2/interpreter/Native.h"

#include <span>

namespace flash::avm2
{

/// Constructor of all events: type, whether it bubbles and can be cancelled, then the class's own in the
/// order of its slots.
Value constructEvent(Call& call);

/// A class of events.
/// @param slots what it has beyond Event, as NativeClass::slots
constexpr NativeClass eventClass(std::string_view name, std::string_view slots,
                                 std::span<const NativeConstant> constants = {},
                                 std::span<const NativeMember> members = {},
                                 std::string_view base = "flash.events::Event")
{
    return {.package = "flash.events",
            .name = name,
            .base = base,
            .flags = NativeClass::Sealed,
            .constructor = &constructEvent,
            .minArguments = 1,
            .maxArguments = -1,
            .members = members,
            .constants = constants,
            .slots = slots};
}

/// Events that only movies make, and lists of constants.
std::span<const NativeClass> eventKindClasses();

} // namespace flash::avm2
