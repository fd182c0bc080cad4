// movie: version="15" width="200" height="100" rate="10" document="Main"
// What does not want the mouse gives it to its parent, but never to the main timeline.
package {
    import flash.display.*; import flash.events.*;
    public class Main extends Sprite
    {
        private function box(place:int, under:DisplayObjectContainer, title:String):Sprite
        {
            var made:Sprite = new Sprite();
            made.graphics.beginFill(0); made.graphics.drawRect(place, 0, 20, 20);
            made.name = title;
            under.addChild(made);
            return made;
        }
        public function Main()
        {
            graphics.beginFill(0xFF0000); graphics.drawRect(0, 0, 200, 100);
            box(0, this, "deaf").mouseEnabled = false;
            var inner:Sprite = box(40, box(100, this, "outer"), "inner");
            inner.mouseEnabled = inner.mouseChildren = false;
            stage.addEventListener("mouseDown", function(e:Event):void { trace(e.target.name); });
        }
    }
}
