// movie: version="8" rate="10"
// A mark says what a loaded file is written in, whatever the scripts say of files without one.
System.useCodepage = false;
function next(name) {
  var at = name + ": ";
  var v = new LoadVars();
  v.onLoad = function(ok) { trace(at + ok + " " + this.name + " " + this.word + " " + this.far); };
  v.load(name + ".vars");
  var raw = new LoadVars();
  raw.onData = function(text) { trace(at + text.length + " " + text.indexOf("name")); };
  raw.load(name + ".vars");
  var x = new XML();
  x.onLoad = function(ok) { trace(at + ok + " " + this.status + " " + this + " " + this.firstChild.attributes.b); };
  x.load(name + ".markup");
  var s = new TextField.StyleSheet();
  s.onLoad = function(ok) { trace(at + ok + " " + this.getStyleNames() + " " + this.getStyle(".Имя").color); };
  s.load(name + ".css");
  var c = _root.createEmptyMovieClip(name, ++_root.depth);
  c.onData = function() { trace(at + this.name + " " + this.word + " " + this.far); };
  c.loadVariables(name + ".vars");
}
var depth = 0;
next("utf16le"); next("utf16be"); next("utf8mark");
