// movie: version="16" rate="20" width="120" height="80" background="#00ff00" document="stage3d"
package
{
    import flash.display.*;
    import flash.display3D.*;
    import flash.display3D.textures.*;
    import flash.events.*;
    import flash.geom.*;
    import flash.utils.*;

    // The space behind the stage: what it is asked for, what it refuses, and a picture of a textured square
    // with a triangle in front of it, below what the stage itself shows.
    public class stage3d extends Sprite
    {
        private var place:Stage3D;
        private var context:Context3D;

        public function stage3d()
        {
            trace(stage.stage3Ds.length, stage.stage3Ds[0].context3D, stage.stage3Ds.fixed);
            place = stage.stage3Ds[0];
            place.addEventListener("context3DCreate", created);
            place.requestContext3D();
            trace("asked", place.context3D);
            refused("a context", function():void { new Context3D(); });
            refused("a mode", function():void { place.requestContext3D("fast"); });
            graphics.beginFill(0x0000FF);
            graphics.drawRect(100, 0, 20, 80);
        }

        private static function refused(what:String, work:Function):void
        {
            try {
                work();
                trace(what, "is taken");
            } catch (error:Error) {
                trace(what, error.errorID);
            }
        }

        private static function program(kind:int, ...steps):ByteArray
        {
            var bytes:ByteArray = new ByteArray();
            bytes.endian = Endian.LITTLE_ENDIAN;
            bytes.writeByte(0xA0);
            bytes.writeUnsignedInt(1);
            bytes.writeByte(0xA1);
            bytes.writeByte(kind);
            for each (var part:uint in steps) bytes.writeUnsignedInt(part);
            return bytes;
        }

        private function created(event:Event):void
        {
            context = place.context3D;
            trace(event.type, event.target == place, context.driverInfo, context.enableErrorChecking);
            refused("a small buffer", function():void { context.configureBackBuffer(31, 80, 0); });
            refused("a large buffer", function():void { context.configureBackBuffer(90, 99999, 0); });
            context.configureBackBuffer(90, 60, 0);
            refused("no corners", function():void { context.createVertexBuffer(0, 4); });
            refused("too many corners", function():void { context.createVertexBuffer(99999, 4); });
            refused("no power of two", function():void { context.createTexture(3, 4, "bgra", false); });
            refused("a format", function():void { context.createTexture(4, 4, "cmyk", false); });
            refused("a blend", function():void { context.setBlendFactors("one", "two"); });
            refused("a register", function():void {
                context.setProgramConstantsFromVector("vertex", 249, new <Number>[1, 2, 3, 4, 5, 6, 7, 8]);
            });

            var corners:VertexBuffer3D = context.createVertexBuffer(7, 4);
            // x, y, u, v: a square, and a triangle.
            corners.uploadFromVector(new <Number>[-1, 1, 0, 0, 0.5, 1, 2, 0, 0.5, -0.5, 2, 2, -1, -0.5, 0, 2,
                                                  0, 0.9, 0, 0, 0.9, -0.9, 0, 0, -0.9, -0.9, 0, 0], 0, 7);
            refused("corners beyond", function():void { corners.uploadFromVector(new <Number>[1, 2, 3, 4], 7, 1); });
            refused("too few numbers", function():void { corners.uploadFromVector(new <Number>[1, 2, 3], 0, 1); });
            var indices:IndexBuffer3D = context.createIndexBuffer(9);
            indices.uploadFromVector(new <uint>[0, 1, 2, 0, 2, 3, 4, 5, 6], 0, 9);
            // An upload whose numbers of places dispose of what they are for.
            var gone:VertexBuffer3D = context.createVertexBuffer(100, 4);
            refused("a buffer that goes", function():void {
                gone.uploadFromVector(new Vector.<Number>(400), { valueOf: function():Number { gone.dispose(); return 0; } }, 100);
            });

            var picture:BitmapData = new BitmapData(2, 2, true, 0xFFFF0000);
            picture.setPixel32(1, 0, 0xFF0000FF);
            picture.setPixel32(0, 1, 0x00000000);
            var texture:Texture = context.createTexture(2, 2, Context3DTextureFormat.BGRA, false);
            texture.uploadFromBitmapData(picture);
            refused("a level", function():void { texture.uploadFromBitmapData(picture, 2); });

            // The place is va0 with a depth from vc0; va1 goes on to the pixels.
            var vertices:ByteArray = program(0,
                0x00, 0x020F0000, 0x54000000, 0, 0, 0,
                0x00, 0x020C0000, 0x44000000, 1, 0, 0,
                0x00, 0x030F0000, 0xE4000000, 2, 0, 0,
                0x00, 0x040F0000, 0xE4000001, 0, 0, 0);             // v0 = va1
            var textured:ByteArray = program(1,
                0x28, 0x030F0000, 0xE4000000, 4, 0x00000000, 0x00100005); // oc = tex v0, fs0 <repeat,nearest>
            var plain:ByteArray = program(1, 0x00, 0x030F0000, 0xE4000000, 1, 0, 0); // oc = fc0
            var first:Program3D = context.createProgram(), second:Program3D = context.createProgram();
            refused("a program that is none", function():void { first.upload(new ByteArray(), textured); });
            refused("the wrong one", function():void { first.upload(textured, vertices); });
            refused("no program", function():void { context.setProgram(first); context.drawTriangles(indices); });
            first.upload(vertices, textured);
            second.upload(vertices, plain);

            context.clear(0.2, 0.2, 0.2);
            context.setProgram(first);
            context.setTextureAt(0, texture);
            context.setVertexBufferAt(0, corners, 0, Context3DVertexBufferFormat.FLOAT_2);
            refused("a stream that is not there", function():void { context.drawTriangles(indices); });
            context.setVertexBufferAt(1, corners, 2, Context3DVertexBufferFormat.FLOAT_2);
            context.setProgramConstantsFromVector("vertex", 0, new <Number>[0.5, 1, 0, 0]);
            context.setProgramConstantsFromVector("fragment", 0, new <Number>[1, 1, 0, 0.5]);
            context.setBlendFactors("one", "oneMinusSourceAlpha");
            context.drawTriangles(indices, 0, 2);
            refused("too many triangles", function():void { context.drawTriangles(indices, 6, 2); });
            // In front of half of it: the square is nearer now on its other half.
            context.setProgram(second);
            context.setBlendFactors("sourceAlpha", "oneMinusSourceAlpha");
            context.setProgramConstantsFromVector("vertex", 0, new <Number>[0.4, 1, 0, 0]);
            context.drawTriangles(indices, 6, 1);
            var copy:BitmapData = new BitmapData(90, 60);
            context.drawToBitmapData(copy);
            trace(copy.getPixel32(1, 1).toString(16), copy.getPixel32(80, 5).toString(16), copy.getPixel32(45, 40).toString(16));
            context.present();
            place.x = 5;
            place.y = 10;
            place.requestContext3D();
            place.removeEventListener("context3DCreate", created);
            place.addEventListener("context3DCreate", function(event:Event):void {
                trace("another", place.context3D != context, context.driverInfo);
                refused("the first", function():void { context.present(); });
            });
            var other:Stage3D = stage.stage3Ds[1];
            other.addEventListener("context3DCreate", function(event:Event):void {
                var short:Context3D = other.context3D;
                short.dispose();
                trace("disposed of", other.context3D, short.driverInfo);
            });
            other.requestContext3D();
        }
    }
}
