Class Loud
  Public Name
  Private Sub Class_Initialize : Echo "born" : End Sub
  Private Sub Class_Terminate : Echo "gone", Name : End Sub
End Class
Set a = New Loud : a.Name = "a"
Set b = a : Set a = Nothing : Echo "one left" : Set b = Nothing
Sub Local : Dim l : Set l = New Loud : l.Name = "local" : Echo "in" : End Sub
Local : Echo "out"
Set a = New Loud : a.Name = "first" : Set a = New Loud : a.Name = "second" : Echo "replaced"
Dim arr(1) : Set arr(0) = New Loud : arr(0).Name = "element" : Erase arr : Echo "erased"
Set d = CreateObject("Scripting.Dictionary") : Set d("k") = New Loud : d("k").Name = "item" : d.RemoveAll : Echo "removed"
' A circle ends when the engine does, after what is reachable.
Class Ring : Public Name, Other
  Private Sub Class_Terminate : Echo "ring", Name, Other.Name : End Sub
End Class
Set x = New Ring : x.Name = "x" : Set x.Other = New Ring : x.Other.Name = "y" : Set x.Other.Other = x
Class Chain : Public Nxt : End Class
Set head = Nothing
For i = 1 To 100000 : Set c = New Chain : Set c.Nxt = head : Set head = c : Next
Set c = Nothing : Set head = Nothing : Echo "chain freed"
Set last = New Loud : last.Name = "at the end"
