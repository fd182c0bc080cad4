// The size of a field's box, alone and when it fits itself to its text.
var t = _root.createTextField("t", 1, 10, 20, 100, 30);
t._xscale = 200;
trace(t._width + " " + t._height);
t._width = 20;                          // of the box, which is then scaled
t._height = 15;
trace(t._width + " " + t._height);
t._xscale = 100;
trace(t._width);
var f = new TextFormat("_sans", 20);
f.leading = 7;
function grown(text) {
    var g = _root.createTextField("g", 2, 0, 0, 50, 20);
    g.multiline = true;
    g.autoSize = "left";
    g.text = text;
    g.setTextFormat(f);
    return g._height - 4 - Math.floor(g.textHeight) < 1 ? Math.floor(g.textHeight) : "not so high";
}
var one = grown("a"), two = grown("a\rb"), ended = grown("a\rb\r");
trace((one * 2 - two) + " " + (ended - two));   // the leading below a single line counts; an empty end does not
// A field that was as large as its text does not stay scrolled.
var s = _root.createTextField("s", 3, 0, 0, 50, 25);
s.wordWrap = true;
s.text = "Hello World";
s.scroll = 2;
s.wordWrap = false;
s.autoSize = true;
var asked = s._x;
s.autoSize = false;
s.wordWrap = true;
trace(s.scroll);
// Beyond the last stop tabs are nothing.
var tabs = new TextFormat("_sans", 12);
tabs.tabStops = [50, 100];
t.text = "\t\t";
t.setTextFormat(tabs);
var short = t.textWidth;
t.text = "\t\t\t\t";
t.setTextFormat(tabs);
trace(short + " " + t.textWidth);
trace(new TextFormat("_sans", 12).getTextExtent("").height);
// A negative size lies before the position.
var n = _root.createTextField("n", 9, 50, 60, -30, -20);
trace(n._x + " " + n._y + " " + n._width + " " + n._height);
