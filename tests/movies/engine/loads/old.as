// movie: version="6" rate="10"
trace("old code: " + (ANSWER == undefined) + " <" + nothing + "> " + (_parent.Mark == undefined) + " " + this);
function oldCode() { return "<" + nothing + ">"; }
stop();
