// movie: version="7" rate="10"
// Whatever lies elsewhere is not read: each of these is refused, and looks like a file that is missing.
var wanted = ["../secret.txt", "..%2Fsecret.txt", "..\\secret.txt", "sub/../../secret.txt", "/etc/passwd",
  "file:///etc/passwd", "file://localhost/etc/passwd", "FILE:/etc/passwd", "/dev/zero", "/proc/self/environ",
  ".", "", "//server/share/x.txt", "C:\\boot.ini", "http://127.0.0.1:1/x", "https://127.0.0.1:1/",
  "ftp://127.0.0.1/", "javascript:alert(1)", "data:text/plain,x", "//127.0.0.1/x", "plain.txt"];
var at = 0;
function next() {
  var name = wanted[at++];
  if (name == undefined) return;
  var v = new LoadVars();
  v.onData = function(text) { trace(name + " " + (text == undefined ? "refused" : text)); next(); };
  v.load(name);
}
next();
var socket = new XMLSocket();
socket.onConnect = function(ok) { trace("socket " + ok); };
socket.connect("127.0.0.1", 80);
var picture = _root.createEmptyMovieClip("picture", 1);
picture.loadMovie("/usr/share/icons/hicolor/16x16/apps/x.png");
var sound = new Sound();
sound.onLoad = function(ok) { trace("sound " + ok); };
sound.loadSound("../../x.mp3", false);
var connection = new NetConnection();
trace(connection.connect("rtmp://127.0.0.1/x"));
