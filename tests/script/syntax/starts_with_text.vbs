  "abc" & x
