// movie: version="7" rate="10"
// A callback that sets what it watches is called again; at its end the watch is as awake as before.
var o = {n: 0}, calls = 0;
o.watch("n", function(name, was, is) {
  calls++;
  if (is > 0 && is < 4) this.n = is + 1;
  return is;
});
o.n = 1;
trace(calls + " " + o.n);
calls = 0; o.n = 9; trace(calls + " " + o.n);
// One that went away meanwhile, and one that came.
o.watch("n", function(name, was, is) { this.unwatch("n"); this.watch("m", function() { return "seen"; }); return "last " + is; });
o.n = 2; o.m = 1; trace(o.n + " " + o.m); o.n = 3; trace(o.n);
// A place of the code that has written before the watch was set asks it from then on.
function put(v) { p.v = v; }
var p = {v: 0};
for (var i = 0; i < 5; i++) put(i);
p.watch("v", function(name, was, is, more) { return more + was + is; }, "w");
put(7); trace(p.v);
p.unwatch("v"); put(8); trace(p.v);
// Nor does it take an object with a watch for one like it without.
function putIn(o, v) { o.v = v; }
var one = {v: 0}, other = {v: 0};
other.watch("v", function(name, was, is) { return "watched " + is; });
for (i = 0; i < 5; i++) putIn(one, i);
putIn(other, 7); trace(one.v + " " + other.v);
