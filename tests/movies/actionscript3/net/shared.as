// movie: version="10" rate="20"
// What one run keeps the next one finds: all kinds of values, under names and folders of their own, until it is
// cleared.
import flash.net.*;
import flash.events.*;
import flash.utils.*;
class Score
{
    public var name:String = "nobody";
    public var points:int = 0;
}
registerClassAlias("score", Score);
function attempt(name:String, work:Function):void
{
    try {
        trace(name, work());
    } catch (error:Error) {
        trace(name, error.name, error.errorID);
    }
}
var kept:SharedObject = SharedObject.getLocal("kept");
var runs:int = int(kept.data.runs) + 1;
trace("run", runs, kept.size > 0);
if (runs > 1) {
    var old:Object = kept.data;
    trace(old.text, old.number, old.flag, old.none, "none" in old, "missing" in old, old.undefinedValue, old.when.time);
    trace(old.list.length, old.list[0], old.list.extra, old.inner.deep.deeper, old.inner.back === old.inner);
    trace(old.score is Score, old.score.name, old.score.points, old.bytes is ByteArray, old.bytes.length, old.xml.@a);
    trace(old.vector is Vector.<int>, old.vector, old["имя с пробелом"], old[""]);
    trace("other", SharedObject.getLocal("other").data.here, SharedObject.getLocal("cleared").size, SharedObject.getLocal("kept/inner").data.here);
}
kept.data.runs = runs;
kept.data.text = "Текст";
kept.data.number = -1.5e300;
kept.data.flag = true;
kept.data.none = null;
kept.data.undefinedValue = undefined;
kept.data.when = new Date(Date.UTC(2009, 6, 1));
kept.data.list = ["first", , 3];
kept.data.list.extra = "named";
kept.data.inner = {deep: {deeper: "found"}};
kept.data.inner.back = kept.data.inner;
var score:Score = new Score();
score.name = "Ann";
score.points = 7;
kept.data.score = score;
kept.data.bytes = new ByteArray();
kept.data.bytes.writeUTFBytes("12345");
kept.data.xml = <x a="attribute"/>;
kept.data.vector = new <int>[3, -4];
kept.data["имя с пробелом"] = "named";
trace("flush", kept.flush());
SharedObject.getLocal("other").data.here = "other " + runs;
SharedObject.getLocal("kept/inner").data.here = "inner " + runs;
var cleared:SharedObject = SharedObject.getLocal("cleared");
cleared.data.x = 1;
cleared.flush();
cleared.clear();
trace("cleared", cleared.data.x, cleared.size);
// The same name is the same object.
trace(SharedObject.getLocal("other") === SharedObject.getLocal("other"), SharedObject.getLocal("other").data === SharedObject.getLocal("other").data);
kept.setProperty("set", 5);
trace("set", kept.data.set);
attempt("data", function():void { (kept as Object).data = {}; });
for each (var name:String in ["a b", "a~b", "a%b", "a&b", "a\\b", "a;b", "a:b", "a\"b", "a'b", "a,b", "a<b", "a>b", "a?b", "a#b", ""])
    attempt("name " + name, function():Object { return SharedObject.getLocal(name); });
attempt("folder", function():Object { return SharedObject.getLocal("x", "/elsewhere"); });
attempt("much", function():String {
    var big:SharedObject = SharedObject.getLocal("big");
    var text:String = "0123456789";
    while (text.length < 300000) text += text;
    big.data.text = text;
    big.addEventListener(NetStatusEvent.NET_STATUS, function(e:NetStatusEvent):void { trace("status", e.info.code); });
    try {
        return big.flush();
    } finally {
        big.clear();
    }
    return null;
});
