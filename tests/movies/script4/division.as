// movie: version="4" rate="10"
// The oldest movies say so when they divide by nothing.
trace(1 / 0);
trace(0 / 0);
trace(6 / 4);
