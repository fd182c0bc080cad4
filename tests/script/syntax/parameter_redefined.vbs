Sub f(a, b, A)
End Sub
