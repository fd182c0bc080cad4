Echo InStr("abcabc", "c"), InStr(4, "abcabc", "c"), InStr("abc", ""), InStr("", "a"), InStr("abc", "Z"), InStr(1, "ABC", "b", 1), InStr(1, "ПРИВЕТ", "вет", vbTextCompare), InStr(9, "abc", "a")
Echo InStrRev("abcabc", "c"), InStrRev("abcabc", "c", 5), InStrRev("abc", ""), InStrRev("abc", "x"), InStrRev("aBc", "b", -1, 1), InStrRev("abc", "c", 2)
Echo StrComp("a", "b"), StrComp("b", "a"), StrComp("a", "A"), StrComp("a", "A", 1), StrComp("ab", "abc")
Echo Replace("aaa", "a", "b"), Replace("aaa", "a", "b", 2), Replace("aaa", "a", "b", 1, 2), Replace("AbAb", "B", "x", 1, -1, 1), Replace("abc", "", "x"), Replace("abc", "b", "") , Replace("", "a", "b") & "|"
Echo Join(Split("a,b,,c", ","), "|"), UBound(Split("", ",")), Join(Split("a b c"), "|"), Join(Split("a,b,c", ",", 2), "|"), UBound(Split("abc", "")), Join(Split("aXbxc", "x", -1, 1), "|"), Join(Split("a--b-c", "--"), "|")
Echo Join(Filter(Array("apple", "Bob", "banana"), "a"), "|"), Join(Filter(Array("apple", "Bob"), "b", True, 1), "|"), Join(Filter(Array("apple", "Bob"), "a", False), "|")
Echo Join(Array(1, 2.5, "x")), Join(Array(1, 2), ""), Escape("a b+Ж&"), Unescape("%41%u0416%zz")
On Error Resume Next
x = InStr(0, "a", "a") : Echo Err.Number : Err.Clear
x = StrComp("a", "b", 7) : Echo Err.Number : Err.Clear
x = Join(5) : Echo Err.Number
