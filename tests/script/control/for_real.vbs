Dim i, s
For i = 0 To 1 Step 0.1 : s = s & i & " " : Next : Echo s & "|", i > 1
s = "" : For i = 1 To 0 Step -0.5 : s = s & i & " " : Next : Echo s & i
s = "" : For i = 1.5 To 4 : s = s & i & " " : Next : Echo s & i, TypeName(i)
s = "" : For i = 3 To 1 : s = s & i : Next : Echo "[" & s & "]", i
s = "" : For i = CByte(1) To CByte(3) : s = s & i : Next : Echo s, i
s = "" : For i = #1/30/2024# To #2/1/2024# : s = s & i & " " : Next : Echo s
s = "" : For i = CCur(1) To 2 Step CCur(0.5) : s = s & i & " " : Next : Echo s
' From, limit and step are read once, the variable each time.
n = 2 : t = 1 : s = "" : For i = 1 To n Step t : n = 9 : t = 5 : s = s & i : Next : Echo s
s = "" : For i = 1 To 9 : s = s & i : If i = 3 Then i = 7
Next : Echo s
s = "" : For i = True To 1 : s = s & i & " " : Next : Echo s
For i = 1 To Empty : Echo "never" : Next : Echo i
On Error Resume Next
For i = 1 To Null : Echo "in" : Next : Echo Err.Number : Err.Clear
For i = "a" To 2 : Next : Echo Err.Number : Err.Clear
