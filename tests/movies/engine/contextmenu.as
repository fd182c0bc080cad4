// movie: version="8" width="200" height="200" rate="10"
// Whose menu opens, what of it is shown, and who hears of it.
function box(name, x, within) {
    var clip = within.createEmptyMovieClip(name, within.getNextHighestDepth());
    clip._x = x;
    clip.beginFill(0x336699);
    clip.moveTo(0, 0); clip.lineTo(40, 0); clip.lineTo(40, 40); clip.lineTo(0, 40);
    clip.endFill();
    return clip;
}
function opened(owner, menu) { trace("opened " + owner + " " + (this == menu)); }
function chosen(owner, item) { trace("chosen " + owner + " " + item.caption + " " + (this == item)); }

_root.menu = new ContextMenu(opened);
_root.menu.customItems.push(new ContextMenuItem("Начать заново", chosen), new ContextMenuItem("Play", chosen));
var outer = box("outer", 60, _root), inner = box("inner", 20, outer);
inner._y = 20;
outer.menu = new ContextMenu(opened);
outer.menu.hideBuiltInItems();
outer.menu.customItems.push(new ContextMenuItem("One", chosen), new ContextMenuItem("Grey", chosen, true, false),
                            new ContextMenuItem("Hidden", chosen, false, true, false), new ContextMenuItem("one.", chosen));

// Made as it opens, by a getter, and it takes its clip away.
var made = box("made", 120, _root);
made.menu = new ContextMenu(function (owner, menu) {
    menu.customItems = new Array(3);
    for (var i = 1; i <= 30; i++) menu.customItems.push(new ContextMenuItem("number " + i, chosen));
    menu.customItems[3].addProperty("caption", function () { menu.customItems = null; return "from a getter"; }, null);
    made.removeMovieClip();
});
// Whatever stands there is no menu.
var odd = box("odd", 160, _root);
odd.menu = {customItems: {length: 1e9}};
_root.createTextField("field", 50, 0, 100, 100, 20);
field.type = "input";
field.text = "text";
field.onChanged = function () { trace("changed to " + this.text); };
