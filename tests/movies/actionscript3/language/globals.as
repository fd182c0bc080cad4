// movie: version="10" rate="20"
var first:int = 1;
const kFixed:String = "fixed";
trace(first, kFixed, later);
var later:String = "late";
if (first) { var inside:int = 9; }
trace(inside);
function useGlobal():void { first = first + 41; }
useGlobal();
trace(first);
trace(parseInt("12px"), parseInt("ff", 16), parseFloat("3.5e2x"), isNaN(NaN), isFinite(1 / 0));
trace(escape("a b&c"), unescape("%41%20b"), encodeURIComponent("ж &"), decodeURIComponent("%D0%B6"), encodeURI("a b?c=d"));
try { kFixed = "other"; } catch (e:ReferenceError) { trace(e.errorID); }
try { trace(missing); } catch (e:ReferenceError) { trace(e.errorID); }
trace(this);
for each (var bad:String in ["%", "%4", "%E4", "%C0%80", "%D0%41", "%D0", "\uD800"]) {
    try { trace(bad.charAt(0) == "%" ? decodeURIComponent(bad) : encodeURI(bad)); } catch (e:URIError) { trace(e.message); }
}
trace(decodeURI("%2F%41%D1%8F%F0%9F%98%80").length);
try { var nothing:*; new nothing(); } catch (e:TypeError) { trace(e.errorID); }
