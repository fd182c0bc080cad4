Sub f(a, b) : End Sub
f(1, 2)
