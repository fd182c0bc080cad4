// movie: version="10" rate="20"
var v:Vector.<int> = new Vector.<int>(2);
v[0] = 5.7; v[1] = "9"; v.push(-1);
trace(v, v.length, v.fixed, v.indexOf(9));
try { v[5] = 1; } catch (e:RangeError) { trace(e.errorID); }
try { trace(v[5]); } catch (e:RangeError) { trace(e.errorID); }
var f:Vector.<String> = new Vector.<String>(1, true);
try { f.push("x"); } catch (e:RangeError) { trace(e.errorID, f[0]); }
var n:Vector.<Number> = Vector.<Number>([1.5, 2, "3"]);
trace(n, n.concat(Vector.<Number>([4])), n.slice(1));
trace(new <int>[3, 1, 2].sort(function(a:int, b:int):int { return a - b; }), new <String>["b", "a"].join("+"));
trace(n is Vector.<Number>, n is Vector.<int>, n.reverse());
var nested:Vector.<Vector.<int>> = new Vector.<Vector.<int>>();
nested.push(new <int>[1, 2], new <int>[3]);
trace(nested.length, nested[0][1], nested);
trace(new <uint>[1, -1][1], new <Boolean>[1, 0]);
trace(v.map(function(e:int, i:int, l:Vector.<int>):int { return e * 2; }), v.splice(0, 1), v.shift(), v.pop(), v.length);
v.length = 3; trace(v);
var any:Vector.<*> = new <*>[1, "a", null]; trace(any.length, any[1]);
class Taken { public function method(v:*, i:int, l:*):Boolean { return true; } }
var taken:Taken = new Taken(), walked:Vector.<int> = new <int>[1, 2];
for each (var walk:String in ["every", "some", "filter", "forEach", "map"]) {
	try { walked[walk](taken.method, {}); } catch (bound:TypeError) { trace(walk, bound.errorID); }
	try { walked[walk](5); } catch (no:TypeError) { trace(walk, no.errorID, walked[walk](taken.method, null), walked[walk](null)); }
}
