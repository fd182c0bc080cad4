// movie: version="6" rate="10"
mark = "loaded";
function where(how) { trace(how + ": " + mark + ", " + getProperty("", _target) + ", knows depths: " + (typeof getDepth)); }
thing = { toString: function() { return mark + " in " + getProperty("", _target); } };
where("written");
_root.loaded();
