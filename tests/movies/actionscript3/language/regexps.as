// movie: version="10" rate="20"
trace(/a+b/.test("xaab"), /^\d{3}$/.test("12"), /[/\]]/.test("/"));
var re:RegExp = /(\w)(\d)/g;
var m:Object;
var log:Array = [];
while ((m = re.exec("a1 b2 c3"))) log.push(m[0] + "@" + m.index + ":" + m[1]);
trace(log);
trace(re.source, re.global, re.ignoreCase, re.lastIndex, String(/x/im));
trace("a-b-c".split(/-/), "x1y22".match(/\d+/g), "find me".search(/me/), "John Smith".replace(/(\w+)\s(\w+)/, "$2, $1"));
trace("abc".replace(/[ac]/g, function(found:String, at:int, whole:String):String { return found.toUpperCase() + at; }));
var named:Object = /(?P<year>\d{4})-(?P<month>\d\d)/.exec("on 2009-07");
trace(named.year, named.month, named.index);
trace(10 / 2 / 5, [4 / 2].length, (8) / 2);
trace(/a.c/s.test("a\nc"), /a b/x.test("ab"), /^b/m.test("a\nb"));
trace(/(x)|(y)/.exec("y"), /none/.exec("y"));
