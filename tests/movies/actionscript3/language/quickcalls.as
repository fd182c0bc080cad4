// movie: version="10" rate="20"
// Calls that are made without much ado have to give what the long way gives.
import flash.utils.ByteArray;
class Base {
    public function same(i:int):int { return i; }
    public function wide(u:uint):uint { return u; }
    public function any(a:*):* { return a; }
    public function number(n:Number):Number { return n; }
    public function text(s:String):String { return s; }
    public function both(i:int, s:String, j:int = 7):String { return i + s + j; }
    public function none():int { return 2147483647; }
    public function get half():int { return 21; }
    public function isOdd(i:int):Boolean { return (i & 1) != 0; }
    public function down(i:int, seen:String):String { return i == 0 ? seen : this.down(i - 1, seen + i % 10); }
    public function count(to:int):int { var sum:int = 0; for (var i:int = 0; i < to; i++) sum += i; return sum; }
}
class Derived extends Base {
    override public function same(i:int):int { return i * 2; }
    override public function none():int { return -5; }
    override public function get half():int { return super.half * 2; }
}
class Bytes extends ByteArray { override public function readInt():int { return super.readInt() + 1; } }
function calls(b:Base):void {
    var i:int = 2147483647, n:Number = 2.75, u:uint = 4294967295, s:* = "12";
    trace(b.same(i), b.same(-3), b.same(n), b.same(u), b.same(s), b.same(i) + 1, b.same(4294967298.5));
    trace(b.wide(-1), b.wide(i), b.wide(n), b.wide(u) + 1, b.wide(-2147483648));
    trace(b.any(i), b.any(n), b.any(u), typeof b.any(s), b.any(null), b.any(7) + b.any("x"));
    trace(b.number(i), b.number(u) + 1, b.number(s), b.text(s), b.text(null));
    trace(b.both(i, "/"), b.both(5, "-", -8), b.both(n, s, u));
    trace(b.none() + 1, b.half, b.half / 4, b.isOdd(3), b.isOdd(i) == true, !b.isOdd(4));
    trace(b.down(40, ""));
    var sum:int = 0;
    for (i = 0; i < 5; i++) { for (var k:int = 0; k < 3; k++) { if (k == 1) continue; sum += b.count(k + i); } sum += b.same(1); }
    trace(sum);
    var loose:* = b;
    trace(loose.same("0x10"), loose.wide(-1), loose.none(), loose.half, loose.both(1, 2, 3));
    try { loose.same(); } catch (e:ArgumentError) { trace(e.errorID); }
    try { loose.none(1); } catch (e:ArgumentError) { trace(e.errorID); }
    try { loose.same(1, 2); } catch (e:ArgumentError) { trace(e.errorID); }
}
calls(new Base()); calls(new Derived());
var nobody:Base = null;
try { nobody.none(); } catch (e:TypeError) { trace(e.errorID); }
try { nobody.same(1); } catch (e:TypeError) { trace(e.errorID); }
try { trace(nobody.half); } catch (e:TypeError) { trace(e.errorID); }

function reads(bytes:*, typed:ByteArray):void {
    typed.clear();
    for (var i:int = 0; i < 4; i++) typed.writeInt(i * 0x01020304);
    typed.position = 2; typed.writeShort(-2); typed.writeByte(300); typed.writeDouble(0.1);
    trace(typed.length, typed.position, typed.bytesAvailable);
    typed.position = 0;
    trace(bytes.readInt(), bytes.readUnsignedInt(), bytes.readShort(), bytes.readUnsignedShort(), bytes.readByte(), bytes.readUnsignedByte());
    typed.endian = "littleEndian"; typed.position = 4;
    trace(bytes.readInt(), typed.readUnsignedShort(), typed.position);
    typed.position = 13;
    try { typed.readInt(); } catch (e:Error) { trace(e.errorID, typed.position); }
    typed.position = 99;
    try { bytes.readByte(); } catch (e:Error) { trace(e.errorID, typed.position, typed.bytesAvailable); }
    typed.position = 15; typed.writeInt(-1); typed.writeFloat(NaN); trace(typed.length, typed.position);
    typed.position = 15; typed.writeUnsignedInt("4294967295"); typed.position = 15; trace(typed.readUnsignedInt(), isNaN(typed.readFloat()));
    var order:String = "";
    typed.position = 0;
    typed.writeInt({valueOf: function():Number { order += typed.position; typed.clear(); return 5; }});
    trace(order, typed.length, typed.position);
}
function readBoth(bytes:ByteArray):void { reads(bytes, bytes); }
readBoth(new ByteArray()); readBoth(new Bytes());

function natives():void {
    var o:* = {valueOf: function():Number { return 2.5; }}, zero:Number = 0, s:String = "ab", i:int;
    trace(Math.floor(o), Math.ceil(-0.5), 1 / Math.ceil(-0.5), Math.round(2.5), Math.round(-2.5), Math.abs("-3"), Math.sqrt(-1));
    trace(Math.max(1, 2), Math.max(2, 1), Math.max(NaN, 1), 1 / Math.max(-0.0, zero), 1 / Math.min(zero, -0.0), Math.min(3, 2, 1), Math.max(), Math.min(o, 9));
    try { (Math as Object).floor(); } catch (e:ArgumentError) { trace(e.errorID); }
    for (i = 0; i < 200; i++) s += String.fromCharCode(1000 + i);
    var sum:Number = 0;
    for (i = 0; i < s.length; i++) sum += s.charCodeAt(i);
    trace(sum, s.length, s.charCodeAt(-1), s.charCodeAt(0.9), s.charCodeAt(NaN), s.charCodeAt(202), s.charCodeAt(), s.charCodeAt(o));
    var any:* = s; trace(any.length, any.charCodeAt(1)); any = [1, 2]; trace(any.length); any = "xyz"; trace(any.length); any = {length: "own"}; trace(any.length);
    var list:Array = []; for (i = 0; i < 3; i++) trace(list.push(i), list.length);
    list.length = 10; trace(list.push("end"), list.length, list[10], list.push(), list.push(1, 2));
    var ints:Vector.<int> = new Vector.<int>(), names:Vector.<String> = new Vector.<String>();
    trace(ints.push(2.5), ints.push("7"), ints.push(-1), ints, names.push(5), names.push(null), names);
    ints.fixed = true;
    try { ints.push(1); } catch (e:RangeError) { trace(e.errorID, ints.length); }
    any = names; trace(any.length, any.push("late"), any);
}
natives();
