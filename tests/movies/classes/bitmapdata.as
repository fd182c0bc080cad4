// Pixels, copies between bitmaps, and what a clip draws.
function show(bitmap, y) {
    var row = [];
    for (var x = 0; x < bitmap.width; x++) {
        var color = bitmap.getPixel32(x, y);
        row.push((color >> 24 & 255).toString(16) + ":" + (color & 0xFFFFFF).toString(16));
    }
    trace(row.join(" "));
}
var a = new flash.display.BitmapData(4, 2, true, 0);
trace(a.width + " " + a.height + " " + a.transparent + " " + a.rectangle);
a.setPixel(0, 0, 0x123456);
a.setPixel32(1, 0, 0x80FF0000);
a.fillRect(new flash.geom.Rectangle(2, 0, 9, 1), 0xFF00FF00);
show(a, 0);
trace(a.getPixel(9, 9) + " " + a.getPixel(1, 0).toString(16) + " " + a.getPixel() + " " + new flash.display.BitmapData(9999, 1).width);

var b = new flash.display.BitmapData(4, 2, false, 0x0000FF);
b.copyPixels(a, a.rectangle, new flash.geom.Point(1, 0), null, null, true);
show(b, 0);
b.copyChannel(a, a.rectangle, new flash.geom.Point(0, 1), 2, 1);
show(b, 1);
b.floodFill(0, 1, 0xFFFFFF);
trace(b.getPixel(0, 1).toString(16) + " " + b.getColorBoundsRect(0xFFFFFF, 0xFFFFFF));
trace(b.threshold(a, a.rectangle, new flash.geom.Point(0, 0), "==", 0xFF00FF00, 0xFF112233) + " " + b.getPixel(3, 0).toString(16));

var clip = _root.createEmptyMovieClip("clip", 1);
clip.beginFill(0xFF0000, 100);
clip.moveTo(1, 0); clip.lineTo(3, 0); clip.lineTo(3, 2); clip.lineTo(1, 2); clip.endFill();
clip._x = 100; // its own place does not count
var c = new flash.display.BitmapData(4, 2, true, 0);
c.draw(clip);
show(c, 1);
var shift = new flash.geom.Matrix();
shift.translate(1, 0);
c.draw(clip, shift, new flash.geom.ColorTransform(0, 1, 1, 1, 0, 0, 255, 0));
show(c, 0);
var d = c.clone();
c.dispose();
trace(c.width + " " + c.getPixel(0, 0) + " " + d.getPixel(1, 0).toString(16) + " " + d.hitTest(new flash.geom.Point(0, 0), 1, new flash.geom.Point(0, 0)));
