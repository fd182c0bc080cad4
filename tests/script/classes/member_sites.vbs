' One place in the text meets objects of several classes, whose members are of several kinds.
Class Field : Public V : End Class
Class Counter
    Private m
    Public Property Get V : V = m : End Property
    Public Property Let V(x) : m = x * 10 : End Property
End Class
Class Holder
    Private m
    Public Property Get V : Set V = m : End Property
    Public Property Set V(x) : Set m = x : End Property
    Public Property Let V(x) : Set m = New Field : m.V = TypeName(x) : End Property
End Class
Class Method : Public Function V : V = "called" : End Function : End Class
Class Hidden : Private Property Get V : V = 1 : End Property : Private Property Let V(x) : End Property : End Class
Class Lists
    Public Property Get V : V = Array(7, 8, 9) : End Property
End Class
On Error Resume Next
For Each o In Array(New Field, New Counter, New Field, New Holder, New Method, New Hidden, New Counter, Nothing, New Lists)
    n = n + 1
    o.V = n : Echo n, TypeName(o), "put", Err.Number : Err.Clear
    x = "none" : x = o.V : Echo n, TypeName(x), Err.Number : Err.Clear
    x = "none" : x = o.V(1) : Echo n, x, Err.Number : Err.Clear
    Set o.V = o : Echo n, "set", Err.Number : Err.Clear
Next
' Its procedure may let go of the object that it belongs to.
Class Last
    Public Property Let V(x) : Set keep = Nothing : m = x : Echo "let", m : End Property
    Public Function F(ByRef a) : Set keep = Nothing : a = a + 1 : F = a : End Function
    Private m
    Sub Class_Terminate : Echo "ended" : End Sub
End Class
On Error GoTo 0
For i = 1 To 2
    Set keep = New Last : keep.V = i
    Set keep = New Last : k = i : Echo keep.F(k), k
Next
