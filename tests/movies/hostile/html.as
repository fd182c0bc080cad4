// movie: version="8" rate="10"
// Markup that is nothing but beginnings.
var t = _root.createTextField("t", 1, 0, 0, 200, 100);
t.html = true;
t.multiline = true;
function repeated(s) { var all = s; while (all.length < 200000) all += all; return all; }
t.htmlText = repeated("<b>") + "x";
trace(t.text);
t.htmlText = repeated("&");
trace(t.text.length);
t.htmlText = repeated("<");
trace(t.text.length);
t.htmlText = repeated("<a href=\"");
trace(t.text.length < 10);
t.text = repeated("word ") + repeated("word ") + repeated("word ") + repeated("word ");
trace(t.text.length > 500000);
trace(t.maxscroll > 0);
