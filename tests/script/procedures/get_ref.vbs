Function Add(a, b) : Add = a + b : End Function
Sub Inc(v) : v = v + 1 : End Sub
Set f = GetRef("add") : Echo f(2, 3), TypeName(f)
Set g = f : Echo g(4, 5)
n = 1 : Set i = GetRef("Inc") : i n : Echo n
Function Apply(fn, a, b) : Apply = fn(a, b) : End Function
Echo Apply(GetRef("Add"), "x", "y")
On Error Resume Next
Set f = GetRef("nothing") : Echo Err.Number, Err.Description
