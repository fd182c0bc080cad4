// movie: version="10" rate="20"
import flash.net.*;
var v:URLVariables = new URLVariables("a=1&b=x%20y&a=2+3&%D1%8F=%26");
trace(v.a, v.a is Array, v.b, v["\u044F"]);
var w:URLVariables = new URLVariables(); w.q = "a=b&c"; trace(w);
w = new URLVariables(); w.list = ["1", "2"]; trace(w);
try { w.decode("novalue"); } catch (e:Error) { trace(e.errorID); }
var r:URLRequest = new URLRequest("here.txt");
trace(r.method, r.contentType, r.data, r.requestHeaders.length);
r.method = "post"; trace(r.method);
try { r.method = "PUT"; } catch (e:ArgumentError) { trace(e.errorID, r.method); }
try { new URLLoader().load(null); } catch (e:TypeError) { trace(e.errorID); }
