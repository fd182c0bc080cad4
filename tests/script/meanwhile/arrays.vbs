' Arrays that are made smaller, emptied or replaced while something still works on them.
Option Explicit
Dim list, log, i

Sub Shrink(ByRef element)
    On Error Resume Next
    ReDim Preserve list(1)
    Echo "shrink " & Err.Number
    Err.Clear
    element = "written"
    Echo "write " & Err.Number
    On Error GoTo 0
End Sub
ReDim list(5)
list(4) = "old"
Shrink list(4)
Echo UBound(list)

Sub Wipe(ByRef element, ByRef all)
    On Error Resume Next
    Erase all
    Echo "erase " & Err.Number
    On Error GoTo 0
    element = 7
End Sub
ReDim list(2)
Wipe list(1), list
On Error Resume Next
Echo UBound(list) & " " & Err.Number
On Error GoTo 0

' A list that a loop goes through is locked, and free again however the loop ends.
Function Tries
    On Error Resume Next
    list = Array("other")
    Tries = Err.Number
    Err.Clear
    ReDim list(9)
    Tries = Tries & " " & Err.Number
End Function
list = Array(1, 2, 3)
log = ""
For Each i In list
    log = log & i & ":" & Tries & " "
    If i = 2 Then Exit For
Next
Echo log & UBound(list)
Echo Tries & " " & UBound(list)

Sub Leaves
    Dim item
    For Each item In list
        For Each i In list
            If IsEmpty(i) Then Exit Sub
        Next
    Next
End Sub
Leaves
Echo Tries
Sub Fails
    Dim item
    For Each item In list
        item = 1 / 0
    Next
End Sub
On Error Resume Next
Fails
Echo Err.Number
On Error GoTo 0
Echo Tries

list = Array(1, 2, 3)
log = ""
For Each i In list
    i = i * 10
    log = log & i & " "
Next
Echo log & list(0) & list(2)
