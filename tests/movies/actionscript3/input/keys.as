// movie: version="10" width="200" height="100" rate="10" document="Main"
// Keys go to what has the focus; the Tab key moves it, and a listener may forbid that.
package {
    import flash.display.*; import flash.events.*; import flash.text.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            var first:TextField = new TextField(), second:TextField = new TextField();
            first.name = "first"; second.name = "second"; second.x = 100;
            first.type = second.type = TextFieldType.INPUT;
            addChild(first); addChild(second);
            for each (var type:String in ["focusIn", "focusOut", "keyFocusChange"])
                stage.addEventListener(type, function(e:FocusEvent):void {
                    trace(e.type, e.target.name, e.relatedObject ? e.relatedObject.name : null, e.keyCode);
                });
            stage.addEventListener("keyDown", function(e:KeyboardEvent):void { trace("down", e.target.name, e.keyCode, e.charCode, e.shiftKey); });
            first.addEventListener("textInput", function(e:TextEvent):void { trace("input", e.text); if (e.text == "x") e.preventDefault(); });
            first.addEventListener("change", function(e:Event):void { trace("change", first.text, first.caretIndex); });
            stage.focus = first;
            trace(stage.focus.name);
            first.restrict = "a-z";
        }
    }
}
