// movie: version="10" rate="20"
var words:Array = ["banana", "Apple", "cherry", "apple"];
trace(words.sort().join(), words.sort(Array.CASEINSENSITIVE)[0].toLowerCase(), words.sort(Array.DESCENDING).join());
trace([3, 20, 100].sort(), [3, 20, 100].sort(Array.NUMERIC | Array.DESCENDING));
var recs:Array = [{id: 2, t: "x"}, {id: 10, t: "y"}, {id: 1, t: "z"}];
recs.sortOn("id", Array.NUMERIC); trace(recs[0].id, recs[1].id, recs[2].id);
recs.sortOn("t", Array.DESCENDING); trace(recs[0].t, recs[2].t);
trace(recs.sortOn("id", Array.NUMERIC | Array.RETURNINDEXEDARRAY));
var calls:int = 0;
var big:Array = []; for (var i:int = 0; i < 200; i++) big.push((i * 7919) % 200);
big.sort(function(a:int, b:int):Number { calls++; return a - b; });
var ordered:Boolean = true; for (i = 1; i < 200; i++) if (big[i - 1] > big[i]) ordered = false;
trace(ordered, calls < 5000, big[0], big[199]);
trace([1, undefined, 3].sort(), ["b", null, "a"].sort());
