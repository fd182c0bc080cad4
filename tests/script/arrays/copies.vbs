a = Array(1, 2, 3) : b = a
For Each x In a
  a(1) = 9
Next
Echo a(1), b(1)
Sub Put(e, ByVal v) : e = v : End Sub
c = a : Put c(0), 7 : Echo a(0), c(0)
For Each x In b : ReDim d(1) : c = b : c(0) = "c" : ReDim c(5) : Next : Echo b(0), UBound(c)
Sub Both(e, arr) : arr(0) = 5 : Echo e : e = 6 : Echo arr(0) : End Sub
Both a(0), a
Sub Grow(e, arr) : ReDim Preserve arr(9) : End Sub
On Error Resume Next
Grow a(0), a : Echo Err.Number, UBound(a)
Class K : Public F : End Class
Set o = New K : o.F = a : o.F(1) = "in o" : Echo a(1), o.F(1)
Set q = CreateObject("Scripting.Dictionary") : q("a") = a : a(2) = "new" : Echo q("a")(2)
