// movie: version="15" width="200" height="200" rate="10" document="Main"
// The arrows move the focus to what lies that way; without a focus, and in a field, they do not.
package {
    import flash.display.*; import flash.events.*; import flash.text.*;
    public class Main extends Sprite
    {
        private function box(name:String, x:Number, y:Number):Sprite
        {
            var s:Sprite = new Sprite();
            s.name = name; s.x = x; s.y = y; s.tabEnabled = true;
            s.graphics.beginFill(0x336699); s.graphics.drawRect(0, 0, 20, 20);
            addChild(s);
            return s;
        }
        public function Main()
        {
            var middle:Sprite = box("middle", 80, 80);
            box("above", 80, 10); box("far right", 170, 80); box("right", 130, 85); box("below left", 20, 160);
            box("hidden", 80, 120).visible = false;
            var field:TextField = new TextField();
            field.name = "field"; field.type = "input"; field.width = field.height = 30; field.x = 160; field.y = 160;
            field.text = "abc";
            addChild(field);
            stage.addEventListener("keyFocusChange", function(e:FocusEvent):void {
                trace(e.keyCode, e.target.name, "to", e.relatedObject.name);
                if (e.relatedObject.name == "far right") e.preventDefault();
            });
            stage.addEventListener("keyDown", function(e:KeyboardEvent):void { if (e.keyCode == 49) stage.focus = middle; });
            stage.addEventListener("keyUp", function(e:KeyboardEvent):void { trace(stage.focus ? stage.focus.name : null); });
        }
    }
}
