x = 1
y = "abc
