// movie: version="6" rate="10"
// To version 6 a method is one of the object's own class: super starts above that, wherever the method stands.
function A() {} function B() {} function C() {}
B.prototype = {__proto__: A.prototype}; C.prototype = {__proto__: B.prototype};
A.prototype.who = function() { return "A"; };
B.prototype.who = function() { return "B<" + super.who(); };
C.prototype.who = function() { return "C<" + super.who(); };
B.prototype.ask = function() { return super.who(); };
var c = new C();
trace(c.who() + " " + c.ask());
c.who = function() { return "own<" + super.who(); };
trace(c.who() + " " + c.who.call(c));
