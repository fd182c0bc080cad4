Class A
Private Default Function F : End Function
End Class
