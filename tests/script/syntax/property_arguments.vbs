Class A
Property Get P(a) : End Property
Property Let P(v) : End Property
End Class
