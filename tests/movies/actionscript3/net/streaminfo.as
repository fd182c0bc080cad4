// movie: version="11" width="100" height="100" rate="10" document="Main"
// Figures of a stream while it plays: what has come, what is still ahead, and what was heard of it.
package {
    import flash.display.*; import flash.events.*; import flash.net.*; import flash.utils.*;
    public class Main extends Sprite
    {
        private var stream:NetStream;
        private var frame:int = 0;
        private function tag(time:int, name:String, value:*):ByteArray
        {
            var body:ByteArray = new ByteArray(); body.objectEncoding = 0;
            body.writeObject(name); body.writeObject(value);
            var made:ByteArray = new ByteArray();
            made.writeByte(18); made.writeByte(0); made.writeShort(body.length);
            made.writeByte(time >> 16); made.writeShort(time & 0xFFFF); made.writeInt(0);
            made.writeBytes(body); made.writeUnsignedInt(body.length + 11);
            return made;
        }
        private function tell(e:Event = null):void
        {
            if (e != null && ++frame != 3 && frame != 14) return;
            var info:NetStreamInfo = stream.info;
            trace(frame, info.byteCount, info.dataByteCount, info.audioByteCount, info.videoByteCount, info.currentBytesPerSecond,
                  info.playbackBytesPerSecond, info.dataBufferByteLength, info.dataBufferLength.toFixed(1));
            trace(info.metaData != null ? info.metaData.title : "untold", info.resourceName, info.uri, info.isLive, info.droppedFrames);
        }
        public function Main()
        {
            var connection:NetConnection = new NetConnection(); connection.connect(null);
            stream = new NetStream(connection);
            stream.client = {onMetaData: function(o:Object):void { trace("meta", o.title); }, onCue: function(n:Number):void {}};
            tell();
            stream.play(null);
            var bytes:ByteArray = new ByteArray();
            for each (var b:int in [0x46, 0x4C, 0x56, 1, 0, 0, 0, 0, 9, 0, 0, 0, 0]) bytes.writeByte(b);
            bytes.writeBytes(tag(0, "onMetaData", {title: "A film"}));
            bytes.writeBytes(tag(400, "onCue", 1));
            bytes.writeBytes(tag(3000, "onCue", 2));
            stream.appendBytes(bytes);
            addEventListener("enterFrame", tell);
        }
    }
}
