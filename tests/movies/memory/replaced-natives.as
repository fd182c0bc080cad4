// Scripts that make an object something else while one of its own functions runs: the function goes on with
// what it began with, and the object is what it was made last.

function churn() {
    var list = [];
    for (var i = 0; i < 200; i++) list.push({number: i, text: "text " + i});
    return list.length;
}

// `super()` runs the class's constructor on an object that has been constructed long ago.
function Clock() { super(2000, 1, 1); }
Clock.prototype = new Date();
Clock.prototype.again = function() { super(5); churn(); };
var clock = new Clock();
clock.setMonth({valueOf: function() { clock.again(); return 3; }});
trace(clock.getTime());
clock.setTime({valueOf: function() { clock.again(); return 8; }});
trace(clock.getTime());

var sound = new Sound();
sound.attachSound({toString: function() { Sound.call(sound); churn(); return "nothing"; }});
sound.setVolume({valueOf: function() { Sound.call(sound); churn(); return 40; }});
trace(sound.getVolume());
sound.setTransform({ll: {valueOf: function() { Sound.call(sound); churn(); return 10; }}, lr: 0, rr: 10, rl: 0});
trace(sound.getTransform().rr);

function Blur(x) { current = this; super(x, 7); }
Blur.prototype = new flash.filters.BlurFilter();
Blur.prototype.again = function() { super(1, 2); churn(); };
var blur = new Blur({valueOf: function() { current.again(); return 9; }});
trace(blur.blurX + " " + blur.blurY);

function Format(size) { current = this; super("font", size); }
Format.prototype = new TextFormat();
Format.prototype.again = function() { super("other", 30); churn(); };
var format = new Format({valueOf: function() { current.again(); return 9; }});
trace(format.font + " " + format.size);
format.leading = {valueOf: function() { current.again(); return 4; }};
trace(format.font + " " + format.leading);

function Tint() { current = this; super(1, 1, 1, 1, {valueOf: function() { current.again(); return 9; }}, 2, 3, 4); }
Tint.prototype = new flash.geom.ColorTransform();
Tint.prototype.again = function() { super(0, 0, 0, 0, 8, 8, 8, 8); churn(); };
trace(new Tint());

function Items() { super(1, 2, 3); }
Items.prototype = new Array();
Items.prototype.again = function() { super("a", "b"); churn(); };
var items = new Items();
items.push("x");
trace(items.join({toString: function() { items.again(); return "-"; }}));
trace(items);
