// movie: version="10" rate="20"
import flash.events.*;
import flash.display.*;
// Events that only movies make have names, copies and a text of their own.
var touch:TouchEvent = new TouchEvent(TouchEvent.TOUCH_TAP);
trace(touch.bubbles, touch.type, isNaN(touch.localX), touch.touchPointID);
var shader:Event = new ShaderEvent(ShaderEvent.COMPLETE).clone();
trace(shader);
trace(new NetDataEvent("a", false, false, 5, "b"));
trace(new DataEvent("a", false, false, "b"), new DataEvent("a", false, false, "b").data);
trace(new AsyncErrorEvent("a", false, false, "b", new Error("c")).error);
trace(StatusEvent.STATUS, DataEvent.DATA, FullScreenEvent.FULL_SCREEN, ContextMenuEvent.MENU_SELECT);
trace(SWFVersion.FLASH9, ActionScriptVersion.ACTIONSCRIPT3, ShaderPrecision.FULL, GesturePhase.BEGIN);
class Tap extends TouchEvent { public function Tap() { super("tap"); } }
trace(new Tap().bubbles, new Tap().isPrimaryTouchPoint, new TouchEvent("t", false).bubbles, new GestureEvent("g").bubbles, new GestureEvent("g", true, true).cancelable);
trace(new MouseEvent("m").bubbles, new KeyboardEvent("k").bubbles, new FocusEvent("f").bubbles, new TextEvent("x").bubbles, new ErrorEvent("e", false, false, "text", 7).errorID);
