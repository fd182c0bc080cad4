Dim a(), i, n
ReDim a(99999)
For i = 0 To 99999 : a(i) = i : Next
n = 0 : For Each i In a : n = n + i : Next
Echo n, UBound(Split(String(99999, ","), ","))
For i = 0 To 20000 : ReDim Preserve b(i) : b(i) = i : Next
Echo b(20000)
s = String(1000000, "x") : s = s & "y" : Echo Len(s), Right(s, 2), InStr(s, "y"), Len(Replace(s, "x", "zz"))
v = Array() : For i = 1 To 100000 : v = Array(v) : Next : Echo IsArray(v) : v = Empty
