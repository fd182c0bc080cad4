// movie: version="8" rate="10"
var a = new Array(3); trace(a.length + " <" + a + ">");
trace(new Array("3").length + " " + new Array(1, 2).length + " " + Array(4).length + " " + [].length);
a = [1, 2]; a[5] = 6; trace(a.length + " " + a);
a.length = 2; trace(a + " " + a[5]); a.length = 3; trace(a.join("-"));
a = []; a["2"] = "x"; a.name = "n"; trace(a.length + " " + a.name);
a = [1, 2, 3]; trace(a.push(4, 5) + " " + a.pop() + " " + a.shift() + " " + a.unshift(9, 8) + " " + a);
trace([].pop() + " " + [].shift() + " " + [].push());
trace(a.slice(1, 3) + " " + a.slice(-2) + " " + a.slice(3, 1) + "." + a.slice().length);
trace(a.splice(1, 2) + " | " + a); trace(a.splice(1, 0, "i", "j") + "| " + a);
trace(a.splice(-2, 1) + " | " + a); trace(a.splice(2) + " | " + a); trace(a.splice(9, 1, "end") + "| " + a);
trace([1, 2].concat([3, [4]], 5).length + " " + [1].concat("ab"));
trace([1, 2, 3].reverse() + " " + [[1, 2], [3]].toString() + " " + [1, 2].join("") + " " + [1, null, undefined].join());
// sort: by text unless told otherwise.
function fresh() { return [10, 9, "b", 1, "A", "a"]; }
trace(fresh().sort());
trace([10, 9, 2, 1].sort() + " " + [10, 9, 2, 1].sort(Array.NUMERIC) + " " + [10, 9, 2, 1].sort(Array.NUMERIC | Array.DESCENDING));
trace(["b", "A", "c"].sort() + " " + ["b", "A", "c"].sort(Array.CASEINSENSITIVE) + " " + ["b", "A", "c"].sort(Array.DESCENDING));
trace(["b", "a", "C"].sort(Array.CASEINSENSITIVE | Array.DESCENDING));
trace([3, 1, 3].sort(Array.UNIQUESORT) + " " + [3, 1, 2].sort(Array.UNIQUESORT));
var kept = ["c", "a", "b"]; trace(kept.sort(Array.RETURNINDEXEDARRAY) + " " + kept);
trace([3, 1, 2].sort(function(x, y) { return y - x; }));
trace(Array.CASEINSENSITIVE + " " + Array.DESCENDING + " " + Array.UNIQUESORT + " " + Array.RETURNINDEXEDARRAY + " " + Array.NUMERIC);
function names(list) { var t = []; for (var i = 0; i < list.length; i++) t.push(list[i].n + list[i].v); return t.join(" "); }
function rows() { return [{n: "b", v: 10}, {n: "a", v: 9}, {n: "b", v: 2}, {n: "C", v: 1}]; }
var r = rows(); r.sortOn("v", Array.NUMERIC); trace(names(r));
r = rows(); r.sortOn("v"); trace(names(r));
r = rows(); r.sortOn(["n", "v"], [Array.CASEINSENSITIVE, Array.NUMERIC]); trace(names(r));
r = rows(); r.sortOn(["n", "v"], [Array.DESCENDING | Array.CASEINSENSITIVE, Array.NUMERIC | Array.DESCENDING]); trace(names(r));
r = rows(); r.sortOn("n", Array.CASEINSENSITIVE | Array.UNIQUESORT); trace(names(r));
trace(rows().sortOn("v", Array.NUMERIC | Array.RETURNINDEXEDARRAY));
// for..in leaves holes out and brings names.
a = []; a[0] = "p"; a[4] = "q"; a[2] = "r"; a.k = "s"; var seen = []; for (var i in a) seen.push(i); trace(seen.sort());
delete a[4]; trace(a.length + " " + a[4]);
// Methods work on anything that has a length.
var like = {length: 2, 0: "x", 1: "y"}; trace(Array.prototype.join.call(like, "+"));
trace((function() { return Array.prototype.slice.call(arguments, 1).join("/"); })(1, 2, 3));
var twoD = [[1, 2], [3, 4]]; twoD[1][0] += 10; trace(twoD[1] + " " + twoD);
trace(([] instanceof Array) + " " + ([] instanceof Object) + " " + typeof []);
