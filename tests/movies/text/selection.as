// What is selected when, and which clips take the focus.
var t = _root.createTextField("t", 1, 0, 0, 100, 20);
t.text = "abcdef";
function selected() { return Selection.getBeginIndex() + " " + Selection.getCaretIndex() + " " + Selection.getEndIndex(); }
var listener = new Object();
listener.onSetFocus = function(before, now) { trace(before + " > " + now + ": " + selected()); };
Selection.addListener(listener);
Selection.setFocus(t);              // nothing is selected yet when that is told
trace(selected());
Selection.setSelection(4, 2);       // the caret is at the second
trace(selected());
Selection.setSelection();
trace(selected());
Selection.setSelection(1);
trace(selected());
var c = _root.createEmptyMovieClip("c", 2);
c.tabIndex = 1;
Selection.setFocus(c);
trace(Selection.getFocus());
c.focusEnabled = true;
Selection.setFocus(c);
Selection.setFocus(t);
c.focusEnabled = false;
c.onRelease = undefined;            // a name is enough to make it a button, and buttons always take it
Selection.setFocus(c);
