// What the host tells a page stands in the query of its address. It is read from the address itself, not from the
// variables that the player makes of it: the host writes a text as windows-1251 codes in escapes of its own, which are
// UTF-8 for the letters from А to я only.
//   0 to 64     "%" and the code in one or two hexadecimal digits
//   128 to 239  "%D0%" and the code less 48
//   240 to 255  "%D1%" and the code less 112
// Each can be told from the others: two digits begin with 1 to 4, and D0 and D1 are always followed by another escape.

// Codes 128 to 191 of windows-1251; those after them are the letters from А to я. There is no code 152.
var upperHalf = "ЂЃ‚ѓ„…†‡€‰Љ‹ЊЌЋЏђ‘’“”•–— ™љ›њќћџ" + "\u00A0ЎўЈ¤Ґ¦§Ё©Є«¬\u00AD®Ї°±Ііґµ¶·ё№є»јЅѕї";

function letterOf(code) {
  if (code >= 192) return String.fromCharCode(code - 192 + 0x410);
  if (code >= 128) return upperHalf.charAt(code - 128);
  return code == 0 ? "" : String.fromCharCode(code);
}

function decoded(text) {
  var parts = text.split("%"), result = parts[0];
  for (var i = 1; i < parts.length; i++) {
    var part = parts[i], code = NaN, length = 2;
    if ((part == "D0" || part == "D1") && i + 1 < parts.length) {
      i++;
      code = parseInt(parts[i].substr(0, 2), 16) + (part == "D0" ? 48 : 112);
      part = parts[i];
    } else {
      code = part.charAt(0) >= "1" && part.charAt(0) <= "4" ? parseInt(part.substr(0, 2), 16) : NaN;
      if (isNaN(code) || !isHex(part.charAt(1))) {
        length = 1;
        code = parseInt(part.charAt(0), 16);
      }
    }
    if (isNaN(code) || code > 255) result += "%" + part;
    else result += letterOf(code) + part.substr(length);
  }
  return result;
}

function isHex(digit) { return digit.length == 1 && "0123456789ABCDEF".indexOf(digit) >= 0; }

// The parameters by name, decoded; those that are missing are missing here.
function queryOf(url) {
  var query = {}, mark = url.indexOf("?");
  if (mark < 0) return query;
  var pairs = url.substr(mark + 1).split("&");
  for (var i = 0; i < pairs.length; i++) {
    var equals = pairs[i].indexOf("=");
    if (equals > 0) query[pairs[i].substr(0, equals)] = decoded(pairs[i].substr(equals + 1));
  }
  return query;
}

function given(text) { return text == undefined ? "" : text; }

// Whether the fonts of the pages have all letters of a text.
function isCovered(text) {
  for (var i = 0; i < text.length; i++) {
    var code = text.charCodeAt(i);
    var known = code < 127 || (code >= 0x410 && code <= 0x44F) || upperHalf.indexOf(text.charAt(i)) >= 0;
    if (!known) return false;
  }
  return true;
}
