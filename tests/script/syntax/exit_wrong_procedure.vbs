Sub a
Exit Function
End Sub
