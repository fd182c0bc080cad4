Option Explicit
ReDim a(2) : a(1) = 5 : Echo a(1), UBound(a)
Sub inside
  Echo IsEmpty(b)
  ReDim b(3) : b(3) = "b" : Echo b(3)
  ReDim a(7)
End Sub
inside : Echo UBound(a)
On Error Resume Next
b(3) = 1 : Echo Err.Number
