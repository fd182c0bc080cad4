// movie: version="17" rate="20"
// Regular expressions: what each flag and each part of a pattern means, what exec() remembers, what a replacement
// may name; and texts split, cut and searched at odd places.
function row(name:String, ...values):void { trace(name, values.join("|")); }
function found(pattern:RegExp, text:String):String
{
    var match:Object = pattern.exec(text);
    return match == null ? "none" : match.index + ":" + match.join(",");
}
row("plain", found(/b/, "abc"), found(/B/, "abc"), found(/B/i, "abc"), found(/^b/, "a\nb"), found(/^b/m, "a\nb"), found(/a$/m, "a\nb"));
row("dot", found(/a.b/, "a\nb"), found(/a.b/s, "a\nb"), found(/a.b/, "a\u0436b"));
row("extended", found(/a b # c/x, "ab"), found(/a\ b/x, "a b"));
row("greedy", found(/a+/, "caaat"), found(/a+?/, "caaat"), found(/a{2}/, "caaat"), found(/a{2,}?t/, "caaat"), found(/<.*>/, "<a><b>"), found(/<.*?>/, "<a><b>"));
row("groups", found(/(a)(b)?(c)/, "ac"), found(/(?:a|b)(c)/, "bc"), found(/(a|ab)(c|bcd)(d*)/, "abcd"), found(/(\w)\1/, "hello"));
row("classes", found(/[^a-c]+/, "abcxyz"), found(/\d\D\w\W\s\S/, "1a_- x"), found(/[\]\-]+/, "a]-b"), found(/\bcat\b/, "concat cat"), found(/\Bcat/, "cat concat"));
row("ahead", found(/a(?=b)/, "acab"), found(/a(?!c)/, "acab"), found(/(?<=b)a/, "aba"), found(/(?<!b)a/, "ba a"));
row("escapes", found(/\x41\u0042\t/, "AB\t"), found(/\//, "a/b"), found(/\./, "a.b"), found(/[.]/, "ab"));
var named:Object = /(?P<year>\d{4})-(?P<month>\d\d)/.exec("on 2009-07-01");
row("named", named.year, named.month, named.length, named.input);

var global:RegExp = /o./g, log:Array = [];
for (var match:Object = global.exec("foo boy"); match != null; match = global.exec("foo boy")) log.push(match[0] + match.index + global.lastIndex);
row("exec", log.join(), global.lastIndex);
row("test", global.test("xo1"), global.lastIndex, global.test("xo1"), global.lastIndex, /o/.test("o"));
global.lastIndex = 99;
row("beyond", global.exec("foo"), global.lastIndex);
row("flags", global.global, global.ignoreCase, global.multiline, global.dotall, global.extended, global.source, String(/a\/b/gims));
row("made", found(new RegExp("a+", "gi"), "bAA"), new RegExp("\\d").source, RegExp("x") is RegExp, new RegExp(/q/g).global);

row("match", "a1b22".match(/\d+/), "a1b22".match(/\d+/g), "ab".match(/x/), "ab".match(/x/g).length, "a.b".match(".")[0]);
row("search", "hello".search(/l+/), "hello".search("o"), "hello".search(/z/));
row("replace", "aaa".replace("a", "b"), "aaa".replace(/a/g, "b"), "aaa".replace(/x/, "b"), "abc".replace(/(b)(c)/, "$2$1"));
row("dollars", "abc".replace(/b/, "$$"), "abc".replace(/b/, "$`"), "abc".replace(/b/, "$'"), "abc".replace(/(b)/, "$1$1"), "abc".replace(/b/, "a$"));
row("called", "a1b2".replace(/([a-z])(\d)/g, function(...all):String { return all[2] + all[1] + all[3] + all.length; }), "abc".replace("b", function():String { return arguments.length + ":" + arguments[1]; }));
row("split", "a,b,,c".split(",").length, "a1b2c".split(/\d/), "a1b2c".split(/(\d)/), "abc".split(""), "".split(",").length, "".split("").length, "abc".split("abc").length, "a,b,c".split(",", 2), "abc".split(/b/, 0).length);
row("unset", "abc".split(undefined).length, "ab".split(null).length);

row("sub", "hello".substr(1, 2), "hello".substr(-3, 2), "hello".substr(9), "hello".substring(4, 1), "hello".substring(-5, 2), "hello".substring(NaN), "hello".slice(-3), "hello".slice(3, 1), "hello".slice(1, -1));
row("char", "abc".charAt(1), "abc".charAt(-1), "abc".charAt(1.9), "abc".charCodeAt(5), "abc".charAt(NaN), "\uD83D\uDE00".length, String.fromCharCode(65, 66.9, 65536 + 67));
row("index", "banana".indexOf("an", 2), "banana".lastIndexOf("an"), "banana".lastIndexOf("an", 2), "banana".indexOf(""), "banana".indexOf("", 99), "banana".lastIndexOf("x"), "null".indexOf(null));
row("case", "äö Жук".toUpperCase(), "ÀÉ ЖУК".toLowerCase(), "I".toLowerCase());
row("more", "a" + 1 + 2, 1 + 2 + "a", "5" * "2", "a".concat(1, null, undefined), "b".localeCompare("a") > 0, "x".valueOf(), String(null), String(undefined), String([1, [2, 3]]), "" + {}, "" + function():void {});
