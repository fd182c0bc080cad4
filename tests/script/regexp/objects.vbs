Set r = New RegExp : Echo r.Global, r.IgnoreCase, r.Multiline, r.Pattern & "|"
r.Pattern = "(\w)(\d)?" : r.Global = True
Set ms = r.Execute("a1 b") : Echo ms.Count, ms(0).Value, ms(0).FirstIndex, ms(0).Length, ms.Item(1), ms(1).FirstIndex, ms(0).SubMatches.Count, ms(0).SubMatches(1), IsEmpty(ms(1).SubMatches(1))
For Each m In ms : s = s & m & ";" : Next : Echo s
Echo TypeName(ms), TypeName(ms(0))
r.Pattern = "(\w+) (\w+)" : Echo r.Replace("one two three four", "$2 $1"), r.Replace("a b", "[$&|$`|$'|$$|$3|$0]")
r.Global = False : r.Pattern = "o" : Echo r.Replace("foo", "0") : r.Global = True : Echo r.Replace("foo", "0")
r.Pattern = "x*" : Echo r.Replace("abc", "-")
r.Pattern = "^b" : Echo r.Test("a" & vbLf & "b") : r.Multiline = True : Echo r.Test("a" & vbLf & "b")
r.Pattern = "ПРИВЕТ" : r.IgnoreCase = True : Echo r.Test("привет"), r.Replace("Привет!", "пока")
Set r2 = CreateObject("VBScript.RegExp") : r2.Pattern = "[A-C]+" : r2.IgnoreCase = True : Echo r2.Execute("xxabcx")(0)
On Error Resume Next
Echo ms(5) : Echo Err.Number : Err.Clear
r.Nope = 1 : Echo Err.Number
