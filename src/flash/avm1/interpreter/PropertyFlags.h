#pragma once

#include <cstdint>

namespace flash::avm1
{

/// Attributes of a property, numbered as ASSetPropFlags numbers them. The bits from kFrom6 up hide the
/// property from movies of other versions.
enum PropertyFlag : std::uint16_t {
    kDontEnum = 1 << 0,
    kDontDelete = 1 << 1,
    kReadOnly = 1 << 2,
    kFrom6 = 1 << 7,
    kNot6 = 1 << 8,
    kFrom7 = 1 << 10,
    kFrom8 = 1 << 12,
    kFrom9 = 1 << 13,
    kFrom10 = 1 << 14,
    kVersionMask = kFrom6 | kNot6 | kFrom7 | kFrom8 | kFrom9 | kFrom10,
    /// What built-in members carry.
    kBuiltIn = kDontEnum | kDontDelete,
    /// The slot holds an Accessor. Not a flag that scripts can reach.
    kAccessor = 1 << 15,
};

/// @returns whether a movie of that version sees a property with these flags.
[[nodiscard]] inline bool isVisible(std::uint16_t flags, int version)
{
    if ((flags & kVersionMask) == 0) return true;
    return !(((flags & kFrom6) != 0 && version < 6) || ((flags & kNot6) != 0 && version == 6) ||
             ((flags & kFrom7) != 0 && version < 7) || ((flags & kFrom8) != 0 && version < 8) ||
             ((flags & kFrom9) != 0 && version < 9) || ((flags & kFrom10) != 0 && version < 10));
}

} // namespace flash::avm1
