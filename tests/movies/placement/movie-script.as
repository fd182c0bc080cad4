function nest(n) { depth = n; if (n < 20) return nest(n + 1); return "nested " + n; }
trace(a._width + " " + b.scale9Grid);
trace(typeof a);
