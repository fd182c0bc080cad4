// movie: version="6" rate="10"
// From version 6 on fifteen may stand inside each other.
var at = "root";
var a = {at: 1}, b = {at: 2}, c = {at: 3}, d = {at: 4}, e = {at: 5}, f = {at: 6}, g = {at: 7}, h = {at: 8};
with (a) { with (b) { with (c) { with (d) { with (e) { with (f) { with (g) { trace(at); with (h) { trace("never " + at); } trace(at); } } } } } } }
trace(at);
for (var i = 0; i < 20; i++) { with (a) { with (h) { at = i; } } }
trace(h.at + " " + a.at + " " + at);
