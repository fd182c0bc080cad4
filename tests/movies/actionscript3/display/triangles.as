// movie: version="10" rate="20" width="200" height="120" document="triangles"
// A picture on triangles of different depth grows smaller into it, and lines go around the whole of one.
package {
    import flash.display.*;

    public class triangles extends Sprite
    {
        public function triangles()
        {
            var picture:BitmapData = new BitmapData(64, 64, false, 0xFFEECC);
            for (var i:int = 0; i < 64; i += 8)
                for (var j:int = i / 8 % 2 * 8; j < 64; j += 16)
                    for (var k:int = 0; k < 64; k++) picture.setPixel(i + k % 8, j + k / 8, 0x884400);
            var far:Number = 0.3;
            graphics.beginBitmapFill(picture);
            graphics.drawTriangles(Vector.<Number>([10, 10, 90, 40, 90, 80, 10, 110]), Vector.<int>([0, 1, 2, 0, 2, 3]),
                Vector.<Number>([0, 0, 1, 1, 0, far, 1, 1, far, 0, 1, 1]));
            graphics.lineStyle(2, 0x0000CC);
            graphics.drawTriangles(Vector.<Number>([110, 10, 190, 40, 150, 110]), null,
                Vector.<Number>([0, 0, 1, 1, 0, far, 0, 1, far]));
        }
    }
}
