// movie: version="5" rate="10"
// The eighth with inside another is passed over in version 5, and the next one at its end is met again.
var at = "root";
var a = {at: 1}, b = {at: 2}, c = {at: 3}, d = {at: 4}, e = {at: 5}, f = {at: 6}, g = {at: 7}, h = {at: 8};
with (a) { with (b) { with (c) { with (d) { with (e) { with (f) { with (g) { trace(at); with (h) { trace("never " + at); } trace(at); } } } } } } }
trace(at);
for (var i = 0; i < 20; i++) { with (a) { with (h) { at = i; } } }
trace(h.at + " " + a.at + " " + at);
