// movie: version="12" document="Main"
// What is told to be read only cannot be written, whoever keeps it; the player's settings have their ranges.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.net.*;
    import flash.system.*;

    import flash.ui.*;
    import flash.utils.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            function refused(what:String, work:Function):void {
                try { work(); trace(what, "done"); } catch (e:Error) { trace(what, e.errorID, e.message); }
            }
            var connection:NetConnection = new NetConnection();
            connection.connect(null);
            var stream:NetStream = new NetStream(connection);
            var info:* = stream.info, place:* = stage, event:* = new HTTPStatusEvent("a", false, false, 200);
            refused("info", function():void { info.byteCount = 5; });
            refused("support", function():void { place.colorCorrectionSupport = "x"; });
            refused("status", function():void { event.status = 4; });
            refused("voucher", function():void { new (getDefinitionByName("flash.net.drm.DRMVoucher") as Class)(); });
            trace(event.status, event.toString());
            trace(new FullScreenEvent("b", false, false, true));
            trace(event.clone().status);
            var uncaught:* = new UncaughtErrorEvent("uncaughtError", true, true, 7);
            trace(uncaught.error);
            // ---- settings ----
            trace(stage.colorCorrection, place.colorCorrectionSupport, stage.fullScreenSourceRect, place.stageVideos.length);
            refused("correction", function():void { stage.colorCorrection = "some"; });
            stage.colorCorrection = "on";
            stage.fullScreenSourceRect = new flash.geom.Rectangle(1, 2, 3, 4);
            trace(stage.colorCorrection, stage.fullScreenSourceRect);
            stage.fullScreenSourceRect = null;
            trace(stage.fullScreenSourceRect);
            trace(Multitouch.inputMode, Multitouch.maxTouchPoints, Multitouch.supportedGestures, Multitouch.supportsTouchEvents);
            refused("touch", function():void { Multitouch.inputMode = "finger"; });
            Multitouch.inputMode = MultitouchInputMode.TOUCH_POINT;
            trace(Multitouch.inputMode);
            trace(System.useCodePage, Security.exactSettings);
            Security.exactSettings = false; System.useCodePage = true;
            trace(System.useCodePage, Security.exactSettings);
            // ---- menus ----
            var item:ContextMenuItem = new ContextMenuItem("hello", true, false);
            trace(item.caption, item.separatorBefore, item.enabled, item.visible, flash.utils.getQualifiedSuperclassName(item), item.clone().enabled);
            trace(flash.utils.getQualifiedSuperclassName(ContextMenu), new ContextMenu() is NativeMenu);
            refused("menu", function():void { new NativeMenu(); });
        }
    }
}
