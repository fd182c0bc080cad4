// movie: version="8" width="120" height="80" rate="20"
// A striped square is bent by a map, in every mode, as a clip's filter and on a bitmap.
var map = new flash.display.BitmapData(40, 40, false, 0x808080);
for (var y = 0; y < 40; y++) map.fillRect(new flash.geom.Rectangle(0, y, 40, 1), (0x80 + 3 * (y - 20)) << 16 | 0x8080);
var plain = new flash.display.BitmapData(30, 30, false, 0xFFFFFF);
for (var x = 0; x < 30; x += 6) plain.fillRect(new flash.geom.Rectangle(x, 0, 3, 30), 0xCC0000);
var modes = ["wrap", "clamp", "ignore", "color"];
for (var i = 0; i < 4; i++)
{
    var bend = new flash.filters.DisplacementMapFilter(map, new flash.geom.Point(-5, -5), 1, 0, 80, 0, modes[i], 0x0000CC, 1);
    var clip = _root.createEmptyMovieClip("c" + i, i);
    clip.attachBitmap(plain, 1);
    clip._x = i * 30; clip._y = 2;
    clip.filters = [bend];
    var flat = new flash.display.BitmapData(30, 30, false, 0xFFFFFF);
    flat.applyFilter(plain, plain.rectangle, new flash.geom.Point(0, 0), bend);
    var below = _root.createEmptyMovieClip("d" + i, 10 + i);
    below.attachBitmap(flat, 1);
    below._x = i * 30; below._y = 42;
}
var back = c3.filters[0];
trace(back.mode + " " + back.mapPoint + " " + back.componentX + " " + back.scaleX + " " + back.color + " " + back.mapBitmap.width);
