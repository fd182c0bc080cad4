// movie: version="11" width="100" height="100" rate="10" document="Main"
// A stream that a script feeds, byte by byte.
package {
    import flash.display.*; import flash.events.*; import flash.net.*; import flash.utils.*;
    public class Main extends Sprite
    {
        private var stream:NetStream;
        private function tag(time:int, name:String, value:Number):ByteArray {
            var body:ByteArray = new ByteArray(); body.objectEncoding = 0;
            body.writeObject(name); body.writeObject(value);
            var made:ByteArray = new ByteArray();
            made.writeByte(18); made.writeByte(0); made.writeShort(body.length);
            made.writeByte(time >> 16); made.writeShort(time & 0xFFFF); made.writeInt(0);
            made.writeBytes(body); made.writeUnsignedInt(body.length + 11);
            return made;
        }
        public function Main()
        {
            var connection:NetConnection = new NetConnection(); connection.connect(null);
            stream = new NetStream(connection);
            stream.addEventListener("netStatus", function(e:NetStatusEvent):void { trace(e.info.code); });
            stream.client = {onCue: function(n:Number):void { trace("cue", n); }};
            try { stream.appendBytes(new ByteArray()); } catch (e:Error) { trace(e.errorID); }
            stream.play(null);
            try { stream.appendBytes(null); } catch (e:Error) { trace(e.errorID); }
            try { stream.appendBytesAction("nothing"); } catch (e:Error) { trace(e.errorID); }
            var head:ByteArray = new ByteArray();
            for each (var b:int in [0x46, 0x4C, 0x56, 1, 0, 0, 0, 0, 9, 0, 0, 0, 0]) head.writeByte(b);
            // In pieces that are no tags.
            var first:ByteArray = new ByteArray();
            first.writeBytes(head); first.writeBytes(tag(0, "onCue", 1)); first.writeBytes(tag(300, "onCue", 2));
            for (var i:int = 0; i < first.length; i += 7) {
                var piece:ByteArray = new ByteArray();
                piece.writeBytes(first, i, Math.min(7, first.length - i));
                stream.appendBytes(piece);
            }
            var frame:int = 0;
            addEventListener("enterFrame", function(e:Event):void {
                frame++;
                if (frame == 6) stream.appendBytes(tag(400, "onCue", 3));
                if (frame == 9) { trace("end"); stream.appendBytesAction(NetStreamAppendBytesAction.END_SEQUENCE); }
                if (frame == 12) {
                    trace("seek");
                    stream.appendBytesAction(NetStreamAppendBytesAction.RESET_SEEK);
                    stream.appendBytes(tag(9000, "onCue", 9));
                }
                if (frame == 14) { trace(stream.videoCodec, stream.audioCodec, stream.decodedFrames); stream.close(); }
            });
        }
    }
}
