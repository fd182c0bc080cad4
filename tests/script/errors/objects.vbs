On Error Resume Next
Sub Report : Echo Err.Number, Err.Description : Err.Clear : End Sub
Dim o, s : s = "text"
o.Method : Report
Set o = Nothing : o.Method : Report
x = s.Length : Report
s.Length = 5 : Report
Set o = 5 : Report
Set o = CreateObject("Scripting.Dictionary") : o.NoSuch : Report
x = o.NoSuch : Report
o.NoSuch = 1 : Report
o.Count = 5 : Report
x = o : Report
Set x = CreateObject("WScript.Shell") : Report
Set x = GetObject("file") : Report
Set x = New NoClass : Report
o.Add "a", 1 : o.Add "a", 2 : Report
o.Remove "zz" : Report
x = s(1) : Report
s(1) = 2 : Report
For Each y In o.Count : Next : Report
