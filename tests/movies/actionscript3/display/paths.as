// movie: version="10" rate="20" width="120" height="60" document="paths"
// What ends a list of commands and of triangles, and what a path goes around twice.
package {
    import flash.display.*;
    import flash.geom.Matrix;

    public class paths extends Sprite
    {
        private function at(x:Number, y:Number):Graphics
        {
            var made:Shape = new Shape();
            made.x = x; made.y = y;
            addChild(made);
            made.graphics.beginFill(0xCC0000);
            return made.graphics;
        }
        public function paths()
        {
            var square:Array = [0, 0, 20, 0, 20, 20, 0, 20, 0, 0, 15, 5, 15, 15, 5, 15, 5, 5, 15, 5];
            var data:Vector.<Number> = Vector.<Number>(square);
            var commands:Vector.<int> = Vector.<int>([1, 2, 2, 2, 2, 1, 2, 2, 2, 2]);
            // The same way around twice: a hole, or none.
            at(5, 5).drawPath(commands, data, GraphicsPathWinding.EVEN_ODD);
            at(35, 5).drawPath(commands, data, GraphicsPathWinding.NON_ZERO);
            // A command that there is not ends the path; one that does nothing does not.
            at(65, 5).drawPath(Vector.<int>([1, 0, 2, 2, 42, 2, 2]), data);
            // So does a corner that there is not, with triangles.
            at(95, 5).drawTriangles(Vector.<Number>([0, 0, 20, 0, 20, 20, 0, 20]), Vector.<int>([0, 1, 2, 0, 6, 7, 0, 2, 3]));
            // Few colours over many pixels go over into each other.
            var across:Matrix = new Matrix();
            across.createGradientBox(110, 20, 0, 5, 35);
            graphics.beginGradientFill(GradientType.LINEAR, [0xCC0000, 0x0000CC], [1, 1], [0, 8], across);
            graphics.drawRect(5, 35, 110, 20);
        }
    }
}
