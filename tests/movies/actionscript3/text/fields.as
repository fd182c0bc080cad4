// movie: version="10" rate="20"
import flash.text.*;
var t:TextField = new TextField();
t.text = "one\ntwo"; t.appendText("!");
trace(t.text.split("\r").join("/"), t.length, t.type, t.selectable, t.multiline);
t.replaceText(0, 3, "ONE"); trace(t.text.substr(0, 3));
t.maxChars = 5; t.restrict = "a-z"; trace(t.maxChars, t.restrict);
var f:TextFormat = new TextFormat("_sans", 20, 0xFF0000, true);
trace(f.font, f.size, f.color, f.bold, f.italic);
t.defaultTextFormat = f; t.text = "big"; trace(t.getTextFormat().size, t.textColor.toString(16));
t.setSelection(1, 2); trace(t.selectionBeginIndex, t.selectionEndIndex, t.caretIndex);
t.htmlText = "a<b>b</b>"; trace(t.text);
t.autoSize = TextFieldAutoSize.LEFT; t.text = "x"; var narrow:Number = t.width; t.text = "xxxxxxxx"; trace(t.width > narrow);
