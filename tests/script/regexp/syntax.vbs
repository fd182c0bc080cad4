Function T(p, s) : Set r = New RegExp : r.Pattern = p : If r.Test(s) Then T = "y" Else T = "n"
End Function
Function M(p, s) : Set r = New RegExp : r.Pattern = p : Set x = r.Execute(s) : If x.Count Then M = "<" & x(0) & ">" Else M = "-"
End Function
Echo T("^abc$", "abc"), T("^abc$", "xabc"), T("a.c", "a" & vbLf & "c"), T("\bcat\b", "a cat!"), T("\bcat", "concat"), T("[^a-z]", "abc"), T("\d{3}-\d+", "555-1"), T("(?:ab)+$", "abab")
Echo M("a*", "aaa"), M("a*?", "aaa"), M("a+?b", "aaab"), M("a{2}", "aaaa"), M("a{2,}", "aaaa"), M("a{1,2}?", "aaaa"), M("x|yz|y", "yz"), M("(a|ab)(c|bcd)(d*)", "abcd")
Echo M("(.)\1", "abccd"), M("(?=b)b", "ab"), M("a(?!b).", "abac"), M("[\w.]+@[\w.]+", "to a.b@c.d now"), M("\x41\u0416", "AЖ"), M("\t", vbTab), M("[\]\-]+", "a]-"), M("a{,2}", "a{,2}"), M("[]a]", "a")
Echo M("(a*)*b", "aaac"), M("(z)((a+)?(b+)?(c))*", "zaacbbbcac"), M("(?:)", "abc"), M("\s\S\W\D", " a-x"), M("$", "abc"), M("\0", "a" & Chr(0)), M("[а-я]+", "Привет")
On Error Resume Next
For Each p In Array("(", ")", "[a", "*a", "a**", "[z-a]", "a{3,2}", "(?x)", "\")
  Err.Clear : x = T(p, "a") : e = e & Err.Number & " "
Next
Echo e
