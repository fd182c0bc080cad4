// movie: version="8" rate="10"
// Dates of too little and of too much.
trace(Date.UTC(1983, undefined));
trace(Date.UTC(1983, "x"));
trace(Date.UTC(1983, Infinity, 25));
trace(Date.UTC(1983, 5, Infinity));
trace(new Date(1983, undefined).getTime());
trace(new Date(Infinity).getTime() + " " + new Date(Infinity).getUTCDay());
trace(new Date(3.0935415006117e+23).getUTCMilliseconds());
trace(new Date(-0.5).getUTCHours() + ":" + new Date(-0.5).getUTCMinutes() + "." + new Date(-0.5).getUTCMilliseconds());
trace(new Date(-1).getUTCHours() + " " + new Date(-1).getUTCMilliseconds());
trace(new Date(0).setYear(-271823));
trace(new Date(0).setYear(NaN) + " " + new Date(0).setYear(undefined) + " " + new Date(0).setYear(0));
trace(new Date(NaN).setYear(1983) + " " + new Date(NaN).setFullYear(1983));
trace(new Date(0).setMonth(3000000000) + " " + new Date(0).setDate(100000000) + " " + new Date(0).setDate(200000000));
fscommand("quit");
