Sub Show(n)
  If n = 1 Then
    Echo "one"
  ElseIf n = 2 Then
    Echo "two"
  ElseIf n = 3 Then Echo "three"
  Else
    Echo "many"
  End If
End Sub
Show 1 : Show 2 : Show 3 : Show 4
If True Then Echo "a" : Echo "b" Else Echo "c"
If False Then Echo "a" : Echo "b" Else Echo "c" : Echo "d"
If True Then If False Then Echo "x" Else Echo "inner"
If "0" Then Echo "yes" Else Echo "no"
If 0.1 Then Echo "yes"
If True Then Echo "end" End If
If Empty Then Echo "no" Else Echo "empty"
