// movie: version="10" rate="20"
import flash.utils.Proxy;
import flash.utils.flash_proxy;
use namespace flash_proxy;
class Recorder extends Proxy {
    private var store:Object = {};
    private var names:Array = [];
    override flash_proxy function getProperty(name:*):* { trace("get", name); return store[name]; }
    override flash_proxy function setProperty(name:*, value:*):void { trace("set", name, value); if (!(name in store)) names.push(String(name)); store[name] = value; }
    override flash_proxy function callProperty(name:*, ...args):* { trace("call", name, args); return args.length; }
    override flash_proxy function hasProperty(name:*):Boolean { return name in store; }
    override flash_proxy function deleteProperty(name:*):Boolean { trace("delete", name); return delete store[name]; }
    override flash_proxy function nextNameIndex(index:int):int { return index < names.length ? index + 1 : 0; }
    override flash_proxy function nextName(index:int):String { return names[index - 1]; }
    override flash_proxy function nextValue(index:int):* { return store[names[index - 1]]; }
}
var r:* = new Recorder();
r.a = 1; r["b"] = 2; r.a += 5;
trace(r.a, "a" in r, "z" in r, r.anything(1, 2));
for (var k:String in r) trace(k);
for each (var v:* in r) trace(v);
delete r.b;
