x = 12abc
