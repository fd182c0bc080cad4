// movie: version="15" rate="20"
// What belongs to services that are not there, or not for movies: present, and refused as scripts expect it.
import flash.accessibility.*;
import flash.desktop.*;
import flash.events.*;
import flash.media.*;
import flash.net.*;
import flash.system.*;
import flash.text.engine.*;
import flash.ui.*;
import flash.utils.*;

function failing(what:Function):void { try { trace("no error", what()); } catch (e:Error) { trace(e); } }

trace("-- devices");
trace(Camera.getCamera(), Camera.names.length, Camera.isSupported, Microphone.getMicrophone(), Microphone.names.length);
failing(function():* { return new Camera(); });
failing(function():* { return new Microphone(); });
trace("-- input methods and the clipboard");
trace(IME.enabled, IME.conversionMode, System.ime, Capabilities.hasIME);
failing(function():* { IME.enabled = true; });
failing(function():* { IME.setCompositionString("x"); });
var board:Clipboard = Clipboard.generalClipboard;
trace(board == Clipboard.generalClipboard, board.formats.length, board.hasFormat(ClipboardFormats.TEXT_FORMAT), board.getData("air:text"));
failing(function():* { return board.setData(ClipboardFormats.TEXT_FORMAT, "x"); });
failing(function():* { board.clear(); });
failing(function():* { return new Clipboard(); });
trace("-- the mouse");
trace(Mouse.cursor, Mouse.supportsCursor); Mouse.cursor = MouseCursor.HAND; trace(Mouse.cursor);
failing(function():* { Mouse.cursor = "fist"; });
failing(function():* { Mouse.cursor = null; });
trace(Mouse.cursor); Mouse.cursor = MouseCursor.AUTO;
trace("-- connections and streams");
var connection:NetConnection = new NetConnection();
failing(function():* { return connection.nearID; });
failing(function():* { return connection.protocol; });
failing(function():* { return new NetStream(connection); });
connection.connect(null);
var stream:NetStream = new NetStream(connection);
trace(connection.protocol, connection.nearID == "", connection.maxPeerConnections, connection.unconnectedPeerStreams.length);
trace(stream.bufferLength, stream.bufferTimeMax, stream.backBufferTime, stream.inBufferSeek, stream.info is NetStreamInfo, stream.info.byteCount, stream.peerStreams.length);
trace(stream.info, NetStream.CONNECT_TO_FMS);
failing(function():* { stream.play2(null); });
var url:URLStream = new URLStream();
trace(url.length, url.position, url.diskCacheEnabled, url.connected); url.stop();
failing(function():* { url.close(); });
trace("-- accessibility");
var helper:AccessibilityImplementation = new AccessibilityImplementation();
trace(helper.stub, helper.errno, helper.get_accRole(0), helper.get_accName(0), helper.getChildIDArray(), Accessibility.active);
trace("-- events");
var swipe:TransformGestureEvent = new TransformGestureEvent(TransformGestureEvent.GESTURE_SWIPE, true, false, "end", 1, 2, 1, 1, 0, -1);
trace(swipe.type, swipe.bubbles, swipe.phase, swipe.localY, swipe.scaleX, swipe.offsetX);
trace(new IMEEvent(IMEEvent.IME_COMPOSITION, false, false, "x").text);
trace("-- what is told of lines");
trace(describeType(TextBlock).factory.method.(@name == "createTextLine").parameter.@type.toXMLString().split("\n"));
failing(function():* { return new ElementFormat(1 as Object); });
