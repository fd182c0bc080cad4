Sub Deep
  Dim x : x = 1 : _
    x = CInt("bad")
End Sub
Sub Outer
    Deep
End Sub
Outer
