// movie: version="10" rate="20"
var a:Array = [3, 1, 2];
trace(a.push(4, 5), a.pop(), a.shift(), a.unshift(9, 8), a);
trace(a.slice(1, 3), a.slice(-2), a.splice(1, 2, "x", "y", "z"), a);
trace(a.concat([1, [2]], 3).length, a.join("-"), a.indexOf("y"), a.lastIndexOf("none"), a.reverse());
trace([10, 9, 1].sort(), [10, 9, 1].sort(Array.NUMERIC), ["b", "A", "a"].sort(Array.CASEINSENSITIVE | Array.DESCENDING).length);
trace([3, 1, 2].sort(function(p:int, q:int):int { return q - p; }), [5, 5].sort(Array.UNIQUESORT), [30, 10, 20].sort(Array.RETURNINDEXEDARRAY | Array.NUMERIC));
var people:Array = [{n: "b", a: 1}, {n: "a", a: 2}, {n: "a", a: 1}];
people.sortOn(["n", "a"], [0, Array.NUMERIC]);
for each (var p:Object in people) trace(p.n + p.a);
trace([1, 2, 3, 4].filter(function(e:int, i:int, all:Array):Boolean { return e % 2 == 0; }), [1, 2].map(function(e:int, i:int, all:Array):int { return e * 10 + i; }));
trace([1, 2].every(function(e:*, i:int, l:Array):Boolean { return e > 0; }), [1, 2].some(function(e:*, i:int, l:Array):Boolean { return e > 5; }));
[7].forEach(function(e:*, i:int, l:Array):void { trace("each", e, i, l.length); });
var holes:Array = []; holes[5] = "end"; trace(holes.length, holes); holes.length = 2; trace(holes.length, holes[5]);
trace(new Array(3).length, new Array("3").length, new Array(1, 2), Array(4).length);
var keys:Array = []; for (var k:String in ["a", , "c"]) keys.push(k); trace(keys);
try { new Array(-1); } catch (e:RangeError) { trace(e.errorID); }
a = []; a["name"] = "extra"; a[0] = 1; trace(a.length, a.name);
// What the prototype has works on anything with a length.
var list:Object = {length: 3, 0: "a", 2: "c"}, P:Object = Array.prototype;
trace(P.slice.call(list, 1), P.concat.call(list, 1).length, P.join.call(list, "-"), P.indexOf.call(list, "c"), P.lastIndexOf.call(list, "a"));
trace(P.map.call(list, function(e:*, i:int, l:Object):String { return String(e) + i + (l === list); }));
trace(P.push.call(list, "d"), list.length, list[3], P.pop.call(list), list.length, 3 in list);
P.reverse.call(list);
trace(list[0], 1 in list, P.shift.call(list), list.length, P.unshift.call(list, "x", "y"), P.splice.call(list, 0, 1, 9, 8), P.join.call(list));
trace(P.sort.call(list) === list, P.join.call(list), P.every.call({}, function(e:*, i:int, l:*):Boolean { return false; }));
