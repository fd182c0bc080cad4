If a Then
 Echo 1
End Sub
