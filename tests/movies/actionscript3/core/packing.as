// movie: version="10" rate="20"
import flash.utils.ByteArray;
import flash.utils.Dictionary;
import flash.system.System;
var b:ByteArray = new ByteArray();
for (var i:int = 0; i < 3000; i++) b.writeByte(i * i);
for each (var method:String in ["lzma", "zlib", "deflate"]) {
    var c:ByteArray = new ByteArray(); c.writeBytes(b);
    c.compress(method);
    trace(method, c.length < b.length, c.position == c.length);
    if (method == "lzma") trace(c[0].toString(16), c[5], c[6], c[13]);
    c.uncompress(method);
    var same:Boolean = c.length == b.length && c.position == 0;
    for (i = 0; i < b.length; i++) same = same && c[i] == b[i];
    trace(same);
    c.length = 20;
    try { c.uncompress(method); } catch (e:Error) { trace(e.errorID, c.length); }
}
var empty:ByteArray = new ByteArray(); empty.uncompress("lzma"); trace(empty.length);
try { b.compress("rar"); } catch (e:Error) { trace(e.errorID); }
trace(ByteArray.defaultObjectEncoding, new ByteArray().objectEncoding);
ByteArray.defaultObjectEncoding = 0;
var old:ByteArray = new ByteArray(); trace(old.objectEncoding, b.objectEncoding);
old.writeObject("ab"); trace(old[0], old[1], old[2], old.length);
try { ByteArray.defaultObjectEncoding = 1; } catch (e:Error) { trace(e.errorID); }
trace(ByteArray.defaultObjectEncoding);
var m:ByteArray = new ByteArray();
m.writeMultiByte("Жук", "windows-1251"); m.writeMultiByte("次 a", "shift_jis"); m.writeMultiByte("é", "utf-8");
trace(m.length, m[0], m[3].toString(16));
m.position = 0; trace(m.readMultiByte(3, "Windows-1251"), m.readMultiByte(4, "shift-jis"), m.readMultiByte(2, "utf-8"));
var plain:Dictionary = new Dictionary(); plain[1234567] = 1; plain.setPropertyIsEnumerable("1234567", false);
for (var walked:* in plain) trace("walked", walked);
function fill(d:Dictionary):void { for (var i:int = 0; i < 500; i++) d[{i: i}] = i; }
function count(d:Dictionary):int { var n:int = 0; for (var k:* in d) n++; return n; }
var weak:Dictionary = new Dictionary(true), strong:Dictionary = new Dictionary(), key:Object = {};
fill(weak); fill(strong); weak[key] = "kept"; weak["text"] = 1;
System.gc(); fill(new Dictionary(true)); System.gc();
trace(count(weak) < 100, count(strong), weak[key], weak.text);
