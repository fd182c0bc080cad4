// movie: version="10" rate="20"
// A picture that is disposed of by one of the arguments of what is done to it.
import flash.display.*;
import flash.filters.*;
import flash.geom.*;
import flash.utils.ByteArray;
var holder:Sprite = new Sprite(), area:Rectangle = new Rectangle(0, 0, 20, 20), origin:Point = new Point();
function made():BitmapData { return new BitmapData(20, 20, true, 0xFF112233); }
/// A number that disposes of a picture when it is asked for.
function ending(data:BitmapData, number:int):Object
{
    return {valueOf: function():Object { data.dispose(); return number; }, toString: function():String { data.dispose(); return "normal"; }};
}
var works:Array = [
    "getPixel", function(d:BitmapData, o:Object):void { o.getPixel(19, ending(d, 19)); },
    "getPixel32", function(d:BitmapData, o:Object):void { o.getPixel32(ending(d, 19), 19); },
    "setPixel", function(d:BitmapData, o:Object):void { o.setPixel(19, 19, ending(d, 5)); },
    "setPixel32", function(d:BitmapData, o:Object):void { o.setPixel32(ending(d, 19), 19, 5); },
    "fillRect", function(d:BitmapData, o:Object):void { o.fillRect(area, ending(d, 5)); },
    "floodFill", function(d:BitmapData, o:Object):void { o.floodFill(19, 19, ending(d, 5)); },
    "floodFill at", function(d:BitmapData, o:Object):void { o.floodFill(19, ending(d, 19), 5); },
    "scroll", function(d:BitmapData, o:Object):void { o.scroll(3, ending(d, 3)); },
    "noise", function(d:BitmapData, o:Object):void { o.noise(1, 0, ending(d, 255)); },
    "perlinNoise", function(d:BitmapData, o:Object):void { o.perlinNoise(5, 5, ending(d, 2), 1, true, true); },
    "threshold", function(d:BitmapData, o:Object):void { o.threshold(d, area, origin, "<", ending(d, 5), 7); },
    "merge", function(d:BitmapData, o:Object):void { o.merge(made(), area, origin, 1, 2, ending(d, 3), 4); },
    "merge from it", function(d:BitmapData, o:Object):void { made().merge(d, area, origin, 1, 2, ending(d, 3) as uint, 4); (made() as Object).merge(d, area, origin, 1, ending(d, 3), 1, 1); },
    "copyChannel", function(d:BitmapData, o:Object):void { o.copyChannel(d, area, origin, 1, ending(d, 2)); },
    "paletteMap", function(d:BitmapData, o:Object):void {
        var table:Array = [];
        for (var i:int = 0; i < 256; i++) table.push(i == 200 ? ending(d, 1) : i);
        o.paletteMap(d, area, origin, table);
    },
    "pixelDissolve", function(d:BitmapData, o:Object):void { o.pixelDissolve(d, area, origin, 1, ending(d, 50), 7); },
    "hitTest", function(d:BitmapData, o:Object):void { o.hitTest(origin, ending(d, 1), area); },
    "hitTest of two", function(d:BitmapData, o:Object):void { (made() as Object).hitTest(origin, 1, d, origin, ending(d, 1)); },
    "draw", function(d:BitmapData, o:Object):void { o.draw(made(), null, null, ending(d, 1)); },
    "colorBounds", function(d:BitmapData, o:Object):void { o.getColorBoundsRect(0xFF, ending(d, 1)); }
];
for (var i:int = 0; i < works.length; i += 2) {
    var data:BitmapData = made(), bitmap:Bitmap = new Bitmap(data);
    holder.addChild(bitmap);
    try {
        works[i + 1](data, data);
    } catch (error:Error) {
        if (error.errorID != 2015) throw error;
    }
    var gone:Boolean = false;
    try {
        data.width;
    } catch (error:ArgumentError) {
        gone = error.errorID == 2015;
    }
    trace(works[i], gone);
    holder.removeChild(bitmap);
}
// What is disposed of twice, drawn, or used as a fill shows nothing.
data = made();
holder.graphics.beginBitmapFill(data);
holder.graphics.drawRect(0, 0, 20, 20);
data.dispose();
data.dispose();
try {
    made().draw(data);
} catch (error:ArgumentError) {
    trace("drawn", error.errorID);
}
try {
    data.clone();
} catch (error:ArgumentError) {
    trace("cloned", error.errorID);
}
made().draw(holder);
trace("end");
