Echo Len("abc"), Len(""), Len(123), Left("abc", 2), Left("abc", 9), Right("abc", 2), Right("abc", 0) & "|", Mid("abcdef", 3), Mid("abcdef", 2, 3), Mid("abc", 4) & "|", Mid("abc", 2, 0) & "|"
Echo "[" & LTrim("  a ") & "][" & RTrim(" a  ") & "][" & Trim("  a  ") & "][" & Trim(vbTab & "a") & "]"
Echo UCase("aбяё"), LCase("ABЯЁ"), StrReverse("abc"), String(3, "xyz"), String(2, 65), "[" & Space(3) & "]"
Echo Asc("A"), Asc("Ж"), Chr(198), AscW("Ж"), ChrW(1046), Asc("abc"), AscW(ChrW(-1)), Chr(65) & Chr(9) & "|"
On Error Resume Next
x = Mid("abc", 0) : Echo Err.Number, Err.Description : Err.Clear
x = Left("abc", -1) : Echo Err.Number : Err.Clear
x = Asc("") : Echo Err.Number : Err.Clear
x = Chr(256) : Echo Err.Number : Err.Clear
x = String(-1, "a") : Echo Err.Number : Err.Clear
x = Space(-1) : Echo Err.Number : Err.Clear
x = String(3, "") : Echo Err.Number
