// What differs with the version of the movie, and what must not.
Mixed = 1; trace("case " + (mixed == 1));
trace("undefined in text <" + ("" + nothing) + ">");
trace("undefined as number " + Number(nothing) + " " + (nothing + 1));
trace("null as number " + Number(null));
trace("isNaN " + isNaN(nothing));
trace("text as condition " + Boolean("0") + " " + Boolean("1") + " " + Boolean("abc") + " " + Boolean(""));
trace(nothing);
trace("hexadecimal " + Number("0x1F"));
trace("empty " + isNaN(Number("")) + " " + isNaN(Number("1x")) + " " + Number("1e3"));
trace("members " + nothing.deep.er + " " + nothing.call());
trace("equal " + (nothing == null) + " " + (1 == "1") + " " + (true == 1) + " " + ("a" == "A"));
trace("less " + ("10" < "9") + " " + (10 < "9") + " " + ("B" < "a"));
trace("types " + typeof 1 + " " + typeof "" + " " + typeof true + " " + typeof null + " " + typeof nothing +
      " " + typeof {} + " " + typeof this + " " + typeof trace2 + " " + typeof function() {});
function f() { local = 5; var own = 6; }
f(); trace("scope " + local + " " + typeof own);
var list = [1, , 3]; trace("list " + list.length + " " + typeof list[1]);
trace("division " + 1 / 0 + " " + -1 / 0 + " " + 0 / 0 + " " + 7 % 3 + " " + -7 % 3 + " " + 5.5 % 2);
trace("bits " + (1 << 31) + " " + (-1 >>> 28) + " " + (-8 >> 1) + " " + (~5) + " " + (6 & 3 | 8 ^ 1) + " " + (4294967297 | 0));
trace("objects " + {} + " " + this); trace(f);
