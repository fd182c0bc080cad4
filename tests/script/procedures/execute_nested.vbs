' Text executed by executed text sees the procedure around both.
Sub P
  Dim l, k : l = 1
  Execute "Execute ""l = l + 1"" : k = Eval(""l * 10"")" : Echo l, k
  Execute "Execute ""Execute """"l = l + 1""""""" : Echo l
  Echo Eval("Eval(""l"") + 1")
  Execute "Execute ""Dim made : made = 7"" : Echo made" : Echo Eval("made")
  Execute "x = 5 : Execute ""x = x + 1"" : Echo x" : Echo Eval("x")
  Execute "Dim l : Execute ""l = l * 10""" : Echo l
End Sub
P : Echo "[" & x & "]", "[" & l & "]"
Function F(a) : Const c = 3 : Execute "Execute ""F = a + c""" : End Function
Echo F(4)
Class Holder
  Private f
  Public Sub Run : f = 1 : Execute "Execute ""f = f + 1 : Twice""" : Echo f : End Sub
  Private Sub Twice : f = f * 2 : End Sub
End Class
Set h = New Holder : h.Run
' ExecuteGlobal leaves the procedure, and so does what it executes in turn.
Sub G : Dim l : l = "local" : ExecuteGlobal "Execute ""l = 1""" : Echo l, Eval("l") : End Sub
G : Echo l
' By reference through every text.
Sub Add(n) : Execute "Execute ""n = n + 1""" : End Sub
v = 1 : Add v : Echo v
s = "Execute s"
Sub Endless : On Error Resume Next : Execute s : Echo Err.Number : End Sub
Endless
