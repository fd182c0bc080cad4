// A place of the code that met one object meets another that only looks like it.

// The function's own variables are an object that `this` of an inner function's call shows.
function outer(turn) {
    function inner() { this.__proto__ = {a: 1, b: 2, c: 3, d: 4, e: 5, f: 6, g: 7, deep: "deep " + turn}; }
    inner();
    return deep;
}
for (var i = 0; i < 3; i++) trace(outer(i));

function lengthOf(thing) { return thing.length; }
var plain = {length: "plain"};
trace(lengthOf(plain));
trace(lengthOf([1, 2, 3]));
var list = [4, 5];
trace(lengthOf(list));
trace(lengthOf(plain));

// The prototype changes between two turns.
function Base() {}
Base.prototype.name = "base";
function nameOf(object) { return object.name; }
var object = new Base();
trace(nameOf(object));
Base.prototype.name = "changed";
trace(nameOf(object));
object.name = "own";
trace(nameOf(object));
delete object.name;
trace(nameOf(object));
delete Base.prototype.name;
trace(nameOf(object));
object.__proto__ = {name: "other"};
trace(nameOf(object));

// A child of a clip hides what its class and the global object have.
function fromTimeline() { return Math; }
trace(typeof(fromTimeline()));
var child = _root.createEmptyMovieClip("Math", 1);
trace(fromTimeline());
child.removeMovieClip();
trace(typeof(fromTimeline()));
var held = _root.createEmptyMovieClip("held", 2);
function methodOf(clip) { return clip.getDepth; }
trace(typeof(methodOf(held)));
held.createEmptyMovieClip("getDepth", 1);
trace(methodOf(held));
held.getDepth = "variable";
trace(methodOf(held));

// Watches and setters that come later are met by a place that wrote before.
function write(target, value) { target.x = value; }
var target = {x: 0};
write(target, 1);
target.watch("x", function(name, before, after) { return after * 2; });
write(target, 5);
trace(target.x);
target.unwatch("x");
target.addProperty("x", function() { return "got"; }, function(value) { trace("set " + value); });
write(target, 6);
trace(target.x);
