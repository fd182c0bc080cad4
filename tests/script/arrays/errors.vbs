On Error Resume Next
Sub Report : Echo Err.Number, Err.Description : Err.Clear : End Sub
Dim f(2), d() : a = Array(1, 2)
x = f(3) : Report
f(-1) = 1 : Report
x = f(0, 0) : Report
x = d(0) : Report
ReDim f(5) : Report
f = Array(1) : Report
x = f + 1 : Report
ReDim g(1, 1) : ReDim Preserve g(2, 2) : Report
ReDim h(-2) : Report
x = UBound(5) : Report
x = UBound(a, 2) : Report
x = a("one") : Report
If a = 1 Then Report
Report
ReDim z(100000000) : Report
