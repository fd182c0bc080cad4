// movie: version="8" rate="10"
// Addresses are for the host; nothing is opened by a run without one, and the script goes on.
getURL("http://example.invalid/", "_blank"); getURL("javascript:alert(1)"); getURL("file:///etc/passwd", "_self", "POST");
fscommand("fullscreen", "true"); fscommand("exec", "calc"); fscommand("unknown", "x"); getURL("FSCommand:allowscale", "false");
trace("still here");
trace(Stage.scaleMode + " <" + Stage.align + "> " + Stage.showMenu);
Stage.scaleMode = "noScale"; Stage.align = "tl"; trace(Stage.scaleMode + " " + Stage.align); Stage.scaleMode = "odd"; trace(Stage.scaleMode);
trace(ASSetPropFlags + " " + typeof ASnative + " " + typeof Mouse.hide + " " + Mouse.show());
// quit ends the run: there is no second of these frames.
onEnterFrame = function() { trace("quitting"); fscommand("QUIT"); };

