// movie: version="8" rate="10"
#include "parts/versions.as"
