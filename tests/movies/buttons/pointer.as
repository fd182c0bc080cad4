// movie: version="8" width="200" height="100" rate="10"
// What the pointer is on, when instances are disabled or hidden under it and when the focus comes and goes.
function box(name, depth, x) {
    var c = _root.createEmptyMovieClip(name, depth);
    c.beginFill(0x336699);
    c.moveTo(0, 0); c.lineTo(40, 0); c.lineTo(40, 40); c.lineTo(0, 40);
    c.endFill();
    c._x = x;
    c.onRollOver = function() { trace(this._name + " over"); };
    c.onRollOut = function() { trace(this._name + " out"); };
    c.onPress = function() { trace(this._name + " press"); };
    c.onRelease = function() { trace(this._name + " release"); };
    c.onKeyDown = function() { trace(this._name + " key"); };
}
box("a", 1, 0);
box("b", 2, 80);
var frame = 1;
onEnterFrame = function() {
    switch (++frame) {
    case 2: a.enabled = false; break;           // nothing is told while it is disabled,
    case 3: a.enabled = true; break;            // and it is still what the pointer is on;
    case 4: a.enabled = false; break;           // the pointer leaves it and comes back,
    case 5: trace("again"); a.enabled = true; break;
    case 6: a._visible = false; break;
    case 7: a._visible = true; break;
    case 8: trace("focus"); Selection.setFocus(b); break;
    case 9: Selection.setFocus(b); break;       // said once more
    case 10: trace("mouse"); break;             // moved: the keys are not b's any more
    case 11: _focusrect = false; Selection.setFocus(null); Selection.setFocus(b); break;
    case 12: trace(Key.isToggled(65) + " " + Key.isToggled(13) + " " + Key.isToggled(1)); break;
    }
};
