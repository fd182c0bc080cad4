// movie: version="10" width="300" height="200" rate="20" document="Main"
// What a Loader tells of what it loads: a movie of the same language, bytes, a picture, nothing, and nonsense; what
// is asked of it too early; and what is loaded while something else is.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.net.URLRequest;
    import flash.system.*;
    import flash.utils.ByteArray;
    public class Main extends Sprite
    {
        private var loader:Loader = new Loader();
        private var order:Array = [];
        private var step:int = 0;
        public function Main()
        {
            var info:LoaderInfo = loader.contentLoaderInfo;
            trace("empty", loader.content, loader.numChildren, info.bytesLoaded, info.loader == loader, root.loaderInfo.loader);
            attempt("content of nothing", function():Object { return info.content; });
            attempt("width of nothing", function():Object { return info.width; });
            attempt("load of nothing", function():Object { return loader.load(null); });
            attempt("bytes of nothing", function():Object { return loader.loadBytes(null); });
            attempt("empty bytes", function():Object { return loader.loadBytes(new ByteArray()); });
            attempt("addChild", function():Object { return loader.addChild(new Sprite()); });
            attempt("removeChildAt", function():Object { return loader.removeChildAt(0); });
            attempt("unload of nothing", function():Object { loader.unload(); loader.close(); return "is nothing"; });
            for each (var type:String in [Event.OPEN, Event.INIT, Event.COMPLETE, Event.UNLOAD, IOErrorEvent.IO_ERROR])
                info.addEventListener(type, note);
            next();
        }
        private function attempt(name:String, work:Function):void
        {
            try {
                trace(name, work());
            } catch (error:Error) {
                trace(name, error.name, error.errorID);
            }
        }
        private function note(event:Event):void
        {
            order.push(event.type);
            if (event.type != Event.COMPLETE && event.type != IOErrorEvent.IO_ERROR) return;
            var info:LoaderInfo = LoaderInfo(event.target);
            trace(step, order.join());
            if (event.type == Event.COMPLETE) {
                trace("  content", loader.content, loader.numChildren, loader.content.parent == loader, info.contentType);
                trace("  bytes", info.bytesLoaded == info.bytesTotal, info.bytesTotal > 0, info.width, info.height);
                if (info.contentType == "application/x-shockwave-flash")
                    trace("  movie", info.actionScriptVersion, info.swfVersion, info.frameRate, info.sameDomain, loader.content["said"], loader.content.loaderInfo == info);
            }
            order = [];
            next();
        }
        private function next():void
        {
            ++step;
            if (step == 1) loader.load(new URLRequest("guest.swf"));
            else if (step == 2) loader.load(new URLRequest("missing.swf"));
            else if (step == 3) loader.loadBytes(picture());
            else if (step == 4) loader.loadBytes(nonsense());
            else if (step == 5) {
                // Only the last of several is heard of.
                loader.load(new URLRequest("guest.swf"));
                loader.load(new URLRequest("missing.swf"));
                loader.load(new URLRequest("guest.swf"));
            } else if (step == 6) {
                var held:DisplayObject = loader.content;
                loader.unload();
                trace("unloaded", loader.content, loader.numChildren, held.parent, order.join());
            }
        }
        /// A picture of 1 by 1 pixels.
        private function picture():ByteArray
        {
            var bytes:ByteArray = new ByteArray();
            for each (var word:uint in [0x89504E47, 0x0D0A1A0A, 0x0000000D, 0x49484452, 0x00000001, 0x00000001, 0x08020000, 0x00907753,
                                        0xDE000000, 0x0C494441, 0x54789C63, 0xF8CFC000, 0x00030101, 0x00C9FE92, 0xEF000000, 0x0049454E, 0x44AE4260])
                bytes.writeUnsignedInt(word);
            bytes.writeByte(0x82);
            return bytes;
        }
        private function nonsense():ByteArray
        {
            var bytes:ByteArray = new ByteArray();
            for (var i:int = 0; i < 200; i++) bytes.writeByte(i * 37);
            return bytes;
        }
    }
}
