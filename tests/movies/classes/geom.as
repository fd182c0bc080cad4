// Points
var p = new flash.geom.Point(3, 4);
trace(p + " " + p.length + " " + p.add(new flash.geom.Point(1, 1)) + " " + flash.geom.Point.distance(p, new flash.geom.Point(0, 0)));
p.normalize(10);
trace(p + " " + flash.geom.Point.interpolate(new flash.geom.Point(0, 0), p, 0.25) + " " + p.equals(p.clone()));
var around = flash.geom.Point.polar(2, Math.PI / 2);
trace(Math.round(around.x) + " " + around.y);

// Rectangles: sides move alone, size follows.
var r = new flash.geom.Rectangle(10, 20, 30, 40);
r.left = 0;
r.bottom = 50;
trace(r + " " + r.right + " " + r.topLeft + " " + r.size);
trace(r.contains(0, 20) + " " + r.contains(40, 20) + " " + r.containsRectangle(new flash.geom.Rectangle(1, 21, 5, 5)));
trace(r.intersection(new flash.geom.Rectangle(30, 40, 100, 100)) + " " + r.intersects(new flash.geom.Rectangle(40, 0, 1, 99)));
trace(r.union(new flash.geom.Rectangle(-10, 0, 5, 5)) + " " + new flash.geom.Rectangle().isEmpty());
r.inflate(1, 2);
r.offset(1, 2);
trace(r);

// Matrices: rotate after scale, and back again.
var m = new flash.geom.Matrix();
m.scale(2, 3);
m.rotate(Math.PI / 2);
m.translate(10, 20);
var q = m.transformPoint(new flash.geom.Point(1, 1));
trace(Math.round(q.x) + " " + Math.round(q.y) + " " + Math.round(m.deltaTransformPoint(new flash.geom.Point(1, 1)).y));
var inverse = m.clone();
inverse.invert();
var back = inverse.transformPoint(q);
trace(Math.round(back.x) + " " + Math.round(back.y));
m.createGradientBox(163.84, 327.68, 0, 5, 6);
trace(Math.round(m.a * 1000) + " " + Math.round(m.d * 1000) + " " + m.tx + " " + m.ty);
trace(new flash.geom.Matrix(1, 2, 3, 4, 5, 6));

// Colour transforms
var first = new flash.geom.ColorTransform(0.5, 1, 1, 1, 10, 20, 30, 0);
first.concat(new flash.geom.ColorTransform(0.5, 0.5, 1, 1, 100, 0, 0, 0));
trace(first.redMultiplier + " " + first.redOffset + " " + first.greenMultiplier + " " + first.blueOffset);
first.rgb = 0x102030;
trace(first.redMultiplier + " " + first.redOffset + " " + first.rgb + " " + first.alphaMultiplier);
