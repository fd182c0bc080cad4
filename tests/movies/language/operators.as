// movie: version="8" rate="10"
// Arithmetic and its precedence.
trace(2 + 3 * 4 - 6 / 4 % 1);
trace((2 + 3) * 4);
trace(7 % 4 + " " + -7 % 4 + " " + 7.5 % 2);
trace(1 / 3);
trace(-5 + +"3" - -"4");
trace("a" + 1 + 2 + " " + (1 + 2) + "a");
// Bits; shifts bind tighter than comparisons, and looser than sums.
trace((5 & 3) + " " + (5 | 3) + " " + (5 ^ 3) + " " + ~5);
trace((1 << 2 + 1) + " " + (-8 >> 1) + " " + (-1 >>> 28));
trace(0xFF + " " + 010 + " " + 1e3 + " " + .5 + " " + 2.50 + " " + 1E-2);
// Comparisons.
trace((1 < 2) + " " + (2 <= 2) + " " + (3 > 4) + " " + (4 >= 5));
trace((1 == "1") + " " + (1 === "1") + " " + (1 != 2) + " " + (1 !== 1) + " " + (null == undefined) + " " + (null === undefined));
trace(("10" < "9") + " " + (10 < "9") + " " + ("b" > "a"));
// Logic gives back operands and does not compute more than it must.
function said(x) { trace("said " + x); return x; }
trace((said(0) && said(1)) + " " + (said(2) || said(3)));
trace(("" || "default") + " " + ("value" && "other"));
trace(!true + " " + !0 + " " + !!"text");
trace(1 > 2 ? "yes" : 1 > 3 ? "no" : "neither");
// Assignments are values.
var a, b, c;
a = b = c = 4;
a += 2; b -= 1; c *= 3;
trace(a + " " + b + " " + c);
a /= 4; b %= 2; c <<= 2;
trace(a + " " + b + " " + c);
c >>= 1; trace(c); c >>>= 1; trace(c); c &= 6; trace(c); c |= 9; trace(c); c ^= 5; trace(c);
trace((a = 7) + a);
// Before and after; of variables, members and elements.
var o = {n: 1, list: [10, 20]};
var i = 0;
trace(a++ + " " + a + " " + ++a + " " + a-- + " " + --a);
trace(o.n++ + " " + o.n + " " + --o.n);
trace(o.list[i++]++ + " " + o.list + " " + i);
o.list[--i] += 5;
trace(o.list + " " + i);
var s = "5";
trace(typeof s++ + " " + s);
// Commas, typeof, void, delete, instanceof.
trace((1, 2, 3));
trace(typeof 1 + " " + typeof "s" + " " + typeof true + " " + typeof null + " " + typeof undefined + " " + typeof o + " " + typeof said + " " + typeof _root);
trace(void 5);
trace(delete o.n);
trace(o.n + " " + delete o.missing);
deleted = 1; trace(deleted + " " + delete deleted + " " + deleted);
trace((o.list instanceof Array) + " " + (o instanceof Array) + " " + (o instanceof Object));
// Words of old.
trace("ab" add "cd");
trace(("a" lt "b") + " " + ("a" gt "b") + " " + ("a" le "a") + " " + ("a" ge "b") + " " + ("a" eq "a") + " " + ("a" ne "a"));
trace((true and false) + " " + (true or false) + " " + (not true));
trace(1 <> 2);
