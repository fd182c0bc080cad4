// movie: version="5" rate="10"
// Version 5 asks both objects, the right one first. A clip that comes out has the other one asked once more.
function thing(name, answer) { this.name = name; this.answer = answer; }
thing.prototype.valueOf = function() { trace(this.name); return this.answer; };
function self(name) { this.name = name; }
self.prototype.valueOf = function() { trace(this.name); return this; };
trace(new self("a") == new thing("clip", _root));
trace(new thing("clip", _root) == new self("a"));
trace(new self("a") == new self("b"));
trace(new thing("clip", _root) == new thing("clip too", _root));
trace(new self("a") == new thing("one", 1));
