// movie: version="8" rate="10"
// Documents: what they are given, and the order of attributes.
var x = new XML("<a one='1' two='2' three='3'/>");
var names = "";
for (var name in x.firstChild.attributes) names += name + " ";
trace(names + x);
x.firstChild.attributes.four = 4;
trace(x);
trace(x.firstChild.attributes.__proto__);
x.firstChild.nodeName = undefined;
trace(x.firstChild.nodeName);
x.status = 2.5;
trace(x.status);
x.status = Infinity;
trace(x.status);
x.status = undefined;
x.contentType = undefined;
trace(x.status + " " + x.contentType);
x.contentType = null;
trace(x.contentType);
x.ignoreWhite = {toString: function () { trace("made text"); return ""; }};
trace(x.ignoreWhite);
trace(new XML().createElement(""));
fscommand("quit");
