// movie: version="8" width="200" height="200" rate="10"
// A clip's place and colours as objects: set as a whole, read together with what contains it.
createEmptyMovieClip("outer", 1); outer.createEmptyMovieClip("inner", 1);
outer._x = 10; outer._xscale = 200;
var t = outer.inner.transform, m = new flash.geom.Matrix(1, 0.5, 0, 2, 3.5, 4);
t.matrix = m; trace(t.matrix + " | " + t.concatenatedMatrix);
trace(outer.inner._x + " " + outer.inner._yscale);
t.colorTransform = new flash.geom.ColorTransform(0.5, 1, 1, 1, 10, 0, 0, 0);
outer.transform.colorTransform = new flash.geom.ColorTransform(0.5, 1, 1, 0.5, 0, 0, 20, 0);
trace(t.concatenatedColorTransform.redMultiplier + " " + t.concatenatedColorTransform.redOffset + " " + t.concatenatedColorTransform.blueOffset + " " + outer._alpha);
outer.inner.beginFill(0); outer.inner.lineTo(10, 0); outer.inner.lineTo(10, 10); outer.inner.endFill();
trace(t.pixelBounds);
createEmptyMovieClip("other", 2); other.transform = t; trace(other.transform.matrix.d + " " + other.transform.colorTransform.redOffset);
trace(new flash.geom.Transform({}).matrix);
// Menus are data that the host may show.
var menu = new ContextMenu(), item = new ContextMenuItem("one", null, true);
menu.customItems.push(item); menu.hideBuiltInItems();
var copy = menu.copy(); item.caption = "changed";
trace(copy.customItems[0].caption + " " + copy.customItems[0].separatorBefore + " " + copy.customItems[0].enabled + " " + copy.builtInItems.zoom);
