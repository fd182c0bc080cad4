Option Explicit
Dim a : a = 1 : Echo a
Sub S : Dim l : l = 2 : Echo l, a : End Sub
S
On Error Resume Next
b = 1 : Echo Err.Number, Err.Description : Err.Clear
Echo c : Echo Err.Number, Err.Description : Err.Clear
Sub T : d = 1 : End Sub
T : Echo Err.Number, Err.Description
On Error GoTo 0
For e = 1 To 2 : Next
