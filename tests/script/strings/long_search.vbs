' Texts that make a simple search compare everything with everything.
t = String(1000000, "a") : w = String(50000, "a") & "b"
Echo InStr(t, w), InStr(1, t, w, vbTextCompare), InStrRev(t, "b" & w), InStrB(t, w)
Echo UBound(Split(t, w)), Len(Replace(t, w, "")), UBound(Filter(Array(t, w), w))
Echo InStr(t & "b", w), InStr(1, t & "B", w, vbTextCompare), InStrRev("b" & t, "b" & String(50000, "a"))
Echo Len(Replace(t & "b" & t & "b", w, "")), UBound(Split(t & "b" & t, w))
' Longer than what is compared place by place, with beginnings that come back.
p = "abcabcabcabcabcabcabd" : text = "abc" & p
Echo InStr(text, p), InStr(1, UCase(text), p, vbTextCompare), InStr(UCase(text), p), InStr(5, text, p)
Echo InStrRev(text & text, p), InStrRev(text & text, p, 47), Replace(text & text, p, "*"), InStrB(text, p)
Echo Join(Split(text & text & "z", p), "|"), InStr(p, text), InStrRev(p, text)
