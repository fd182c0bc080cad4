' A local variable with a simple operation behind it: whatever the variable and the operation hold.
Sub shows(ByVal a, ByRef b, c)
  Dim l : l = a
  Echo a + b * c, l - b * 2, l * (b + 1), l + b & c, a - 1 - b - c, b + b * b, l + l * l, TypeName(a + b * c)
  l = l + b * c : l = l - c * 2 : b = b + c * 2 : Echo l, b
End Sub
x = 3 : shows 2, x, 4 : Echo x
shows 1.5, 2.5, 4
shows "5", 2, 3
shows 30000, 30000, 30000
shows 2000000000, 2, 2000000000
shows CByte(200), CByte(2), CByte(100)
shows CCur(1.5), 2, 3
shows Empty, 1, True
Sub fails(a, b)
  Dim l : l = a
  On Error Resume Next
  l = l + b * 2 : Echo Err.Number, IsNull(l) : Err.Clear
  l = a - 2 \ b : Echo Err.Number
End Sub
fails "abc", 1 : fails Null, 0 : fails 1, "x" : fails Array(1), 2
Class Five : Public Default Property Get V : V = 5 : End Property : End Class
Set five1 = New Five
Sub objects(o) : Dim l : Set l = o : Echo l + o * 2, o - l * o : End Sub
objects five1
' Whole divisors that are constants.
Sub divides(n)
  Echo n Mod 7, n \ 7, n Mod 1, n \ 1, n Mod 2, n \ 2, n Mod 2147483647, n \ 2147483647, n Mod 65536, n \ 65535, TypeName(n Mod 7)
End Sub
divides 0 : divides 6 : divides 7 : divides -15 : divides 32767 : divides 2147483647 : divides -2147483648 : divides 2147483646
divides 13.5 : divides "20" : divides True : divides Empty : divides CByte(250)
