Dim i, s
For i = 1 To 3 : s = s & i : Next : Echo s, i
s = "" : For i = 3 To 1 Step -1 : s = s & i : Next : Echo s, i
s = "" : For i = 1 To 0 : s = s & "x" : Next : Echo s & "|", i
s = "" : For i = 0 To 1 Step 0.25 : s = s & i & " " : Next : Echo s & i
For i = 1 To 10 : If i = 4 Then Exit For
Next : Echo i
For i = 1 To 3 : i = i + 1 : s = i : Next : Echo s, i
n = 3 : For i = 1 To n : n = 10 : Next : Echo i
For i = 32766 To 32768 : Next : Echo i, TypeName(i)
For i = "1" To "3" : Next : Echo i, TypeName(i)
For i = 1 To 40000 Step 20000 : Next : Echo TypeName(i)
For i = 1 To 2
  For j = 1 To 2
    If j = 2 Then Exit For
    Echo i & j
  Next
Next
