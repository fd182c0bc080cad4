// movie: version="17" rate="20"
// Numbers as texts and back, at the edges of what they can hold.
function row(name:String, ...values):void { trace(name, values.join(" ")); }
row("fixed", (0).toFixed(2), (-1.5).toFixed(0), (0.000001).toFixed(7), (123.456).toFixed(1), (1e20).toFixed(0), (-0.0000001).toFixed(2));
row("exponent", (12345).toExponential(1), (-1e100).toExponential(3));
row("precision", (123.456).toPrecision(4), (0.000123).toPrecision(2), (1e21).toPrecision(3), (99.99).toPrecision(3));
row("radix", (255).toString(2), (-255).toString(16), (35).toString(36), (0).toString(7), uint(4294967295).toString(16));
row("plain", 1e20, 1e21, 123456789012345680000, 0.000001, 1e-10, 1 / 3, -1.5e-9, 1.7976931348623157e308);
row("signs", 1 / -0, 1 / 0, -0, 0 == -0, Math.round(-0.4) === 0, Math.max(-0, 0));
row("parseInt", parseInt("12px"), parseInt("0x1F"), parseInt("0x1F", 16), parseInt("1F", 16), parseInt("z", 36), parseInt("  -7 "), parseInt(""), parseInt("9", 8), parseInt("101", 2), parseInt("012"));
row("parseFloat", parseFloat("3.14abc"), parseFloat(".5."), parseFloat("-.5e-2"), parseFloat("e5"), parseFloat("1e"), parseFloat("  7  8"));
row("Number", Number(""), Number("  12  "), Number("1 2"), Number("0x10"), Number(null), Number(undefined), Number(true), Number("1e3"), Number("-"), Number("Infinity"));
row("int", int(3.99), int(-3.99), int("4294967297"), int(4294967296.5), int(NaN), int(Infinity), int("0x7F"), int(2147483648), int(-2147483649));
row("uint", uint(-1), uint(4294967296), uint("-2"), uint(3.99), uint(NaN), uint(true));
row("shifts", 1 << 31, 1 << 32, 1 << -1, -1 >> 31, -1 >>> 31, -1 >>> 0, 5 >> 33, ~5, ~-1, ~~3.7);
row("bits", 0xFF & 0x0F, 0xF0 | 0x0F, 5 ^ 3, 4294967295 & 1, -1 & 0xFFFF, 1.9 | 0, "7" | 0, null | 2);
row("remainders", 5 % 3, -5 % 3, 5 % -3, 5.5 % 2, -0.5 % 1, 5 % Infinity, Infinity % 5, 1e17 % 10);
row("compare", "10" < "9", 10 < 9, "10" < 9, null >= 0, undefined == 0, null == undefined, NaN == NaN, NaN != NaN, "1" == 1, true == 1, "a" < "B");
row("identity", 1 === 1.0, "1" === "1", null === undefined, int(5) === uint(5), [1] == [1], new String("a") == "a");
row("casts", 1 is int, 1.5 is int, -1 is uint, 4294967295 is uint, 4294967295 is int, 1 is Number, NaN is Number, "1" is int, null is Object);
row("limits", int.MAX_VALUE + 1, int.MIN_VALUE - 1, uint.MAX_VALUE + 1, Number.MAX_VALUE * 2, Number.MIN_VALUE / 2);
var i:int = int.MAX_VALUE, u:uint = 0, n:Number = 9007199254740992;
i++; u--; n++;
row("wrapped", i, u, n);
i = -2147483648; i = -i; u = -1.5; row("again", i, u, i / -1, Math.abs(i));
i = 7; i /= 2; row("divided", i, i *= 2.5, i -= 0.9, i);
row("math", Math.round(0.5), Math.round(-0.5), Math.round(1.4999), Math.floor(-0.5), Math.ceil(-0.5), Math.pow(2, -1), Math.pow(0, 0), Math.pow(NaN, 0), Math.sqrt(-1), Math.log(0));
row("more", Math.max(), Math.min(), Math.max(1, NaN), Math.min(3, "2"), Math.atan2(0, -1) == Math.PI, Math.acos(2), Math.exp(0), Math.abs("-4"));
for each (var bad:Function in [
    function():* { return (1).toFixed(-1); },
    function():* { return (1).toPrecision(0); },
    function():* { return (1).toExponential(21); },
    function():* { return (1).toString(37); }]) {
    try {
        trace(bad());
    } catch (error:RangeError) {
        trace(error.errorID);
    }
}
var zeros:String = "0";
while (zeros.length < 400) zeros += zeros;
row("far", Number("0." + zeros + "1"), Number("1" + zeros), parseFloat("0." + zeros + "1"), Number("1" + zeros + "e-50"), Number("-1e-999"), Number("-1e999"));
