// movie: version="7" rate="10"
// An array may say that it is long; working on what is not there is refused.
var a = new Array(1000000000);
trace(a.length);
a[5] = 1;
a.length = 2000000000;
trace(a.length + " " + a[5]);
a.push(2);
trace(a.length);
a.reverse();
trace("end");
