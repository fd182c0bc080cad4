// movie: version="5"
// In version 5 scripts do not know text fields: the name of one is the clip it lies in.
createTextField("t", 1, 0, 0, 50, 20);
trace(t);
t.text = "set";
trace(text);
trace(typeof t);
