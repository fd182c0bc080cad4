// movie: version="10" rate="20"
// Connections within the movie work, those to servers fail in time, and sockets are refused.
import flash.events.*;
import flash.net.*;
var inbox:LocalConnection = new LocalConnection(), outbox:LocalConnection = new LocalConnection();
inbox.client = {hello: function(a:int, b:Object):void { trace("hello", a, b.x); }};
inbox.connect("here");
try { new LocalConnection().connect("here"); } catch (e:ArgumentError) { trace(e.errorID); }
outbox.addEventListener("status", function(e:StatusEvent):void { trace(e.level); });
outbox.send("here", "hello", 5, {x: 7});
outbox.send("nowhere", "hello");
trace("sent");
var connection:NetConnection = new NetConnection();
connection.addEventListener("netStatus", function(e:NetStatusEvent):void { trace(e.info.level, e.info.code); });
connection.connect(null); trace(connection.connected);
connection.close(); trace(connection.connected);
connection.connect("rtmp://example.com/x");
var socket:Socket = new Socket();
socket.addEventListener("securityError", function(e:SecurityErrorEvent):void { trace(e.type, socket.connected); });
socket.connect("example.com", 80);
try { socket.writeByte(1); } catch (e:Error) { trace(e.errorID); }
var shared:SharedObject = SharedObject.getLocal("scores");
shared.data.best = [1, 2, {n: "x"}];
trace(shared.size > 0, shared.flush(), SharedObject.getLocal("scores") === shared);
try { SharedObject.getLocal("a b"); } catch (e:Error) { trace(e.errorID); }
