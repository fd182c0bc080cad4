// movie: version="10" rate="20"
import flash.utils.ByteArray;
import flash.utils.Endian;
var b:ByteArray = new ByteArray();
b.writeInt(-2); b.writeShort(258); b.writeByte(255); b.writeBoolean(true); b.writeDouble(1.5); b.writeUTF("жук");
trace(b.length, b.position, b[0], b[7], b.bytesAvailable);
b.position = 0;
trace(b.readInt(), b.readUnsignedShort(), b.readByte(), b.readBoolean(), b.readDouble(), b.readUTF());
try { b.readByte(); } catch (e:Error) { trace(e.errorID); }
var l:ByteArray = new ByteArray(); l.endian = Endian.LITTLE_ENDIAN; l.writeUnsignedInt(1); trace(l[0], l[3]);
l.clear(); trace(l.length);
var big:ByteArray = new ByteArray(); for (var i:int = 0; i < 1000; i++) big.writeUTFBytes("abc");
big.compress(); trace(big.length < 100); big.uncompress(); trace(big.length, big.toString().substr(0, 6));
var o:ByteArray = new ByteArray(); o.writeObject({list: [1, "two", null], n: 1.5}); o.position = 0;
var back:Object = o.readObject(); trace(back.list, back.n);
b.length = 2; trace(b.length, b.position);
b[5] = 300; trace(b.length, b[5], b[4]);
var shared:ByteArray = new ByteArray();
shared.length = 8; shared.shareable = true; shared.endian = Endian.BIG_ENDIAN;
trace(shared.shareable, shared.atomicCompareAndSwapIntAt(4, 0, 258), shared[4], shared[5], shared.atomicCompareAndSwapIntAt(4, 1, 7), shared[4]);
for each (var place:int in [-4, 2, 8]) try { shared.atomicCompareAndSwapIntAt(place, 0, 0); } catch (off:Error) { trace(off.name, off.errorID); }
trace(shared.atomicCompareAndSwapLength(8, 12), shared.length, shared.atomicCompareAndSwapLength(8, 2), shared.length);
