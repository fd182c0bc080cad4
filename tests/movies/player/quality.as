// movie: version="6" rate="10"
trace(_quality); toggleHighQuality(); trace(_quality); toggleHighQuality(); trace(_quality);
