Sub a
  Sub b
  End Sub
End Sub
