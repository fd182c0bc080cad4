// What is no bitmap, what is no colour transform, and how copies mix.
var point = new flash.geom.Point(0, 0);
trace(new flash.display.BitmapData() + " " + new flash.display.BitmapData(9999, 9999) + " " + new flash.display.BitmapData(0, 5));
trace(flash.display.BitmapData.prototype.clone.apply({}));
var b = new flash.display.BitmapData(1, 1, true, 0xFFFFFFFF);
b.colorTransform(b.rectangle, {redMultiplier: 0, greenMultiplier: 0, blueMultiplier: 0, alphaMultiplier: 1,
                               redOffset: 0, greenOffset: 0, blueOffset: 0, alphaOffset: 0});
trace((b.getPixel(0, 0)).toString(16));
b.colorTransform(b.rectangle, new flash.geom.ColorTransform(0, 1, 1, 1, 0, 0, 0, 0));
trace((b.getPixel(0, 0)).toString(16));
// A point needs both of its numbers.
var from = new flash.display.BitmapData(1, 1, true, 0xFF0000FF);
var to = new flash.display.BitmapData(3, 1, true, 0);
to.copyPixels(from, from.rectangle, {x: 2});
to.copyPixels(from, from.rectangle, {x: 1, y: 0});
trace(to.getPixel(0, 0) + " " + to.getPixel(1, 0) + " " + to.getPixel(2, 0));
// What shines through is rounded down.
to.setPixel32(0, 0, 0x45112233);
from.setPixel32(0, 0, 0x22445566);
to.copyPixels(from, from.rectangle, point, null, null, true);
trace(to.getPixel32(0, 0).toString(16));
// An alpha bitmap bounds what is copied, unless it has no alpha itself.
function alphaCopy(transparent) {
    var wide = new flash.display.BitmapData(3, 1, true, 0xFF0000FF), target = new flash.display.BitmapData(3, 1, true, 0);
    var alpha = new flash.display.BitmapData(2, 1, transparent, 0x80FFFFFF);
    target.copyPixels(wide, wide.rectangle, point, alpha, point);
    trace([target.getPixel32(0, 0) >>> 24, target.getPixel32(1, 0) >>> 24, target.getPixel32(2, 0) >>> 24]);
}
alphaCopy(true);
alphaCopy(false);
// The upper left pixel alone is not found.
var four = new flash.display.BitmapData(2, 2, true, 0xFFFFFFFF);
four.setPixel32(0, 0, 0xFF00FF00);
trace(four.getColorBoundsRect(0xFFFFFFFF, 0xFFFFFFFF, false));
four.setPixel32(1, 0, 0xFF00FF00);
trace(four.getColorBoundsRect(0xFFFFFFFF, 0xFFFFFFFF, false));
