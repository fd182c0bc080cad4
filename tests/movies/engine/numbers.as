// movie: version="8" rate="10"
trace(Math.round(2.5) + " " + Math.round(-2.5) + " " + Math.round(-2.6) + " " + Math.floor(-1.5) + " " + Math.ceil(-1.5) + " " + Math.ceil(1.2));
trace(Math.max(1, 5) + " " + Math.min(1, 5) + " " + Math.max(1, NaN) + " " + Math.max() + " " + Math.min());
trace(Math.abs(-3) + " " + Math.sqrt(16) + " " + Math.sqrt(-1) + " " + Math.pow(2, 10) + " " + Math.pow(2, -1) + " " + Math.pow(0, 0));
trace(Math.sin(0) + " " + Math.cos(0) + " " + Math.round(Math.tan(Math.PI / 4)) + " " + Math.atan2(1, 1) * 4 + " " + Math.atan2(0, -1));
trace(Math.PI + " " + Math.E + " " + Math.LN2 + " " + Math.SQRT2);
trace(Math.exp(0) + " " + Math.log(1) + " " + Math.log(0) + " " + Math.log(-1) + " " + Math.asin(2) + " " + Math.acos(1));
var inRange = true, varied = false, last;
for (var i = 0; i < 200; i++) { var n = Math.random(); if (!(n >= 0 && n < 1)) inRange = false; if (i > 0 && n != last) varied = true; last = n; }
trace(inRange + " " + varied);
var whole = true; for (i = 0; i < 200; i++) { n = random(6); if (n != int(n) || n < 0 || n > 5) whole = false; } trace(whole + " " + random(1) + " " + random(0));
trace(int(3.9) + " " + int(-3.9) + " " + parseInt("12px") + " " + parseInt("px") + " " + parseInt("0x1f") + " " + parseInt("zz", 36) + " " + parseInt("101", 2));
trace(parseFloat("3.5em") + " " + parseFloat(".5") + " " + parseFloat("-1e2x") + " " + parseFloat("e5") + " " + parseFloat(""));
trace(isNaN("abc") + " " + isNaN("12") + " " + isFinite(1 / 0) + " " + isFinite(5) + " " + isFinite("x"));
trace(Number.MAX_VALUE + " " + (Number.MIN_VALUE > 0) + " " + Number.NaN + " " + Number.POSITIVE_INFINITY + " " + Number.NEGATIVE_INFINITY);
trace(NaN != NaN); // NaN is one value to this language
trace(1 + "2" + " " + ("3" - 1) + " " + ("3" * "4") + " " + (true + true) + " " + (null + "x") + " " + -"5");
trace((5 & 3) + " " + (5 | 3) + " " + (5 ^ 3) + " " + (1 << 33) + " " + (-1 >>> 0) + " " + (2147483648 >> 0) + " " + (1.9 | 0) + " " + (NaN | 0));
var c = 5; trace(c++ + " " + c + " " + --c + " " + (c += 2) + " " + (c -= 1) + " " + (c *= 3) + " " + (c /= 2) + " " + (c %= 4) + " " + (c <<= 2));
trace("abc" * 1 + " " + undefined * 1 + " " + ("1" == 1) + " " + ("1" === 1) + " " + (null === undefined) + " " + (0 == ""));
