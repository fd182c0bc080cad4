On Error Resume Next
Sub S(a) : End Sub
Sub Report : Echo Err.Number, Err.Description : Err.Clear : End Sub
S : Report
S 1, 2 : Report
Call NoSuch(1) : Report
NoSuch : Report
x = NoSuch(2) : Report
S.x = 1 : Report
x = Len() : Report
Const c = 1 : c = 2 : Report
S = 5 : Report
vbCrLf = "x" : Report
x = Mid("a") : Report
