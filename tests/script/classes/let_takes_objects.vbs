Class Item : Public Default Property Get V : V = 5 : End Property : End Class
Class Holder
  Public Field
  Private m
  Public Property Let P(v) : If IsObject(v) Then Echo "let object" Else Echo "let", v
  End Property
  Public Property Set S(v) : Set m = v : Echo "set", TypeName(v) : End Property
  Public Default Property Get D(i) : D = i : End Property
  Public Property Let D(i, v) : Echo "default", i, TypeName(v) : End Property
  Public Sub Inside(v) : P = v : End Sub
  Private Secret
End Class
Set h = New Holder : Set i = New Item
h.P = i : h.P = 3 : Set h.S = i : h.Field = i : Echo TypeName(h.Field) : h.Inside i
h(4) = i : h(5) = "x"
On Error Resume Next
Set h.S = True : Echo Err.Number : Err.Clear
Set h.Field = 5 : Echo Err.Number : Err.Clear
h.Secret = 1 : Echo Err.Number : Err.Clear
