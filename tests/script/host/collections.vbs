Set r = New RegExp : r.Pattern = "." : r.Global = True
Set all = r.Execute("xyz")
For Each m In all : For Each n In all : s = s & m & n & " " : Next : Next
Echo s
For i = 0 To all.Count - 1 : t = t & all(i) : Next : Echo t
With all : Echo .Item(1), .Count : End With
