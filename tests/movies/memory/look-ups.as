// The same place of the code looks for a name again after something has come in between.

function read(object) { return object.it; }
function write(object, value) { object.it = value; }
function variable() { return roaming; }
function assign(value) { roaming = value; }

// An object with more properties than layouts are shared for; it loses one and gets it back.
var big = {};
for (var i = 0; i < 70; i++) big["p" + i] = i;
big.it = "big";
trace(read(big)); trace(read(big));
big.more = 1;
trace(read(big));
delete big.it;
trace(read(big));
big.it = "again";
trace(read(big)); trace(read(big));
write(big, 1); write(big, 2);
ASSetPropFlags(big, "it", 4, 0);
write(big, 3);
trace(read(big));
ASSetPropFlags(big, "it", 0, 4);
write(big, 4);
trace(read(big));

// A variable comes into a nearer scope, and goes.
_global.roaming = "global";
trace(variable()); trace(variable());
_root.roaming = "root";
trace(variable());
delete _root.roaming;
trace(variable());
assign("assigned");
trace(_root.roaming + " " + _global.roaming);
assign("twice");
trace(variable());
delete _root.roaming;
_root.createEmptyMovieClip("roaming", 1);
trace(variable());
roaming.removeMovieClip();
trace(variable());
MovieClip.prototype.roaming = "of the class";
trace(variable());
delete MovieClip.prototype.roaming;
trace(variable());
function shadowed() { if (arguments.length > 0) var roaming = "local"; return roaming; }
trace(shadowed()); trace(shadowed(1)); trace(shadowed());
with ({roaming: "with"}) { trace(roaming); var inner = function() { return roaming; }; }
trace(inner()); trace(inner()); trace(variable());
_global.addProperty("roaming", function() { return "getter"; }, null);
trace(variable()); trace(variable());

// Closures share a place but not their variables.
function counter(start) { return function() { return start++; }; }
var a = counter(10), b = counter(20);
trace(a() + " " + b() + " " + a() + " " + b());
function self() { return this.it; }
var one = {it: 1, self: self}, two = {it: 2, self: self};
trace(one.self() + " " + two.self() + " " + one.self());
function given() { return arguments.length + arguments[0]; }
trace(given(5) + " " + given(6, 7));

// Elements: setters among the prototypes, holes, places far beyond the end, texts as keys.
var list = [];
function put(index, value) { list[index] = value; }
for (var j = 0; j < 5; j++) put(j, j);
put(100, "far"); put(100000, "further"); put("7", "text"); put(1.5, "between"); put(-1, "below");
trace(list.length + " " + list[100] + " " + list[100000] + " " + list["7"] + " " + list[1.5] + " " + list[-1]);
delete list[2];
trace(list[2] + " " + list.length);
Array.prototype.addProperty("2", function() { return "from the class"; }, function(value) { trace("set " + value); });
put(2, "x");
trace(list[2]);
put(8, "eight");
trace(list.length + " " + list[8]);
list.watch("1", function(name, before, after) { return after + "!"; });
put(1, "watched");
trace(list[1]);
var sparse = [1];
sparse[50000] = "s";
for (var k = 0; k < 3; k++) sparse.push(k);
trace(sparse.length + " " + sparse[50000] + " " + sparse[50003]);
var object = {length: 2};
object[0] = "zero"; object[1] = "one";
trace(object[0] + object["1"]);

// What is new in an object: one of its prototypes gets a setter for it.
function Thing(value) { this.first = value; this.it = value; }
trace(new Thing(1).it + new Thing(2).it);
Thing.prototype.addProperty("it", function() { return "got"; }, function(value) { trace("set " + value); });
trace(new Thing(3).it);
var base = new Thing(4), derived = new Thing(5);
derived.__proto__ = base;
base.late = "late";
trace(derived.late);

// Texts whose class is replaced.
function lengthOf(text) { return text.length + text.charAt(1); }
trace(lengthOf("abc")); trace(lengthOf("defg"));
String.prototype.charAt = function(index) { return "<" + index + ">"; };
trace(lengthOf("abc"));
var kept = String;
_global.String = function(text) { this.length = "own"; this.charAt = function() { return "!"; }; };
trace(lengthOf("abc"));
_global.String = kept;
trace(lengthOf("abc"));
