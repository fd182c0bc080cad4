// movie: version="10" rate="20" document="triangles"
// Triangles far askew in depth, more of them than could be cut finely, in one call and in many; lists that
// are longer than what is in them.
package {
    import flash.display.*;

    public class triangles extends Sprite
    {
        public function triangles()
        {
            graphics.beginBitmapFill(new BitmapData(4, 4));
            var corners:Vector.<Number> = Vector.<Number>([0, 0, 5000, 0, 0, 5000]);
            var places:Vector.<Number> = Vector.<Number>([0, 0, 1, 1, 0, 0.001, 0, 1, 1000]);
            var order:Vector.<int> = new Vector.<int>();
            for (var i:int = 0; i < 20000; i++) order.push(0, 1, 2);
            graphics.drawTriangles(corners, order, places);
            trace("one call");
            order.length = 3;
            for (i = 0; i < 5000; i++) graphics.drawTriangles(corners, order, places);
            trace("many calls");
            graphics.clear();
            var commands:Vector.<int> = new Vector.<int>(300000), data:Vector.<Number> = new Vector.<Number>(6);
            for (i = 0; i < commands.length; i++) commands[i] = i % 8;
            graphics.drawPath(commands, data);
            var records:Vector.<IGraphicsData> = new Vector.<IGraphicsData>(100000);
            records[99999] = new GraphicsPath(commands, data);
            graphics.drawGraphicsData(records);
            trace("lists");
        }
    }
}
