#pragma once

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/interpreter/Native.h"

#include <initializer_list>

// What the classes of plain numbers share: their slots are the numbers, in the order of the constructor.
namespace flash::avm2::geometry
{

inline constexpr std::string_view kPoint = "flash.geom::Point", kRectangle = "flash.geom::Rectangle",
                                  kMatrix = "flash.geom::Matrix";

double at(Object& object, std::uint32_t slot);
/// @throws 1009 when `this` is none
Object& selfObject(Call& call);
/// @throws 1034 for another class, 1009 for null
Object& objectArg(Call& call, std::uint32_t i, std::string_view cls);
Value make(Vm& vm, std::string_view cls, std::initializer_list<double> values);
Value assign(Call& call);
Value shown(Call& call, std::initializer_list<const char*> names);
/// A copy by its slots.
Value cloned(Call& call);
bool sameSlots(Object& a, Object& b, std::uint32_t count);

/// From another of the class.
template <std::uint32_t count>
Value copyFrom(Call& call)
{
    Object& self = selfObject(call);
    Object& other = objectArg(call, 0, count == 2 ? kPoint : count == 4 ? kRectangle : kMatrix);
    for (std::uint32_t i = 0; i < count; ++i) self.setSlot(i, at(other, i));
    return {};
}

} // namespace flash::avm2::geometry
