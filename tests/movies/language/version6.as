// movie: version="6" rate="10"
// The same script in each version: what differs is the code it becomes.
function f(a, b) { var c = a + b; for (var i = 0; i < 2; i++) c += i; return c; }
trace(f(1, 2));
var o = {x: 1, y: 2};
var keys = "";
for (k in o) keys += k;
trace(keys);
trace((3 > 2) + " " + (2 >= 3) + " " + (2 <= 2) + " " + (1 < 1));
switch (2) { case 1: trace("one"); break; case 2: trace("two"); break; default: trace("other"); }
function Point(x) { this.x = x; }
Point.prototype.get = function() { return this.x; };
var p = new Point(4);
trace(p.get() + " " + typeof p + " " + p.x++ + " " + ++p.x);
with (p) { x = 10; }
trace(p.x + " " + delete p.x + " " + (p.x == undefined));
outer: for (i = 0; i < 3; i++) { for (n in o) { if (i == 1) break outer; } }
trace(i);
trace(ord("A") + chr(66) + length("four") + substring("abcdef", 2, 3) + int(3.9) + mblength("ab") + mbsubstring("xyz", 2, 1) + mbord("a") + mbchr(98));
trace(Number("12") + String(5) + targetPath(_root));
trace("Пример");
