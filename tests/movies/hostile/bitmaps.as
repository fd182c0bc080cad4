// movie: version="8" rate="10"
// More bitmaps than there is room for: those beyond it are like those that are too large.
import flash.display.BitmapData;
var a = [];
for (var i = 0; i < 100; i++) a.push(new BitmapData(2880, 2880, true, 0));
trace(a[0].width + " " + a[99].width);
for (var i = 0; i < 100; i++) a[i].dispose();
trace(new BitmapData(2880, 2880).width);
trace(new BitmapData(100000, 1).width);
