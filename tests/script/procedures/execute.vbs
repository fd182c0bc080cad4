Execute "a = 5 : Echo a * 2"
Echo a, Eval("a + 1"), Eval("a = 5"), Eval("""text""")
Sub P
  Dim l : l = 1
  Execute "l = l + 1 : Dim m : m = 7"
  Echo l, Eval("l * 10"), Eval("m")
  Execute "n = l" : Echo n
  ExecuteGlobal "made = ""global"""
End Sub
P : Echo made, "[" & m & "]"
Execute "Function Made2(x) : Made2 = x & ""!"" : End Function" : Echo Made2("hi")
ExecuteGlobal "Class K : Public V : End Class" : Set k1 = New K : k1.V = 3 : Echo k1.V
Class C : Private f
  Public Sub Run(code) : f = 4 : Execute code : Echo f : End Sub
End Class
Set o = New C : o.Run "f = f * 2"
On Error Resume Next
Execute "x = " : Echo Err.Number, Err.Description, Err.Source : Err.Clear
x = Eval("1 +") : Echo Err.Number : Err.Clear
Execute "y = 1/0" : Echo Err.Number
For i = 1 To 1000 : Execute "t = t + " & i : Next : Echo t
