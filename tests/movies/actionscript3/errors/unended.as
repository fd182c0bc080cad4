// movie: version="10" rate="20"
var x:XML = <a><b></b>;
