// movie: version="7" rate="10"
// Numbers of calls, order of evaluation and conversions that a compiler or an interpreter easily gets wrong.
var log = "";
function o(name) { log += name; return {v: 1, set: function(n) { log += "s" + n; return this; }}; }
function i(n) { log += n; return n; }
o("a").v = i(1); trace(log); log = "";
o("a").set(i(1)).set(i(2)); trace(log); log = ""; // arguments come before the object
var list = [0, 0, 0], n = 0; list[n++] = n; list[n++] += n + 5; trace(list + " " + n);
var x = 1; x += x++ + ++x; trace(x);
trace(1 + 2 + "3" + 4 + 5);
trace("a" + -1 + +"2" + !0 + typeof typeof 1);
trace(true ? false ? 1 : 2 : 3);
trace((1, 2, 3) + " " + (2 > 1 > 0) + " " + (3 > 2 == true) + " " + (1 < 2 < 3));
trace(5 - -3 + " " + 5 % -3 + " " + -5 % 3 + " " + 2 * 3 % 4 + " " + 7 / 2 * 2);
trace(!"a" + " " + !"" + " " + !0 + " " + !NaN + " " + !null + " " + !{} + " " + !undefined);
trace(~~3.7 + " " + (3.7 | 0) + " " + (-3.7 >> 0) + " " + (1 << 0 | 4 & 6 ^ 1));
var u; trace((u == null) + " " + (u === null) + " " + (u == 0) + " " + (u == "") + " " + (u == false));
trace((null == 0) + " " + (null == "") + " " + ("" == 0) + " " + ("0" == false) + " " + ("" == false));
trace(({} == {}) + " " + (new Number(5) == 5) + " " + (new String("a") == new String("a")));
switch ("1") { case 1: trace("number"); break; case "1": trace("text"); break; }
switch (3) { default: trace("default"); case 1: trace("falls"); break; case 2: trace("no"); }
var r = ""; for (var a = 0, b = 5; a < b; a++, b--) r += a + "" + b + " "; trace(r);
r = 0; do { r++; if (r == 2) continue; if (r > 3) break; } while (r < 10); trace(r);
r = 0; while (r < 5) { if (++r % 2) continue; if (r == 4) break; } trace(r);
for (var k in null) trace("never"); for (k in undefined) trace("never"); for (k in 5) trace("never");
var q = {a: {b: {c: [1, {d: "deep"}]}}}; trace(q.a["b"].c[1].d + " " + q["a"].b["c"][0]);
delete q.a.b.c; trace(q.a.b.c + " " + delete q.nothing + " " + typeof q.a);
var t = this, self = function() { return t; }; trace((self() === _root) + " " + (self().x));
trace(typeof (function() {}) + " " + (function() { return arguments.length; })(undefined, null));
trace("\x41\u0042" + '\'' + "\n".length);
