// movie: version="10" rate="20"
var r:RegExp = /abc
;
