' The value comes first, then the object and the index.
Function v(n) : Echo "value", n : v = n : End Function
Function i(n) : Echo "index", n : i = n : End Function
Class C : Public F : Public Default Property Get P(k) : P = k : End Property
Public Property Let P(k, x) : Echo "put", k, x : End Property : End Class
Set o = New C
Function obj : Echo "object" : Set obj = o : End Function
Dim a(3)
a(i(1)) = v(2) : Echo a(1)
o(i(2)) = v(3)
obj.P(i(3)) = v(4)
obj.F = v(5) : Echo o.F
Set d = CreateObject("Scripting.Dictionary")
d(i("k")) = v(6) : Echo d("k")
Function grows : ReDim Preserve b(5) : grows = 7 : End Function
ReDim b(0) : b(5) = grows : Echo b(5)
