// movie: version="15" width="300" height="100" rate="10" document="Main"
// Two clicks select a word, three a paragraph without its end; what is dragged then goes on by the same.
package {
    import flash.display.*; import flash.events.*; import flash.text.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            var field:TextField = new TextField();
            field.defaultTextFormat = new TextFormat("_sans", 20);
            field.width = 300; field.height = 100; field.multiline = true;
            field.text = "iii iii iii\nother";
            addChild(field);
            stage.addEventListener("mouseUp", function(e:Event):void {
                trace(field.selectionBeginIndex, field.selectionEndIndex, field.caretIndex);
            });
        }
    }
}
