// movie: version="10" rate="20"
import flash.events.*;
import flash.display.*;
// Events that only movies make have names, copies and a text of their own.
var touch:TouchEvent = new TouchEvent(TouchEvent.TOUCH_TAP);
trace(touch.bubbles, touch.type, isNaN(touch.localX), touch.touchPointID);
var shader:Event = new ShaderEvent(ShaderEvent.COMPLETE).clone();
trace(shader);
trace(new NetDataEvent("a", false, false, 5, "b"));
trace(StatusEvent.STATUS, DataEvent.DATA, FullScreenEvent.FULL_SCREEN, ContextMenuEvent.MENU_SELECT);
trace(SWFVersion.FLASH9, ActionScriptVersion.ACTIONSCRIPT3, ShaderPrecision.FULL, GesturePhase.BEGIN);
