// movie: version="6" rate="10"
#include "parts/versions.as"
