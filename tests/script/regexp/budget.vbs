On Error Resume Next
Set r = New RegExp : r.Pattern = "(a+)+$"
x = r.Test(String(40, "a") & "b")
Echo Err.Number : Err.Clear
r.Pattern = "^(a|b)*c" : Echo r.Test(String(200000, "a") & "c"), Err.Number
r.Pattern = "((((((((((a*)*)*)*)*)*)*)*)*)*)*b" : x = r.Test(String(30, "a")) : Echo Err.Number = 0 Or Err.Number = 7
