// movie: version="8" rate="10"
// What a movie keeps; a run without a window keeps it for its own time.
var so = SharedObject.getLocal("score");
trace(typeof so + " " + typeof so.data + " " + so.data.best);
so.data.best = 10; so.data.list = [1, {a: "b"}]; so.data.name = "Имя";
trace(so.flush());
var same = SharedObject.getLocal("score"); trace((same.data === so.data) + " " + same.data.best + " " + same.data.list[1].a);
trace(so.getSize() > 10);
var other = SharedObject.getLocal("other"); trace(other.data.best);
delete so.data.name; trace(so.data.name); so.clear(); trace(SharedObject.getLocal("score").data.best);
trace(SharedObject.getLocal("bad name~"));
trace(SharedObject.getLocal());
