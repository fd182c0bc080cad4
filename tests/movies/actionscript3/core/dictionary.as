// movie: version="10" rate="20"
import flash.utils.Dictionary;
var d:Dictionary = new Dictionary();
var k1:Object = {}, k2:Object = {};
d[k1] = "first"; d[k2] = "second"; d["1"] = "text"; d[1] = "number"; d[true] = "yes";
trace(d[k1], d[k2], d["1"], d[true], d[{}]);
trace(k1 in d, delete d[k1], k1 in d, d[k1]);
var n:int = 0; for (var k:* in d) n++; trace(n);
var f:Function = function():void {}; d[f] = 5; trace(d[f]);
var o:Object = {}; o[k1] = "a"; o[k2] = "b"; trace(o[k1], o["[object Object]"]);
// Nothing in a dictionary can be hidden.
var shown:Dictionary = new Dictionary();
shown["a"] = 1;
shown.setPropertyIsEnumerable("a", false);
for (var shownKey:String in shown) trace("shown", shownKey);
