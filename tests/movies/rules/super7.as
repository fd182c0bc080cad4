// movie: version="7" rate="10"
// From version 7 on super starts above the class in which the method stands.
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
