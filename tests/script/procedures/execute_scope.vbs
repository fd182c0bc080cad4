Option Explicit
Sub makes
  Execute "Dim z : z = 1" : Echo z
  z = z + 1 : Echo z, Eval("z")
  Execute "Dim q(2)" : q(1) = "q" : Echo q(1), UBound(q)
  ExecuteGlobal "Dim everywhere : everywhere = 3 : Function twice(v) : twice = v * 2 : End Function"
  Echo twice(everywhere)
End Sub
makes : Echo twice(everywhere)
Echo IsEmpty(Eval("")), IsEmpty(Eval("  ' nothing"))
On Error Resume Next
Echo z : Echo Err.Number : Err.Clear
' An array is declared once.
Dim once(2) : once(0) = "kept"
ExecuteGlobal "Dim once(3)" : Echo Err.Number, once(0) : Err.Clear
Sub twiceHere : Execute "Dim t(1) : t(0) = 1" : Execute "Dim t(1)" : End Sub
twiceHere : Echo Err.Number
