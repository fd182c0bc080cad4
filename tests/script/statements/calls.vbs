Class C
  Public Sub Two(a, b) : Echo a & "-" & b : End Sub
  Public Function Me_ : Set Me_ = Me : End Function
  Public Function Opt(a, b) : Opt = TypeName(b) : End Function
End Class
Set o = New C
o.Two 1, 2
o.Two (1), (2)
Call o.Two(3, 4)
o.Me_.Two 5, 6
o.Me_().Two "a" & "b", -1
Echo (1) + 2, (3)
Echo -1
Echo o.Opt(1, )
Set d = CreateObject("Scripting.Dictionary")
d.Add "k", Array(1, 2) : Echo d("k")(1), d.Item("k")(0)
Set d("self") = o : d("self").Two 7, 8
Sub NoArgs : Echo "none" : End Sub
NoArgs : NoArgs() : Call NoArgs : Call NoArgs()
Echo Len("x" & _
  "y")
If Len("abc") = 3 Then NoArgs Else Echo "no"
