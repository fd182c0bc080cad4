Set Me = x
