On Error Resume Next
Select Case 1 / 0
  Case 1 : Echo "case"
  Case Else : Echo "else"
End Select
Echo Err.Number : Err.Clear
Select Case CInt("x") : Case 0 : Echo "none" : End Select : Echo Err.Number : Err.Clear
' An error inside a Case is none of the Select itself.
Select Case 1
  Case 1 : x = 1 / 0 : Echo "goes on"
End Select
Echo Err.Number : Err.Clear
For Each v In 42 : Echo "once" : Next
Echo Err.Number, Err.Description : Err.Clear
.x = 1 : Echo Err.Number : Err.Clear
y = .x : Echo Err.Number : Err.Clear
.M 1 : Echo Err.Number : Err.Clear
Nothing.Foo : Echo Err.Number : Err.Clear
y = Nothing.Foo(1) : Echo Err.Number : Err.Clear
Set n = Nothing : n.Foo : Echo Err.Number : Err.Clear
x = CInt("abc") : Echo Err.Description, "|", Err.Source : Err.Clear
