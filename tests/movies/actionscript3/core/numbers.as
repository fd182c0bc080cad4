// movie: version="10" rate="20"
trace((25).toString(2), (255).toString(16), (0.1).toString(), (-7.5).toString(2).length > 0);
trace((1.005).toFixed(2), (1e21).toFixed(2), (12345.678).toExponential(3), (0.00012345).toPrecision(2));
trace(Number.MAX_VALUE, Number.POSITIVE_INFINITY, Number.NaN, int.MIN_VALUE);
trace(Math.round(2.5), Math.round(-2.5), Math.floor(-1.1), Math.ceil(1.1), Math.abs(-3), Math.max(1, 3, 2), Math.min(), Math.pow(2, 10));
trace(Math.sqrt(2).toFixed(6), Math.sin(0), Math.atan2(1, 1).toFixed(4), Math.PI.toFixed(5), Math.log(Math.E));
var r:Number = Math.random(); trace(r >= 0 && r < 1);
trace(5 % 0, -5 % 5, 5.5 % 2, 1 / 0, 0 / 0);
trace(0.1 + 0.7, 1e15 + 0.5, 4.35 * 100, 1.1 * 3);
try { (1).toString(1); } catch (e:RangeError) { trace(e.errorID); }
try { (1).toFixed(21); } catch (e:RangeError) { trace(e.errorID); }
// What does not fit is cut off by toExponential and rounded by the others, a half away from zero.
trace((4294967295).toExponential(2), (4294967295).toPrecision(3), (1).toExponential(2), (-1.999).toExponential(0), (0).toExponential(0), (0).toExponential(1));
trace((2.5).toFixed(0), (0.125).toFixed(2), (-0.125).toFixed(2), (0.5).toFixed(0), (12315987654321987584).toFixed(0), (1.005).toFixed(2));
trace(1e-6, 1.5e-7, (1.5e-8).toPrecision(2), (123456).toPrecision(2), (0).toPrecision(2));
