// movie: version="10" rate="20"
trace(7 + 3, 7 - 3, 7 * 3, 7 / 2, -7 % 3, 7.5 % 2);
trace("a" + 1, 1 + 2 + "a", "a" + 1 + 2, "3" * "4", "7" - 2, true + true);
trace(6 & 3, 6 | 3, 6 ^ 3, ~6, 1 << 31, 1 << 33, -8 >> 1, -8 >>> 28);
trace(1 < 2, "10" < "9", "10" < 9, NaN < 1, NaN >= 1, null >= 0, undefined == null);
trace("1" == 1, "1" === 1, null == 0, NaN == NaN, 1 === 1.0, "" == 0, true == 1);
trace(true && "yes", 0 && "no", "" || "other", null || 0, !"" , !!"x");
trace(1 ? "a" : "b", (1, 2, 3), void 0);
var n:Number = 5;
trace(n++, n, ++n, n--, --n);
var i:int = 10;
i += 5; i -= 3; i *= 2; i /= 5; trace(i);
i %= 3; i <<= 4; i >>= 1; i >>>= 1; i |= 3; i &= 6; i ^= 5; trace(i);
var s:String = "a"; s += 1; s += null; trace(s);
var u:* = null; u ||= "set"; u &&= u + "!"; trace(u);
trace(2 + 3 * 4 - 6 / 2 % 2, (2 + 3) * 4, -2 * -3, 1 - -1, 5 - + "2");
