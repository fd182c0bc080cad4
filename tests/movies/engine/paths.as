// movie: version="8" rate="10"
// Variables and clips by path. The last dot or colon divides a variable from what it is in.
createEmptyMovieClip("m", 1); m.createEmptyMovieClip("n", 2);
v = "top"; m.v = "middle"; m.n.v = "deep";
function at() { for (var i = 0; i < arguments.length; i++) trace(arguments[i] + " is " + eval(arguments[i])); }
at("m/n", "m/n/", "/m/n", "/", "m", "/m/n:v", "m.n.v", "m/n.v", "m:n:v", "m/n/:v");
// Colons may stand in a row where a name follows, and one at the start where anything does.
at("m::n:v", "m/::n:v", ":m:v", ":v", "/:v", "m:", "m.");
// Two dots: the parent. Behind a dot they are none, and neither goes on with one.
at("m/../:v", "m:..:v", "../:v", "m..v", "m...v", "m/..");
// From the first slash on a dot is a letter.
at("m/n.n.v", "m.n/.v", "m.n.v.w");
// Slashes alone never name a variable in a clip.
at("m/v", "m//n");
// Every object in scope is tried until one leads to a variable of that name.
o = {p: {only: "of the timeline"}}; _global.o = {p: {all: "of everybody"}};
at("o.p.only", "o.p.all");
function local() { var o = {p: {mine: "of the function"}}; return eval("o.p.mine") + ", " + eval("o.p.only"); }
trace(local());
// Levels: digits as far as they go.
at("_level0", "_level", "_flash0x", "_level1", "_level4294967296");
m._level0 = "own"; trace(m._level0);
// Numbers of properties that are none, and frames that are labels.
trace(getProperty("m", 99) + " " + getProperty("nowhere", 0));
