// movie: version="8" rate="10"
// Branches.
function sign(n) {
  if (n > 0) return "plus";
  else if (n < 0) return "minus";
  else return "zero";
}
trace(sign(5) + " " + sign(-5) + " " + sign(0));
if (false) trace("never"); else trace("else");
if (true) { trace("block"); }
if (1) ; else trace("never");
// Loops.
var text = "";
for (var i = 0; i < 3; i++) text += i;
for (; i > 0; ) { i--; text += i; }
for (var p = 0, q = 10; p < q; p += 4, q -= 1) text += "[" + p + q + "]";
trace(text);
var w = 0;
while (w < 10) { w++; if (w == 3) continue; if (w > 5) break; trace("w" + w); }
do { w--; if (w == 4) continue; } while (w > 4);
trace(w);
// Members come back, the last made first.
var o = new Object();
o.first = 1; o.second = 2; o.third = 3;
for (var name in o) trace(name + "=" + o[name]);
var holder = {};
for (holder.key in o) if (holder.key == "second") break;
trace(holder.key);
for (each in ["a", "b"]) trace(each);
// Labels reach out of inner loops, of for..in too.
outer: for (var x = 0; x < 3; x++) {
  for (var y in {a: 1, b: 2}) {
    if (x == 1) continue outer;
    if (x == 2) break outer;
    trace(x + y);
  }
}
block: { trace("in block"); if (x == 2) break block; trace("never"); }
// Switch: strict comparison, falling through, default in the middle.
function pick(v) {
  var r = "";
  switch (v) {
    case 1: r += "one ";
    case 2: r += "two "; break;
    default: r += "default ";
    case "1": r += "text one "; break;
    case said(): r += "called "; break;
  }
  return r;
}
function said() { return 77; }
trace(pick(1)); trace(pick(2)); trace(pick("1")); trace(pick(9)); trace(pick(77));
function leave(list) {
  for (var k in list) switch (list[k]) { case 2: return "found at " + k; }
  return "not found";
}
trace(leave([1, 2, 3]) + ", " + leave([5]));
for (var n = 0; n < 4; n++) { switch (n) { case 1: continue; case 3: break; default: trace("n" + n); } }
// With.
var scope = {inner: 5, nested: {deep: 6}};
with (scope) { trace(inner); inner = 7; with (nested) { trace(deep + inner); } }
trace(scope.inner);
// Declarations hoist: the function below is known here, as are types that mean nothing.
trace(later(2, 3));
function later(a:Number, b:Number):Number { var sum:Number = a + b; return sum; }
var typed:Array = [1,, 3,], plain:String;
trace(typed.length + " " + typed[1] + " " + plain);
var noSemicolon = 1
trace(noSemicolon)
;;
{ trace("done") }
