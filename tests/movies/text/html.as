// What HTML does to a field: which tags end which, and what text that is set afterwards looks like.
function field() {
    var t = _root.createTextField("t", 1, 0, 0, 200, 100);
    t.html = true;
    t.multiline = true;
    return t;
}
// Each character with its marks: b bold, u underlined, * in a list, > indented, r right, c centre, its size when not 12.
function show(html) {
    var t = field(), line = "";
    t.htmlText = html;
    for (var i = 0; i < t.length; i++) {
        var f = t.getTextFormat(i), c = t.text.charAt(i);
        line += (c == "\r" ? "|" : c) + (f.bold ? "b" : "") + (f.underline ? "u" : "") + (f.bullet ? "*" : "")
            + (f.indent > 0 ? ">" : "") + (f.align == "right" ? "r" : f.align == "center" ? "c" : "")
            + (f.size != 12 ? f.size : "") + " ";
    }
    trace(line);
}
show("a<p>b<u>c</p>d");                          // a paragraph ends what was opened in it,
show("a<p>b<font size='20'>c</p>d");
show("a<p>b<b><u>c</p>d</u>e</b>f");
show("a<p>b<li>c</p>d</li>e");                   // but for items and text formats
show("a<p>b<textformat indent='10'>c</p>d");
show("a<p align='right'>b<p align='center'>c</p>d</p>e");
show("a<u>b</p>c</u>d");                         // no paragraph to end
show("a<li>b</li>c\n<li>d</li>");                // one break is enough
trace("-");
function after(html) {
    var t = field();
    t.htmlText = html;
    t.text = "x";
    var first = t.getTextFormat(0).size + (t.getTextFormat(0).bold ? "b" : "");
    t.htmlText = "y";
    trace(first + " " + t.getTextFormat(0).size);
}
after("<font size='30'>a");
after("<b><font size='30'>a</font>");
after("<font size='30'>a</font>");
var big = new TextFormat();
big.size = 40;
var t = field();
t.setNewTextFormat(big);
t.htmlText = "a<font size='9'>b</font>";
trace(t.getTextFormat(0).size + " " + t.getTextFormat(1).size + " " + t.getNewTextFormat().size);
trace("-");
// Formats of ranges without characters say nothing; an empty field tells of the text to come.
t.text = "abc";
trace([t.getTextFormat(-1).size, t.getTextFormat(2).size, t.getTextFormat(3).size, t.getTextFormat(2, 1).size,
       t.getTextFormat(1, 1).size, t.getTextFormat(0, -1).size, t.getTextFormat(-5, 9).size]);
t.text = "";
trace(t.getTextFormat().size);
