// movie: version="10" rate="20"
import flash.net.NetConnection;
import flash.net.SharedObject;
// What was kept the last time comes first; the second time it is there, in the form it was written in.
var so:SharedObject = SharedObject.getLocal("old"), newer:SharedObject = SharedObject.getLocal("new");
trace(so.objectEncoding, so.data.list, so.data.same == so.data.list, newer.objectEncoding, newer.data.text);
SharedObject.defaultObjectEncoding = 0;
trace(SharedObject.defaultObjectEncoding, SharedObject.getLocal("third").objectEncoding);
try { SharedObject.defaultObjectEncoding = 2; } catch (e:ArgumentError) { trace(e.errorID); }
so.objectEncoding = 0; so.data.list = [1, "two", {three: 3}]; so.data.same = so.data.list;
newer.data.text = "kept";
NetConnection.defaultObjectEncoding = 0;
trace(new NetConnection().objectEncoding, SharedObject.defaultObjectEncoding);
trace(so.flush(), newer.flush());
