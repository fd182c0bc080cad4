// movie: version="8" width="160" height="40" rate="10"
// What an input method is about to type is seen underlined in the place of what is selected, and is no text yet.
_root.createTextField("f", 1, 10, 8, 140, 24);
f.type = "input"; f.border = true; f.text = "Привет мир";
var format = new TextFormat("_sans", 14); f.setTextFormat(format); f.setNewTextFormat(format);
f.onChanged = function() { trace("changed: " + f.text + " " + Selection.getCaretIndex()); };
Selection.setFocus(f); Selection.setSelection(7, 10);
var frame = 0;
onEnterFrame = function() { trace(++frame + " " + f.text + " " + f.length); };
