// movie: version="10" width="200" height="100" rate="10" document="Main"
// Which object hears of the mouse, in which order, and who is passed over.
package {
    import flash.display.*; import flash.events.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            function box(name:String, x:Number):Sprite {
                var s:Sprite = new Sprite();
                s.name = name; s.x = x;
                s.graphics.beginFill(0x336699); s.graphics.drawRect(0, 0, 40, 40); s.graphics.endFill();
                return s;
            }
            function hear(s:InteractiveObject):void {
                for each (var type:String in ["mouseDown", "mouseUp", "click", "doubleClick", "rollOver", "rollOut", "mouseOver",
                                              "mouseOut", "releaseOutside", "rightClick", "mouseWheel"])
                    s.addEventListener(type, function(e:MouseEvent):void {
                        trace(e.type, e.target.name, "at", e.currentTarget.name, e.localX, e.localY, e.buttonDown, e.delta);
                    });
            }
            var a:Sprite = box("a", 0), b:Sprite = box("b", 80), inner:Sprite = box("inner", 20), cover:Sprite = box("cover", 80);
            inner.y = 20;
            a.addChild(inner);
            addChild(a); addChild(b); addChild(cover);
            cover.mouseEnabled = false;
            b.doubleClickEnabled = true;
            hear(a); hear(b);
        }
    }
}
