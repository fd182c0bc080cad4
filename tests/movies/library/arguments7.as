// movie: version="7" rate="10"
// In which order, and how often, the library asks its arguments for their values.
var asked = "";
var probe = {valueOf: function () { asked += "v"; return 3; }, toString: function () { asked += "s"; return "left"; }};
function ask(name, f) { asked = ""; var result = f(); trace(name + " " + asked + " " + result); }
var format = new TextFormat();
ask("size", function () { format.size = probe; return format.size; });
ask("align", function () { format.align = probe; return format.align; });
ask("display", function () { format.display = probe; return format.display; });
ask("bold", function () { format.bold = probe; return format.bold; });
ask("color", function () { format.color = probe; return format.color; });
ask("UTC", function () { return Date.UTC(probe); });
ask("less", function () { return {} < probe; });
ask("equal", function () { return {} == probe; });
ask("box", function () { var s = new String("in"); s.toString = function () { return "out"; }; return s + "side"; });
// A prefix counts only where the text begins.
trace([parseInt("0x10"), parseInt(" 0x10"), parseInt("-0x10"), parseInt("0x-10"), parseInt("0x10", 8), parseInt("010"),
       parseInt(" 010"), parseInt("7", undefined)]);
// Halves go up.
trace(4096.000244140625 + " " + 1.000030517578125 + " " + 0.1 + " " + 1e21 / 3);
trace((-2147483648).toString(2) + " " + Number.NaN.toString(16));
// What watches asks for the value that was put last, not for what the getter makes of it.
var w = {};
w.addProperty("p", function () { trace("get"); return "g"; }, function (value) { trace("set " + value); });
w.p = 1;
w.watch("p", function (name, before, after) { trace(name + ": " + before + " -> " + after); return after; });
w.p = 2;
trace(w.unwatch("p"));
w.watch("q", function (name, before, after) { delete this[name]; return after; });
w.q = 1;
trace(w.hasOwnProperty("q"));
// A list takes any length, and shows it as it was given.
var list = [1, 2, 3];
list.length = -4; trace(list.length + " [" + list + "]");
list[-2] = "x"; trace(list.length);
list.length = 2.5; trace(list.length);
// Documents.
var doc = new XML();
trace(doc.contentType + " " + doc.status + " " + doc.ignoreWhite + " " + doc.loaded);
doc.parseXML("<a><b id='k'/></c></a>");
trace(doc + " " + doc.status + " " + doc.k);
doc.parseXML(undefined); trace(doc);
doc.parseXML("<b><c></b>"); trace(doc.status);
doc.parseXML("<a/ >"); trace(doc.firstChild.nodeName);
trace(ASnative(100, 5)("<&>"));
var vars = new LoadVars();
vars.addRequestHeader("a"); vars.addRequestHeader("a", 1); vars.addRequestHeader(["a", "b", "c"]);
trace(vars._customHeaders);
trace(unescape("a%41b%4+c%zd%C3%A9"));
trace((5).__proto__ == Number.prototype);
trace(Number.prototype.isPrototypeOf(5) + " " + (5).hasOwnProperty("__constructor__"));
