// movie: version="13" rate="20"
var o:Object = JSON.parse('{"a": [1, 2.5, "x", null, true], "b": {"c": "\\u0416\\n"}}');
trace(o.a.length, o.a[1], o.a[3], o.b.c);
trace(JSON.stringify([1, "q\"", null, undefined, NaN, {k: [true]}]));
trace(JSON.stringify({only: 1}, null, 2));
trace(JSON.parse("[1,2,3]", function(k:String, v:*):* { return v is int ? v * 2 : v; }));
try { JSON.parse("{bad}"); } catch (e:SyntaxError) { trace(e.errorID); }
