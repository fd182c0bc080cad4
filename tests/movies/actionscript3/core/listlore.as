// movie: version="17" rate="20"
// Arrays with holes, with names, with another length; sorting by all its options; vectors where they differ.
function shown(list:Array):String
{
    var parts:Array = [];
    for (var i:int = 0; i < list.length; i++) parts.push(i in list ? String(list[i]) : "_");
    return "[" + parts.join(" ") + "]";
}
var holes:Array = [1, , 3];
holes[5] = 6;
trace("holes", shown(holes), holes.length, holes.indexOf(undefined), holes);
var seen:int = 0;
holes.forEach(function(item:*, index:int, all:Array):void { seen++; });
trace("each", seen, shown(holes.map(function(item:*, ...rest):* { return item; })), shown(holes.filter(function(item:*, ...rest):Boolean { return item > 1; })));
trace(shown(holes.slice(0, 3)), shown(holes.concat([[, 1]])), holes.reverse().length, shown(holes));
delete holes[0];
trace(shown(holes), holes.length, holes.shift(), holes.pop(), holes.length);
holes.length = 0;
trace(shown(holes), holes[0]);

var named:Array = [1, 2];
named["01"] = "not an index";
named["-1"] = "nor this";
named["1.5"] = "nor that";
named["2"] = "an index";
named.other = 1;
var names:Array = [];
for (var name:String in named) names.push(name);
names.sort();
trace("names", named.length, names);
var far:Array = [];
far[123456789] = "last";
trace(far.length, far[123456789]);
far[4294967295] = "beyond";
trace(far.length, far[4294967295]);
far.length = 3;
trace(far.length, far[123456789], far["4294967295"]);

trace("indexes", [1, 2, 3, 2].indexOf(2, -2), [1, 2, 3, 2].lastIndexOf(2, 2), [1, 2].indexOf("1"), [NaN].indexOf(NaN), [1, 2, 3].indexOf(1, 5), [1].lastIndexOf(1, -1));
trace("slices", [1, 2, 3, 4].slice(-2), [1, 2, 3, 4].slice(1, -1), [1, 2, 3].slice(2, 1).length, [1, 2, 3].slice(NaN, 2), [1, 2, 3].slice(0, 1e20));
var cut:Array = [1, 2, 3, 4, 5];
trace("splices", cut.splice(-2, 1), cut, cut.splice(1, 0, "a", ["b"]), cut, cut.splice(2), cut, cut.splice(9, 1).length, cut);
trace(cut.insertAt(1, "i"), cut, cut.removeAt(-1), cut.removeAt(99), cut);
trace("unshift", cut.unshift(), cut.unshift(7, 8), cut, cut.push(), cut.concat(9, [10, [11]]).length);

function sorted(...options):String
{
    var list:Array = ["b", "a10", "B", "a9", undefined, "A", null, ""];
    return list.sort.apply(list, options).join("|");
}
trace("sort", sorted());
trace(sorted(Array.CASEINSENSITIVE).toLowerCase());
trace(sorted(Array.DESCENDING));
trace([10, 9, 2, 1, -1, 1.5].sort(), [10, 9, 2, 1, -1, 1.5].sort(Array.NUMERIC), [10, 9, 2].sort(Array.NUMERIC | Array.DESCENDING));
trace([3, 1, 2].sort(Array.RETURNINDEXEDARRAY), ["b", "a", "b"].sort(Array.UNIQUESORT), [2, 1].sort(Array.UNIQUESORT));
trace([3, 1, 2].sort(function(a:int, b:int):int { return b - a; }));
var people:Array = [{n: "Bo", a: 30}, {n: "al", a: 4}, {n: "Cy", a: 30}, {n: "al", a: 100}, {a: 1}];
function by(...options):String
{
    var copy:Array = people.concat();
    var answer:* = copy.sortOn.apply(copy, options);
    if (answer == 0) return "not unique";
    var texts:Array = [];
    for each (var item:* in answer) texts.push(item is int ? String(item) : item.n + item.a);
    return texts.join(" ");
}
trace("sortOn", by("n"));
trace(by("n", Array.CASEINSENSITIVE));
trace(by("a"), "/", by("a", Array.NUMERIC));
trace(by(["a", "n"], [Array.NUMERIC | Array.DESCENDING, Array.DESCENDING]));
trace(by("a", Array.NUMERIC | Array.RETURNINDEXEDARRAY), "/", by("a", Array.UNIQUESORT));
// Equal ones keep their order.
var many:Array = [];
for (var i:int = 0; i < 100; i++) many.push({k: i % 3, i: i});
many.sortOn("k", Array.NUMERIC);
var stable:Boolean = true;
for (i = 1; i < 100; i++) if (many[i].k == many[i - 1].k && many[i].i < many[i - 1].i) stable = false;
trace("as they were", many[0].k, many[99].k);

// ---- vectors ----
var ints:Vector.<int> = new <int>[3, 1, 2];
trace("vector", ints.sort(Array.NUMERIC), ints.sort(Array.NUMERIC | Array.DESCENDING), ints.indexOf(1), ints.lastIndexOf(9), ints.slice(1), ints.concat(new <int>[9]));
trace(ints.splice(1, 1, 7, 8), ints, ints.unshift(0), ints.insertAt(-1, 5), ints, ints.removeAt(0), ints);
function attempt(name:String, work:Function):void
{
    try {
        trace(name, work());
    } catch (error:Error) {
        trace(name, error.name, error.errorID);
    }
}
attempt("hole in a vector", function():int { return ints[ints.length] = 1; });
attempt("beyond", function():int { return ints[ints.length + 1] = 1; });
attempt("negative", function():int { return ints[-1]; });
attempt("between", function():* { return ints["1.5"]; });
attempt("removeAt", function():* { return ints.removeAt(99); });
attempt("another kind", function():* { return Vector.<int>(["1", 2.9, null, undefined]); });
attempt("not a kind", function():* { return new <Array>[[1]].concat(new <String>["a"] as Object).length; });
attempt("in a fixed one", function():* { var fixed:Vector.<int> = new Vector.<int>(2, true); fixed[2] = 1; return fixed; });
attempt("a length", function():* { var fixed:Vector.<int> = new Vector.<int>(2, true); fixed.length = 3; return fixed; });
attempt("freed", function():* { var fixed:Vector.<int> = new Vector.<int>(2, true); fixed.fixed = false; fixed.length = 3; return fixed; });
attempt("of numbers", function():* { return new <Number>[1, NaN].indexOf(NaN) + " " + new <Boolean>[0, "a", null].join(); });
attempt("type", function():* { return (new <int>[] is Vector.<Number>) + " " + (new <String>[] is Vector.<*>); });
attempt("each", function():* { var sum:int = 0; for each (var item:int in new <int>[1, 2, 3]) sum += item; for (var key:* in new <String>["a", "b"]) sum += key * 10; return sum; });
attempt("every", function():* { return new <int>[1, 2].every(function(item:int, ...rest):Boolean { return item > 1; }) + " " + new <int>[1, 2].some(function(item:int, ...rest):Boolean { return item > 1; }); });
attempt("filter", function():* { return new <int>[1, 2, 3, 4].filter(function(item:int, ...rest):Boolean { return item % 2 == 0; }); });
