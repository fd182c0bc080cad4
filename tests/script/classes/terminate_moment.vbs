' Class_Terminate runs when the last reference goes, in the middle of a statement as well.
Class Loud
  Public Name
  Private Sub Class_Terminate : Echo "gone", Name : End Sub
End Class
Function Make(n) : Dim o : Set o = New Loud : o.Name = n : Set Make = o : End Function
Function Local(n) : Dim o : Set o = Make(n) : Local = n & " ended" : End Function
Echo Local("a")
text = Local("b") & ", " & Local("c") : Echo text
Sub Use(o) : Echo "using", o.Name : End Sub
Use Make("argument") : Echo "next"
Set x = Make("x") : Set y = x : Set x = Nothing : Echo "held" : Set y = Make("second") : Echo "replaced"
y = 5 : Echo "a number now", y
With Make("with") : Echo .Name : End With : Echo "after with"
If Local("condition") <> "" Then Echo "branch"
For Each n In Array(Local("element")) : Echo n : Next
' One that brings another down.
Set outer = Make(Empty) : Set outer.Name = New Chain : Set outer = Nothing : Echo "both"
Class Chain
  Private Sub Class_Terminate : Echo "chain" : End Sub
  Public Default Property Get Text : Text = "inner" : End Property
End Class
' Err of the interrupted code stays, and a revived object ends once only.
Class Reviver
  Private Sub Class_Terminate : Echo "revived" : Set kept = Me : End Sub
  Public Function Alive : Alive = "alive" : End Function
End Class
Dim kept
Set r = New Reviver : Set r = Nothing : Echo kept.Alive : Set kept = Nothing : Echo "end"
ReDim many(20000) : For i = 0 To 20000 : Set many(i) = New Counter : Next : Erase many : Echo count
Dim count
Class Counter
  Private Sub Class_Terminate : count = count + 1 : End Sub
End Class
