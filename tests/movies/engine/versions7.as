// movie: version="7" rate="10"
#include "parts/versions.as"
