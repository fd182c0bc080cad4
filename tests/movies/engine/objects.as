// movie: version="7" rate="10"
// Objects in use: methods that are borrowed or replaced, members that come and go, many of them.
Object.prototype.tag = "tagged"; ASSetPropFlags(Object.prototype, "tag", 1);
trace({}.tag + [].tag + "x".tag + (5).tag + _root.tag + function() {}.tag);
delete Object.prototype.tag; trace({}.tag);
// Methods taken from one object and used on another.
var upper = String.prototype.toUpperCase; trace(upper.call("abc") + " " + upper.call(12));
var o = {length: 0}; Array.prototype.push.call(o, "x"); trace(o.length + " " + o[0]);
trace(Math.max.call(null, 3, 4) + " " + Math.floor.apply(Math, [2.9]));
// Arguments by value, objects by reference.
function grow(n, list) { n++; list.push(n); list = []; } var n = 1, list = []; grow(n, list); trace(n + " " + list);
// A member function that is replaced while it runs goes on.
var self = {count: 0}; self.run = function() { self.run = function() { return "new"; }; this.count++; return "old"; };
trace(self.run() + " " + self.run() + " " + self.count);
// A list that grows while it is walked; an object that loses members while they are enumerated.
var walked = [1, 2]; for (var i = 0; i < walked.length && i < 5; i++) walked.push(i); trace(walked.length);
var members = {a: 1, b: 2, c: 3}, visits = 0; for (var k in members) { visits++; delete members[k]; } trace(visits);
// super reaches over a class that does not define the method.
function A() {} A.prototype.hi = function() { return "A.hi of " + this.name; };
function B() {} B.prototype = new A();
function C() { this.name = "c"; } C.prototype = new B(); C.prototype.hi = function() { return "C and " + super.hi(); };
trace(new C().hi());
// A getter of a class, with the setter of a derived one through this.
function Temp() { this.c = 0; } Temp.prototype.addProperty("f", function() { return this.c * 9 / 5 + 32; }, function(f) { this.c = (f - 32) * 5 / 9; });
function Probe() {} Probe.prototype = new Temp(); var probe = new Probe(); probe.f = 212; trace(probe.c + " " + probe.f + " " + new Probe().c);
// Counting up a missing member, and names that are odd.
var odd = {}; odd["a b"] = 1; odd[""] = 2; odd[1.5] = 3; odd[true] = 4; odd[null] = 5; trace(odd["a b"] + odd[1.5] + odd["true"] + odd["null"]);
odd.none++; trace(odd.none); odd.text += "t"; trace(odd.text);
// Collected cycles and many short-lived objects leave no trace.
for (i = 0; i < 20000; i++) { var one = {}, two = {one: one}; one.two = two; } trace(one.two.one === one);
var big = ""; for (i = 0; i < 5000; i++) big += "x" + i % 10; trace(big.length + " " + big.substr(-4));
var sorted = []; for (i = 0; i < 2000; i++) sorted.push(i * 7919 % 2003); sorted.sort(Array.NUMERIC); var right = true;
for (i = 1; i < 2000; i++) if (sorted[i - 1] > sorted[i]) right = false; trace(right);
