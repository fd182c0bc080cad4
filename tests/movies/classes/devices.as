// movie: version="8" rate="10"
// What is missing says so, and breaks no movie that asks.
var connection = new LocalConnection();
trace(connection.connect("mine") + " " + connection.connect() + " " + connection.send("other", "f") + " " + connection.domain());
trace(Microphone.get() + " " + typeof new Microphone().setGain);
trace(PrintJob.prototype.hasOwnProperty("pageWidth"));
var job = new PrintJob();
trace(PrintJob.prototype.hasOwnProperty("pageWidth") + " " + job.start() + " " + job.pageWidth);
trace(Accessibility.isActive());

// Key and Mouse are constants, and still tell their listeners.
Key.addListener = 1; Key.ENTER = 2; delete Key.getCode; Mouse.show = 3;
trace(typeof Key.addListener + " " + Key.ENTER + " " + typeof Key.getCode + " " + typeof Mouse.show);
var names = ""; for (var name in Key) names += name; for (var name in Mouse) names += name;
trace("[" + names + "]");
var ear = {onKeyDown: function(what) { trace("heard " + what); }};
Key.addListener(ear); Key.broadcastMessage("onKeyDown", "it"); Key.removeListener(ear); Key.broadcastMessage("onKeyDown", "more");
trace((Key.broadcastMessage == Mouse.broadcastMessage) + " " + (Key.addListener == Mouse.addListener));

// What nodes of XML have shows in loops.
names = ""; for (var name in new XML("<a/>").firstChild) names += (names == "" ? "" : ",") + name;
trace(names.indexOf("nodeName") >= 0);
