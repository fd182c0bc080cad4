// movie: version="13" rate="20"
// Natives that call script find their list, their text and themselves changed when it returns.
import flash.utils.*;
function attempt(name:String, work:Function):void
{
    try {
        trace(name, work());
    } catch (error:Error) {
        trace(name, error.errorID == 0 ? error.message : error.errorID);
    }
}
attempt("forEach over a list that empties", function():String {
    var list:Array = [1, 2, 3, 4], seen:Array = [];
    list.forEach(function(item:*, index:int, all:Array):void {
        seen.push(item);
        all.length = 2;
    });
    return seen[0] + " " + list.length;
});
attempt("map whose list grows", function():String {
    var list:Array = [1, 2, 3], turns:int = 0;
    var made:Array = list.map(function(item:int, index:int, all:Array):int {
        if (++turns < 50) all.push(item);
        return item * 2;
    });
    return made.slice(0, 3).join() + " " + (turns < 60);
});
attempt("filter within filter", function():String {
    var list:Array = [1, 2, 3, 4, 5, 6];
    return list.filter(function(item:int, ...rest):Boolean {
        return list.filter(function(other:int, ...rest):Boolean { return other < item; }).length % 2 == 0;
    }).join();
});
attempt("a comparison that throws", function():String {
    var list:Array = [5, 3, 1, 4], calls:int = 0;
    try {
        list.sort(function(a:int, b:int):int {
            if (++calls == 3) throw new Error("enough");
            return a - b;
        });
    } catch (error:Error) {
        list.sort(Array.NUMERIC);
        return error.message + " " + list.join();
    }
    return "not thrown";
});
attempt("a comparison that sorts", function():String {
    var inner:Array = [3, 2, 1];
    return [4, 9, 7].sort(function(a:int, b:int):int {
        inner.sort(function(c:int, d:int):int { return c - d; });
        return b - a;
    }).join() + " " + inner.join();
});
attempt("a comparison that knows no order", function():String {
    var list:Array = [];
    for (var i:int = 0; i < 200; i++) list.push(i);
    list.sort(function(a:int, b:int):int { return 1; });
    list.sort(function(a:int, b:int):int { return a == b ? 0 : a * 7919 % 13 < b * 104729 % 11 ? -1 : 1; });
    return list.length + " " + list.sort(Array.NUMERIC)[199];
});
attempt("replace within replace", function():String {
    return "abcabc".replace(/[ab]/g, function(match:String, at:int, whole:String):String {
        return match.toUpperCase() + whole.replace(/c/g, "").length + "@" + at + " ";
    });
});
attempt("a pattern used by its own replacement", function():String {
    var pattern:RegExp = /\d/g;
    return "1a2b3".replace(pattern, function(...found):String {
        pattern.lastIndex = 0;
        return String(pattern.exec("9") != null);
    });
});
attempt("splice whose list empties while it reads", function():String {
    var list:Array = [1, 2, 3];
    var start:Object = {valueOf: function():Object { list.length = 0; return 1; }};
    return list.splice(start, 2).length + " " + list.length;
});
attempt("splice whose list grows while it reads", function():String {
    var list:Array = [1, 2, 3];
    var count:Object = {valueOf: function():Object { list.push(4, 5); return 4; }};
    return list.splice(1, count).join() + " " + list.join();
});
attempt("removeAt of what is gone by then", function():String {
    var list:Vector.<int> = new <int>[1, 2, 3];
    var index:Object = {valueOf: function():Object { list.length = 0; return 2; }};
    try {
        list.removeAt(index as int);
        list.length = 3;
        (list as Object).removeAt(index);
    } catch (error:RangeError) {
        return "refused " + list.length;
    }
    return "removed";
});
attempt("insertAt behind an end that comes nearer", function():String {
    var list:Vector.<Object> = new <Object>[1, 2, 3, 4, 5, 6, 7, 8];
    var index:Object = {valueOf: function():Object { list.length = 1; return 8; }};
    try {
        (list as Object).insertAt(index, "x");
    } catch (error:RangeError) {
        return error.errorID + " " + list.length;
    }
    return "inserted";
});
attempt("lastIndexOf from where nothing is any more", function():String {
    var list:Vector.<int> = new Vector.<int>(5000);
    var from:Object = {valueOf: function():Object { list.length = 0; return 4999; }};
    return String((list as Object).lastIndexOf(0, from));
});
attempt("slice of what goes meanwhile", function():String {
    var list:Vector.<int> = new <int>[1, 2, 3, 4];
    var to:Object = {valueOf: function():Object { list.length = 2; return 4; }};
    return (list as Object).slice(1, to) + " " + list;
});
attempt("writeBytes of a source that empties", function():String {
    var source:ByteArray = new ByteArray(), target:ByteArray = new ByteArray();
    source.writeUTFBytes("0123456789");
    var count:Object = {valueOf: function():Object { source.clear(); return 0; }};
    (target as Object).writeBytes(source, 5, count);
    return target.length + " " + source.length;
});
attempt("join of a list in itself", function():String {
    var list:Array = ["a", null, "c"];
    list[1] = {toString: function():String { list.push("late"); list[0] = "changed"; return "b"; }};
    return list.join("-").substr(0, 5);
});
attempt("forEach over a vector that is fixed on the way", function():String {
    var list:Vector.<int> = new <int>[1, 2, 3], seen:int = 0;
    list.forEach(function(item:int, index:int, all:Vector.<int>):void {
        seen++;
        all.fixed = true;
    });
    try {
        list.push(1);
    } catch (error:RangeError) {
        return seen + " " + error.errorID;
    }
    return "grown";
});
attempt("names deleted while they are gone through", function():String {
    var object:Object = {a: 1, b: 2, c: 3}, seen:int = 0;
    for (var name:String in object) {
        seen++;
        for (var other:String in object) delete object[other];
    }
    for (name in object) seen += 100;
    return String(seen);
});
attempt("a dictionary emptied while it is gone through", function():String {
    var all:Dictionary = new Dictionary(), seen:int = 0;
    for (var i:int = 0; i < 10; i++) all[{n: i}] = i;
    for (var key:Object in all) {
        seen++;
        for (var other:Object in all) delete all[other];
    }
    return String(seen);
});
attempt("toJSON that changes what is written", function():String {
    var list:Array = [1, null, 3];
    list[1] = {toJSON: function(key:String):* { return "own " + key; }};
    return JSON.stringify(list);
});
attempt("a replacer that writes, too", function():String {
    return JSON.stringify({a: [1, 2]}, function(key:String, value:*):* {
        return key == "1" ? JSON.stringify({inner: value}) : value;
    });
});
attempt("a constructor that makes its own kind", function():String {
    return new Chain(4).toString();
});
class Chain
{
    private var _next:Chain;
    private var _n:int;
    public function Chain(n:int)
    {
        if (n > 0) _next = new Chain(n - 1);
        _n = n;
    }
    public function toString():String { return _n + (_next == null ? "" : ">" + _next); }
}
attempt("arguments kept beyond their call", function():String {
    var kept:Object;
    (function(a:int, b:int):void { kept = arguments; })(1, 2);
    (function(a:int, b:int):void { })(8, 9);
    return kept.length + " " + kept[0] + kept[1];
});
attempt("a getter that takes its own property's place", function():String {
    var reads:int = 0;
    var lazy:Lazy = new Lazy();
    return lazy.value + lazy.value + lazy.made;
});
class Lazy
{
    public var made:int = 0;
    private var _value:Array;
    public function get value():String
    {
        if (_value == null) {
            made++;
            _value = [this];
            return "first " + this.value;
        }
        return "again ";
    }
}
