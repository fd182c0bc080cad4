// movie: version="8" rate="10"
// Arguments are a list of their own; callee and caller know the functions.
function sum() { var n = 0; for (var i = 0; i < arguments.length; i++) n += arguments[i]; return n; }
trace(sum(1, 2, 3) + " " + sum.apply(null, [4, 5]) + " " + sum.call(null, 6));
trace(sum.apply(null) + " " + sum.apply(null, "ab"));
function outer() { return inner(); }
function inner() { return arguments.caller === outer; }
trace(outer());
function change(a) { arguments[0] = 9; return a; }
trace(change(1));
function push() { arguments.push(7); return arguments.join("-"); }
trace(push(1, 2));
// Variables of a loop are one variable for all closures; those of a call are its own.
var list = [];
for (var i = 0; i < 3; i++) list.push(function() { return i; });
trace(list[0]() + "" + list[2]());
function make(n) { return function() { return n++; }; }
var one = make(1), two = make(1); one(); one();
trace(one() + " " + two());
// this: the object before the dot, the clip for a plain call, what call() names otherwise.
function me() { return this; }
trace(me() === _root);
var o = {me: me, name: "o"};
trace(o.me().name + " " + me.call({name: "p"}).name + " " + (o["me"]()).name);
var nested = {name: "n", run: function() { var f = function() { return this.name; }; return f() == undefined; }};
trace(nested.run());
// Parameters hide names outside; an assignment without var reaches the timeline.
var x = "timeline";
function hide(x) { x = "parameter"; return x; }
trace(hide() + " " + x);
function leak() { y = "leaked"; } leak(); trace(_root.y);
// A function statement is known before its line, a function expression only after it.
trace(typeof early + " " + typeof late);
function early() {}
var late = function() {};
trace(early.length === undefined);
trace(early.prototype.constructor === early);
// new: a constructor's own answer does not count.
function Thing(v) { this.v = v; return {v: "other"}; }
var t = new Thing(3); trace(t.v + " " + (t instanceof Thing) + " " + (t.constructor === Thing));
trace(new missing());
// delete: own properties only, and says whether it did.
var d = {a: 1}; trace(delete d.a + " " + delete d.a + " " + d.a);
// for..in: newest first (a literal sets its last member first), and what was deleted does not come.
var keys = {first: 1, third: 3, fourth: 4, fifth: 5}; delete keys.fifth;
var seen = []; for (var k in keys) seen.push(k);
trace(seen.join(" "));
// Evaluation: left to right, and both sides of a comma.
var order = ""; function say(s) { order += s; return 1; }
say("a") + say("b") * say("c"); trace(order);
var comma = (say("d"), 5); trace(comma + order);
trace((false && say("e")) + " " + (0 || "or") + " " + ("and" && 3) + order);
// with looks into the object first, then outside.
var w = {x: "with"}; with (w) { trace(x + " " + name2); x = "set"; }
trace(w.x + " " + x);
// eval and set take paths, in both notations.
_root.box = {v: 4}; trace(eval("box.v") + eval("_root.box.v") + eval("/:x"));
set("box.w", 8); trace(box.w);
set("/:z", 1); trace(z);
trace(typeof _global.parseInt + " " + typeof _level0 + " " + (_level0 === _root) + " " + typeof _level7);
_global.shared = "g"; trace(shared); var shared = "own"; trace(shared + " " + _global.shared);
delete shared; trace(shared);
