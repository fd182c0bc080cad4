#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/stage/Drawing.h"

namespace flash::avm2
{

/// The pen of an object of the display list.
class GraphicsObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    GraphicsObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(owner);
    }
    /// What it draws on: the owner's, or what nobody sees.
    stage::Drawing& drawing();
    void changed();

    DisplayObject* owner = nullptr;
    std::optional<swf::FillStyle> fill; ///< the one that is open
    std::size_t pieces = 0;             ///< that triangles in depth were cut into since it was cleared
private:
    stage::Drawing m_unseen;
};

Value newGraphics(Vm& vm, DisplayObject& owner);
GraphicsObject& graphicsSelf(Call& call);
std::span<const NativeClass> graphicsClasses();
/// The records that describe drawings, and the members of Graphics that take them.
std::span<const NativeClass> graphicsDataClasses();

// What both ways of drawing share. Lists are vectors or arrays; null is empty.
std::vector<double> numbersOf(Vm& vm, Value list);
std::optional<swf::FillStyle> gradientOf(Vm& vm, std::u16string_view type, Value colors, Value alphas,
                                         Value ratios, Value matrix, std::u16string_view spread,
                                         std::u16string_view interpolation, double focal);
std::optional<swf::FillStyle> bitmapFillOf(Vm& vm, Value bitmapData, Value matrix, bool repeat, bool smooth);
swf::FillStyle solidFill(std::uint32_t rgb, double alpha);
void openFill(GraphicsObject& graphics, std::optional<swf::FillStyle> fill);
std::optional<swf::LineStyle> lineOf(double width, std::uint32_t rgb, double alpha, bool hinting,
                                     std::u16string_view scale, std::u16string_view caps,
                                     std::u16string_view joints, double miter);
void cubicTo(stage::Drawing& drawing, swf::Point c1, swf::Point c2, swf::Point to);
/// As twips of a pen; 0 for what is not finite.
double penTwips(double pixels);
[[noreturn]] void invalidGraphicsArgument(Vm& vm);
void addTriangles(Vm& vm, GraphicsObject& graphics, Value vertices, Value indices, Value uvs,
                  std::u16string_view culling);
Value drawPath(Call& call);
Value drawTriangles(Call& call);
Value drawGraphicsData(Call& call);
Value copyGraphics(Call& call);
Value readGraphicsData(Call& call);

} // namespace flash::avm2
