// movie: version="10" rate="20" width="200" height="100" document="shaders"
// Kernels, put together here byte by byte: what describes them, jobs, fills and filters.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.filters.*;
    import flash.geom.*;
    import flash.utils.*;

    public class shaders extends Sprite
    {
        private static const MOVE:int = 0x1D, MULTIPLY:int = 3, SAMPLE:int = 0x30;
        private var code:ByteArray;

        private function begin(name:String):void
        {
            code = new ByteArray();
            code.endian = Endian.LITTLE_ENDIAN;
            code.writeByte(0xA5);
            code.writeInt(1);
            code.writeByte(0xA4);
            code.writeShort(name.length);
            code.writeUTFBytes(name);
            parameter(1, 2, 0, 0xC, "_OutCoord");
        }
        private function text(value:String):void
        {
            code.writeUTFBytes(value);
            code.writeByte(0);
        }
        private function parameter(direction:int, type:int, reg:int, mask:int, name:String):void
        {
            code.writeByte(0xA1);
            code.writeByte(direction);
            code.writeByte(type);
            code.writeShort(reg);
            code.writeByte(mask);
            text(name);
        }
        private function metadata(tag:int, type:int, key:String, ...values):void
        {
            code.writeByte(tag);
            code.writeByte(type);
            text(key);
            for each (var value:* in values)
            {
                if (type == 12) text(value);
                else if (type > 7) code.writeShort(value);
                else
                {
                    code.endian = Endian.BIG_ENDIAN;
                    code.writeFloat(value);
                    code.endian = Endian.LITTLE_ENDIAN;
                }
            }
        }
        private function texture(index:int, channels:int, name:String):void
        {
            code.writeByte(0xA3);
            code.writeByte(index);
            code.writeByte(channels);
            text(name);
        }
        private function step(op:int, target:int, mask:int, source:int, swizzle:int, picture:int = 0):void
        {
            code.writeByte(op);
            code.writeShort(target);
            code.writeByte(mask);
            code.writeShort(source);
            code.writeByte(swizzle);
            code.writeByte(picture);
        }

        // The picture, each channel times its strength.
        private function tint():Shader
        {
            begin("Tint");
            metadata(0xA0, 12, "namespace", "tests");
            metadata(0xA0, 8, "version", 3);
            texture(0, 4, "src");
            parameter(2, 4, 1, 0xF, "dst");
            parameter(1, 4, 2, 0xF, "strength");
            metadata(0xA2, 4, "defaultValue", 1, 0.5, 0, 1);
            metadata(0xA2, 12, "description", "of each channel");
            step(SAMPLE, 1, 0xF1, 0, 0x1B);
            step(MULTIPLY, 1, 0xF3, 2, 0x1B);
            return new Shader(code);
        }
        // Where each pixel is.
        private function place():Shader
        {
            begin("Place");
            parameter(2, 3, 1, 0xE, "dst");
            step(MOVE, 1, 0xC1, 0, 0x1B);
            return new Shader(code);
        }
        // What is below without the red, and what is above.
        private function blend():Shader
        {
            begin("Blend");
            texture(0, 4, "below");
            texture(1, 4, "above");
            parameter(2, 4, 1, 0xF, "dst");
            parameter(1, 4, 2, 0xF, "strength");
            metadata(0xA2, 4, "defaultValue", 0, 1, 1, 1);
            step(SAMPLE, 1, 0xF1, 0, 0x1B);
            step(MULTIPLY, 1, 0xF3, 2, 0x1B);
            step(SAMPLE, 3, 0xF1, 0, 0x1B, 1);
            step(1, 1, 0xF3, 3, 0x1B);
            return new Shader(code);
        }
        private static function square(x:int, color:uint):Shape
        {
            var made:Shape = new Shape();
            made.graphics.beginFill(color);
            made.graphics.drawRect(0, 0, 4, 4);
            made.x = x;
            return made;
        }
        private static function tried(name:String, what:Function):void
        {
            try { what(); trace(name, "no error"); }
            catch (e:Error) { trace(name, e.errorID, e is ArgumentError); }
        }
        private static function hex(color:uint):String { return color.toString(16); }

        public function shaders()
        {
            var shader:Shader = tint();
            var data:ShaderData = shader.data;
            trace(data, data.name, data.namespace, data.version, data.src, data.strength);
            trace(data.src.name, data.src.channels, data.src.index, data.src.width, data.src.input);
            var strength:ShaderParameter = data.strength;
            trace(strength.name, strength.type, strength.index, strength.value, strength.description);
            trace(strength.value === strength.value, data.hasOwnProperty("_OutCoord"), data.hasOwnProperty("dst"));
            trace(shader.precisionHint, new Shader().data);
            tried("hint", function():void { shader.precisionHint = "exact"; });
            tried("bytes", function():void { new Shader(new ByteArray()); });
            tried("read", function():void { trace(Object(shader).byteCode); });
            tried("null", function():void { new ShaderData(null); });

            // A job at once, from one picture to another.
            var source:BitmapData = new BitmapData(2, 2, false, 0xFF8040);
            var target:BitmapData = new BitmapData(2, 2, true, 0);
            var job:ShaderJob = new ShaderJob(shader, target);
            tried("missing", function():void { job.start(true); });
            data.src.input = source;
            job.start(true);
            trace(hex(target.getPixel32(1, 1)), job.progress);
            strength.value = [0, 0, 1, 1];
            new ShaderJob(shader, source).start(true);
            trace(hex(source.getPixel(0, 0)));

            // Numbers in and out.
            var numbers:Vector.<Number> = new Vector.<Number>();
            new ShaderJob(place(), numbers, 3, 2).start(true);
            trace(numbers);
            data.src.input = Vector.<Number>([0.25, 0.5, 0.75, 1, 5, 6, 7, 8]);
            tried("size", function():void { new ShaderJob(shader, numbers, 2, 1).start(true); });
            data.src.width = 3; data.src.height = 1;
            tried("short", function():void { new ShaderJob(shader, numbers, 2, 1).start(true); });
            data.src.width = 2;
            strength.value = [1, 2, 3, 4];
            var bytes:ByteArray = new ByteArray();
            bytes.endian = Endian.LITTLE_ENDIAN;
            new ShaderJob(shader, bytes, 2, 1).start(true);
            trace(bytes.length);
            bytes.position = 16;
            trace(bytes.readFloat(), bytes.readFloat(), bytes.readFloat(), bytes.readFloat());
            data.src.input = new <String>["a"];
            tried("texts", function():void { new ShaderJob(shader, numbers, 2, 1).start(true); });
            tried("nowhere", function():void { new ShaderJob(place(), null).start(true); });
            tried("endless", function():void { new ShaderJob(place(), numbers, 1 << 30, 1 << 30).start(true); });

            // A value that takes the data and the target away when it is asked.
            var robbed:Shader = tint();
            var asked:ShaderJob = new ShaderJob(robbed, new BitmapData(2, 2));
            robbed.data.src.input = new BitmapData(2, 2);
            robbed.data.strength.value = [{valueOf: function():Number {
                robbed.data = place().data;
                asked.target = null;
                return 1;
            }}, 1, 1, 1];
            tried("robbed", function():void { asked.start(true); });
            trace(asked.progress, asked.target, robbed.data.name);

            // A fill, from the place within the shape; and a filter.
            var shape:Shape = new Shape();
            data.src.input = new BitmapData(4, 1, false, 0x0000FF);
            data.src.input.setPixel(1, 0, 0xFFFFFF);
            strength.value = [1, 1, 1, 1];
            shape.graphics.beginShaderFill(shader, new Matrix(2, 0, 0, 10));
            shape.graphics.drawRect(0, 0, 8, 10);
            shape.graphics.endFill();
            var drawn:BitmapData = new BitmapData(10, 10, true, 0);
            drawn.draw(shape);
            trace(hex(drawn.getPixel32(1, 5)), hex(drawn.getPixel32(2, 5)), hex(drawn.getPixel32(4, 5)),
                hex(drawn.getPixel32(8, 5)));
            strength.value = [0, 1, 0, 1];
            var filter:ShaderFilter = new ShaderFilter(shader);
            shape.filters = [filter];
            trace(shape.filters[0] == filter, shape.filters[0].shader == shader, filter.leftExtension);
            drawn.fillRect(drawn.rect, 0);
            var holder:Sprite = new Sprite();
            holder.addChild(shape);
            drawn.draw(holder);
            trace(hex(drawn.getPixel32(1, 5)), hex(drawn.getPixel32(2, 5)), hex(drawn.getPixel32(8, 5)));
            filter.leftExtension = 2;
            filter.bottomExtension = 1;
            trace(drawn.generateFilterRect(new Rectangle(2, 2, 3, 3), filter));

            // How one lies over another.
            var pair:Sprite = new Sprite();
            var above:Shape = square(2, 0x0000FF);
            pair.addChild(square(0, 0xFFFF00));
            pair.addChild(above);
            above.blendShader = blend();
            trace(above.blendMode, above.filters.length);
            for each (var mode:String in ["", BlendMode.NORMAL])
            {
                if (mode) above.blendMode = mode;
                drawn.fillRect(drawn.rect, 0);
                drawn.draw(pair);
                trace(above.blendMode, hex(drawn.getPixel32(1, 1)), hex(drawn.getPixel32(3, 1)),
                    hex(drawn.getPixel32(5, 1)), hex(drawn.getPixel32(7, 1)));
            }

            // A job that waits for its turn, and one that is called off.
            data.src.input = new BitmapData(1, 1, false, 0xFFFFFF);
            strength.value = [1, 0, 1, 1];
            var late:BitmapData = new BitmapData(1, 1, false, 0);
            var waiting:ShaderJob = new ShaderJob(shader, late), stopped:ShaderJob = new ShaderJob(shader, late);
            waiting.addEventListener(ShaderEvent.COMPLETE, completed);
            stopped.addEventListener(ShaderEvent.COMPLETE, completed);
            waiting.start();
            stopped.start();
            stopped.cancel();
            trace(hex(late.getPixel(0, 0)), waiting.progress);
        }
        private function completed(event:ShaderEvent):void
        {
            trace(event.type, hex(event.bitmapData.getPixel(0, 0)), event.byteArray, event.vector, event.target.progress);
        }
    }
}
