// movie: version="8" rate="20"
// Arguments are asked for numbers and texts by functions of their own, which may take away what is being worked on.
import flash.display.BitmapData;
import flash.geom.Rectangle;
import flash.geom.Point;
import flash.geom.Matrix;
import flash.geom.ColorTransform;
import flash.filters.BlurFilter;
function meanwhile(value, work)
{
    return {valueOf: function() { work(); return value; }, toString: function() { work(); return String(value); }};
}
function clip()
{
    return _root.createEmptyMovieClip("gone", 10);
}

// ---- lists ----
list = [1, 2, 3, 4];
trace("splice " + list.splice(meanwhile(1, function() { list.length = 0; }), 2).length);
list = [1, 2, 3, 4];
trace("slice " + list.slice(0, meanwhile(4, function() { list = null; })));
list = [3, 1, 2];
list.sort(function(a, b) { list.length = 1; return a - b; });
trace("sort " + (list.length <= 3));
list = [{k: 2}, {k: 1}];
list[0].k = meanwhile(2, function() { list.splice(0, 2); });
list.sortOn("k", Array.NUMERIC);
trace("sortOn " + (list.length <= 2));
list = [1, meanwhile("b", function() { list.length = 0; list.push("x"); }), 3];
trace("join " + list.join("-").length);
list = ["a", "b", "c", "d", "e"];
count = 0;
for (var name in list) { count++; delete list[name]; list.length = 0; }
trace("for in " + (count >= 1));
object = {a: 1, b: 2, c: 3};
for (var key in object) { for (var other in object) delete object[other]; object = {}; }
trace("names " + typeof object);

// ---- texts ----
trace("substr " + "abcdef".substr(meanwhile(2, function() { String.prototype.substr = null; }), 3));
trace("split " + "a,b,c".split(meanwhile(",", function() { })).length);
trace("concat " + "a".concat(meanwhile("b", function() { delete String.prototype.concat; }), "c"));

// ---- clips ----
target = clip();
target._x = meanwhile(5, function() { target.removeMovieClip(); });
trace("property " + typeof target._x);
target = clip();
target.lineTo(meanwhile(5, function() { target.removeMovieClip(); }), 5);
trace("lineTo " + target);
target = clip();
target.beginFill(0xFF0000, meanwhile(50, function() { removeMovieClip(target); }));
trace("beginFill " + target._name);
target = clip();
target.swapDepths(meanwhile(3, function() { target.removeMovieClip(); }));
trace("swapDepths " + target);
target = clip();
made = target.createTextField("field", 1, 0, 0, meanwhile(10, function() { target.removeMovieClip(); }), 10);
trace("createTextField " + target);
target = clip();
made = target.createEmptyMovieClip(meanwhile("inner", function() { target.removeMovieClip(); }), 1);
trace("createEmptyMovieClip " + target);
target = clip();
trace("hitTest " + target.hitTest(meanwhile(1, function() { target.removeMovieClip(); }), 1, true));
target = clip();
copy = target.duplicateMovieClip(meanwhile("copy", function() { target.removeMovieClip(); }), 20);
trace("duplicate " + target);
target = clip();
target.gotoAndStop(meanwhile(1, function() { target.removeMovieClip(); }));
target = clip();
target.setMask(meanwhile(clip(), function() { }));
target.attachBitmap(new BitmapData(2, 2), meanwhile(1, function() { target.removeMovieClip(); }));
trace("attachBitmap " + target);
target = clip();
point = {x: meanwhile(1, function() { target.removeMovieClip(); }), y: 2};
target.localToGlobal(point);
trace("localToGlobal " + typeof point.x);
target = clip();
target.onUnload = function() { target.createEmptyMovieClip("late", 1); };
target.removeMovieClip();
trace("onUnload " + target.late);

// ---- text fields ----
function field()
{
    _root.createTextField("text", 30, 0, 0, 100, 100);
    _root.text.text = "some text";
    return _root.text;
}
edit = field();
edit.replaceText(meanwhile(0, function() { edit.removeTextField(); }), 2, "x");
trace("replaceText " + edit.text);
edit = field();
edit.setTextFormat(0, meanwhile(3, function() { edit.removeTextField(); }), new TextFormat("_sans"));
trace("setTextFormat " + edit.text);
edit = field();
edit.text = meanwhile("new", function() { edit.removeTextField(); });
trace("text " + edit.text);
edit = field();
edit.htmlText = meanwhile("<b>new</b>", function() { edit.removeTextField(); });
edit = field();
edit._width = meanwhile(5, function() { edit.removeTextField(); });
trace("width " + edit._width);
format = new TextFormat();
format.tabStops = [meanwhile(5, function() { format.tabStops = null; }), 7];
trace("tabStops " + typeof format.tabStops);

// ---- pictures ----
function picture() { return new BitmapData(20, 20, true, 0xFF112233); }
data = picture();
data.setPixel(meanwhile(1, function() { data.dispose(); }), 1, 5);
trace("setPixel " + data.width);
data = picture();
trace("getPixel " + data.getPixel(1, meanwhile(1, function() { data.dispose(); })));
data = picture();
data.fillRect({x: 0, y: 0, width: meanwhile(20, function() { data.dispose(); }), height: 20}, 7);
trace("fillRect " + data.height);
data = picture();
data.copyPixels(data, new Rectangle(0, 0, 20, 20), {x: meanwhile(1, function() { data.dispose(); }), y: 1});
data = picture();
data.scroll(meanwhile(1, function() { data.dispose(); }), 1);
data = picture();
data.noise(meanwhile(1, function() { data.dispose(); }));
data = picture();
data.perlinNoise(5, 5, meanwhile(2, function() { data.dispose(); }), 1, true, true);
data = picture();
data.floodFill(1, meanwhile(1, function() { data.dispose(); }), 9);
data = picture();
data.threshold(data, data.rectangle, new Point(0, 0), ">", meanwhile(1, function() { data.dispose(); }), 5);
data = picture();
data.paletteMap(data, data.rectangle, new Point(0, 0), [meanwhile(1, function() { data.dispose(); })]);
data = picture();
data.colorTransform(data.rectangle, meanwhile(new ColorTransform(), function() { data.dispose(); }));
data = picture();
data.merge(picture(), data.rectangle, new Point(0, 0), 1, meanwhile(2, function() { data.dispose(); }), 3, 4);
data = picture();
data.draw(clip(), {a: 1, b: 0, c: 0, d: 1, tx: meanwhile(0, function() { data.dispose(); }), ty: 0});
trace("pictures " + data.width);
blur = new BlurFilter(meanwhile(4, function() { blur = null; }), 4, 1);
trace("filter " + blur.blurX);

// ---- timers, watches, objects ----
turns = 0;
timer = setInterval(function() {
    clearInterval(timer);
    if (++turns < 3) timer = setInterval(arguments.callee, 1);
}, 1);
watched = {x: 1};
watched.watch("x", function(name, before, after) { watched.unwatch("x"); delete watched.x; return after; });
watched.x = 5;
trace("watch " + typeof watched);
_root.addProperty("shifting", function() { _root.addProperty("shifting", function() { return 2; }, null); return 1; }, null);
trace("property " + _root.shifting + _root.shifting);
function Thing() { this.made = true; Thing.prototype = null; delete _global.Thing; }
trace("constructor " + new Thing().made);
vars = new LoadVars();
vars.a = meanwhile("1", function() { delete vars.b; delete vars.a; });
vars.b = 2;
trace("LoadVars " + (vars.toString().length > 0));
doc = new XML("<a><b/><c/></a>");
doc.firstChild.insertBefore(new XMLNode(1, "d"), meanwhile(doc.firstChild.firstChild, function() { }));
node = doc.firstChild;
node.attributes.x = meanwhile("y", function() { node.removeNode(); doc.parseXML("<z/>"); });
trace("XML " + doc.toString().length + " " + (node.toString().length > 0));
trace("done");
