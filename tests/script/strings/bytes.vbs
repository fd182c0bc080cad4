Echo LenB("abc"), LenB(ChrB(65)), LeftB("ab", 2), MidB("abc", 3, 2)
