// movie: version="6" rate="10"
trace("first frame of " + this);
