Sub Inc(v) : v = v + 1 : End Sub
Sub IncVal(ByVal v) : v = v + 1 : End Sub
Function Twice(v) : v = v * 2 : Twice = v : End Function
Dim n, a(2), o : n = 1
Inc n : Echo n
Inc (n) : Echo n
Call Inc(n) : Echo n
Call Inc((n)) : Echo n
Inc(n) : Echo n
IncVal n : Echo n
Echo Twice(n), n
x = Twice((n)) : Echo x, n
a(1) = 5 : Inc a(1) : Echo a(1)
Inc (a(1)) : Echo a(1)
Sub Chain(v) : Inc v : End Sub
Chain n : Echo n
Inc n + 1 : Echo n
Inc 5
Class C : Public F
  Public Sub Own : Inc F : End Sub
End Class
Set o = New C : o.F = 1 : o.Own : Echo o.F
Inc o.F : Echo o.F
Sub Fill(arr) : arr(0) = "filled" : End Sub
Sub FillVal(ByVal arr) : arr(0) = "copy" : End Sub
b = Array(1) : Fill b : Echo b(0) : FillVal b : Echo b(0)
Sub Swap(p, q) : t = p : p = q : q = t : End Sub
p = 1 : q = 2 : Swap p, q : Echo p, q
