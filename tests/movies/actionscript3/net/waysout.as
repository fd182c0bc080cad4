// movie: version="10" rate="20" width="100" height="100"
// Nothing but what lies beside the movie is read, and what leaves the player is asked of its host, once for each.
import flash.display.*;
import flash.events.*;
import flash.external.ExternalInterface;
import flash.media.*;
import flash.net.*;
import flash.system.*;
import flash.utils.*;

var places:Array = ["http://example.com/a.txt", "https://example.com/a.txt", "ftp://example.com/a", "/etc/passwd", "file:///etc/passwd",
    "../guest.txt", "..\\guest.txt", "%2e%2e/guest.txt", "//server/share/a.txt", "\\\\server\\share\\a.txt", "C:\\a.txt", "data:text/plain,abc",
    "inner/../../guest.txt", "/dev/zero", "file://server/etc/passwd"];
var told:Array = [], pending:Array = [];
function hear(target:EventDispatcher, what:String):void {
    pending.push(target);
    for each (var type:String in ["complete", "open", "init", "socketData", "connect", "data", "ioError", "securityError", "netStatus", "asyncError"])
        target.addEventListener(type, function(e:Event):void { told.push(what + " " + e.type + (e is NetStatusEvent ? " " + NetStatusEvent(e).info.code : "")); });
}
function attempt(what:String, work:Function):void { try { work(); } catch (e:Error) { told.push(what + " refused " + e.errorID); } }

var connection:NetConnection = new NetConnection(); connection.connect(null);
for each (var place:String in places) {
    var request:URLRequest = new URLRequest(place);
    for each (var cls:Class in [URLLoader, URLStream, Sound]) {
        var loading:* = new cls(), name:String = getQualifiedClassName(cls).split("::")[1] + " " + place;
        hear(loading, name);
        attempt(name, function():void { loading.load(request); });
    }
    var loader:Loader = new Loader();
    hear(loader.contentLoaderInfo, "Loader " + place);
    attempt("Loader " + place, function():void { loader.load(request); });
    var stream:NetStream = new NetStream(connection);
    hear(stream, "NetStream " + place);
    attempt("NetStream " + place, function():void { stream.play(place); });
}
var socket:Socket = new Socket(); hear(socket, "Socket"); attempt("Socket", function():void { socket.connect("127.0.0.1", 80); });
var xml:XMLSocket = new XMLSocket(); hear(xml, "XMLSocket"); attempt("XMLSocket", function():void { xml.connect("localhost", 8080); });
var remote:NetConnection = new NetConnection(); hear(remote, "NetConnection"); attempt("NetConnection", function():void { remote.connect("rtmp://example.com/app"); });
attempt("ExternalInterface", function():void { ExternalInterface.call("alert", "x"); });
var file:FileReference = new FileReference();
file.addEventListener("cancel", function(e:Event):void { told.push("FileReference " + e.type); });
file.addEventListener("select", function(e:Event):void { told.push("FileReference " + e.type); });
attempt("FileReference", function():void { file.browse(); });
attempt("FileReference", function():void { file.download(new URLRequest("http://example.com/a")); });
attempt("FileReference", function():void { file.save("text", "a.txt"); });
attempt("FileReference", function():void { file.upload(new URLRequest("http://example.com/a")); });
navigateToURL(new URLRequest("http://example.com/page"), "_blank");
sendToURL(new URLRequest("http://example.com/sent"));
navigateToURL(new URLRequest("javascript:alert(1)"));
fscommand("exec", "calc.exe");

var inside:URLLoader = new URLLoader();
inside.addEventListener("complete", function(e:Event):void {
    trace("inside: " + inside.data.length);
    setTimeout(function():void {
        var counts:Object = {}, keys:Array = [];
        for each (var line:String in told) {
            var parts:Array = line.split(" "), place:String = parts.length > 2 && places.indexOf(parts[1]) >= 0 ? parts.splice(1, 1)[0] : "";
            var key:String = parts.join(" ");
            if (!counts[key]) { keys.push(key); counts[key] = 0; }
            ++counts[key];
        }
        for each (key in keys.sort()) trace(key + ": " + counts[key]);
    }, 500);
});
inside.load(new URLRequest("guest.txt"));
