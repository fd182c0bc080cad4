// movie: version="8" rate="10"
function Base(n) { this.n = n; this.kind = "base"; }
Base.prototype.who = function() { return "Base" + this.n; };
Base.prototype.shared = 1;
function Derived(n) { super(n * 2); }
Derived.prototype = new Base(0);
Derived.prototype.constructor = Derived;
Derived.prototype.who = function() { return "Derived(" + super.who() + ")"; };
function Last(n) { super(n + 1); }
Last.prototype = new Derived(0);
Last.prototype.who = function() { return "Last(" + super.who() + ")"; };
trace(new Base(1).who() + " " + new Derived(1).who() + " " + new Last(1).who());
var d = new Last(1);
trace((d instanceof Last) + " " + (d instanceof Base) + " " + (d instanceof Array) + " " + (5 instanceof Number));
trace(d.__proto__ === Last.prototype);
trace(Last.prototype.isPrototypeOf(d) + " " + Base.prototype.isPrototypeOf(d) + " " + Array.prototype.isPrototypeOf(d));
trace(d.hasOwnProperty("n") + " " + d.hasOwnProperty("who") + " " + d.hasOwnProperty("shared"));
// A value set on the object hides that of the prototype, and delete uncovers it.
d.shared = 2; trace(d.shared + " " + Base.prototype.shared); delete d.shared; trace(d.shared);
// __proto__ may be changed, also to an object without a class.
var plain = {a: "a"}; plain.__proto__ = {b: "b", a: "hidden"}; trace(plain.a + plain.b + " " + plain.toString);
plain.__proto__ = null; trace(plain.a + " " + plain.b + " " + plain.toString);
// Built-in classes can be extended.
Array.prototype.last = function() { return this[this.length - 1]; };
String.prototype.twice = function() { return this + this; };
Number.prototype.half = function() { return this / 2; };
ASSetPropFlags(Array.prototype, "last", 1);
trace([1, 2, 3].last() + " " + "ab".twice() + " " + (9).half());
var seen = ""; for (var k in [7]) seen += k; trace(seen);
// addProperty: the getter is not called for setting, nor the setter for getting.
var store = 1, log = "";
var p = {};
trace(p.addProperty("v", function() { log += "g"; return store; }, function(n) { log += "s"; store = n * 10; }));
p.v = 2; trace(p.v + " " + log); p.v += 1; trace(p.v + " " + log);
trace(p.addProperty("r", function() { return "ro"; }, null) + " " + p.addProperty("", function() {}, null) + " " + p.addProperty("q", 5, null));
p.r = "no"; trace(p.r);
trace(p.hasOwnProperty("v"));
// A property of the prototype sees the object through this.
function Area(w, h) { this.w = w; this.h = h; }
Area.prototype.addProperty("size", function() { return this.w * this.h; }, function(s) { this.w = s; this.h = 1; });
var area = new Area(3, 4); trace(area.size); area.size = 7; trace(area.w + "x" + area.h + " " + area.size);
// watch sees name, old and new value, and decides; unwatch ends it.
var watched = {n: 1};
watched.watch("n", function(name, was, now, extra) { log = name + was + now + extra; return now > 5 ? was : now; }, "!");
watched.n = 3; trace(log + " " + watched.n); watched.n = 9; trace(log + " " + watched.n);
trace(watched.unwatch("n") + " " + watched.unwatch("none")); watched.n = 9; trace(watched.n);
// __resolve answers for what is missing, methods too.
var r = {known: 1}; r.__resolve = function(name) { return "no " + name; };
trace(r.known + " " + r.unknown);
r.__resolve = function(name) { return function(a) { return name + a; }; };
trace(r.anything(5));
// valueOf and toString in conversions.
var v = {valueOf: function() { return 6; }, toString: function() { return "text"; }};
trace(v + 1); trace(v * 2); trace("" + v); trace(String(v)); trace(v > 5);
// Methods of the class itself.
trace({}.toString() + " " + typeof {}.valueOf() + " " + ({}.toLocaleString()) + " " + [].constructor.prototype.isPropertyEnumerable);
var enumerated = {a: 1}; trace(enumerated.isPropertyEnumerable("a") + " " + enumerated.isPropertyEnumerable("toString"));
ASSetPropFlags(enumerated, "a", 7); enumerated.a = 2; seen = ""; for (k in enumerated) seen += k;
trace(enumerated.a + " " + delete enumerated.a + " <" + seen + ">");
// registerClass: false without a class name that is a text of the library.
function Boxed() { this.made = true; }
var boxed = Object(5); trace(typeof boxed + " " + (boxed + 1) + " " + (boxed instanceof Number));
trace(typeof new Boolean(false) + " " + (new Boolean(false) ? "then" : "else") + " " + new String("s").length);
