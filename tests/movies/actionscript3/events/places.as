// movie: version="13" width="200" height="100" rate="10" document="Main"
// Where events say that something happened.
package {
    import flash.display.*; import flash.events.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            trace(new TransformGestureEvent("gestureZoom").stageX, new TouchEvent("touchTap").stageY);
            var child:Sprite = new Sprite();
            child.x = 30; child.y = 20;
            addChild(child);
            child.addEventListener("gestureZoom", function(e:TransformGestureEvent):void { trace(e.stageX, e.stageY, e.scaleX); });
            child.dispatchEvent(new TransformGestureEvent("gestureZoom", true, false, null, 5, 6, 2));
            child.addEventListener("gesturePressAndTap", function(e:PressAndTapGestureEvent):void { trace(e.stageX, e.tapStageX, e.tapStageY); });
            child.dispatchEvent(new PressAndTapGestureEvent("gesturePressAndTap", true, false, null, 1, 2, 3, 4));
            stage.addEventListener("mouseMove", function(e:MouseEvent):void { trace(e.type, e.movementX, e.movementY, e.isRelatedObjectInaccessible); });
            stage.addEventListener("mouseDown", function(e:MouseEvent):void { trace(e.type, e.movementX, e.movementY, e.clone() is MouseEvent); });
            trace(new HTTPStatusEvent("x").responseHeaders, stage.softKeyboardRect);
        }
    }
}
