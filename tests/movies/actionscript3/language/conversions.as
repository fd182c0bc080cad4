// movie: version="10" rate="20"
trace(String(null), String([1, [2, 3]]), String({}), String(true), String(1.0), String(1e21), String(123456789012345680000));
trace(Number(null), Number(undefined), Number("0x1F"), Number(" 12 "), Number("1e2"), Number("12x"), Number(true), Number([5]), Number({}));
trace(Boolean(""), Boolean("0"), Boolean(0), Boolean(NaN), Boolean([]), Boolean(null));
trace(int("1e3"), int(null), int(undefined), uint("-1"), int(-2147483649));
trace(1 + null, 1 + undefined, "" + null, "" + undefined, [] + [], {} + "");
var o:Object = {valueOf: function():int { return 42; }, toString: function():String { return "text"; }};
trace(o + 1, "" + o, String(o), o * 2, o > 41);
trace((255).toString(16), (3.14159).toFixed(2), (1234.5).toExponential(2), (0.5).toPrecision(3), (-255).toString(2));
trace(1 / 3, 0.1 + 0.2, 100, 1e300 * 1e10, 123456.789);
