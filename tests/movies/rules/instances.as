// movie: version="8" rate="10"
// Instances are known by their paths: two of one name are one.
this.createEmptyMovieClip("twin", 1);
this.createEmptyMovieClip("other", 2);
var first = this.getInstanceAtDepth(1);
var second = this.getInstanceAtDepth(2);
trace(first == second);
trace(first === second);
second._name = "twin";
trace(first === second);
trace(first == second);

// A text that leads nowhere hits nothing.
first.lineStyle(2);
first.lineTo(50, 50);
trace(first.hitTest("/") + " " + first.hitTest(""));

// What is no place in the order is, until there is one, a property like others.
first.tabIndex = "none";
trace(first.tabIndex);
var third = this.createEmptyMovieClip("third", 3);
third.tabIndex = 4;
third.tabIndex = "none";
trace(third.tabIndex);

// A connection that was open is closed first; a server is asked at the first call only.
var nc = new NetConnection();
nc.onStatus = function (info) { trace(info.code); };
nc.close();
nc.connect(null);
nc.connect(null);
nc.close();
nc.close();
trace(nc.connect("http://example.com") + " " + nc.isConnected);
nc.close();
trace(nc.connect("rtmp://example.com") + " " + nc.isConnected);
nc.close();
// A handler that connects anew.
var times = 0;
nc.onStatus = function (info) { trace(info.code); if (times++ < 2) nc.connect(null); };
nc.connect(null);
fscommand("quit");
