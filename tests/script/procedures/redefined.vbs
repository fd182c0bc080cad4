' Of procedures of one name the last counts, also for statements before it.
Sub p : Echo "first" : End Sub
p
Sub p : Echo "second" : End Sub
Function p2 : p2 = 1 : End Function
Sub p2 : Echo "sub" : End Sub
p2
Execute "Sub p : Echo ""third"" : End Sub" : p
' The language's functions may be hidden, its own class may not.
Function Len(x) : Len = "mine" : End Function
Echo Len("abc")
Class RegExp : Public Pattern : End Class
Echo TypeName(New RegExp)
