// movie: version="10" rate="20"
// Matrices of space are taken apart, put together, and gone through between.
import flash.geom.*;
function shown(v:Vector3D):String
{
    var parts:Array = [];
    for each (var n:Number in [v.x, v.y, v.z, v.w]) parts.push(Math.round(n * 1000) / 1000 + 0);
    return parts.join(" ");
}
function raw(m:Matrix3D):String
{
    var parts:Array = [];
    for each (var n:Number in m.rawData) parts.push(Math.round(n * 1000) / 1000 + 0);
    return parts.join(" ");
}
var m:Matrix3D = new Matrix3D();
m.appendScale(2, 3, 4);
m.appendRotation(90, Vector3D.Z_AXIS);
m.appendTranslation(10, 20, 30);
for each (var style:String in [Orientation3D.EULER_ANGLES, Orientation3D.AXIS_ANGLE, Orientation3D.QUATERNION])
{
    var parts:Vector.<Vector3D> = m.decompose(style);
    trace(style, shown(parts[0]), "|", shown(parts[1]), "|", shown(parts[2]));
    var again:Matrix3D = new Matrix3D();
    trace(again.recompose(parts, style), raw(again) == raw(m));
}
// A mirror shows in the last scale.
m.identity(); m.appendScale(-1, 1, 1);
trace(shown(m.decompose()[2]), shown(m.decompose()[1]));
trace(m.recompose(Vector.<Vector3D>([new Vector3D(1, 2, 3), new Vector3D(), new Vector3D(0, 1, 1)])));
try { m.decompose("sideways"); } catch (e:Error) { trace(e.errorID); }
// Half the way of a right angle.
var quarter:Matrix3D = new Matrix3D(); quarter.appendRotation(90, Vector3D.Z_AXIS); quarter.appendTranslation(8, 0, 0);
trace(raw(Matrix3D.interpolate(new Matrix3D(), quarter, 0.5)));
quarter.interpolateTo(new Matrix3D(), 1); trace(raw(quarter));
var out:Vector.<Number> = new Vector.<Number>();
new Matrix3D().copyRawDataTo(out, 1); trace(out);
m.identity(); m.appendTranslation(1, 2, 3);
m.transformVectors(Vector.<Number>([1, 1, 1]), out); trace(out.slice(0, 4));
