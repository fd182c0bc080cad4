// movie: version="10" rate="20"
trace(0x1F, 010, 1e3, .5, 5., 1.5e-3, 4294967295, 2147483648);
trace("tab\tx", 'it\'s', "\x41\u0416", "a\
b".length);
trace([1, , 3].length, [].length, [1, 2,].length);
var o:Object = {plain: 1, "quoted": 2, 3: "three"};
trace(o.plain, o.quoted, o[3], o["3"]);
trace(null, undefined, true, NaN, -Infinity);
trace(-0 === 0, 1 / -0);
trace("\ud83d\ude00".length);
