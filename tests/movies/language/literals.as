// movie: version="8" rate="10"
trace("tab\tquote\" backslash\\ \x41\u0416 'single'");
trace('double " inside' + ' \'escaped\'');
trace("long \
line");
trace("Съешь ещё этих мягких французских булок");
trace([1, "two", [3, [4]], {a: 5}].length + " " + [1, "two", [3, [4]]]);
var o = {a: 1, "quoted key": 2, 3: "number", default: "word", nested: {x: {y: 1}}, f: function() { return this.a; }};
trace(o.a + o["quoted key"] + o[3] + o.default + o.nested.x.y + o.f());
trace([] + "|" + [].length + "|" + {} + "|" + newline.length);
trace(true + " " + false + " " + null + " " + undefined + " " + NaN + " " + Infinity + " " + -Infinity);
trace(0.1 + 0.2); trace(1e21); trace(123456789012345); trace(-0); trace(1 / -0); trace(2147483648); trace(-2147483648); trace(4294967296.5);
/* a comment
   of two lines */ trace("after a comment"); // and one more
$dollar_1 = "names"; _under = "score"; trace($dollar_1 + _under);
