// movie: version="8" rate="12"
// More instances than whose names are kept at once without a look at which of them are still there.
var holder = _root.createEmptyMovieClip("holder", 1);
function seventh() { return holder.kept7; }
function late() { return holder.again; }
trace(seventh() + " " + late());
var count = 3000;
for (var i = 0; i < count; i++) holder.createEmptyMovieClip("kept" + i, i);
function found() {
    var sum = 0;
    for (var i = 0; i < count; i++) if (holder["kept" + i]._name == "kept" + i) sum++;
    return sum;
}
var turn = 0;
this.onEnterFrame = function() {
    switch (++turn) {
    case 1:
        trace(found() + " " + seventh());
        for (var i = 10; i < count; i++) holder["kept" + i].removeMovieClip();
        for (var i = 0; i < count; i++) holder.createEmptyMovieClip("passing" + i, 20).removeMovieClip();
        break;
    case 2:
        trace(found() + " " + seventh() + " " + holder.passing1);
        holder.kept7.removeMovieClip();
        trace(seventh() + " " + holder.KEPT8 + " " + late());
        holder.createEmptyMovieClip("again", 30);
        trace(late());
        for (var i = 0; i < count; i++) holder.createEmptyMovieClip("more" + i, 40).removeMovieClip();
        break;
    case 3:
        holder.createEmptyMovieClip("kept7", 31);
        trace(seventh() + " " + late() + " " + found());
        holder.again.removeMovieClip();
        holder.again = "variable";
        trace(late());
        fscommand("quit");
    }
};
