s = ChrB(65) : Echo LenB(s), Len(s), AscB(s)
s = s & ChrB(0) : Echo s, LenB(s), s = "A"
For i = 1 To 5 : b = b & ChrB(48 + i) : Next
Echo LenB(b), Len(b), AscB(MidB(b, 5, 1)), AscB(RightB(b, 2)), LenB(LeftB(b, 3)), LenB(b & "x")
Echo InStrB(b, ChrB(51)), InStrB(4, b, ChrB(51)), InStrB("abc", "b"), InStrB(2, "abc", "b"), InStrB(b, "")
Echo MidB("abc", 2, 2) = ChrB(0) & ChrB(98), LenB(MidB("abc", 2)), LenB(MidB(b, 6))
Echo AscB("ж"), AscB(MidB("ж", 2))
Echo ChrB(1) = ChrB(1), ChrB(1) = ChrB(2), ChrB(1) = "", ChrB(1) > ""
Echo LenB(""), LenB(12), LenB(Empty), IsNull(LenB(Null)), IsNull(MidB(Null, 1))
' What works with characters loses the odd byte; a copy keeps it.
c = b : Echo Len(UCase(b)), LenB(c), c = b, LenB(Mid(b, 2)), LenB(b & "")
On Error Resume Next
x = ChrB(256) : Echo Err.Number : Err.Clear
x = AscB("") : Echo Err.Number : Err.Clear
x = MidB("a", 0) : Echo Err.Number : Err.Clear
x = LeftB("a", -1) : Echo Err.Number
