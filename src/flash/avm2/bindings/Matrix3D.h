#pragma once

#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/classes/Library.h"

#include "flash/stage/Space.h"

#include <array>
#include <optional>

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
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(target);
    }
    /// Takes over where the object it places stands now, or lets go of it when that is flat again.
    void refresh();
    /// The other way.
    void commit();
    Raw raw = kIdentity;
    DisplayObject* target = nullptr; ///< what it places: both change together
};

/// The numbers of scripts count pixels, those of the stage twips.
Raw rawOf(const swf::Matrix3D& matrix);
swf::Matrix3D twipsOf(const Raw& raw);
/// The place that a matrix gives, taken apart.
stage::SpacePlace placeOf(const Raw& raw);
/// Nothing for one that has none.
std::optional<swf::Matrix3D> inverse(const swf::Matrix3D& matrix);
Value newMatrix3D(Vm& vm, const Raw& raw, DisplayObject* target = nullptr);

inline Matrix3DObject& self(Call& call)
{
    return classes::selfAs<Matrix3DObject>(call, "flash.geom.Matrix3D");
}
inline Matrix3DObject& matrixArg(Call& call, std::uint32_t i, const char* name)
{
    auto& matrix = *as<Matrix3DObject>(&objectArg(call, i, kMatrix3D, name));
    matrix.refresh();
    return matrix;
}
Value newVector(Vm& vm, double x, double y, double z, double w);

// Members that take matrices apart and put them together: place, turn and scale.
Value decompose(Call& call);
Value recompose(Call& call);
Value interpolate(Call& call);
Value interpolateTo(Call& call);
Value pointAt(Call& call);

} // namespace flash::avm2::space
