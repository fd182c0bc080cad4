// movie: version="19" width="100" height="100" rate="10" document="Main"
// What was drawn as records, which draw the same again; and pictures as files.
package {
    import flash.display.*; import flash.events.*; import flash.geom.*; import flash.utils.*;
    public class Main extends Sprite
    {
        private function picture(of:DisplayObject):BitmapData {
            var made:BitmapData = new BitmapData(100, 100, true, 0);
            made.draw(of);
            return made;
        }
        public function Main()
        {
            var a:Shape = new Shape(), g:Graphics = a.graphics;
            g.lineStyle(2, 0x00FF00, 1, false, "none", "square", "miter", 5);
            g.beginFill(0xFF0000, 0.5);
            g.drawRect(10, 10, 30, 20);
            g.endFill();
            var records:* = g.readGraphicsData();
            var names:Array = [];
            for each (var r:Object in records) names.push(getQualifiedClassName(r).split("::")[1]);
            trace(names);
            trace(records[0].color.toString(16), records[0].alpha.toFixed(2));
            trace(records[1].thickness, records[1].scaleMode, records[1].caps, records[1].joints, records[1].miterLimit, records[1].fill.color.toString(16));
            trace(records[2].commands, "/", records[2].data, records[2].winding);

            // All kinds of paints and paths, drawn again elsewhere.
            g.lineStyle();
            var m:Matrix = new Matrix(); m.createGradientBox(50, 50, 1, 20, 20);
            g.beginGradientFill("radial", [0xFF, 0xFFFF00, 0xFFFFFF], [1, 0.5, 1], [0, 100, 255], m, "reflect", "linearRGB", 0.5);
            g.drawCircle(60, 60, 30);
            var tile:BitmapData = new BitmapData(4, 4, false, 0x336699); tile.setPixel(1, 2, 0xFFFFFF);
            g.beginBitmapFill(tile, new Matrix(2, 0, 0, 2, 3, 1), true, false);
            g.drawRoundRect(5, 60, 40, 30, 10);
            g.endFill();
            g.lineStyle(3, 0, 0.7); g.moveTo(0, 99); g.curveTo(50, 0, 99, 99); g.lineTo(70, 99);
            var b:Shape = new Shape();
            b.graphics.drawGraphicsData(g.readGraphicsData());
            trace("the same", picture(a).compare(picture(b)));

            // Of what lies within only when it is asked for.
            var holder:Sprite = new Sprite();
            a.x = 5; holder.addChild(a);
            trace(holder.graphics.readGraphicsData(false).length, holder.graphics.readGraphicsData().length == g.readGraphicsData().length);
            trace(new Shape().graphics.readGraphicsData().length);

            var path:GraphicsPath = new GraphicsPath();
            path.wideMoveTo(1, 2); path.wideLineTo(3, 4);
            trace(path.commands, path.data);

            // A file's head and its size, and where it goes.
            var bytes:ByteArray = tile.encode(new Rectangle(1, 0, 50, 3), new PNGEncoderOptions(true));
            bytes.position = 1; trace(bytes.readUTFBytes(3)); bytes.position = 16; trace(bytes.readInt(), bytes.readInt());
            var into:ByteArray = new ByteArray(); into.writeInt(7);
            trace(tile.encode(tile.rect, new JPEGEncoderOptions(90), into) == into, into[4].toString(16), into[5].toString(16), into[into.length - 1].toString(16));
            trace(tile.encode(new Rectangle(50, 50, 5, 5), new PNGEncoderOptions()), tile.encode(tile.rect, new JPEGXREncoderOptions()));
            for each (var f:Function in [function():void { tile.encode(null, new PNGEncoderOptions()); },
                                         function():void { tile.encode(tile.rect, null); },
                                         function():void { tile.encode(tile.rect, {}); }])
                try { f(); } catch (e:Error) { trace(e); }
        }
    }
}
