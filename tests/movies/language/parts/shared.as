#include "deeper.as"
function shared(n) { return "shared " + n; }
