Class A
  Public Default Property Let P(v) : End Property
End Class
