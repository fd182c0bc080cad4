// movie: version="10" rate="20"
var d:Date = new Date(2009, 1, 28, 23, 59, 59, 999);
d.date += 1;
trace(d.fullYear, d.month, d.date, d.hours, d.getMilliseconds());
trace(Date.UTC(1970, 0, 2), new Date(0).getUTCDay(), new Date(86400000).dateUTC);
var u:Date = new Date(Date.UTC(2000, 0, 31));
u.setUTCMonth(1); trace(u.monthUTC, u.dateUTC);
u.setTime(0); trace(u.time, u.valueOf(), u - 5);
trace(isNaN(new Date(NaN).time), new Date(NaN));
trace(new Date(2010, 0) > new Date(2009, 0), typeof new Date(), new Date(5).getTime() == 5);
