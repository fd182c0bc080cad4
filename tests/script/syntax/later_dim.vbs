Class A
End Class
If x Then
  Dim b, a
End If
