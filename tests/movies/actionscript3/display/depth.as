// movie: version="10" rate="20" width="400" height="300" document="depth"
// What leaves the plane is seen in perspective, and found there by the mouse.
package {
    import flash.display.*;
    import flash.filters.*;
    import flash.geom.*;

    public class depth extends Sprite
    {
        private function board(count:int, color:uint):Sprite
        {
            var made:Sprite = new Sprite();
            for (var i:int = 0; i < count * count; i++)
            {
                var side:Number = 100 / count;
                made.graphics.beginFill((i % count + int(i / count)) % 2 ? color : 0xFFEECC);
                made.graphics.drawRect(-50 + i % count * side, -50 + int(i / count) * side, side, side);
                made.graphics.endFill();
            }
            return made;
        }
        private static function near(n:Number):Number { return Math.round(n * 100) / 100; }
        private static function at(p:Object):String { return near(p.x) + " " + near(p.y); }

        public function depth()
        {
            // Flat until something of space is set, be it to what it was.
            var wall:Sprite = board(5, 0xCC3333);
            wall.x = 70; wall.y = 80;
            trace(wall.transform.matrix3D, wall.transform.matrix != null, wall.z, wall.scaleZ);
            wall.z = 0;
            trace(wall.transform.matrix, wall.transform.matrix3D.position);
            addChild(wall);
            wall.rotationY = 50;
            trace(wall.rotationY, wall.x, wall.y, wall.scaleX, at(wall.local3DToGlobal(new Vector3D(50, 0, 0))));
            var inside:Point = wall.localToGlobal(new Point(40, 30));
            trace(at(inside), at(wall.globalToLocal3D(inside)), wall.hitTestPoint(inside.x, inside.y, true));
            // Beyond the edge as it is seen, but within the box that it would have lying flat.
            trace(wall.hitTestPoint(112, 80, true), wall.getBounds(this).right < 112);

            // The matrix that was read is the object's, as is the perspective.
            var close:Sprite = board(4, 0x33AA33);
            close.x = 260; close.y = 80; close.z = -150;
            var matrix:Matrix3D = close.transform.matrix3D;
            matrix.appendTranslation(0, 0, 10);
            close.x = 250;
            trace(close.z, matrix.position);
            try { wall.transform.matrix3D = matrix; } catch (e:Error) { trace(e.errorID); }
            addChild(close);
            var view:PerspectiveProjection = transform.perspectiveProjection;
            trace(view != null, root.transform.perspectiveProjection.fieldOfView, at(root.transform.perspectiveProjection.projectionCenter));
            try { view.fieldOfView = 180; } catch (e:Error) { trace(e.errorID); }

            // Faces of a cube share one space.
            var cube:Sprite = new Sprite();
            cube.x = 110; cube.y = 210; cube.z = 0;
            var faces:Array = [[0, 0, 50, 0, 0], [-50, 0, 0, 0, 90], [0, 50, 0, 90, 0], [50, 0, 0, 0, 90], [0, -50, 0, 90, 0], [0, 0, -50, 0, 0]];
            for (var k:int = 0; k < 6; k++)
            {
                var face:Sprite = board(3, 0x884400 + k * 0x101830);
                face.x = faces[k][0]; face.y = faces[k][1]; face.z = faces[k][2];
                face.rotationX = faces[k][3]; face.rotationY = faces[k][4];
                cube.addChild(face);
            }
            cube.scaleX = cube.scaleY = cube.scaleZ = 0.7;
            cube.rotationX = 25; cube.rotationY = 35;
            addChild(cube);
            var apart:Vector3D = cube.getChildAt(5).transform.getRelativeMatrix3D(cube).position;
            trace(at(apart), near(apart.z));

            // Filters work on what is seen from aside.
            var sign:Sprite = new Sprite();
            sign.graphics.beginFill(0x222244); sign.graphics.drawRoundRect(-70, -40, 140, 80, 20, 20);
            sign.x = 300; sign.y = 220; sign.rotationY = -55;
            sign.filters = [new DropShadowFilter(8)];
            addChild(sign);

            // Behind the eye nothing is seen.
            var behind:Sprite = board(2, 0);
            behind.x = 200; behind.y = 150; behind.z = -1000;
            addChild(behind);

            // Back in the plane.
            var flat:Sprite = board(2, 0x3333CC);
            flat.x = 375; flat.y = 275; flat.scaleX = flat.scaleY = 0.4; flat.rotationX = 70;
            flat.transform.matrix3D = null;
            trace(flat.rotationX, flat.transform.matrix);
            addChild(flat);
        }
    }
}
