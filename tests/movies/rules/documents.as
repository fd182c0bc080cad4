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

// The list of children is only looked at; what a script put in place of the map of elements stays.
x = new XML("<a id='one'><b/></a>");
x.childNodes[0] = 1;
trace(x.childNodes[0].nodeName + " " + x.idMap.one.nodeName);
trace(delete x.childNodes[0]);
x = new XML();
x.idMap = 2;
x.parseXML("<a id='one'/>");
trace(x.idMap);
fscommand("quit");
