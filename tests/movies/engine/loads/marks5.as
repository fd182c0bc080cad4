// movie: version="5" rate="10"
// A movie before version 6 reads files in its 8-bit code, but for those with a mark.
x = new XML();
y = new XML();
x.onLoad = function(ok) {
  trace(ok + " " + x.firstChild.attributes.b);
  loadVariables("utf8mark.vars", _root);
  y.load("utf8mark.markup");
};
y.onLoad = function(ok) { trace(ok + " " + y.firstChild.attributes.b + " " + name + " " + word); };
x.load("utf16le.markup");
