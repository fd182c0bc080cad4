x = 1
End If
