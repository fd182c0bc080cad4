// movie: version="8" rate="12"
// Objects of one movie that talk to each other by name.
function listening(name) {
    var made = new LocalConnection();
    made.onStatus = function(info) { trace(name + " hears " + info.level); };
    return made;
}
var receiver = listening("receiver"), sender = listening("sender");
trace(receiver.domain());
trace(receiver.connect());
trace(receiver.connect("") + " " + receiver.connect("a:b"));
trace(receiver.connect("Room") + " " + receiver.connect("again") + " " + sender.connect("room"));
receiver.say = function(what, list, object) {
    trace("said " + what + ", " + list.length + " " + list[1] + ", " + object.a.b + " " + typeof(object.f));
    list.push(3);
};
receiver.forget = function() { trace("forget: " + arguments.length + " " + arguments[0] + " " + arguments[1]); };
var list = [1, 2];
trace(sender.send("ROOM", "say", "hello", list, {a: {b: "deep"}, f: trace}));
trace(sender.send("room", "forget", this, trace));
trace(sender.send("nowhere", "say", 1));
trace(sender.send("room", "send", 1) + " " + sender.send("room", "onStatus") + " " + sender.send("", "x") + " " + sender.send("room"));
list[1] = "changed later";
trace("script ends");
var turn = 0;
this.onEnterFrame = function() {
    switch (++turn) {
    case 1:
        trace(list.length);
        receiver.close();
        trace(sender.connect("room"));
        trace(receiver.send("room", "greet"));
        sender.greet = function() { trace("greeted"); this.close(); };
        break;
    case 2:
        trace(receiver.send("room", "greet"));
        break;
    case 3:
        trace(receiver.connect("room"));
        fscommand("quit");
    }
};
