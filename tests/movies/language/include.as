// movie: version="7" rate="10"
#include "parts/shared.as"
trace(shared(2) + " " + fromDeeper);
