// movie: version="8" rate="10"
var x = new XML(); x.ignoreWhite = true;
x.onLoad = function(ok) {
  trace("loaded " + ok + " " + this.loaded + " " + this.status);
  trace(this.firstChild.nodeName + " " + this.firstChild.childNodes.length + " " + this.firstChild.firstChild.attributes.name);
};
trace(x.load("list.xml.txt") + " " + x.loaded);
var text = new XML(); text.onData = function(source) { trace("raw " + source); }; text.load("plain.txt");
var gone = new XML(); gone.onLoad = function(ok) { trace("missing " + ok); }; gone.load("missing.xml");
