Class A
Public Default Function F : End Function
Public Default Function G : End Function
End Class
