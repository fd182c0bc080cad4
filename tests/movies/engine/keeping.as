// movie: version="8" rate="10"
// The second run finds what the first one left, flushed or not.
var flushed = SharedObject.getLocal("flushed"), left = SharedObject.getLocal("left"), gone = SharedObject.getLocal("gone");
if (flushed.data.runs == undefined) {
  flushed.data.runs = 1;
  flushed.data.when = new Date(86400000);
  flushed.data.tree = new XML("<a b='1'>c</a>");
  flushed.data.list = ["x", , {deep: [true, null]}];
  flushed.data.list.named = 0.1;
  flushed.data.self = {runs: 1}; flushed.data.self.self = flushed.data.self;
  flushed.data.boxed = new String("text");
  flushed.data.method = function() {};
  flushed.data.clip = this;
  flushed.data.long = "";
  for (var i = 0; i < 7000; i++) flushed.data.long += "0123456789";
  trace(flushed.flush() + " " + (flushed.getSize() > 70000));
  left.data.name = "\u0418\u043C\u044F";
  gone.data.x = 1; gone.flush(); gone.clear();
} else {
  var d = flushed.data, names = "";
  for (var name in d) names = name + " " + names;
  trace(names);
  trace(d.runs + " " + d.when.getTime() + " " + d.tree.firstChild.attributes.b + d.tree.firstChild.firstChild.nodeValue);
  trace(d.list.length + " " + d.list[0] + " " + d.list[2].deep[0] + " " + d.list[2].deep[1] + " " + d.list.named + " " + (d.list instanceof Array));
  trace((d.self.self === d.self) + " " + typeof d.boxed + " " + d.long.length);
  trace(left.data.name + " " + gone.data.x);
  // More than the quota is refused and changes nothing.
  left.data.huge = d.long + d.long;
  trace(left.flush());
}
