// movie: version="11" document="Main"
// What a filter keeps of what it is told, and what the stage and arrays of bytes refuse.
package {
    import flash.display.*;
    import flash.filters.*;
    import flash.geom.*;
    import flash.utils.ByteArray;
    public class Main extends Sprite
    {
        private function refused(what:String, work:Function):void
        {
            try { work(); trace(what, "done"); } catch (e:Error) { trace(what, e.errorID, e.message); }
        }
        public function Main()
        {
            var glow:GlowFilter = new GlowFilter(0x123456, 1.5, 300, -3, 999, 99);
            trace(glow.color, glow.alpha, glow.blurX, glow.blurY, glow.strength, glow.quality, glow.inner);
            glow.alpha = -1; glow.blurX = NaN; glow.quality = -4; glow.strength = 7.5; glow.blurY = 255.5;
            trace(glow.alpha, glow.blurX, glow.quality, glow.strength, glow.blurY);
            var copy:GlowFilter = glow.clone() as GlowFilter;
            copy.strength = 1;
            trace(copy.color, copy.strength, glow.strength);
            // Lists are copies, both ways.
            var list:Array = [1, 2, 3];
            var matrix:ColorMatrixFilter = new ColorMatrixFilter(list);
            list[0] = 9; matrix.matrix[1] = 9;
            trace(matrix.matrix.length, matrix.matrix);
            trace(new ColorMatrixFilter().matrix);
            var gradient:GradientGlowFilter = new GradientGlowFilter(4, 45, [1, 2], [0, 1], [0, 255]);
            gradient.colors.push(3);
            trace(gradient.colors, gradient.alphas, gradient.ratios, gradient.type, new GradientBevelFilter().colors);
            trace(new ConvolutionFilter(20, 3, [1]).matrixX, new DisplacementMapFilter().mode);
            refused("colors", function():void { gradient.colors = null; });
            refused("matrix", function():void { matrix.matrix = null; });
            refused("type", function():void { gradient.type = null; });
            refused("mode", function():void { new DisplacementMapFilter().mode = "x"; });
            refused("map", function():void { new DisplacementMapFilter().mapBitmap = null; });
            refused("drawing", function():void { var c:Class = Graphics; new c(); });
            // What the stage shows and does not take.
            for each (var name:String in ["x", "name", "alpha", "rotation", "filters", "mask", "mouseEnabled", "contextMenu", "scrollRect"]) {
                var before:* = stage[name];
                try { stage[name] = before; trace(name, "taken"); } catch (e:Error) { trace(name, e.errorID, String(stage[name]) == String(before)); }
            }
            stage.tabChildren = true; stage.mouseChildren = true; stage.stageFocusRect = false;
            var bytes:ByteArray = new ByteArray();
            refused("text", function():void { bytes.writeUTF(null); });
            refused("text bytes", function():void { bytes.writeUTFBytes(null); });
            refused("text in a code", function():void { bytes.writeMultiByte("a", null); });
            refused("text of a code", function():void { bytes.readMultiByte(1, null); });
            trace(bytes.length);
        }
    }
}
