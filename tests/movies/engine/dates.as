// movie: version="8" rate="10"
// The movie's clock starts at the given date and moves with its frames.
var now = new Date();
trace(now.getFullYear() + "-" + (now.getMonth() + 1) + "-" + now.getDate() + " " + now.getHours() + ":" + now.getMinutes() + ":" + now.getSeconds() + " day " + now.getDay());
trace(now.getYear() + " " + now.getTimezoneOffset());
var d = new Date(2005, 0, 31, 12, 30, 15, 250);
trace(d.getTime() + " " + d);
d.setMonth(1); trace(d.getMonth() + " " + d.getDate());
trace(d.setDate(0) + " " + d.getDate() + " " + d.getMonth());
trace(new Date(2004, 1, 30).getDate() + " " + new Date(99, 0).getFullYear() + " " + new Date(2000, 12, 1).getFullYear() + " " + new Date(2001, 0, 0).getDate());
trace(Date.UTC(1970, 0, 2) + " " + Date.UTC(2000, 1, 29, 1, 2, 3, 4));
d = new Date(0); trace(d.getUTCFullYear() + " " + d.getUTCDay() + " " + d.getUTCHours() + " " + d.valueOf());
d = new Date(-1); trace(d.getFullYear() + " " + d.getMilliseconds() + " " + d.getSeconds());
d.setTime(1e12); trace(d.getFullYear() + "." + d.getMonth() + "." + d.getDate() + " " + d.getUTCMinutes());
d.setFullYear(2010, 5, 15); trace(d.getFullYear() + "." + d.getMonth() + "." + d.getDate());
d.setHours(25, 61, 61, 1001); trace(d.getDate() + " " + d.getHours() + ":" + d.getMinutes() + ":" + d.getSeconds() + "." + d.getMilliseconds());
d.setYear(99); trace(d.getFullYear()); d.setYear(2020); trace(d.getYear());
trace(isNaN(new Date(NaN).getTime()) + " " + (new Date(2000, 0, 1) < new Date(2000, 0, 2)) + " " + (new Date(500) - new Date(200)));
trace(typeof Date() + " " + (new Date(5).getTime() == new Date(5).getTime()) + " " + (new Date(5) == new Date(5)));
var start = getTimer(), frames = 0, first = now.getTime();
onEnterFrame = function() {
  if (++frames == 20) {
    trace((getTimer() - start) + " " + (new Date().getTime() - first));
    trace(new Date().getDate() + " " + new Date().getMonth());
    onEnterFrame = null;
  }
};
