Function Fact(n) : If n <= 1 Then Fact = 1 Else Fact = n * Fact(n - 1)
End Function
Function Depth(n) : If n = 0 Then Depth = 0 Else Depth = 1 + Depth(n - 1)
End Function
Function Ack(m, n)
  If m = 0 Then
    Ack = n + 1
  ElseIf n = 0 Then
    Ack = Ack(m - 1, 1)
  Else
    Ack = Ack(m - 1, Ack(m, n - 1))
  End If
End Function
Echo Fact(10), Depth(3000), Ack(2, 3)
Function Forever(n) : Forever = Forever(n + 1) : End Function
On Error Resume Next
x = Forever(1)
Echo Err.Number, Err.Description
Echo Fact(5)
