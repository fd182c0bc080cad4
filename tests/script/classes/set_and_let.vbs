Class Holder
  Private m
  Public Property Let P(v) : Echo "let" : m = v : End Property
  Public Property Set P(v) : Echo "set" : Set m = v : End Property
  Public Property Get P : If IsObject(m) Then Set P = m Else P = m
  End Property
  Public Field
End Class
Set h = New Holder
h.P = 5 : Echo h.P
Set h.P = New Holder : Echo TypeName(h.P)
Set h.Field = h : Echo h.Field.Field Is h
h.Field = 1 : Echo h.Field
h.Field = Array(1, 2) : h.Field(1) = 7 : Echo h.Field(1)
On Error Resume Next
Set h.P = 5 : Echo Err.Number
