Class A
Sub Class_Initialize(x) : End Sub
End Class
