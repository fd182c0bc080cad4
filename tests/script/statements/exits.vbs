Function F(n)
  For i = 1 To 10
    Do
      If i = n Then F = "found " & i : Exit Function
      Exit Do
    Loop
  Next
  F = "none"
End Function
Echo F(3), F(20)
Sub S(n) : If n > 1 Then Exit Sub
  Echo "small" : End Sub
S 1 : S 2
Class C
  Public Property Get P(n) : P = "first" : If n Then Exit Property
    P = "second" : End Property
End Class
Set o = New C : Echo o.P(True), o.P(False)
For Each x In Array(1, 2, 3) : For Each y In Array(4, 5) : If x = 2 Then Exit For
  line = line & x & y & " " : Next : Next : Echo line
Do : Do : Exit Do : Loop : k = k + 1 : If k > 3 Then Exit Do
Loop : Echo k
