// The moving part of the test card: counters, clock, and what mouse and keys bring.

var count = 0, measuredFrom = getTimer(), measured = 0, perSecond = "—";
var names = {};
names[Key.LEFT] = "←"; names[Key.RIGHT] = "→"; names[Key.UP] = "↑"; names[Key.DOWN] = "↓";
names[Key.SPACE] = "пробел"; names[Key.ENTER] = "Enter"; names[Key.TAB] = "Tab"; names[Key.ESCAPE] = "Esc";
names[Key.SHIFT] = "Shift"; names[Key.CONTROL] = "Ctrl";

function two(n) { return n < 10 ? "0" + n : "" + n; }

onEnterFrame = function() {
  var now = getTimer();
  count++;
  if (now - measuredFrom >= 1000) {
    perSecond = Math.round((count - measured) * 10000 / (now - measuredFrom)) / 10;
    measured = count;
    measuredFrom = now;
  }
  var date = new Date();
  frames.text = "кадр    " + count;
  seconds.text = "секунды " + Math.floor(now / 1000) + "." + Math.floor(now % 1000 / 100);
  rate.text = "к/с     " + perSecond;
  clock.text = "часы    " + two(date.getHours()) + ":" + two(date.getMinutes()) + ":" + two(date.getSeconds());
  mouse.text = "место   " + Math.round(_xmouse) + ", " + Math.round(_ymouse);
};

wheel.text = "колесо  0";
keys.text = "клавиша —";
typed.text = "знак    —";

var turned = 0;
var mouseEcho = {
  onMouseDown: function() { light(true); trace("down"); },
  onMouseUp: function() { light(false); trace("up"); },
  onMouseWheel: function(delta) { turned += delta; wheel.text = "колесо  " + turned; trace("wheel " + turned); }
};
Mouse.addListener(mouseEcho);

function light(on) {
  var color = new Color(button);
  color.setTransform(on ? {ra: 0, rb: 242, ga: 0, gb: 169, ba: 0, bb: 59} : {ra: 100, rb: 0, ga: 100, gb: 0, ba: 100, bb: 0});
}

var keyEcho = {
  onKeyDown: function() {
    var code = Key.getCode(), name = names[code];
    keys.text = "клавиша " + code + (name == undefined ? "" : " " + name);
    typed.text = "знак    " + (Key.getAscii() >= 32 ? String.fromCharCode(Key.getAscii()) : "—");
    trace("key " + code);
  }
};
Key.addListener(keyEcho);
