Dim g : g = "global"
Sub A : Dim g : g = "local" : Echo g : End Sub
Sub B : Echo g : g = "changed" : End Sub
Sub C : implicit = 5 : Echo implicit : End Sub
Sub D : late = "set in D" : End Sub
A : B : Echo g : C : Echo "[" & implicit & "]"
D : late = "assigned outside" : Echo late
Function F : F = 1 : Exit Function : F = 2 : End Function
Echo F, F() + F
Function NoResult : End Function
Echo TypeName(NoResult())
Sub Early : Echo Later(2) : End Sub
Early
Function Later(n) : Later = n * 10 : End Function
Function Len(s) : Len = "mine" : End Function
Echo Len("abc")
Function Res : Res = "a" : Res = Res & "b" : End Function
Echo Res
Const k = 5, t = "txt" : Echo k, t
Sub E : Const k = 6 : Echo k : End Sub
E
