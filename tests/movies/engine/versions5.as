// movie: version="5" rate="10"
#include "parts/versions.as"
