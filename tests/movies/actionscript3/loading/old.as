// movie: version="10" width="300" height="200" rate="20" background="#FFFFFF" document="Main"
// A movie of ActionScript 2 lives in a world of its own, where the loader has put it.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.net.URLRequest;
    public class Main extends Sprite
    {
        private var loader:Loader = new Loader();
        private var frames:int = 0;
        public function Main()
        {
            loader.x = 100; loader.y = 50; loader.scaleX = loader.scaleY = 2;
            addChild(loader);
            loader.contentLoaderInfo.addEventListener(Event.INIT, onInit);
            loader.load(new URLRequest("old-guest.swf"));
            stage.addEventListener(MouseEvent.MOUSE_DOWN, onPress);
            addEventListener(Event.ENTER_FRAME, onFrame);
        }
        private function onInit(event:Event):void
        {
            var info:LoaderInfo = loader.contentLoaderInfo;
            trace("init", loader.content, info.actionScriptVersion, info.swfVersion, info.width, info.height);
            trace("size", loader.content.width, loader.content.height, loader.width, loader.height);
            try {
                addChild(loader.content);
            } catch (error:ArgumentError) {
                trace("stays", error.errorID, loader.content.parent == loader);
            }
        }
        private function onPress(event:MouseEvent):void { trace("pressed", event.target, event.stageX, event.stageY); }
        private function onFrame(event:Event):void
        {
            if (++frames == 12)
            {
                loader.unload();
                trace("unloaded", loader.content, loader.width);
            }
        }
    }
}
