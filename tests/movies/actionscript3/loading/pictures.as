// movie: version="10" width="200" height="100" rate="20" document="Main"
// A picture whose bytes are given is there some time after that, not at once; one that is asked for meanwhile takes its
// place. Movies that the older machine would play can be turned off.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.geom.Rectangle;
    import flash.net.*;
    import flash.system.Security;
    import flash.utils.ByteArray;
    public class Main extends Sprite
    {
        private var loader:Loader = new Loader(), stream:URLLoader = new URLLoader();

        public function Main()
        {
            var info:LoaderInfo = loader.contentLoaderInfo;
            for each (var type:String in [ProgressEvent.PROGRESS, Event.INIT, Event.COMPLETE, Event.UNLOAD, IOErrorEvent.IO_ERROR])
                info.addEventListener(type, function(event:Event):void {
                    trace("  " + event.type, loader.content);
                });
            info.addEventListener(Event.COMPLETE, next);
            trace("given");
            loader.loadBytes(made(3));
            trace("given again", loader.content);
            loader.loadBytes(made(5));
            trace("back", loader.content);
        }
        private function next(event:Event):void
        {
            loader.contentLoaderInfo.removeEventListener(Event.COMPLETE, next);
            trace("wide", loader.content.width);
            Security.disableAVM1Loading = true;
            loader.load(new URLRequest("old-guest.swf"));
        }
        /// A picture without compression worth the name: PNG as it is written.
        private function made(width:int):ByteArray
        {
            var data:ByteArray = new ByteArray(), png:ByteArray = new ByteArray();
            for (var x:int = 0; x < width * 3 + 1; ++x) data.writeByte(0);
            data.compress();
            for each (var unit:uint in [0x89504E47, 0x0D0A1A0A]) png.writeUnsignedInt(unit);
            var header:ByteArray = new ByteArray();
            header.writeUnsignedInt(width);
            header.writeUnsignedInt(1);
            header.writeByte(8);
            header.writeByte(2);
            header.length = 13;
            chunk(png, "IHDR", header);
            chunk(png, "IDAT", data);
            chunk(png, "IEND", new ByteArray());
            return png;
        }
        private function chunk(png:ByteArray, name:String, data:ByteArray):void
        {
            png.writeUnsignedInt(data.length);
            var start:uint = png.position;
            png.writeUTFBytes(name);
            png.writeBytes(data);
            var sum:uint = 0xFFFFFFFF;
            for (var at:uint = start; at < png.length; ++at) {
                sum ^= png[at];
                for (var bit:int = 0; bit < 8; ++bit) sum = (sum & 1) != 0 ? (sum >>> 1) ^ 0xEDB88320 : sum >>> 1;
            }
            png.writeUnsignedInt(~sum);
        }
    }
}
