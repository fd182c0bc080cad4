// movie: version="6" rate="10"
// Properties that are for later versions: read as missing, taken when assigned, and seen from then on.
var o = {};
o.eight = 1; o.seven = 1;
ASSetPropFlags(o, "eight", 4096); ASSetPropFlags(o, "seven", 1024);
trace(o.eight + "|" + o.seven);
o.eight = 2; o.seven = 2;
trace(o.eight + "|" + o.seven);
ASSetPropFlags(o, "seven", 0, 1024);
trace(o.seven);
// Classes of version 8 keep but what is assigned to them; those in script follow the movie's own rules.
ASSetPropFlags(_global, "flash", 0, 4096);
var t = new flash.geom.ColorTransform(2, 1, 1, 1, 0, 0, 0, 0);
trace(t);
t.redMultiplier = null;
trace(t.redMultiplier);
trace(new flash.geom.Matrix(1));
// A function found on the object itself, or called without a look-up, counts as one of the object's class.
function Base() {}
Base.prototype.who = function () { trace("base"); };
function Derived() {}
Derived.prototype = new Base();
Derived.prototype.who = function () { trace("derived"); };
var own = new Derived();
own.who = function () { super.who(); };
own.who();
own.who.call(new Derived());
trace([1, 2, 3].sort(true));
trace("".split("x", 0).length + " " + "a,b".split(undefined, 0));
