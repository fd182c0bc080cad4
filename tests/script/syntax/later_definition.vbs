Sub a : End Sub
x = 1
Class A
End Class
