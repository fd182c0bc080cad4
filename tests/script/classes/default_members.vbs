Class List
  Private items
  Private Sub Class_Initialize : Set items = CreateObject("Scripting.Dictionary") : End Sub
  Public Default Property Get Item(i) : Item = items(i) : End Property
  Public Property Let Item(i, v) : items(i) = v : End Property
  Public Property Get All : Set All = items : End Property
End Class
Class Num : Public Default Function Value : Value = 42 : End Function : End Class
Set l = New List : l("a") = 1 : l.Item("b") = 2
Echo l("a") + l.Item("b"), l.All("b"), l.All.Count
Set n = New Num
Echo n + 1, n & "!", n = 42, CStr(n), Abs(n), VarType(n), TypeName(n), n() * 2
v = n : Echo v, IsObject(v)
If n Then Echo "true"
Dim a(50) : a(n) = "at 42" : Echo a(42)
Select Case n : Case 42 : Echo "selected" : End Select
For i = n To 43 : Echo i : Next
Set l = n : l = 5 : Echo l
