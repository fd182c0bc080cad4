// movie: version="17" rate="20"
// What was packed or written is cut at every byte, and has bytes changed: it is read, or refused with an error, and
// what there was before is still there.
import flash.net.registerClassAlias;
import flash.utils.*;
dynamic class Pair implements IExternalizable
{
    public var a:int = 1;
    public var b:String = "two";
    public function writeExternal(out:IDataOutput):void { out.writeInt(a); out.writeUTF(b); }
    public function readExternal(input:IDataInput):void { a = input.readInt(); b = input.readUTF(); }
}
dynamic class Point
{
    public var x:Number = 1.5;
    public var y:int = -7;
    public var next:*;
}
registerClassAlias("pair", Pair);
registerClassAlias("point", Point);
function copyOf(bytes:ByteArray, length:int):ByteArray
{
    var made:ByteArray = new ByteArray();
    if (length > 0) made.writeBytes(bytes, 0, length);
    made.position = 0;
    made.objectEncoding = bytes.objectEncoding;
    return made;
}

// ---- packing ----
var plain:ByteArray = new ByteArray();
for (var i:int = 0; i < 300; i++) plain.writeUTFBytes("line " + (i % 17) + "\n");
for each (var method:String in ["zlib", "deflate", "lzma"]) {
    var packed:ByteArray = copyOf(plain, plain.length);
    packed.compress(method);
    var whole:ByteArray = copyOf(packed, packed.length);
    whole.uncompress(method);
    var same:Boolean = whole.length == plain.length && whole.toString() == plain.toString();
    var refused:int = 0, kept:int = 0, readAnyway:int = 0;
    for (var cut:int = 1; cut < packed.length; cut++) {
        var short:ByteArray = copyOf(packed, cut);
        try {
            short.uncompress(method);
            readAnyway++;
        } catch (error:Error) {
            refused++;
            if (error.errorID == 2058 && short.length == cut) kept++;
        }
    }
    trace(method, same, whole.position, packed.length < plain.length / 4, refused + readAnyway == packed.length - 1, readAnyway == 0, kept == refused);
}
var empty:ByteArray = new ByteArray();
empty.uncompress();
trace("nothing", empty.length);
var noise:ByteArray = new ByteArray(), seed:Number = 12345;
for (i = 0; i < 200000; i++) noise.writeByte((seed = seed * 16807 % 2147483647) >> 7);
var before:String = [noise[0], noise[77777], noise[199999]].join();
noise.deflate();
var grew:Boolean = noise.length > 199000;
noise.inflate();
trace("noise", grew, noise.length, [noise[0], noise[77777], noise[199999]].join() == before);
try {
    noise.compress("zip");
} catch (error:Error) {
    trace("unknown", error.errorID, noise.length);
}

// ---- objects ----
var tree:Object = {list: [1, -1.5, "text", null, undefined, true], date: new Date(86400000), xml: <a b="c">d</a>};
tree.itself = tree;
tree.again = tree.list;
tree.point = new Point();
tree.point.next = new Point();
tree.point.next.next = tree.point;
tree.pair = new Pair();
tree.bytes = copyOf(plain, 5);
tree.ints = new <int>[1, -2];
tree.doubles = new <Number>[0.5, NaN];
tree.objects = new <Object>[{k: 1}, null];
tree.dictionary = new Dictionary();
tree.dictionary["key"] = 5;
tree.sparse = [];
tree.sparse[100] = "far";
tree.sparse["name"] = "named";
for each (var encoding:int in [3, 0]) {
    var out:ByteArray = new ByteArray();
    out.objectEncoding = encoding;
    out.writeObject(tree);
    out.position = 0;
    var back:Object = out.readObject();
    trace("AMF" + encoding, out.bytesAvailable, back.itself === back, back.again === back.list, back.list.length, back.list[2], typeof back.list[4], back.date.time);
    trace(back.point is Point, back.point.next.next === back.point, back.point.y, back.sparse.length, back.sparse[100], back.sparse.name);
    if (encoding == 3) {
        trace(back.pair is Pair, back.pair.b, back.bytes, back.ints, back.ints is Vector.<int>, back.doubles, back.objects[0].k, back.dictionary["key"], back.xml.@b);
    }
    var errors:int = 0, values:int = 0;
    for (cut = 0; cut < out.length; cut++) {
        try {
            copyOf(out, cut).readObject();
            values++;
        } catch (error:Error) {
            errors++;
        }
    }
    trace("cut", errors + values == out.length, errors > out.length / 2);
    errors = values = 0;
    for (var at:int = 0; at < out.length; at++) {
        for each (var byte:int in [0, 1, 0x7F, 0x80, 0xFF, out[at] ^ 0x10]) {
            var bad:ByteArray = copyOf(out, out.length);
            bad[at] = byte;
            try {
                bad.readObject();
                values++;
            } catch (error:Error) {
                errors++;
            }
        }
    }
    trace("changed", errors + values == out.length * 6);
}
// What says it has a thousand million elements and has none.
for each (var hostile:Array in [[9, 0xFF, 0xFF, 0xFF, 0xFF, 1], [0x0D, 0xFF, 0xFF, 0xFF, 0xFF, 0], [6, 0xFF, 0xFF, 0xFF, 0xFF], [0x0A, 0x0B, 1], [0x0A, 0xFF, 0xFF, 0xFF, 0xFF]]) {
    var bytes:ByteArray = new ByteArray();
    for each (var b:int in hostile) bytes.writeByte(b);
    bytes.position = 0;
    try {
        trace("hostile", bytes.readObject());
    } catch (error:Error) {
        trace("hostile", error.errorID == 2030 || error.errorID == 2006 || error.errorID == 1000);
    }
}
// An array in itself is no damage.
bytes = new ByteArray();
for each (b in [9, 3, 1, 9, 0]) bytes.writeByte(b);
bytes.position = 0;
var around:Array = bytes.readObject();
trace("around", around.length, around[0] === around);
