// What may be typed: sets of characters, ranges without a beginning or an end, both with caret, and the other case.
var sets = ["", null, "a-c", "a-", "-b", "b-a", "a-b-0", "^", "^a", "a^b^c^A^B", "\\-x", "x\\"];
var t = _root.createTextField("t", 1, 0, 0, 200, 30);
t.type = "input";
var at = -1;
onEnterFrame = function() {
    if (at >= 0) trace(t.restrict + ": " + t.text);
    if (++at >= sets.length) return;
    t.text = "";
    t.restrict = sets[at];
    Selection.setFocus(t);
};
