#pragma once

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/classes/Library.h"

#include <array>

// Matrices of space: sixteen numbers of single precision, column by column; a vector is a column.
namespace flash::avm2::space
{

using Raw = std::array<float, 16>;
inline constexpr Raw kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
inline constexpr std::string_view kVector = "flash.geom::Vector3D", kMatrix3D = "flash.geom::Matrix3D";

class Matrix3DObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    Matrix3DObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    Raw raw = kIdentity;
};

inline Matrix3DObject& self(Call& call)
{
    return classes::selfAs<Matrix3DObject>(call, "flash.geom.Matrix3D");
}
inline Matrix3DObject& matrixArg(Call& call, std::uint32_t i, const char* name)
{
    return *as<Matrix3DObject>(&objectArg(call, i, kMatrix3D, name));
}
Value newVector(Vm& vm, double x, double y, double z, double w);

// Members that take matrices apart and put them together: place, turn and scale.
Value decompose(Call& call);
Value recompose(Call& call);
Value interpolate(Call& call);
Value interpolateTo(Call& call);

} // namespace flash::avm2::space
