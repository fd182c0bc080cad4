// movie: version="10" rate="20"
trace(typeof 1, typeof "s", typeof true, typeof null, typeof undefined, typeof {}, typeof trace, typeof <a/>, typeof Array);
trace(1 is int, 1 is uint, -1 is uint, 1.5 is int, 1.5 is Number, "s" is String, null is Object, undefined is Object);
trace([] is Array, [] is Object, trace is Function, Array is Class, {} is Array);
trace([] instanceof Array, [] instanceof Object, {} instanceof Array);
trace(("x" as String), (5 as String), ([1] as Array), (null as Array));
trace("length" in [], 0 in [1], 1 in [1], "a" in {a: 1}, "PI" in Math);
trace(delete [1][0]);
var any:* = 5; trace(any is int); any = "five"; trace(any is int);
var s:String; var n:Number; var i:int; var b:Boolean; var a:Array; var x:*;
trace(s, n, i, b, a, x);
s = null; trace(s); s = undefined; trace(s); s = String(undefined); trace(s);
b = "x"; trace(b); b = ""; trace(b); b = NaN; trace(b); b = {}; trace(b);
var c:Class = Date; trace(new c(0).getTime());
try { var t:Array = Object("no") as Array; trace(t); t = Array(Object("yes")); trace(t); } catch (e:Error) { trace("never"); }
try { var d:* = "text"; var date:Date = d; trace("never"); } catch (e:TypeError) { trace(e.errorID); }
