// movie: width="120" height="60" version="8"
// Of two clips with filters the first is cut by its mask; the mask of the second lies elsewhere, and cuts nothing.
function square(name, depth, color, x, y, size) {
    var clip = _root.createEmptyMovieClip(name, depth);
    clip.beginFill(color);
    clip.lineTo(size, 0);
    clip.lineTo(size, size);
    clip.lineTo(0, size);
    clip.endFill();
    clip._x = x;
    clip._y = y;
    return clip;
}
var first = square("first", 1, 0x0000FF, 10, 10, 30);
var second = square("second", 2, 0x0000FF, 60, 10, 30);
first.filters = second.filters = [new flash.filters.GlowFilter(0xFF0000, 1, 8, 8, 4)];
first.setMask(square("half", 3, 0, 0, 0, 25));
second.setMask(square("elsewhere", 4, 0, 100, 45, 10));
