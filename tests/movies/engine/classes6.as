// movie: version="6" rate="10"
// Clips as objects: methods of the prototype, registered classes, levels of lookup.
MovieClip.prototype.shout = function() { return this._name.toUpperCase(); };
MovieClip.prototype.addProperty("half", function() { return this._x / 2; }, function(v) { this._x = v * 2; });
var c = createEmptyMovieClip("clip", 1); c._x = 10;
trace(c.shout() + " " + c.half); c.half = 20; trace(c._x);
trace((c instanceof MovieClip) + " " + typeof c + " " + (c == _root.clip));
c.value = 1; with (c) { value = 2; _y = 7; newOne = 3; } trace(c.value + " " + c._y + " " + c.newOne + " " + newOne);
tellTarget ("clip") { value = 5; told = 6; } trace(c.value + " " + c.told + " " + told);
c.f = function() { return this._name + " " + value; }; var value = "root's"; trace(c.f());
c.onEnterFrame = function() { trace("frame of " + this + " " + (this === c)); delete this.onEnterFrame; };
// A missing clip is not an error.
gone._x = 5; gone.play(); trace(typeof gone + " <" + gone._x + ">");
tellTarget ("gone") { trace("reached " + _name); }
for (var k in c) { if (k == "f") trace("has " + k); }
