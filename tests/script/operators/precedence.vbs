Echo 2 + 3 * 4, (2 + 3) * 4, 2 * 3 ^ 2, -2 ^ 2, 2 ^ -1, 2 ^ 3 ^ 2
Echo 7 \ 2 * 3, 100 / 10 \ 3, 17 Mod 5 * 2, 10 Mod 7 \ 2
Echo 1 + 2 & 3 + 4, "a" & 1 + 1
Echo 1 < 2 And 2 < 3, Not 1 = 2, Not True And False, 1 = 1 = True
Echo True Or True And False, True Xor True Or True, False Imp False Eqv False, 5 And 3 Or 8
Echo - - 3, 3 - -3, 2 - 3 - 4, 16 / 4 / 2
Echo "a" & "b" = "ab"
