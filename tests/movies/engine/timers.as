// movie: version="8" rate="10"
var order = [], start = getTimer();
function note(text) { order.push(text + "@" + (getTimer() - start)); }
var fast = setInterval(function() { note("fast"); if (++times == 3) clearInterval(fast); }, 40);
var times = 0;
var owner = {name: "owner", run: function(a, b) { note(this.name + a + b); clearInterval(slow); }};
var slow = setInterval(owner, "run", 250, "A", "B");
setInterval(missing, 10);
trace(typeof fast + " " + (slow > fast) + " " + setInterval() + " " + setInterval(5, 10));
clearInterval(999); clearInterval();
var once = setTimeout(function(v) { note("once" + v); }, 130, 1);
var never = setTimeout(function() { note("never"); }, 60); clearTimeout(never);
// An interval that stops itself and another from inside.
var a = setInterval(function() { note("a"); clearInterval(a); clearInterval(b); }, 300), b = setInterval(function() { note("b"); }, 301);
onEnterFrame = function() { if (getTimer() - start >= 900) { trace(order.join("\n")); onEnterFrame = null; } };
