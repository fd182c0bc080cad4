// movie: version="8" rate="12" width="100" height="80"
// A movie that no window holds has the screen for its stage in full screen, as far as it is told of sizes.
Stage.addListener({onResize: function() { trace("resize " + Stage.width + "x" + Stage.height); },
                   onFullScreen: function(on) { trace("full " + on + " " + Stage.width + "x" + Stage.height); }});
trace(Stage.displayState);
Stage.displayState = "fullScreen";
trace(Stage.displayState);
Stage.scaleMode = "noScale";
Stage.displayState = "sideways";
Stage.displayState = "NORMAL";
trace(Stage.displayState);
Stage.displayState = "fullscreen";
Stage.scaleMode = "showAll";
Stage.displayState = "normal";
