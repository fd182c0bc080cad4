// movie: version="8" rate="10"
// What of the library is written in script has a prototype of its own; what is native has none.
function written(path) {
    var object = _global;
    var steps = path.split(".");
    for (var i = 0; i < steps.length; i++) object = object[steps[i]];
    trace(path + ": " + typeof(object) + (object.hasOwnProperty("prototype") ? " script" : " native"));
}
var paths = ["AsBroadcaster.addListener", "AsBroadcaster.broadcastMessage", "AsSetupError", "Error.prototype.toString",
             "SharedObject.getLocal", "SharedObject.prototype.flush", "TextField.StyleSheet.prototype.setStyle",
             "TextField.StyleSheet.prototype.parseColor", "XMLSocket.prototype.onData", "XMLSocket.prototype.connect",
             "Camera.get", "Camera.prototype.setMode", "System.Product.prototype.launch", "System.IME.setEnabled",
             "flash.external.ExternalInterface.call", "flash.external.ExternalInterface._escapeXML",
             "flash.net.FileReference.prototype.browse", "flash.geom.ColorTransform.prototype.toString",
             "Sound.prototype.setDuration", "ContextMenu.prototype.copy"];
for (var i = 0; i < paths.length; i++) written(paths[i]);
// A color and all that it had when it was made are constant.
var color = new Color(this);
color.target = 1; color.added = 2;
trace(color.target + " " + color.added);
// The whole list is read when the class is asked for: nothing was in the way of replacing a part.
AsBroadcaster.addListener = function () { trace("mine"); };
var caster = {}; AsBroadcaster.initialize(caster); caster.addListener({});
// Texts for pages and their way back.
trace(flash.external.ExternalInterface._escapeXML("<a b='\"&'>"));
trace(flash.external.ExternalInterface._unescapeXML("&lt;&amp;lt;&nbsp;"));
trace(flash.external.ExternalInterface._escapeXML() + " " + flash.external.ExternalInterface._toXML("b<"));
// Without a server the answer comes, and is no.
var socket = new XMLSocket();
socket.onConnect = function (success) { trace("connected: " + success); };
trace(socket.connect("localhost", 1024));
