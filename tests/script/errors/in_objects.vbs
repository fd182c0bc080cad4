Class C
  Public Sub Fail : Err.Raise 999, "C.Fail", "from inside" : End Sub
  Public Function Guarded
    On Error Resume Next
    Fail
    Guarded = Err.Description
    Err.Clear
  End Function
  Public Default Property Get V : V = 1 / 0 : End Property
End Class
Set o = New C
Echo o.Guarded
On Error Resume Next
o.Fail : Echo Err.Number, Err.Source : Err.Clear
x = o + 1 : Echo Err.Number : Err.Clear
x = "before" : x = o.V : Echo x, Err.Number
On Error GoTo 0
x = 1 + o
