// movie: version="8" rate="10"
// Closures keep their own variables.
function counter(start) {
  var n = start;
  return { next: function() { return n++; }, peek: function() { return n; } };
}
var a = counter(1), b = counter(10);
a.next(); a.next();
trace(a.peek() + " " + b.next() + " " + b.peek());
// Arguments, more and fewer than declared.
function many(first, second) { return arguments.length + ":" + first + ":" + second + ":" + arguments[2]; }
trace(many()); trace(many(1)); trace(many(1, 2, 3));
function fact(n) { return n < 2 ? 1 : n * arguments.callee(n - 1); }
trace(fact(10));
// this, call and apply.
function whoAmI(x) { return this.name + x; }
var obj = {name: "obj", who: whoAmI};
trace(obj.who(1) + " " + whoAmI.call({name: "called"}, 2) + " " + whoAmI.apply({name: "applied"}, [3]));
trace(obj["wh" + "o"](4));
// Recursion between two functions; a function as argument; a function that is called at once.
function even(n) { return n == 0 ? true : odd(n - 1); }
function odd(n) { return n == 0 ? false : even(n - 1); }
trace(even(10) + " " + odd(10));
trace((function(f, x) { return f(f(x)); })(function(v) { return v * 3; }, 2));
var named = function inner(n) { return n > 0 ? n + inner(n - 1) : 0; };
trace(named(4));
// Prototypes.
function Animal(name) { this.name = name; }
Animal.prototype.speak = function() { return this.name + " speaks"; };
function Dog(name) { super(name); }
Dog.prototype = new Animal();
Dog.prototype.speak = function() { return super.speak() + " loudly"; };
var rex = new Dog("Rex");
trace(rex.speak() + " " + (rex instanceof Animal) + " " + rex.hasOwnProperty("name"));
var made = new Array(1, 2, 3), when = new Object;
trace(made + " " + typeof when);
var pack = {Thing: function(v) { this.v = v; }};
trace((new pack.Thing(5)).v + " " + new pack["Thing"](6).v + " " + new (function() { this.v = 7; })().v);
// Local names hide outer ones; captured parameters stay theirs.
var v = "outer";
function hide(p) { var v = "inner"; var f = function() { return v + p; }; p = "!"; return f(); }
trace(hide("?") + " " + v);
function noReturn() { v = "changed"; return; }
trace(noReturn() + " " + v);
// A local of many kinds: loops, try, with in registers or not.
function mix(list) {
  var out = "";
  for (var i in list) { var t = list[i]; with (t) { out += w; } }
  return out;
}
trace(mix([{w: "a"}, {w: "b"}]));
function setter(n) { var loc = 1; set("loc", n); return eval("l" + "oc"); }
trace(setter(9));
function each(list, f) { for (var i = 0; i < list.length; i++) f(list[i], i); }
var total = 0;
each([1, 2, 3], function(x, i) { total += x * i; });
trace(total);
function updates(o) { o.n += 1; o["n"]++; var k = o.n++; return k + ":" + (o.n = 9) + ":" + --o.n; }
trace(updates({n: 1}));
trace(eval("v") + " " + this.v + " " + _root.v + " " + _global.v);
