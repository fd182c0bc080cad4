On Error Resume Next
Echo "a" : x = 1 / 0 : Echo "b", Err.Number
Err.Clear : Echo Err.Number, Err.Description & "|"
x = 5 : x = CInt("zz") : Echo x, Err.Number
' An error in a condition goes on inside the block.
If 1 / 0 Then
  Echo "inside"
Else
  Echo "else"
End If
If True Then
  x = 1 / 0
Else
  Echo "not here"
End If
Echo "after"
Select Case 1
  Case 1 : x = 1 / 0
  Case 2 : Echo "not here"
End Select
Sub Fails : Echo "in" : x = 1 / 0 : Echo "not reached" : End Sub
Err.Clear : Fails : Echo "back", Err.Number
Sub Own : On Error Resume Next : x = 1 / 0 : Echo "own", Err.Number : End Sub
Err.Clear : Own : Echo Err.Number
Sub Off : On Error GoTo 0 : x = 1 / 0 : Echo "not reached" : End Sub
Err.Clear : Off : Echo "still here", Err.Number
With 1 / 0 : Echo "with" : End With
For i = 1 To 1 / 0 : Echo "for" : Next
Echo "end"
On Error GoTo 0
Echo Err.Number
x = 1 / 0
Echo "never"
