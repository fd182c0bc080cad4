' Elements of local lists, read and written by all kinds of indexes and values.
Sub work(a, n)
  Dim l(3), i
  For i = 0 To 3 : l(i) = i * n : Next
  Echo l(0), l(True + 2), l("2"), l(2.5), l(CByte(3))
  l(1) = "text" : l(2) = Array(1, 2) : Set l(3) = New RegExp : l(0) = l(1)
  Echo l(0), l(2)(1), TypeName(l(3))
  l(1) = 5 : l(2) = 6 : l(3) = Empty : Echo l(1) + l(2), IsEmpty(l(3))
  a(0) = n : b = a : b(0) = "copy" : Echo a(0), b(0)
  On Error Resume Next
  x = l(4) : Echo Err.Number : Err.Clear
  x = l(-1) : Echo Err.Number : Err.Clear
  x = l(True) : Echo Err.Number : Err.Clear
  l(4) = 1 : Echo Err.Number : Err.Clear
  l(Null) = 1 : Echo Err.Number : Err.Clear
  x = l(0, 0) : Echo Err.Number : Err.Clear
  n(0) = 1 : Echo Err.Number
End Sub
Dim g(1) : work g, 10 : Echo g(0)
' A list that two variables hold is copied before it is written to.
Sub shares : Dim p, q : p = Array(1, 2) : q = p : q(0) = 9 : Echo p(0), q(0) : For Each e In p : p(1) = e : Next : Echo p(1) : End Sub
shares
