// movie: version="10" rate="20"
import flash.display.*;
import flash.geom.*;
var s:Sprite = new Sprite();
s.graphics.beginFill(0xFF0000); s.graphics.drawRect(0, 0, 40, 20); s.graphics.endFill();
trace(s.width, s.height, s.x, s.rotation, s.scaleX, s.alpha, s.visible);
s.x = 10.5; s.scaleX = 2; trace(s.width, s.x, s.transform.matrix.a, s.transform.matrix.tx);
s.width = 20; trace(s.scaleX, s.getBounds(s));
s.scaleX = 1; s.x = 0; s.rotation = 90; trace(Math.round(s.width), Math.round(s.height), s.rotation);
s.rotation = 270; trace(s.rotation); s.rotation = 0;
var parent2:Sprite = new Sprite(); parent2.x = 100; parent2.addChild(s); s.y = 5;
trace(s.localToGlobal(new Point(1, 1)), parent2.globalToLocal(new Point(110, 20)), s.getBounds(parent2));
var m:Matrix = new Matrix(2, 0, 0, 3, 10, 20); s.transform.matrix = m; trace(s.scaleX, s.scaleY, s.x, s.y);
trace(m.transformPoint(new Point(1, 1)), m.deltaTransformPoint(new Point(1, 1)));
m.invert(); trace(m);
var r:Rectangle = new Rectangle(0, 0, 10, 10);
trace(r.intersection(new Rectangle(5, 5, 10, 10)), r.union(new Rectangle(20, 0, 1, 1)), r.contains(9, 9), r.contains(10, 10), r.isEmpty());
trace(Point.distance(new Point(0, 0), new Point(3, 4)), new Point(1, 2).add(new Point(3, 4)), Point.interpolate(new Point(0, 0), new Point(10, 10), 0.25));
