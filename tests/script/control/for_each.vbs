Dim a(1, 1), d, x
For Each x In Array(3, "b", Empty, 1.5) : Echo "[" & x & "]" : Next
a(0, 0) = 1 : a(1, 0) = 2 : a(0, 1) = 3 : a(1, 1) = 4
For Each x In a : s = s & x : Next : Echo s
Set d = CreateObject("Scripting.Dictionary") : d("k1") = 1 : d("k2") = 2
For Each x In d : Echo x, d(x) : If x = "k1" Then d.Remove "k2"
Next
For Each x In Array() : Echo "never" : Next
For Each x In Array(1, 2, 3)
  For Each y In Array("a", "b") : If y = "b" Then Exit For
    Echo x & y
  Next
  If x = 2 Then Exit For
Next
b = Array(1, 2) : For Each x In b : x = 9 : Next : Echo b(0) & b(1)
ReDim c(1) : c(0) = 1
On Error Resume Next
For Each x In c : ReDim Preserve c(5) : Echo Err.Number, Err.Description : Err.Clear : Exit For : Next
ReDim Preserve c(5) : Echo Err.Number, UBound(c)
For Each x In 5 : Echo "body" : Next
Echo Err.Number
