For i = 1 To 2
Sub a
  Exit For
End Sub
Next
